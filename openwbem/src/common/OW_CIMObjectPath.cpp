#include "OW_CIMObjectPath.hpp"

#include "OW_CIMClass.hpp"
#include "OW_CIMModelData.hpp"
#include "OW_NoSuchPropertyException.hpp"

#include <utility>

namespace OpenWBEM {

struct CIMObjectPathData : COWIntrusiveCountableBase {
    CIMNameSpace nameSpace;
    CIMName className;
    CIMPropertyArray keys;
};

CIMObjectPath::CIMObjectPath() : m_pdata(new CIMObjectPathData) {
}
CIMObjectPath::CIMObjectPath(CIMNULL_t) {
}
CIMObjectPath::CIMObjectPath(const CIMName& className) : CIMObjectPath() {
    m_pdata->className = className;
}
CIMObjectPath::CIMObjectPath(const char* className) : CIMObjectPath(CIMName(className)) {
}
CIMObjectPath::CIMObjectPath(const CIMName& className, const String& nameSpace)
    : CIMObjectPath(className) {
    setNameSpace(nameSpace);
}
CIMObjectPath::CIMObjectPath(const CIMName& className, const CIMPropertyArray& keys)
    : CIMObjectPath(className) {
    setKeys(keys);
}
CIMObjectPath::CIMObjectPath(const String& nameSpace, const CIMInstance& instance)
    : CIMObjectPath(instance.getClassName(), nameSpace) {
    setKeys(instance);
}
CIMObjectPath::CIMObjectPath(const CIMObjectPath&) = default;
CIMObjectPath::CIMObjectPath(CIMObjectPath&&) noexcept = default;
CIMObjectPath& CIMObjectPath::operator=(const CIMObjectPath&) = default;
CIMObjectPath& CIMObjectPath::operator=(CIMObjectPath&&) noexcept = default;
CIMObjectPath::~CIMObjectPath() = default;

CIMPropertyArray CIMObjectPath::getKeys() const {
    return m_pdata->keys;
}

CIMProperty CIMObjectPath::getKey(const CIMName& name) const {
    return findOrNull(m_pdata->keys, name);
}

CIMProperty CIMObjectPath::getKeyT(const CIMName& name) const {
    const CIMProperty* const found = findByName(m_pdata->keys, name);
    if (!found) {
        OW_THROW(NoSuchPropertyException, name.toString().c_str());
    }
    return *found;
}

CIMValue CIMObjectPath::getKeyValue(const CIMName& name) const {
    const CIMProperty* const found = findByName(m_pdata->keys, name);
    return found ? found->getValue() : CIMValue(CIMNULL);
}

bool CIMObjectPath::keyHasValue(const CIMName& name) const {
    return getKeyValue(name);
}

CIMObjectPath& CIMObjectPath::setKeys(const CIMPropertyArray& keys) {
    CIMPropertyArray plain;
    plain.reserve(keys.size());
    for (const CIMProperty& key : keys) {
        plain.push_back(
            key.clone(WBEMFlags::E_EXCLUDE_QUALIFIERS, WBEMFlags::E_INCLUDE_CLASS_ORIGIN));
    }
    m_pdata->keys = std::move(plain);
    return *this;
}

CIMObjectPath& CIMObjectPath::setKeys(const CIMInstance& instance) {
    return setKeys(instance.getKeyValuePairs());
}

CIMObjectPath& CIMObjectPath::setKeyValue(const CIMName& name, const CIMValue& value) {
    CIMPropertyArray& keys = m_pdata->keys;
    const CIMProperty* const found = findByName(keys, name);
    if (found) {
        keys[indexOf(keys, found)].setValue(value);
    } else {
        keys.push_back(CIMProperty(name, value));
    }
    return *this;
}

CIMObjectPath& CIMObjectPath::addKey(const CIMName& name, const CIMValue& value) {
    return value ? addKey(CIMProperty(name, value)) : *this;
}

CIMObjectPath& CIMObjectPath::addKey(const CIMProperty& key) {
    if (key) {
        m_pdata->keys.push_back(key);
    }
    return *this;
}

String CIMObjectPath::getNameSpace() const {
    return m_pdata->nameSpace.getNameSpace();
}

CIMObjectPath& CIMObjectPath::setNameSpace(const String& nameSpace) {
    m_pdata->nameSpace.setNameSpace(nameSpace);
    return *this;
}

CIMNameSpace CIMObjectPath::getFullNameSpace() const {
    return m_pdata->nameSpace;
}

CIMObjectPath& CIMObjectPath::setFullNameSpace(const CIMNameSpace& nameSpace) {
    m_pdata->nameSpace = nameSpace;
    return *this;
}

String CIMObjectPath::getHost() const {
    return m_pdata->nameSpace.getHost();
}

CIMObjectPath& CIMObjectPath::setHost(const String& host) {
    m_pdata->nameSpace.setHost(host);
    return *this;
}

String CIMObjectPath::getClassName() const {
    return m_pdata->className.toString();
}

CIMObjectPath& CIMObjectPath::setClassName(const CIMName& className) {
    m_pdata->className = className;
    return *this;
}

bool CIMObjectPath::isClassPath() const {
    return m_pdata->keys.empty();
}

CIMObjectPath& CIMObjectPath::syncWithClass(const CIMClass& cimClass) {
    if (isClassPath() || !cimClass) {
        return *this;
    }
    const CIMPropertyArray mine = getKeys();
    CIMPropertyArray keys;
    for (const CIMProperty& key : mine) {
        CIMProperty declared = cimClass.getProperty(key.getName());
        if (declared) {
            keys.push_back(declared.setValue(key.getValue()));
        }
    }
    const CIMPropertyArray classKeys = cimClass.getKeys();
    for (const CIMProperty& key : classKeys) {
        if (!findByName(mine, CIMModelAccess::name(key))) {
            keys.push_back(key);
        }
    }
    return setKeys(keys);
}

bool CIMObjectPath::equals(const CIMObjectPath& other) const {
    const CIMObjectPathData& a = *m_pdata;
    const CIMObjectPathData& b = *other.m_pdata;
    return a.className == b.className && a.nameSpace.sameNameSpace(b.nameSpace) &&
           a.keys.size() == b.keys.size() &&
           std::all_of(a.keys.begin(), a.keys.end(), [&b](const CIMProperty& key) {
               const CIMProperty* const found = findByName(b.keys, CIMModelAccess::name(key));
               return found && found->getValue() == key.getValue();
           });
}

bool CIMObjectPath::operator<(const CIMObjectPath& other) const {
    return toString() < other.toString();
}

void CIMObjectPath::setNull() {
    *this = CIMObjectPath(CIMNULL);
}

String CIMObjectPath::toString() const {
    return m_pdata->nameSpace.toString() + ":" + modelPath();
}

String CIMObjectPath::modelPath() const {
    std::string text = getClassName().c_str();
    const char* separator = ".";
    for (const CIMProperty& key : m_pdata->keys) {
        const CIMValue value = key.getValue();
        text += separator;
        text += key.getName().c_str();
        text += "=\"";
        text += value ? escape(value.toString()).c_str() : "null";
        text += "\"";
        separator = ",";
    }
    return toOwString(text);
}

String CIMObjectPath::toMOF() const {
    return escape(toString());
}

} // namespace OpenWBEM
