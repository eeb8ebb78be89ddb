#pragma once

// Everything that a provider normally needs, in one header. Result handlers, LogMessage,
// RepositoryIFC and some exceptions have headers of their own and are included by name.

#include "OW_config.h"

#include "OW_Array.hpp"
#include "OW_Assertion.hpp"
#include "OW_CIM.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_DateTime.hpp"
#include "OW_Enumeration.hpp"
#include "OW_Format.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_Logger.hpp"
#include "OW_OperationContext.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_String.hpp"
#include "OW_StringStream.hpp"
