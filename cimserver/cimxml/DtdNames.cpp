#include "cimserver/cimxml/DtdNames.hpp"

#include <algorithm>
#include <array>

namespace cimserver::cimxml {

namespace {

constexpr std::array<std::string_view, 72> elements = {
    "CIM",
    "CLASS",
    "CLASSNAME",
    "CLASSPATH",
    "CORRELATOR",
    "DECLARATION",
    "DECLGROUP",
    "DECLGROUP.WITHNAME",
    "DECLGROUP.WITHPATH",
    "ENUMERATIONCONTEXT",
    "ERROR",
    "EXPMETHODCALL",
    "EXPMETHODRESPONSE",
    "EXPPARAMVALUE",
    "HOST",
    "IMETHODCALL",
    "IMETHODRESPONSE",
    "INSTANCE",
    "INSTANCENAME",
    "INSTANCEPATH",
    "IPARAMVALUE",
    "IRETURNVALUE",
    "KEYBINDING",
    "KEYVALUE",
    "LOCALCLASSPATH",
    "LOCALINSTANCEPATH",
    "LOCALNAMESPACEPATH",
    "MESSAGE",
    "METHOD",
    "METHODCALL",
    "METHODRESPONSE",
    "MULTIEXPREQ",
    "MULTIEXPRSP",
    "MULTIREQ",
    "MULTIRSP",
    "NAMESPACE",
    "NAMESPACEPATH",
    "OBJECTPATH",
    "PARAMETER",
    "PARAMETER.ARRAY",
    "PARAMETER.REFARRAY",
    "PARAMETER.REFERENCE",
    "PARAMVALUE",
    "PROPERTY",
    "PROPERTY.ARRAY",
    "PROPERTY.REFERENCE",
    "QUALIFIER",
    "QUALIFIER.DECLARATION",
    "RESPONSEDESTINATION",
    "RETURNVALUE",
    "SCOPE",
    "SIMPLEEXPREQ",
    "SIMPLEEXPRSP",
    "SIMPLEREQ",
    "SIMPLEREQACK",
    "SIMPLERSP",
    "TABLE",
    "TABLECELL.DECLARATION",
    "TABLECELL.REFERENCE",
    "TABLEROW",
    "TABLEROW.DECLARATION",
    "VALUE",
    "VALUE.ARRAY",
    "VALUE.INSTANCEWITHPATH",
    "VALUE.NAMEDINSTANCE",
    "VALUE.NAMEDOBJECT",
    "VALUE.NULL",
    "VALUE.OBJECT",
    "VALUE.OBJECTWITHLOCALPATH",
    "VALUE.OBJECTWITHPATH",
    "VALUE.REFARRAY",
    "VALUE.REFERENCE",
};

static_assert(std::is_sorted(elements.begin(), elements.end()));

} // namespace

bool IsDtdElement(std::string_view name) {
    return std::binary_search(elements.begin(), elements.end(), name);
}

bool HoldsText(std::string_view name) {
    return name == "VALUE" || name == "KEYVALUE" || name == "HOST";
}

bool HoldsNoElements(std::string_view name) {
    return HoldsText(name) || name == "NAMESPACE" || name == "CLASSNAME" || name == "VALUE.NULL";
}

} // namespace cimserver::cimxml
