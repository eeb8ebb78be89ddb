#include "OW_CIMParamValue.hpp"

#include "OW_COWIntrusiveCountableBase.hpp"

namespace OpenWBEM {

struct CIMParamValueData : COWIntrusiveCountableBase {
    CIMName name;
    CIMValue value{CIMNULL};
};

CIMParamValue::CIMParamValue() : m_pdata(new CIMParamValueData) {
}
CIMParamValue::CIMParamValue(CIMNULL_t) {
}
CIMParamValue::CIMParamValue(const CIMName& name, const CIMValue& value) : CIMParamValue(name) {
    m_pdata->value = value;
}
CIMParamValue::CIMParamValue(const CIMName& name) : CIMParamValue() {
    m_pdata->name = name;
}
CIMParamValue::CIMParamValue(const CIMParamValue&) = default;
CIMParamValue::CIMParamValue(CIMParamValue&&) noexcept = default;
CIMParamValue& CIMParamValue::operator=(const CIMParamValue&) = default;
CIMParamValue& CIMParamValue::operator=(CIMParamValue&&) noexcept = default;
CIMParamValue::~CIMParamValue() = default;

String CIMParamValue::getName() const {
    return m_pdata->name.toString();
}

CIMParamValue& CIMParamValue::setName(const CIMName& name) {
    m_pdata->name = name;
    return *this;
}

CIMValue CIMParamValue::getValue() const {
    return m_pdata->value;
}

CIMParamValue& CIMParamValue::setValue(const CIMValue& value) {
    m_pdata->value = value;
    return *this;
}

void CIMParamValue::setNull() {
    *this = CIMParamValue(CIMNULL);
}

String CIMParamValue::toString() const {
    return "CIMParamValue(" + getName() + "): " + getValue().toString();
}

} // namespace OpenWBEM
