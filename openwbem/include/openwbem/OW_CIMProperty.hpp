// A property of a class or an instance, or a key of an object path.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMPropertyData;

class CIMProperty : public CIMElement {
public:
    CIMProperty();
    explicit CIMProperty(CIMNULL_t);
    explicit CIMProperty(const CIMName& name);
    explicit CIMProperty(const char* name);
    /// Takes the type of the value; a null value throws NULLCOWIntrusiveReferenceException.
    CIMProperty(const CIMName& name, const CIMValue& value);
    CIMProperty(const CIMName& name, const CIMDataType& type);
    CIMProperty(const CIMProperty&);
    CIMProperty(CIMProperty&&) noexcept;
    CIMProperty& operator=(const CIMProperty&);
    CIMProperty& operator=(CIMProperty&&) noexcept;
    ~CIMProperty() override;

    String getName() const override;
    void setName(const CIMName& name) override;
    CIMValue getValue() const;
    /// NULLValueException, with the name as its message, when the value is null.
    CIMValue getValueT() const;
    /// Converts to the property's type (CIMValueCast); on failure the old value stays. Null keeps
    /// the type. A property without type takes the value and stays without type.
    CIMProperty& setValue(const CIMValue& value);
    /// The type CIMNULL when the property has none.
    CIMDataType getDataType() const;
    /// A value that is there is converted, as setValue does.
    CIMProperty& setDataType(const CIMDataType& type);
    CIMProperty& setDataType(CIMDataType::Type type);

    /// A null qualifier when there is none of that name.
    CIMQualifier getQualifier(const CIMName& name) const;
    /// NoSuchQualifierException when there is none of that name.
    CIMQualifier getQualifierT(const CIMName& name) const;
    CIMQualifierArray getQualifiers() const;
    /// Replaces or appends.
    CIMProperty& setQualifier(const CIMQualifier& qualifier);
    /// CIMException ALREADY_EXISTS when there is one of that name.
    CIMProperty& addQualifier(const CIMQualifier& qualifier);
    CIMProperty& setQualifiers(const CIMQualifierArray& qualifiers);
    /// False when there was none of that name.
    bool removeQualifier(const CIMName& name);
    CIMProperty& clearQualifiers();
    CIMProperty& clearNonKeyQualifiers();
    /// True when the Key qualifier is there and true, and for every reference.
    bool isKey() const;
    bool isReference() const;
    bool hasTrueQualifier(const CIMName& name) const;

    /// The class that defines the property.
    String getOriginClass() const;
    CIMProperty& setOriginClass(const CIMName& className);
    /// Propagated: inherited from a superclass.
    bool getPropagated() const;
    CIMProperty& setPropagated(bool propagated);

    CIMProperty clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                      WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const;

    void setNull() override;
    /// `uint8:a=3`
    String toString() const override;
    /// One line `  uint8 a=3;`, before it one with the qualifiers in brackets.
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelAccess;
    friend struct CIMModelView;
    COWIntrusiveReference<CIMPropertyData> m_pdata;
};

} // namespace OpenWBEM
