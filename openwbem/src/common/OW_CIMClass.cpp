#include "OW_CIMClass.hpp"

#include "OW_CIMModelData.hpp"

#include <utility>

namespace OpenWBEM {

struct CIMClassData : COWIntrusiveCountableBase {
    CIMName name;
    CIMName superClass;
    bool isAssociation = false;
    CIMQualifierArray qualifiers;
    CIMPropertyArray properties;
    CIMMethodArray methods;
};

namespace {

// Unlike operator==, which looks at names, these compare everything.
bool isSame(const CIMQualifier& a, const CIMQualifier& b);
bool isSame(const CIMProperty& a, const CIMProperty& b);
bool isSame(const CIMParameter& a, const CIMParameter& b);
bool isSame(const CIMMethod& a, const CIMMethod& b);

template <class Element>
bool haveSame(const Array<Element>& a, const Array<Element>& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](const Element& x, const Element& y) { return isSame(x, y); });
}

bool isSame(const CIMQualifier& a, const CIMQualifier& b) {
    return a == b && a.getValue() == b.getValue() && a.getPropagated() == b.getPropagated() &&
           a.getFlavor() == b.getFlavor();
}

bool isSame(const CIMProperty& a, const CIMProperty& b) {
    return a == b && a.getDataType() == b.getDataType() && a.getValue() == b.getValue() &&
           CIMName(a.getOriginClass()) == CIMName(b.getOriginClass()) &&
           a.getPropagated() == b.getPropagated() && haveSame(a.getQualifiers(), b.getQualifiers());
}

bool isSame(const CIMParameter& a, const CIMParameter& b) {
    return a == b && a.getType() == b.getType() && haveSame(a.getQualifiers(), b.getQualifiers());
}

bool isSame(const CIMMethod& a, const CIMMethod& b) {
    return a == b && a.getReturnType() == b.getReturnType() &&
           haveSame(a.getParameters(), b.getParameters()) &&
           CIMName(a.getOriginClass()) == CIMName(b.getOriginClass()) &&
           a.getPropagated() == b.getPropagated() && haveSame(a.getQualifiers(), b.getQualifiers());
}

} // namespace

CIMClass::CIMClass() : m_pdata(new CIMClassData) {
}
CIMClass::CIMClass(CIMNULL_t) {
}
CIMClass::CIMClass(const CIMName& name) : CIMClass() {
    m_pdata->name = name;
}
CIMClass::CIMClass(const char* name) : CIMClass(CIMName(name)) {
}
CIMClass::CIMClass(const CIMClass&) = default;
CIMClass::CIMClass(CIMClass&&) noexcept = default;
CIMClass& CIMClass::operator=(const CIMClass&) = default;
CIMClass& CIMClass::operator=(CIMClass&&) noexcept = default;
CIMClass::~CIMClass() = default;

String CIMClass::getName() const {
    return m_pdata->name.toString();
}

void CIMClass::setName(const CIMName& name) {
    m_pdata->name = name;
}

String CIMClass::getSuperClass() const {
    return m_pdata->superClass.toString();
}

CIMClass& CIMClass::setSuperClass(const CIMName& name) {
    m_pdata->superClass = name;
    return *this;
}

CIMPropertyArray CIMClass::getKeys() const {
    return elementsThat(m_pdata->properties,
                        [](const CIMProperty& property) { return property.isKey(); });
}

bool CIMClass::isKeyed() const {
    return !getKeys().empty();
}

bool CIMClass::isAssociation() const {
    return m_pdata->isAssociation;
}

CIMClass& CIMClass::setIsAssociation(bool isAssociation) {
    m_pdata->isAssociation = isAssociation;
    return *this;
}

CIMQualifier CIMClass::getQualifier(const CIMName& name) const {
    return findOrNull(m_pdata->qualifiers, name);
}

CIMQualifierArray CIMClass::getQualifiers() const {
    return m_pdata->qualifiers;
}

bool CIMClass::hasTrueQualifier(const CIMName& name) const {
    return hasTrueValue(m_pdata->qualifiers, name);
}

CIMClass& CIMClass::addQualifier(const CIMQualifier& qualifier) {
    CIMClassData& data = *m_pdata;
    appendNew(data.qualifiers, qualifier, "Qualifier");
    if (qualifier.isAssociationQualifier() && qualifier.getValue() == CIMValue(true)) {
        data.isAssociation = true;
    }
    return *this;
}

CIMClass& CIMClass::setQualifier(const CIMQualifier& qualifier) {
    replaceOrAppend(m_pdata->qualifiers, qualifier);
    return *this;
}

