#include "OW_CIMModelData.hpp"

#include "OW_CIMModelView.hpp"

namespace OpenWBEM {

String toOwString(const std::string& text) {
    return String(text.data(), text.size());
}

const CIMName& keyName() {
    // Never destroyed: a provider's thread may outlive static objects.
    static const CIMName& name = *new CIMName(CIMQualifier::CIM_QUAL_KEY);
    return name;
}

bool hasTrueValue(const CIMQualifierArray& qualifiers, const CIMName& name) {
    const CIMQualifier* const qualifier = findByName(qualifiers, name);
    if (!qualifier) {
        return false;
    }
    const CIMValue& value = CIMModelView::value(*qualifier);
    if (!value || value.getType() != CIMDataType::BOOLEAN || value.isArray()) {
        return false;
    }
    Bool isTrue;
    value.get(isTrue);
    return isTrue;
}

bool isListed(const StringArray& names, const CIMProperty& property) {
    const CIMName& wanted = CIMModelAccess::name(property);
    return std::any_of(names.begin(), names.end(),
                       [&wanted](const String& name) { return wanted == CIMName(name); });
}

std::string qualifiersToMOF(const CIMQualifierArray& qualifiers) {
    std::string text;
    for (const CIMQualifier& qualifier : qualifiers) {
        text += text.empty() ? "[" : ", ";
        text += qualifier.toMOF().c_str();
    }
    if (!text.empty()) {
        text += "]";
    }
    return text;
}

std::string declarationToMOF(const CIMDataType& type, const CIMName& name) {
    std::string text;
    if (type.isReferenceType() && !type.getRefClassName().empty()) {
        text = std::string(type.getRefClassName().c_str()) + " ";
    }
    text += type.toString().c_str();
    text += " ";
    text += name.toString().c_str();
    if (type.isArrayType()) {
        text += type.getSize() < 1 ? "[]" : "[" + std::to_string(type.getSize()) + "]";
    }
    return text;
}

} // namespace OpenWBEM
