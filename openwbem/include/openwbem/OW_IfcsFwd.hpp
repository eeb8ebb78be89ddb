#pragma once

#include "OW_config.h"

#include "OW_CIMFwd.hpp"
#include "OW_CommonFwd.hpp"

namespace OpenWBEM {

template <typename T>
class ResultHandlerIFC;
typedef ResultHandlerIFC<CIMObjectPath> CIMObjectPathResultHandlerIFC;
typedef ResultHandlerIFC<CIMInstance> CIMInstanceResultHandlerIFC;
typedef ResultHandlerIFC<CIMClass> CIMClassResultHandlerIFC;
typedef ResultHandlerIFC<CIMQualifierType> CIMQualifierTypeResultHandlerIFC;
typedef ResultHandlerIFC<String> StringResultHandlerIFC;

template <class T>
class IntrusiveReference;

class CIMOMHandleIFC;
typedef IntrusiveReference<CIMOMHandleIFC> CIMOMHandleIFCRef;

class RepositoryIFC;
typedef IntrusiveReference<RepositoryIFC> RepositoryIFCRef;

} // namespace OpenWBEM
