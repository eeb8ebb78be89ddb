// A qualifier on a class, property, method or parameter.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMFlavor.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMQualifierData;

class CIMQualifier : public CIMElement {
public:
    static const char* const CIM_QUAL_ABSTRACT;
    static const char* const CIM_QUAL_AGGREGATE;
    static const char* const CIM_QUAL_AGGREGATION;
    static const char* const CIM_QUAL_ALIAS;
    static const char* const CIM_QUAL_ARRAYTYPE;
    static const char* const CIM_QUAL_ASSOCIATION;
    static const char* const CIM_QUAL_BITMAP;
    static const char* const CIM_QUAL_BITVALUES;
    static const char* const CIM_QUAL_COUNTER;
    static const char* const CIM_QUAL_DESCRIPTION;
    static const char* const CIM_QUAL_DISPLAYNAME;
    static const char* const CIM_QUAL_EMBEDDEDOBJECT;
    static const char* const CIM_QUAL_GAUGE;
    static const char* const CIM_QUAL_IN;
    static const char* const CIM_QUAL_INDICATION;
    static const char* const CIM_QUAL_KEY;
    static const char* const CIM_QUAL_MAX;
    static const char* const CIM_QUAL_MAXLEN;
    static const char* const CIM_QUAL_MIN;
    static const char* const CIM_QUAL_OUT;
    static const char* const CIM_QUAL_OVERRIDE;
    static const char* const CIM_QUAL_PROPAGATED;
    static const char* const CIM_QUAL_PROVIDER;
    static const char* const CIM_QUAL_READ;
    static const char* const CIM_QUAL_REQUIRED;
    static const char* const CIM_QUAL_STATIC;
    static const char* const CIM_QUAL_UNITS;
    static const char* const CIM_QUAL_VALUEMAP;
    static const char* const CIM_QUAL_VALUES;
    static const char* const CIM_QUAL_VERSION;
    static const char* const CIM_QUAL_WRITE;

    CIMQualifier();
    explicit CIMQualifier(CIMNULL_t);
    CIMQualifier(const CIMName& name);
    CIMQualifier(const char* name);
    /// Takes name, type, default value and flavors of the declaration.
    CIMQualifier(const CIMQualifierType& declaration);
    CIMQualifier(const CIMQualifier&);
    CIMQualifier(CIMQualifier&&) noexcept;
    CIMQualifier& operator=(const CIMQualifier&);
    CIMQualifier& operator=(CIMQualifier&&) noexcept;
    ~CIMQualifier() override;

    /// `Key`, true, without flavors, not propagated.
    static CIMQualifier createKeyQualifier();

    String getName() const override;
    void setName(const CIMName& name) override;
    CIMValue getValue() const;
    /// NULLValueException, with an empty message, when there is no value.
    CIMValue getValueT() const;
    CIMQualifier& setValue(const CIMValue& value);
    bool hasValue() const;
    /// The value's type; without value that of the declaration, if it is known.
    CIMDataType getDataType() const;
    CIMFlavorArray getFlavor() const;
    bool hasFlavor(const CIMFlavor& flavor) const;
    CIMQualifier& addFlavor(const CIMFlavor& flavor);
    CIMQualifier& removeFlavor(const CIMFlavor& flavor);
    /// Propagated: inherited from a superclass.
    bool getPropagated() const;
    CIMQualifier& setPropagated(bool propagated = true);

    // These look at the name only.
    bool isKeyQualifier() const;
    bool isAssociationQualifier() const;

    void setNull() override;
    /// `CIMQualifier(Key)`
    String toString() const override;
    /// `Key(true)`, `Values{"a","b"}`; flavors follow a colon.
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelAccess;
    friend struct CIMModelView;
    COWIntrusiveReference<CIMQualifierData> m_pdata;
};

} // namespace OpenWBEM