CIMProperty CIMClass::getProperty(const CIMName& name) const {
    return findOrNull(m_pdata->properties, name);
}

CIMPropertyArray CIMClass::getAllProperties() const {
    return m_pdata->properties;
}

CIMPropertyArray CIMClass::getProperties() const {
    return getAllProperties();
}

CIMClass& CIMClass::addProperty(const CIMProperty& property) {
    appendNew(m_pdata->properties, property, "Property");
    return *this;
}

CIMClass& CIMClass::setProperty(const CIMProperty& property) {
    replaceOrAppend(m_pdata->properties, property);
    return *this;
}

CIMClass& CIMClass::setProperties(const CIMPropertyArray& properties) {
    m_pdata->properties = properties;
    return *this;
}

bool CIMClass::removeProperty(const CIMName& name) {
    return removeByName(m_pdata->properties, name);
}

CIMMethod CIMClass::getMethod(const CIMName& name) const {
    return findOrNull(m_pdata->methods, name);
}

CIMMethodArray CIMClass::getAllMethods() const {
    return m_pdata->methods;
}

CIMMethodArray CIMClass::getMethods() const {
    return elementsThat(m_pdata->methods, [](const CIMMethod& method) -> bool {
        return method.getQualifier(CIMQualifier::CIM_QUAL_OVERRIDE);
    });
}

CIMClass& CIMClass::addMethod(const CIMMethod& method) {
    appendNew(m_pdata->methods, method, "Method");
    return *this;
}

CIMClass& CIMClass::setMethods(const CIMMethodArray& methods) {
    m_pdata->methods = methods;
    return *this;
}

CIMInstance CIMClass::newInstance() const {
    CIMInstance instance(m_pdata->name);
    instance.setProperties(m_pdata->properties);
    return instance;
}

CIMClass CIMClass::clone(WBEMFlags::ELocalOnlyFlag localOnly,
                         WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                         WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                         const StringArray* propertyList) const {
    CIMClass copy(*this);
    CIMClassData& data = *copy.m_pdata;
    if (propertyList) {
        data.properties =
            elementsThat(data.properties, [propertyList](const CIMProperty& property) {
                return isListed(*propertyList, property);
            });
    }
    if (localOnly == WBEMFlags::E_LOCAL_ONLY) {
        const auto isLocal = [](const auto& element) { return !element.getPropagated(); };
        data.qualifiers = elementsThat(data.qualifiers, isLocal);
        data.properties = elementsThat(data.properties, isLocal);
        data.methods = elementsThat(data.methods, isLocal);
    }
    if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS) {
        data.qualifiers.clear();
    }
    data.properties = cloned(data.properties, includeQualifiers, includeClassOrigin);
    data.methods = cloned(data.methods, includeQualifiers, includeClassOrigin);
    return copy;
}

CIMClass CIMClass::clone(WBEMFlags::ELocalOnlyFlag localOnly,
                         WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                         WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                         const StringArray& propertyList, bool noProps) const {
    const bool isAll = propertyList.empty() && !noProps;
    const StringArray wanted = noProps ? StringArray() : propertyList;
    return clone(localOnly, includeQualifiers, includeClassOrigin, isAll ? nullptr : &wanted);
}

void CIMClass::setNull() {
    *this = CIMClass(CIMNULL);
}

String CIMClass::toString() const {
    return toMOF();
}

String CIMClass::toMOF() const {
    const CIMClassData& data = *m_pdata;
    std::string text = qualifiersToMOF(data.qualifiers);
    if (!text.empty()) {
        text += "\n";
    }
    text += std::string("class ") + data.name.toString().c_str();
    if (data.superClass) {
        text += std::string(" : ") + data.superClass.toString().c_str();
    }
    text += "\n{\n";
    for (const CIMProperty& property : data.properties) {
        text += property.toMOF().c_str();
    }
    for (const CIMMethod& method : data.methods) {
        text += method.toMOF().c_str();
    }
    return toOwString(text + "};\n");
}

bool CIMClass::operator==(const CIMClass& other) const {
    const CIMClassData& a = *m_pdata;
    const CIMClassData& b = *other.m_pdata;
    return a.name == b.name && a.superClass == b.superClass && a.isAssociation == b.isAssociation &&
           haveSame(a.qualifiers, b.qualifiers) && haveSame(a.properties, b.properties) &&
           haveSame(a.methods, b.methods);
}

} // namespace OpenWBEM
