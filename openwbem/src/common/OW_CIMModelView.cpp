#include "OW_CIMModelView.hpp"

#include "OW_CIMInstanceData.hpp"
#include "OW_CIMModelData.hpp"
#include "OW_CIMValueVisit.hpp"

namespace OpenWBEM {

const String& CIMModelView::className(const CIMInstance& instance) {
    return instance.m_pdata->className.m_name;
}

const CIMPropertyArray& CIMModelView::properties(const CIMInstance& instance) {
    return instance.m_pdata->properties;
}

const CIMPropertyArray& CIMModelView::keys(const CIMInstance& instance) {
    return instance.m_pdata->keys;
}

const CIMQualifierArray& CIMModelView::qualifiers(const CIMInstance& instance) {
    return instance.m_pdata->qualifiers;
}

const String& CIMModelView::name(const CIMProperty& property) {
    return property.m_pdata->name.m_name;
}

const CIMDataType& CIMModelView::type(const CIMProperty& property) {
    return property.m_pdata->type;
}

const CIMValue& CIMModelView::value(const CIMProperty& property) {
    return property.m_pdata->value;
}

const CIMQualifierArray& CIMModelView::qualifiers(const CIMProperty& property) {
    return property.m_pdata->qualifiers;
}

const String& CIMModelView::originClass(const CIMProperty& property) {
    return property.m_pdata->originClass.m_name;
}

const String& CIMModelView::name(const CIMQualifier& qualifier) {
    return qualifier.m_pdata->name.m_name;
}

const CIMValue& CIMModelView::value(const CIMQualifier& qualifier) {
    return qualifier.m_pdata->value;
}

const String* CIMModelView::text(const CIMValue& value) {
    const bool isText = value.m_type == CIMDataType::STRING && !value.m_isArray;
    return isText ? &value.stored<String>() : nullptr;
}

} // namespace OpenWBEM
