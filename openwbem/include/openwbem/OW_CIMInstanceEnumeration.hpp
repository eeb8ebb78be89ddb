#pragma once

#include "OW_config.h"

#include "OW_CIMFwd.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_Enumeration.hpp"
