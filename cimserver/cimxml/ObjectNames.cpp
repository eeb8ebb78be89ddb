#include "cimserver/cimxml/ObjectNames.hpp"

#include "cimserver/cimxml/ProtocolError.hpp"
#include "cimserver/cimxml/Texts.hpp"

#include <charconv>

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

[[noreturn]] void BadKey(const String& name, std::string_view text, std::string_view type) {
    OW_THROWCIMMSG(
        CIMException::INVALID_PARAMETER,
        ("Key " + name + ": \"" + ToString(text) + "\" is no " + ToString(type)).c_str());
}

template <class Number>
bool Reads(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

CIMValue NumericKey(const String& name, std::string_view text) {
    const std::string_view digits = text.starts_with('+') ? text.substr(1) : text;
    Int64 small = 0;
    UInt64 large = 0;
    Real64 real = 0;
    if (Reads(digits, small)) {
        return CIMValue(small);
    }
    if (Reads(digits, large)) {
        return CIMValue(large);
    }
    if (Reads(digits, real)) {
        return CIMValue(real);
    }
    BadKey(name, text, "number");
}

CIMValue BooleanKey(const String& name, std::string_view text) {
    const String word = ToString(text);
    if (word.equalsIgnoreCase("true") || word.equalsIgnoreCase("false")) {
        return CIMValue(Bool(word.equalsIgnoreCase("true")));
    }
    BadKey(name, text, "boolean");
}

CIMValue TypedKey(const String& name, const std::string& type, const std::string& text) {
    const CIMDataType::Type number = CIMDataType::strToSimpleType(ToString(type));
    if (number == CIMDataType::INVALID || number == CIMDataType::REFERENCE) {
        throw NotLooselyValid();
    }
    if (number == CIMDataType::STRING) {
        return CIMValue(ToString(text));
    }
    const std::string_view trimmed = Trimmed(text);
    if (trimmed.empty()) {
        BadKey(name, text, type);
    }
    try {
        return CIMValue::createSimpleValue(ToString(type), ToString(trimmed));
    } catch (const Exception&) {
        BadKey(name, text, type);
    }
}

CIMValue ReadKeyValue(const String& name, const Element& keyValue) {
    if (const std::string* type = keyValue.Attribute("TYPE")) {
        return TypedKey(name, *type, keyValue.text);
    }
    const std::string* valueType = keyValue.Attribute("VALUETYPE");
    if (valueType == nullptr || *valueType == "string") {
        return CIMValue(ToString(keyValue.text));
    }
    if (*valueType == "numeric") {
        return NumericKey(name, Trimmed(keyValue.text));
    }
    if (*valueType == "boolean") {
        return BooleanKey(name, Trimmed(keyValue.text));
    }
    throw NotLooselyValid();
}

CIMObjectPath ReadLocalPath(const Element& nameSpacePath, const Element& objectName) {
    if (nameSpacePath.name != "LOCALNAMESPACEPATH") {
        throw NotLooselyValid();
    }
    CIMObjectPath path = ReadObjectName(objectName);
    path.setNameSpace(ReadNameSpace(nameSpacePath));
    return path;
}

CIMObjectPath ReadFullPath(const Element& nameSpacePath, const Element& objectName) {
    if (nameSpacePath.name != "NAMESPACEPATH" || nameSpacePath.children.size() != 2 ||
        nameSpacePath.children[0].name != "HOST") {
        throw NotLooselyValid();
    }
    CIMObjectPath path = ReadLocalPath(nameSpacePath.children[1], objectName);
    path.setHost(ToString(Trimmed(nameSpacePath.children[0].text)));
    return path;
}

CIMProperty ReadKey(const String& name, const Element& value) {
    if (value.name == "KEYVALUE") {
        return CIMProperty(name, ReadKeyValue(name, value));
    }
    if (value.name == "VALUE.REFERENCE") {
        return CIMProperty(name, CIMValue(ReadReference(value)));
    }
    throw NotLooselyValid();
}

void AddKey(CIMPropertyArray& keys, const CIMProperty& key) {
    const CIMPropertyArray& present = keys;
    for (const CIMProperty& other : present) {
        if (other.getName().equalsIgnoreCase(key.getName())) {
            OW_THROWCIMMSG(CIMException::INVALID_PARAMETER,
                           ("Key " + key.getName() + " is given twice").c_str());
        }
    }
    keys.push_back(key);
}

} // namespace

String ReadNameSpace(const Element& localNameSpacePath) {
    if (localNameSpacePath.name != "LOCALNAMESPACEPATH" || localNameSpacePath.children.empty()) {
        throw NotLooselyValid();
    }
    std::string joined;
    for (const Element& part : localNameSpacePath.children) {
        if (part.name != "NAMESPACE") {
            throw NotLooselyValid();
        }
        joined.append(joined.empty() ? "" : "/").append(part.RequiredAttribute("NAME"));
    }
    const std::size_t first = std::min(joined.find_first_not_of('/'), joined.size());
    return ToString(std::string_view(joined).substr(first));
}

CIMObjectPath ReadInstanceName(const Element& instanceName) {
    CIMObjectPath path(CIMName(ToString(instanceName.RequiredAttribute("CLASSNAME"))));
    CIMPropertyArray keys;
    for (const Element& child : instanceName.children) {
        if (child.name == "KEYBINDING") {
            const String name = ToString(child.RequiredAttribute("NAME"));
            AddKey(keys, ReadKey(name, child.OnlyChild()));
        } else {
            AddKey(keys, ReadKey(String(""), instanceName.OnlyChild()));
        }
    }
    path.setKeys(keys);
    return path;
}

CIMObjectPath ReadObjectName(const Element& element) {
    if (element.name == "INSTANCENAME") {
        return ReadInstanceName(element);
    }
    if (element.name == "CLASSNAME") {
        return CIMObjectPath(CIMName(ToString(element.RequiredAttribute("NAME"))));
    }
    throw NotLooselyValid();
}

CIMObjectPath ReadLocalPath(const Element& path) {
    const bool isLocal = path.name == "LOCALINSTANCEPATH" || path.name == "LOCALCLASSPATH";
    if (!isLocal || path.children.size() != 2) {
        throw NotLooselyValid();
    }
    return ReadLocalPath(path.children[0], path.children[1]);
}

CIMObjectPath ReadReference(const Element& valueReference) {
    const Element& path = valueReference.OnlyChild();
    const bool isLocal = path.name == "LOCALINSTANCEPATH" || path.name == "LOCALCLASSPATH";
    if (!isLocal && path.name != "INSTANCEPATH" && path.name != "CLASSPATH") {
        return ReadObjectName(path);
    }
    if (isLocal) {
        return ReadLocalPath(path);
    }
    if (path.children.size() != 2) {
        throw NotLooselyValid();
    }
    return ReadFullPath(path.children[0], path.children[1]);
}

} // namespace cimserver::cimxml
