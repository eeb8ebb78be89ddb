// The declaration of a qualifier: its type, default, scopes and flavors.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMFlavor.hpp"
#include "OW_CIMScope.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMQualifierTypeData;

class CIMQualifierType : public CIMElement {
public:
    CIMQualifierType();
    explicit CIMQualifierType(CIMNULL_t);
    explicit CIMQualifierType(const CIMName& name);
    explicit CIMQualifierType(const char* name);
    CIMQualifierType(const CIMQualifierType&);
    CIMQualifierType(CIMQualifierType&&) noexcept;
    CIMQualifierType& operator=(const CIMQualifierType&);
    CIMQualifierType& operator=(CIMQualifierType&&) noexcept;
    ~CIMQualifierType() override;

    String getName() const override;
    void setName(const CIMName& name) override;
    CIMDataType getDataType() const;
    /// A default value of another type is converted; CIMException FAILED when that fails.
    CIMQualifierType& setDataType(const CIMDataType& type);
    /// Null when the declaration has none.
    CIMValue getDefaultValue() const;
    CIMQualifierType& setDefaultValue(const CIMValue& value);
    CIMScopeArray getScopes() const;
    bool hasScope(const CIMScope& scope) const;
    CIMQualifierType& addScope(const CIMScope& scope);
    CIMFlavorArray getFlavors() const;
    bool hasFlavor(const CIMFlavor& flavor) const;
    CIMQualifierType& addFlavor(const CIMFlavor& flavor);

    void setNull() override;
    String toString() const override;
    /// `Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);`
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelAccess;
    COWIntrusiveReference<CIMQualifierTypeData> m_pdata;
};

} // namespace OpenWBEM
