// The type of a CIM value: a simple type, an array of one, or a reference to a class.
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_SafeBool.hpp"
#include "OW_String.hpp"
#include "OW_Types.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// A value class. One made from CIMNULL is null: every member but the tests and assignment throws
/// NULLCOWIntrusiveReferenceException. A default-constructed one also tests false, but answers.
class CIMDataType {
public:
    // The numbers are those of the provider interface; MAXDATATYPE ends the types of values.
    // -Wshadow: the interface has an enumerator of this name here and one beside the class.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wshadow"
#endif
    enum Type {
        CIMNULL = 0,
        UINT8 = 1,
        SINT8 = 2,
        UINT16 = 3,
        SINT16 = 4,
        UINT32 = 5,
        SINT32 = 6,
        UINT64 = 7,
        SINT64 = 8,
        STRING = 9,
        BOOLEAN = 10,
        REAL32 = 11,
        REAL64 = 12,
        DATETIME = 13,
        CHAR16 = 14,
        REFERENCE = 15,
        EMBEDDEDCLASS = 16,
        EMBEDDEDINSTANCE = 17,
        MAXDATATYPE = 18,
        INVALID = 99
    };
#ifdef __clang__
#pragma clang diagnostic pop
#endif

    CIMDataType();
    explicit CIMDataType(CIMNULL_t);
    CIMDataType(Type type);
    /// An array; a size below 1 means no bound.
    CIMDataType(Type type, Int32 size);
    /// A reference to instances of a class.
    explicit CIMDataType(const CIMName& refClassName);

    Type getType() const;
    bool isArrayType() const;
    bool isNumericType() const;
    bool isReferenceType() const;
    /// -1 for an array without bound, 1 for a scalar.
    Int32 getSize() const;
    /// Empty unless this is a reference with a known class.
    String getRefClassName() const;
    CIMDataType& setToArrayType(Int32 size);
    void setNull();

    /// Type, array kind, bound and class of reference are the same.
    bool equals(const CIMDataType& other) const;
    bool operator==(const CIMDataType& other) const {
        return equals(other);
    }
    bool operator!=(const CIMDataType& other) const {
        return !equals(other);
    }

    /// The CIM name in lower case without array brackets; `REF` for references, `string` for
    /// embedded objects.
    String toString() const;
    /// The scalar type of that name; null when there is none.
    static CIMDataType getDataType(const String& name);
    /// Regardless of case; `ref` and `reference` are references. INVALID when there is none.
    static Type strToSimpleType(const String& name);

    OW_SAFE_BOOL(m_type != CIMNULL)

private:
    void checkNotNull() const;

    static constexpr Int32 ScalarSize = 0;
    static constexpr Int32 UnboundedSize = -1;
    static constexpr Int32 NullSize = -2;

    Type m_type;
    Int32 m_size; ///< one of the above, or the bound of an array
    CIMName m_refClassName;
};

} // namespace OpenWBEM
