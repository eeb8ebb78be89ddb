// Names of the CIM model classes and of the arrays and enumerations of them, for headers that need
// no more.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_config.h"

namespace OpenWBEM {

template <class T>
class Array;
template <class T>
class Enumeration;

class CIMClass;
class CIMDataType;
class CIMDateTime;
class CIMElement;
class CIMFlavor;
class CIMInstance;
class CIMMethod;
class CIMName;
class CIMNameSpace;
class CIMObjectPath;
class CIMParamValue;
class CIMParameter;
class CIMProperty;
class CIMQualifier;
class CIMQualifierType;
class CIMScope;
class CIMValue;

typedef Array<CIMClass> CIMClassArray;
typedef Array<CIMDataType> CIMDataTypeArray;
typedef Array<CIMDateTime> CIMDateTimeArray;
typedef Array<CIMFlavor> CIMFlavorArray;
typedef Array<CIMInstance> CIMInstanceArray;
typedef Array<CIMMethod> CIMMethodArray;
typedef Array<CIMName> CIMNameArray;
typedef Array<CIMObjectPath> CIMObjectPathArray;
typedef Array<CIMParamValue> CIMParamValueArray;
typedef Array<CIMParameter> CIMParameterArray;
typedef Array<CIMProperty> CIMPropertyArray;
typedef Array<CIMQualifier> CIMQualifierArray;
typedef Array<CIMQualifierType> CIMQualifierTypeArray;
typedef Array<CIMScope> CIMScopeArray;
typedef Array<CIMValue> CIMValueArray;

typedef Enumeration<CIMClass> CIMClassEnumeration;
typedef Enumeration<CIMInstance> CIMInstanceEnumeration;
typedef Enumeration<CIMObjectPath> CIMObjectPathEnumeration;
typedef Enumeration<CIMQualifierType> CIMQualifierTypeEnumeration;

} // namespace OpenWBEM
