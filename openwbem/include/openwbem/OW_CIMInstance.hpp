// An instance: a class name, properties in the order of setting, keys, qualifiers.
#pragma once

#include "OW_Array.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_SafeBool.hpp"
#include "OW_config.h"

namespace OpenWBEM {

struct CIMInstanceData;

/// The keys are an array of their own. It is rebuilt from the properties (those that are keys) by
/// setProperties, by setting, updating or removing a property that is a key, and by syncWithClass;
/// setKeys sets it alone. Appending with setProperty(name, value) never touches it.
/// Names are matched without regard to case; of several properties with one name the first counts.
class CIMInstance : public CIMElement {
public:
    /// Not null: without name and properties.
    CIMInstance();
    explicit CIMInstance(CIMNULL_t);
    explicit CIMInstance(const CIMName& className);
    explicit CIMInstance(const char* className);
    CIMInstance(const CIMInstance&);
    CIMInstance(CIMInstance&&) noexcept;
    CIMInstance& operator=(const CIMInstance&);
    CIMInstance& operator=(CIMInstance&&) noexcept;
    ~CIMInstance() override;

    String getClassName() const;
    CIMInstance& setClassName(const CIMName& className);
    String getName() const override;
    void setName(const CIMName& className) override;

    /// All properties, or those of one type. All: a handle, nothing is copied.
    CIMPropertyArray getProperties(Int32 valueDataType = CIMDataType::INVALID) const;
    CIMInstance& setProperties(const CIMPropertyArray& properties);
    /// Sets the value of an existing property, converted to its type, or appends one with the
    /// value's type. Null on a new name makes a property without type.
    CIMInstance& setProperty(const CIMName& name, const CIMValue& value);
    /// Replaces the whole property or appends it; null is ignored.
    CIMInstance& setProperty(const CIMProperty& property);
    CIMInstance& removeProperty(const CIMName& name);
    /// A null property when there is none; keys are not looked at.
    CIMProperty getProperty(const CIMName& name) const;
    CIMProperty getProperty(const CIMName& name, const CIMName& originClass) const;
    /// NoSuchPropertyException, with the name as its message, when there is none.
    CIMProperty getPropertyT(const CIMName& name) const;
    CIMValue getPropertyValue(const CIMName& name) const;
    bool propertyHasValue(const CIMName& name) const;
    // These change existing properties only.
    CIMInstance& updatePropertyValue(const CIMName& name, const CIMValue& value);
    CIMInstance& updatePropertyValue(const CIMProperty& property);
    CIMInstance& updatePropertyValues(const CIMPropertyArray& properties);

    CIMPropertyArray getKeyValuePairs() const;
    CIMInstance& setKeys(const CIMPropertyArray& keys);

    CIMQualifier getQualifier(const CIMName& name) const;
    CIMQualifierArray getQualifiers() const;
    CIMInstance& setQualifier(const CIMQualifier& qualifier);
    CIMInstance& setQualifiers(const CIMQualifierArray& qualifiers);
    CIMInstance& removeQualifier(const CIMName& name);

    /// A copy with the listed properties: null list all, empty list none. The keys always stay.
    CIMInstance clone(WBEMFlags::ELocalOnlyFlag localOnly,
                      WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                      WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                      const StringArray* propertyList) const;
    /// For enumerations of a class and its subclasses: a copy, synced with `cimClass` (the
    /// instance's own), of what belongs to `requestedClass` (the one that the client named).
    CIMInstance clone(WBEMFlags::ELocalOnlyFlag localOnly, WBEMFlags::EDeepFlag deep,
                      WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                      WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                      const StringArray* propertyList, const CIMClass& requestedClass,
                      const CIMClass& cimClass) const;
    /// Empty list: all properties, unless `noProps`.
    CIMInstance clone(WBEMFlags::ELocalOnlyFlag localOnly,
                      WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                      WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                      const StringArray& propertyList = StringArray(), bool noProps = false) const;
    /// The same for one filter; `ignorePropertyList`: all properties.
    CIMInstance filterProperties(const StringArray& propertyList,
                                 WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                 WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                 bool ignorePropertyList = false) const;

    /// Drops properties that the class does not have, gives the others the class's type,
    /// qualifiers, origin and spelling, appends what is missing with the class's default, rebuilds
    /// the keys. Null class: nothing happens. CIMException FAILED when a value does not convert.
    CIMInstance& syncWithClass(
        const CIMClass& cimClass,
        WBEMFlags::EIncludeQualifiersFlag includeQualifiers = WBEMFlags::E_INCLUDE_QUALIFIERS);
    /// What `previous` becomes by this modification: null list: a copy of this instance. Otherwise
    /// the listed properties come from this instance, or from the class, or are removed.
    CIMInstance createModifiedInstance(const CIMInstance& previous,
                                       WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                       const StringArray* propertyList,
                                       const CIMClass& cimClass) const;
    /// The same names, in any order, with equal values.
    bool propertiesAreEqualTo(const CIMInstance& other) const;

    void setNull() override;
    String toString() const override;
    String toMOF() const override;

    OW_SAFE_BOOL(m_pdata)

private:
    friend struct CIMModelView;
    void rebuildKeys();
    COWIntrusiveReference<CIMInstanceData> m_pdata;
};

} // namespace OpenWBEM
