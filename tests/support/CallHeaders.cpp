#include "support/CallHeaders.hpp"

#include "support/XmlNode.hpp"

namespace test_support {

namespace {

std::string NameSpace(const XmlNode& parent) {
    std::string joined;
    const XmlNode* path =
        parent.name == "LOCALNAMESPACEPATH" ? &parent : parent.Find("LOCALNAMESPACEPATH");
    for (const XmlNode* part :
         path == nullptr ? std::vector<const XmlNode*>() : path->FindAll("NAMESPACE")) {
        joined += (joined.empty() ? "" : "/") + part->Attribute("NAME");
    }
    return joined;
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter == '"' || letter == '\\' ? "\\" : "";
        quoted += letter;
    }
    return quoted + "\"";
}

std::string Path(const XmlNode& path);

std::string KeyText(const XmlNode& binding) {
    if (binding.children.empty()) {
        return {};
    }
    const XmlNode& value = binding.children.front();
    if (value.name == "VALUE.REFERENCE" && !value.children.empty()) {
        return Quoted(Path(value.children.front()));
    }
    const std::string type = value.Attribute("VALUETYPE");
    return type.empty() || type == "string" ? Quoted(value.text) : value.text;
}

std::string ObjectName(const XmlNode& name) {
    if (name.name == "CLASSNAME") {
        return name.Attribute("NAME");
    }
    std::string text = name.Attribute("CLASSNAME");
    char mark = '.';
    for (const XmlNode& binding : name.children) {
        text += mark + binding.Attribute("NAME") + "=" + KeyText(binding);
        mark = ',';
    }
    return text;
}

/// Of any of the forms of a path.
std::string Path(const XmlNode& path) {
    if (path.name == "CLASSNAME" || path.name == "INSTANCENAME") {
        return ObjectName(path);
    }
    return NameSpace(path) + ":" + (path.children.empty() ? "" : ObjectName(path.children.back()));
}

} // namespace

std::string PercentEncoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";
    std::string encoded;
    for (const char letter : text) {
        if (plain.find(letter) != std::string_view::npos) {
            encoded += letter;
            continue;
        }
        const auto byte = static_cast<unsigned char>(letter);
        encoded += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    return encoded;
}

HeaderList CallHeaders(std::string_view body) {
    const auto document = ReadXml(body);
    if (!document) {
        return {};
    }
    const XmlNode* intrinsic = document->Find("IMETHODCALL");
    const XmlNode* call = intrinsic == nullptr ? document->Find("METHODCALL") : intrinsic;
    if (call == nullptr || call->children.empty()) {
        return {};
    }
    const std::string object =
        intrinsic == nullptr ? Path(call->children.front()) : NameSpace(call->children.front());
    return {{"CIMMethod", PercentEncoded(call->Attribute("NAME"))},
            {"CIMObject", PercentEncoded(object)}};
}

} // namespace test_support
