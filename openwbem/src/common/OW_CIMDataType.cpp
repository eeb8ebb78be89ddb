#include "OW_CIMDataType.hpp"

#include "OW_COWIntrusiveReference.hpp"

namespace OpenWBEM {

namespace {

struct TypeName {
    CIMDataType::Type type;
    const char* name;
};

constexpr TypeName typeNames[] = {
    {CIMDataType::UINT8, "uint8"},          {CIMDataType::SINT8, "sint8"},
    {CIMDataType::UINT16, "uint16"},        {CIMDataType::SINT16, "sint16"},
    {CIMDataType::UINT32, "uint32"},        {CIMDataType::SINT32, "sint32"},
    {CIMDataType::UINT64, "uint64"},        {CIMDataType::SINT64, "sint64"},
    {CIMDataType::STRING, "string"},        {CIMDataType::BOOLEAN, "boolean"},
    {CIMDataType::REAL32, "real32"},        {CIMDataType::REAL64, "real64"},
    {CIMDataType::DATETIME, "datetime"},    {CIMDataType::CHAR16, "char16"},
    {CIMDataType::REFERENCE, "REF"},        {CIMDataType::REFERENCE, "reference"},
    {CIMDataType::EMBEDDEDCLASS, "string"}, {CIMDataType::EMBEDDEDINSTANCE, "string"},
};

} // namespace

CIMDataType::CIMDataType() : m_type(CIMNULL), m_size(ScalarSize) {
}

CIMDataType::CIMDataType(CIMNULL_t) : m_type(CIMNULL), m_size(NullSize) {
}

CIMDataType::CIMDataType(Type type) : m_type(type), m_size(ScalarSize) {
}

CIMDataType::CIMDataType(Type type, Int32 size)
    : m_type(type), m_size(size < 1 ? UnboundedSize : size) {
}

CIMDataType::CIMDataType(const CIMName& refClassName)
    : m_type(REFERENCE), m_size(ScalarSize), m_refClassName(refClassName) {
}

void CIMDataType::checkNotNull() const {
    if (m_size == NullSize) {
        throwNullCOWIntrusiveReference();
    }
}

CIMDataType::Type CIMDataType::getType() const {
    checkNotNull();
    return m_type;
}

bool CIMDataType::isArrayType() const {
    checkNotNull();
    return m_size != ScalarSize;
}

bool CIMDataType::isNumericType() const {
    checkNotNull();
    return (m_type >= UINT8 && m_type <= SINT64) || m_type == REAL32 || m_type == REAL64;
}

bool CIMDataType::isReferenceType() const {
    checkNotNull();
    return m_type == REFERENCE;
}

Int32 CIMDataType::getSize() const {
    return isArrayType() ? m_size : 1;
}

String CIMDataType::getRefClassName() const {
    checkNotNull();
    return m_refClassName.toString();
}

CIMDataType& CIMDataType::setToArrayType(Int32 size) {
    checkNotNull();
    m_size = size < 1 ? UnboundedSize : size;
    return *this;
}

void CIMDataType::setNull() {
    *this = CIMDataType(CIMNULL_t());
}

bool CIMDataType::equals(const CIMDataType& other) const {
    checkNotNull();
    other.checkNotNull();
    return m_type == other.m_type && m_size == other.m_size &&
           m_refClassName == other.m_refClassName;
}

String CIMDataType::toString() const {
    checkNotNull();
    for (const TypeName& entry : typeNames) {
        if (entry.type == m_type) {
            return String(entry.name);
        }
    }
    return String("** INVALID DATA TYPE: NOTHING HAS BEEN ASSIGNED **");
}

CIMDataType CIMDataType::getDataType(const String& name) {
    const Type type = strToSimpleType(name);
    return type == INVALID ? CIMDataType(CIMNULL_t()) : CIMDataType(type);
}

CIMDataType::Type CIMDataType::strToSimpleType(const String& name) {
    for (const TypeName& entry : typeNames) {
        if (name.equalsIgnoreCase(entry.name)) {
            return entry.type;
        }
    }
    return INVALID;
}

} // namespace OpenWBEM
