// A class of the schema: qualifiers, properties and methods, its own and those that it inherits.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMMethod.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMClassData;

/// Holds what it is given: whoever builds a class adds what is inherited, marked as propagated,
/// with the class of origin. Names are matched without regard to case.
class CIMClass : public CIMElement {
public:
    CIMClass();
    explicit CIMClass(CIMNULL_t);
    explicit CIMClass(const CIMName& name);
    explicit CIMClass(const char* name);
    CIMClass(const CIMClass&);
    CIMClass(CIMClass&&) noexcept;
    CIMClass& operator=(const CIMClass&);
    CIMClass& operator=(CIMClass&&) noexcept;
    ~CIMClass() override;

    String getName() const override;
    void setName(const CIMName& name) override;
    /// Empty: none.
    String getSuperClass() const;
    CIMClass& setSuperClass(const CIMName& name);
    /// The properties that are keys.
    CIMPropertyArray getKeys() const;
    bool isKeyed() const;
    /// Set by adding a true Association qualifier, or by hand.
    bool isAssociation() const;
    CIMClass& setIsAssociation(bool isAssociation);

    /// A null qualifier when there is none of that name.
    CIMQualifier getQualifier(const CIMName& name) const;
    CIMQualifierArray getQualifiers() const;
    bool hasTrueQualifier(const CIMName& name) const;
    /// CIMException ALREADY_EXISTS when there is one of that name.
    CIMClass& addQualifier(const CIMQualifier& qualifier);
    /// Replaces or appends.
    CIMClass& setQualifier(const CIMQualifier& qualifier);

    /// A null property when there is none of that name.
    CIMProperty getProperty(const CIMName& name) const;
    CIMPropertyArray getAllProperties() const;
    /// The same as getAllProperties.
    CIMPropertyArray getProperties() const;
    /// CIMException ALREADY_EXISTS when there is one of that name.
    CIMClass& addProperty(const CIMProperty& property);
    /// Replaces or appends.
    CIMClass& setProperty(const CIMProperty& property);
    CIMClass& setProperties(const CIMPropertyArray& properties);
    /// False when there was none of that name.
    bool removeProperty(const CIMName& name);

    /// A null method when there is none of that name.
    CIMMethod getMethod(const CIMName& name) const;
    CIMMethodArray getAllMethods() const;
    /// Only the methods with an Override qualifier: normally none.
    CIMMethodArray getMethods() const;
    /// CIMException ALREADY_EXISTS when there is one of that name.
    CIMClass& addMethod(const CIMMethod& method);
    CIMClass& setMethods(const CIMMethodArray& methods);

    /// All properties in class order with types, qualifiers, origin and defaults; the keys are set.
    CIMInstance newInstance() const;
    /// Local only: without what is propagated. Null list: all properties; empty: none.
    CIMClass clone(WBEMFlags::ELocalOnlyFlag localOnly,
                   WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                   WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                   const StringArray* propertyList) const;
    /// Empty list: all properties, unless `noProps`.
    CIMClass clone(WBEMFlags::ELocalOnlyFlag localOnly,
                   WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                   WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                   const StringArray& propertyList = StringArray(), bool noProps = false) const;

    void setNull() override;
    /// As toMOF.
    String toString() const override;
    String toMOF() const override;

    /// Everything is compared, unlike for the other elements.
    bool operator==(const CIMClass& other) const;
    bool operator!=(const CIMClass& other) const { return !(*this == other); }

    OW_SAFE_BOOL(m_pdata)

private:
    COWIntrusiveReference<CIMClassData> m_pdata;
};

} // namespace OpenWBEM
