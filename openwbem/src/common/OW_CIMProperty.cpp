#include "OW_CIMProperty.hpp"

#include "OW_CIMModelData.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_NoSuchQualifierException.hpp"

namespace OpenWBEM {

CIMProperty::CIMProperty() : m_pdata(new CIMPropertyData) {
}
CIMProperty::CIMProperty(CIMNULL_t) {
}
CIMProperty::CIMProperty(const CIMName& name)
    : m_pdata(new CIMPropertyData(name, CIMDataType(), CIMValue(CIMNULL))) {
}
CIMProperty::CIMProperty(const char* name) : CIMProperty(CIMName(name)) {
}
CIMProperty::CIMProperty(const CIMName& name, const CIMValue& value)
    : m_pdata(new CIMPropertyData(name, value.getCIMDataType(), value)) {
}
CIMProperty::CIMProperty(const CIMName& name, const CIMDataType& type)
    : m_pdata(new CIMPropertyData(name, type, CIMValue(CIMNULL))) {
}
CIMProperty::CIMProperty(const CIMProperty&) = default;
CIMProperty::CIMProperty(CIMProperty&&) noexcept = default;
CIMProperty& CIMProperty::operator=(const CIMProperty&) = default;
CIMProperty& CIMProperty::operator=(CIMProperty&&) noexcept = default;
CIMProperty::~CIMProperty() = default;

String CIMProperty::getName() const {
    return m_pdata->name.toString();
}

void CIMProperty::setName(const CIMName& name) {
    m_pdata->name = name;
}

CIMValue CIMProperty::getValue() const {
    return m_pdata->value;
}

CIMValue CIMProperty::getValueT() const {
    if (!m_pdata->value) {
        OW_THROW(NULLValueException, getName().c_str());
    }
    return m_pdata->value;
}

CIMProperty& CIMProperty::setValue(const CIMValue& value) {
    CIMPropertyData& data = *m_pdata;
    data.value = data.type ? CIMValueCast::castValueToDataType(value, data.type) : value;
    return *this;
}

CIMDataType CIMProperty::getDataType() const {
    return m_pdata->type;
}

CIMProperty& CIMProperty::setDataType(const CIMDataType& type) {
    CIMPropertyData& data = *m_pdata;
    if (data.value && type) {
        data.value = CIMValueCast::castValueToDataType(data.value, type);
    }
    data.type = type;
    return *this;
}

CIMProperty& CIMProperty::setDataType(CIMDataType::Type type) {
    return setDataType(CIMDataType(type));
}

CIMQualifier CIMProperty::getQualifier(const CIMName& name) const {
    return findOrNull(m_pdata->qualifiers, name);
}

CIMQualifier CIMProperty::getQualifierT(const CIMName& name) const {
    const CIMQualifier* const found = findByName(m_pdata->qualifiers, name);
    if (!found) {
        OW_THROW(NoSuchQualifierException, name.toString().c_str());
    }
    return *found;
}

CIMQualifierArray CIMProperty::getQualifiers() const {
    return m_pdata->qualifiers;
}

CIMProperty& CIMProperty::setQualifier(const CIMQualifier& qualifier) {
    replaceOrAppend(m_pdata->qualifiers, qualifier);
    return *this;
}

CIMProperty& CIMProperty::addQualifier(const CIMQualifier& qualifier) {
    appendNew(m_pdata->qualifiers, qualifier, "Qualifier");
    return *this;
}

CIMProperty& CIMProperty::setQualifiers(const CIMQualifierArray& qualifiers) {
    m_pdata->qualifiers = qualifiers;
    return *this;
}

bool CIMProperty::removeQualifier(const CIMName& name) {
    return removeByName(m_pdata->qualifiers, name);
}

CIMProperty& CIMProperty::clearQualifiers() {
    m_pdata->qualifiers.clear();
    return *this;
}

CIMProperty& CIMProperty::clearNonKeyQualifiers() {
    CIMQualifierArray& qualifiers = m_pdata->qualifiers;
    const auto isNoKey = [](const CIMQualifier& qualifier) { return !qualifier.isKeyQualifier(); };
    qualifiers.erase(std::remove_if(qualifiers.begin(), qualifiers.end(), isNoKey),
                     qualifiers.end());
    return *this;
}

bool CIMProperty::isKey() const {
    return isReference() || hasTrueQualifier(keyName());
}

bool CIMProperty::isReference() const {
    return m_pdata->type && m_pdata->type.isReferenceType();
}

bool CIMProperty::hasTrueQualifier(const CIMName& name) const {
    return hasTrueValue(m_pdata->qualifiers, name);
}

String CIMProperty::getOriginClass() const {
    return m_pdata->originClass.toString();
}

CIMProperty& CIMProperty::setOriginClass(const CIMName& className) {
    m_pdata->originClass = className;
    return *this;
}

bool CIMProperty::getPropagated() const {
    return m_pdata->isPropagated;
}

CIMProperty& CIMProperty::setPropagated(bool propagated) {
    m_pdata->isPropagated = propagated;
    return *this;
}

CIMProperty CIMProperty::clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                               WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const {
    CIMProperty copy(*this);
    const CIMPropertyData& data = *m_pdata;
    if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS && !data.qualifiers.empty()) {
        copy.clearQualifiers();
    }
    if (includeClassOrigin == WBEMFlags::E_EXCLUDE_CLASS_ORIGIN && data.originClass) {
        copy.setOriginClass(CIMName());
    }
    return copy;
}

void CIMProperty::setNull() {
    *this = CIMProperty(CIMNULL);
}

String CIMProperty::toString() const {
    const CIMPropertyData& data = *m_pdata;
    const String value = data.value ? data.value.toString() : String("null");
    return data.type.toString() + (data.type.isArrayType() ? "[]:" : ":") + getName() + "=" + value;
}

String CIMProperty::toMOF() const {
    const CIMPropertyData& data = *m_pdata;
    std::string text = qualifiersToMOF(data.qualifiers);
    if (!text.empty()) {
        text = "  " + text + "\n";
    }
    text += "  " + declarationToMOF(data.type, data.name);
    if (data.value) {
        text += "=";
        text += data.value.toMOF().c_str();
    }
    return toOwString(text + ";\n");
}

} // namespace OpenWBEM
