#include "OW_CIMInstance.hpp"

#include "OW_CIMClass.hpp"
#include "OW_CIMInstanceData.hpp"
#include "OW_CIMModelData.hpp"
#include "OW_NoSuchPropertyException.hpp"

#include <utility>

namespace OpenWBEM {

namespace {

// Most instances fit without growing.
void reserveUsual(CIMPropertyArray& properties) {
    constexpr CIMPropertyArray::size_type usualCount = 8;
    if (properties.empty()) {
        properties.reserve(usualCount);
    }
}

// The property as the class declares it, with the value of the instance.
CIMProperty synced(const CIMProperty& declared, const CIMProperty& property) {
    CIMProperty result(declared);
    result.setValue(property.getValue());
    return result;
}

CIMPropertyArray synced(const CIMPropertyArray& properties, const CIMPropertyArray& declared) {
    CIMPropertyArray result;
    result.reserve(declared.size());
    for (const CIMProperty& property : properties) {
        if (const CIMProperty* const found = findByName(declared, CIMModelAccess::name(property))) {
            result.push_back(synced(*found, property));
        }
    }
    for (const CIMProperty& property : declared) {
        if (!findByName(properties, CIMModelAccess::name(property))) {
            result.push_back(property);
        }
    }
    return result;
}

// Whether an enumeration that was asked for `requestedClass` shows this property of `cimClass`.
bool isShown(const CIMProperty& property, bool localOnly, bool deep, const CIMClass& requestedClass,
             const CIMClass& cimClass) {
    const CIMProperty requested = requestedClass.getProperty(property.getName());
    if (!localOnly) {
        return deep || requested;
    }
    const CIMName requestedName = requestedClass.getName();
    const CIMProperty declared = cimClass.getProperty(property.getName());
    const CIMName origin = declared ? declared.getOriginClass() : property.getOriginClass();
    if (origin == requestedName) {
        return true;
    }
    const bool isAdded = !requested;
    const bool isOverridden =
        requested && declared && CIMName(cimClass.getName()) != requestedName &&
        (origin != CIMName(requested.getOriginClass()) || !declared.getPropagated());
    return deep && (isAdded || isOverridden);
}

} // namespace

CIMInstance::CIMInstance() : m_pdata(new CIMInstanceData) {
}
CIMInstance::CIMInstance(CIMNULL_t) {
}
CIMInstance::CIMInstance(const CIMName& className) : CIMInstance() {
    m_pdata->className = className;
}
CIMInstance::CIMInstance(const char* className) : CIMInstance(CIMName(className)) {
}
CIMInstance::CIMInstance(const CIMInstance&) = default;
CIMInstance::CIMInstance(CIMInstance&&) noexcept = default;
CIMInstance& CIMInstance::operator=(const CIMInstance&) = default;
CIMInstance& CIMInstance::operator=(CIMInstance&&) noexcept = default;
CIMInstance::~CIMInstance() = default;

String CIMInstance::getClassName() const {
    return m_pdata->className.toString();
}

CIMInstance& CIMInstance::setClassName(const CIMName& className) {
    m_pdata->className = className;
    return *this;
}

String CIMInstance::getName() const {
    return getClassName();
}

void CIMInstance::setName(const CIMName& className) {
    setClassName(className);
}

CIMPropertyArray CIMInstance::getProperties(Int32 valueDataType) const {
    if (valueDataType == CIMDataType::INVALID) {
        return m_pdata->properties;
    }
    return elementsThat(m_pdata->properties, [valueDataType](const CIMProperty& property) {
        return property.getDataType().getType() == valueDataType;
    });
}

CIMInstance& CIMInstance::setProperties(const CIMPropertyArray& properties) {
    m_pdata->properties = properties;
    rebuildKeys();
    return *this;
}

CIMInstance& CIMInstance::setProperty(const CIMName& name, const CIMValue& value) {
    CIMPropertyArray& properties = m_pdata->properties;
    if (findByName(properties, name)) {
        return updatePropertyValue(name, value);
    }
    reserveUsual(properties);
    properties.push_back(value ? CIMProperty(name, value) : CIMProperty(name));
    return *this;
}

CIMInstance& CIMInstance::setProperty(const CIMProperty& property) {
    if (!property) {
        return *this;
    }
    CIMPropertyArray& properties = m_pdata->properties;
    const CIMProperty* const old = findByName(properties, CIMModelAccess::name(property));
    const bool concernsKeys = property.isKey() || (old && old->isKey());
    reserveUsual(properties);
    if (old) {
        properties[indexOf(properties, old)] = property;
    } else {
        properties.push_back(property);
    }
    if (concernsKeys) {
        rebuildKeys();
    }
    return *this;
}

CIMInstance& CIMInstance::removeProperty(const CIMName& name) {
    const CIMProperty* const old = findByName(std::as_const(m_pdata)->properties, name);
    if (old) {
        const bool concernsKeys = old->isKey();
        removeByName(m_pdata->properties, name);
        if (concernsKeys) {
            rebuildKeys();
        }
    }
    return *this;
}

CIMProperty CIMInstance::getProperty(const CIMName& name) const {
    return findOrNull(m_pdata->properties, name);
}

CIMProperty CIMInstance::getProperty(const CIMName& name, const CIMName& originClass) const {
    for (const CIMProperty& property : m_pdata->properties) {
        if (CIMModelAccess::name(property) == name &&
            CIMName(property.getOriginClass()) == originClass) {
            return property;
        }
    }
    return CIMProperty(CIMNULL);
}

CIMProperty CIMInstance::getPropertyT(const CIMName& name) const {
    const CIMProperty* const found = findByName(m_pdata->properties, name);
    if (!found) {
        OW_THROW_ERR(NoSuchPropertyException, name.toString().c_str(), 0);
    }
    return *found;
}

CIMValue CIMInstance::getPropertyValue(const CIMName& name) const {
    const CIMProperty* const found = findByName(m_pdata->properties, name);
    return found ? found->getValue() : CIMValue(CIMNULL);
}

bool CIMInstance::propertyHasValue(const CIMName& name) const {
    return getPropertyValue(name);
}

CIMInstance& CIMInstance::updatePropertyValue(const CIMName& name, const CIMValue& value) {
    const CIMPropertyArray& known = std::as_const(m_pdata)->properties;
    const CIMProperty* const found = findByName(known, name);
    if (found) {
        const CIMPropertyArray::size_type index = indexOf(known, found);
        CIMProperty& property = m_pdata->properties[index];
        property.setValue(value);
        if (property.isKey()) {
            rebuildKeys();
        }
    }
    return *this;
}

CIMInstance& CIMInstance::updatePropertyValue(const CIMProperty& property) {
    return updatePropertyValue(property.getName(), property.getValue());
}

CIMInstance& CIMInstance::updatePropertyValues(const CIMPropertyArray& properties) {
    for (const CIMProperty& property : properties) {
        updatePropertyValue(property);
    }
    return *this;
}

CIMPropertyArray CIMInstance::getKeyValuePairs() const {
    return m_pdata->keys;
}

CIMInstance& CIMInstance::setKeys(const CIMPropertyArray& keys) {
    m_pdata->keys = keys;
    return *this;
}

void CIMInstance::rebuildKeys() {
    CIMInstanceData& data = *m_pdata;
    data.keys =
        elementsThat(data.properties, [](const CIMProperty& property) { return property.isKey(); });
}

CIMQualifier CIMInstance::getQualifier(const CIMName& name) const {
    return findOrNull(m_pdata->qualifiers, name);
}

CIMQualifierArray CIMInstance::getQualifiers() const {
    return m_pdata->qualifiers;
}

CIMInstance& CIMInstance::setQualifier(const CIMQualifier& qualifier) {
    replaceOrAppend(m_pdata->qualifiers, qualifier);
    return *this;
}

CIMInstance& CIMInstance::setQualifiers(const CIMQualifierArray& qualifiers) {
    m_pdata->qualifiers = qualifiers;
    return *this;
}

CIMInstance& CIMInstance::removeQualifier(const CIMName& name) {
    removeByName(m_pdata->qualifiers, name);
    return *this;
}

CIMInstance CIMInstance::clone(WBEMFlags::ELocalOnlyFlag localOnly,
                               WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                               WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                               const StringArray* propertyList) const {
    CIMInstance copy = filterProperties(propertyList ? *propertyList : StringArray(),
                                        includeQualifiers, includeClassOrigin, !propertyList);
    if (localOnly == WBEMFlags::E_LOCAL_ONLY) {
        CIMPropertyArray& properties = copy.m_pdata->properties;
        properties = elementsThat(
            properties, [](const CIMProperty& property) { return !property.getPropagated(); });
    }
    return copy;
}

CIMInstance CIMInstance::clone(WBEMFlags::ELocalOnlyFlag localOnly, WBEMFlags::EDeepFlag deep,
                               WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                               WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                               const StringArray* propertyList, const CIMClass& requestedClass,
                               const CIMClass& cimClass) const {
    CIMInstance copy(*this);
    copy.syncWithClass(cimClass);
    const bool isLocal = localOnly == WBEMFlags::E_LOCAL_ONLY;
    const bool isDeep = deep == WBEMFlags::E_DEEP;
    CIMPropertyArray& properties = copy.m_pdata->properties;
    properties = elementsThat(properties, [&](const CIMProperty& property) {
        return isShown(property, isLocal, isDeep, requestedClass, cimClass);
    });
    return copy.clone(WBEMFlags::E_NOT_LOCAL_ONLY, includeQualifiers, includeClassOrigin,
                      propertyList);
}

CIMInstance CIMInstance::clone(WBEMFlags::ELocalOnlyFlag localOnly,
                               WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                               WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                               const StringArray& propertyList, bool noProps) const {
    const bool isAll = propertyList.empty() && !noProps;
    const StringArray wanted = noProps ? StringArray() : propertyList;
    return clone(localOnly, includeQualifiers, includeClassOrigin, isAll ? nullptr : &wanted);
}

CIMInstance CIMInstance::filterProperties(const StringArray& propertyList,
                                          WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                          WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                          bool ignorePropertyList) const {
    CIMInstance copy(*this);
    CIMInstanceData& data = *copy.m_pdata;
    if (!ignorePropertyList) {
        data.properties =
            elementsThat(data.properties, [&propertyList](const CIMProperty& property) {
                return isListed(propertyList, property);
            });
    }
    data.properties = cloned(data.properties, includeQualifiers, includeClassOrigin);
    if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS) {
        data.qualifiers.clear();
    }
    return copy;
}

