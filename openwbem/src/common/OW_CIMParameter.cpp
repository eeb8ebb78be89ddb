#include "OW_CIMParameter.hpp"

#include "OW_CIMModelData.hpp"

namespace OpenWBEM {

CIMParameter::CIMParameter() : m_pdata(new CIMParameterData) {
}
CIMParameter::CIMParameter(CIMNULL_t) {
}
CIMParameter::CIMParameter(const CIMName& name) : CIMParameter() {
    m_pdata->name = name;
}
CIMParameter::CIMParameter(const char* name) : CIMParameter(CIMName(name)) {
}
CIMParameter::CIMParameter(const CIMParameter&) = default;
CIMParameter::CIMParameter(CIMParameter&&) noexcept = default;
CIMParameter& CIMParameter::operator=(const CIMParameter&) = default;
CIMParameter& CIMParameter::operator=(CIMParameter&&) noexcept = default;
CIMParameter::~CIMParameter() = default;

String CIMParameter::getName() const {
    return m_pdata->name.toString();
}

void CIMParameter::setName(const CIMName& name) {
    m_pdata->name = name;
}

CIMDataType CIMParameter::getType() const {
    return m_pdata->type;
}

CIMParameter& CIMParameter::setDataType(const CIMDataType& type) {
    m_pdata->type = type;
    return *this;
}

CIMQualifier CIMParameter::getQualifier(const CIMName& name) const {
    return findOrNull(m_pdata->qualifiers, name);
}

CIMQualifierArray CIMParameter::getQualifiers() const {
    return m_pdata->qualifiers;
}

CIMParameter& CIMParameter::setQualifiers(const CIMQualifierArray& qualifiers) {
    m_pdata->qualifiers = qualifiers;
    return *this;
}

bool CIMParameter::hasTrueQualifier(const CIMName& name) const {
    return hasTrueValue(m_pdata->qualifiers, name);
}

void CIMParameter::setNull() {
    *this = CIMParameter(CIMNULL);
}

String CIMParameter::toString() const {
    return toOwString(declarationToMOF(m_pdata->type, m_pdata->name));
}

String CIMParameter::toMOF() const {
    std::string text = qualifiersToMOF(m_pdata->qualifiers);
    if (!text.empty()) {
        text += " ";
    }
    return toOwString(text + declarationToMOF(m_pdata->type, m_pdata->name));
}

} // namespace OpenWBEM
