#include "OW_CIMQualifier.hpp"

#include "OW_CIMModelData.hpp"
#include "OW_NULLValueException.hpp"

namespace OpenWBEM {

const char* const CIMQualifier::CIM_QUAL_ABSTRACT = "Abstract";
const char* const CIMQualifier::CIM_QUAL_AGGREGATE = "Aggregate";
const char* const CIMQualifier::CIM_QUAL_AGGREGATION = "Aggregation";
const char* const CIMQualifier::CIM_QUAL_ALIAS = "Alias";
const char* const CIMQualifier::CIM_QUAL_ARRAYTYPE = "ArrayType";
const char* const CIMQualifier::CIM_QUAL_ASSOCIATION = "Association";
const char* const CIMQualifier::CIM_QUAL_BITMAP = "BitMap";
const char* const CIMQualifier::CIM_QUAL_BITVALUES = "BitValues";
const char* const CIMQualifier::CIM_QUAL_COUNTER = "Counter";
const char* const CIMQualifier::CIM_QUAL_DESCRIPTION = "Description";
const char* const CIMQualifier::CIM_QUAL_DISPLAYNAME = "DisplayName";
const char* const CIMQualifier::CIM_QUAL_EMBEDDEDOBJECT = "EmbeddedObject";
const char* const CIMQualifier::CIM_QUAL_GAUGE = "Gauge";
const char* const CIMQualifier::CIM_QUAL_IN = "In";
const char* const CIMQualifier::CIM_QUAL_INDICATION = "Indication";
const char* const CIMQualifier::CIM_QUAL_KEY = "Key";
const char* const CIMQualifier::CIM_QUAL_MAX = "Max";
const char* const CIMQualifier::CIM_QUAL_MAXLEN = "MaxLen";
const char* const CIMQualifier::CIM_QUAL_MIN = "Min";
const char* const CIMQualifier::CIM_QUAL_OUT = "Out";
const char* const CIMQualifier::CIM_QUAL_OVERRIDE = "Override";
const char* const CIMQualifier::CIM_QUAL_PROPAGATED = "Propagated";
const char* const CIMQualifier::CIM_QUAL_PROVIDER = "Provider";
const char* const CIMQualifier::CIM_QUAL_READ = "Read";
const char* const CIMQualifier::CIM_QUAL_REQUIRED = "Required";
const char* const CIMQualifier::CIM_QUAL_STATIC = "Static";
const char* const CIMQualifier::CIM_QUAL_UNITS = "Units";
const char* const CIMQualifier::CIM_QUAL_VALUEMAP = "ValueMap";
const char* const CIMQualifier::CIM_QUAL_VALUES = "Values";
const char* const CIMQualifier::CIM_QUAL_VERSION = "Version";
const char* const CIMQualifier::CIM_QUAL_WRITE = "Write";

CIMQualifier::CIMQualifier() : m_pdata(new CIMQualifierData) {
}
CIMQualifier::CIMQualifier(CIMNULL_t) {
}
CIMQualifier::CIMQualifier(const CIMName& name) : CIMQualifier() {
    m_pdata->name = name;
}
CIMQualifier::CIMQualifier(const char* name) : CIMQualifier(CIMName(name)) {
}
CIMQualifier::CIMQualifier(const CIMQualifierType& declaration) : CIMQualifier() {
    CIMQualifierData& data = *m_pdata;
    data.name = declaration.getName();
    data.declaredType = declaration.getDataType();
    data.value = declaration.getDefaultValue();
    data.flavors = declaration.getFlavors();
}
CIMQualifier::CIMQualifier(const CIMQualifier&) = default;
CIMQualifier::CIMQualifier(CIMQualifier&&) noexcept = default;
CIMQualifier& CIMQualifier::operator=(const CIMQualifier&) = default;
CIMQualifier& CIMQualifier::operator=(CIMQualifier&&) noexcept = default;
CIMQualifier::~CIMQualifier() = default;

CIMQualifier CIMQualifier::createKeyQualifier() {
    // Copies share this one, which is never destroyed.
    static const CIMQualifier& key = (new CIMQualifier(keyName()))->setValue(CIMValue(true));
    return key;
}

String CIMQualifier::getName() const {
    return m_pdata->name.toString();
}

void CIMQualifier::setName(const CIMName& name) {
    m_pdata->name = name;
}

CIMValue CIMQualifier::getValue() const {
    return m_pdata->value;
}

CIMValue CIMQualifier::getValueT() const {
    if (!hasValue()) {
        OW_THROW(NULLValueException, "");
    }
    return m_pdata->value;
}

CIMQualifier& CIMQualifier::setValue(const CIMValue& value) {
    m_pdata->value = value;
    return *this;
}

bool CIMQualifier::hasValue() const {
    return m_pdata->value;
}

CIMDataType CIMQualifier::getDataType() const {
    return hasValue() ? m_pdata->value.getCIMDataType() : m_pdata->declaredType;
}

CIMFlavorArray CIMQualifier::getFlavor() const {
    return m_pdata->flavors;
}

bool CIMQualifier::hasFlavor(const CIMFlavor& flavor) const {
    return contains(m_pdata->flavors, flavor);
}

CIMQualifier& CIMQualifier::addFlavor(const CIMFlavor& flavor) {
    if (!hasFlavor(flavor)) {
        m_pdata->flavors.push_back(flavor);
    }
    return *this;
}

CIMQualifier& CIMQualifier::removeFlavor(const CIMFlavor& flavor) {
    CIMFlavorArray& flavors = m_pdata->flavors;
    flavors.erase(std::remove(flavors.begin(), flavors.end(), flavor), flavors.end());
    return *this;
}

bool CIMQualifier::getPropagated() const {
    return m_pdata->isPropagated;
}

CIMQualifier& CIMQualifier::setPropagated(bool propagated) {
    m_pdata->isPropagated = propagated;
    return *this;
}

bool CIMQualifier::isKeyQualifier() const {
    return m_pdata->name == keyName();
}

bool CIMQualifier::isAssociationQualifier() const {
    return m_pdata->name == CIMName(CIM_QUAL_ASSOCIATION);
}

void CIMQualifier::setNull() {
    *this = CIMQualifier(CIMNULL);
}

String CIMQualifier::toString() const {
    return "CIMQualifier(" + getName() + ")";
}

String CIMQualifier::toMOF() const {
    const CIMQualifierData& data = *m_pdata;
    std::string text = data.name.toString().c_str();
    if (data.value) {
        const String value = data.value.toMOF();
        text += data.value.isArray() ? value.c_str() : ("(" + value + ")").c_str();
    }
    const char* separator = " : ";
    for (const CIMFlavor& flavor : data.flavors) {
        text += separator;
        text += flavor.toMOF().c_str();
        separator = " ";
    }
    return toOwString(text);
}

} // namespace OpenWBEM