CIMInstance& CIMInstance::syncWithClass(const CIMClass& cimClass,
                                        WBEMFlags::EIncludeQualifiersFlag includeQualifiers) {
    if (!cimClass) {
        return *this;
    }
    setProperties(synced(getProperties(), cimClass.getAllProperties()));
    if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS) {
        *this = filterProperties(StringArray(), includeQualifiers,
                                 WBEMFlags::E_INCLUDE_CLASS_ORIGIN, true);
    }
    return *this;
}

CIMInstance CIMInstance::createModifiedInstance(const CIMInstance& previous,
                                                WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                                const StringArray* propertyList,
                                                const CIMClass& cimClass) const {
    if (!propertyList) {
        return *this;
    }
    CIMInstance result(previous);
    for (const String& name : *propertyList) {
        CIMProperty property = getProperty(name);
        if (!property && cimClass) {
            property = cimClass.getProperty(name);
        }
        if (!property) {
            result.removeProperty(name);
            continue;
        }
        const CIMProperty old = result.getProperty(name);
        if (old && includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS) {
            property.setQualifiers(old.getQualifiers());
        }
        result.setProperty(property);
    }
    return result;
}

bool CIMInstance::propertiesAreEqualTo(const CIMInstance& other) const {
    const CIMPropertyArray& theirs = other.m_pdata->properties;
    const CIMPropertyArray& mine = m_pdata->properties;
    return mine.size() == theirs.size() &&
           std::all_of(mine.begin(), mine.end(), [&theirs](const CIMProperty& property) {
               const CIMProperty* const found = findByName(theirs, CIMModelAccess::name(property));
               return found && found->getValue() == property.getValue();
           });
}

void CIMInstance::setNull() {
    *this = CIMInstance(CIMNULL);
}

String CIMInstance::toString() const {
    std::string text = std::string("instance of ") + getClassName().c_str() + " {\n";
    for (const CIMProperty& property : m_pdata->properties) {
        const CIMValue value = property.getValue();
        text += property.getName().c_str();
        text += " = ";
        text += value ? value.toString().c_str() : "null";
        text += ";\n";
    }
    return toOwString(text + "}");
}

String CIMInstance::toMOF() const {
    std::string text = qualifiersToMOF(m_pdata->qualifiers);
    if (!text.empty()) {
        text += "\n";
    }
    text += std::string("INSTANCE OF ") + getClassName().c_str() + "\n{\n";
    for (const CIMProperty& property : m_pdata->properties) {
        const CIMValue value = property.getValue();
        const std::string qualifiers = qualifiersToMOF(property.getQualifiers());
        text += qualifiers.empty() ? "" : "  " + qualifiers + "\n";
        text += std::string("  ") + property.getName().c_str() + "=";
        text += value ? value.toMOF().c_str() : "NULL";
        text += ";\n";
    }
    return toOwString(text + "};");
}

} // namespace OpenWBEM
