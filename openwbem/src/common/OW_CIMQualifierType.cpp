#include "OW_CIMQualifierType.hpp"

#include "OW_CIMModelData.hpp"
#include "OW_CIMValueCast.hpp"

namespace OpenWBEM {

namespace {

template <class Keyword>
std::string keywords(const char* heading, const Array<Keyword>& values) {
    std::string text;
    for (const Keyword& value : values) {
        text += text.empty() ? std::string(", ") + heading + "(" : ", ";
        text += value.toMOF().c_str();
    }
    return text.empty() ? text : text + ")";
}

} // namespace

CIMQualifierType::CIMQualifierType() : m_pdata(new CIMQualifierTypeData) {
}
CIMQualifierType::CIMQualifierType(CIMNULL_t) {
}
CIMQualifierType::CIMQualifierType(const CIMName& name) : CIMQualifierType() {
    m_pdata->name = name;
}
CIMQualifierType::CIMQualifierType(const char* name) : CIMQualifierType(CIMName(name)) {
}
CIMQualifierType::CIMQualifierType(const CIMQualifierType&) = default;
CIMQualifierType::CIMQualifierType(CIMQualifierType&&) noexcept = default;
CIMQualifierType& CIMQualifierType::operator=(const CIMQualifierType&) = default;
CIMQualifierType& CIMQualifierType::operator=(CIMQualifierType&&) noexcept = default;
CIMQualifierType::~CIMQualifierType() = default;

String CIMQualifierType::getName() const {
    return m_pdata->name.toString();
}

void CIMQualifierType::setName(const CIMName& name) {
    m_pdata->name = name;
}

CIMDataType CIMQualifierType::getDataType() const {
    return m_pdata->type;
}

CIMQualifierType& CIMQualifierType::setDataType(const CIMDataType& type) {
    CIMQualifierTypeData& data = *m_pdata;
    if (data.defaultValue) {
        data.defaultValue = CIMValueCast::castValueToDataType(data.defaultValue, type);
    }
    data.type = type;
    return *this;
}

CIMValue CIMQualifierType::getDefaultValue() const {
    return m_pdata->defaultValue;
}

CIMQualifierType& CIMQualifierType::setDefaultValue(const CIMValue& value) {
    m_pdata->defaultValue = value;
    return *this;
}

CIMScopeArray CIMQualifierType::getScopes() const {
    return m_pdata->scopes;
}

bool CIMQualifierType::hasScope(const CIMScope& scope) const {
    return contains(m_pdata->scopes, scope);
}

CIMQualifierType& CIMQualifierType::addScope(const CIMScope& scope) {
    m_pdata->scopes.push_back(scope);
    return *this;
}

CIMFlavorArray CIMQualifierType::getFlavors() const {
    return m_pdata->flavors;
}

bool CIMQualifierType::hasFlavor(const CIMFlavor& flavor) const {
    return contains(m_pdata->flavors, flavor);
}

CIMQualifierType& CIMQualifierType::addFlavor(const CIMFlavor& flavor) {
    m_pdata->flavors.push_back(flavor);
    return *this;
}

void CIMQualifierType::setNull() {
    *this = CIMQualifierType(CIMNULL);
}

String CIMQualifierType::toString() const {
    return "CIMQualifierType(" + getName() + ")";
}

String CIMQualifierType::toMOF() const {
    const CIMQualifierTypeData& data = *m_pdata;
    std::string text = std::string("Qualifier ") + data.name.toString().c_str() + " : " +
                       data.type.toString().c_str();
    if (data.type.isArrayType()) {
        text += "[]";
    }
    text += " = ";
    text += data.defaultValue ? data.defaultValue.toMOF().c_str() : "NULL";
    text += keywords("Scope", data.scopes);
    text += keywords("Flavor", data.flavors);
    return toOwString(text + ";\n");
}

} // namespace OpenWBEM
