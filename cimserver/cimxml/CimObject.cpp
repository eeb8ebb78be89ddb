#include "cimserver/cimxml/CimObject.hpp"

#include "cimserver/cimxml/HeaderText.hpp"
#include "cimserver/cimxml/ObjectNames.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <algorithm>
#include <optional>

namespace cimserver::cimxml {

namespace {

struct Key {
    std::string_view name;
    std::string value;
};

/// The parts of `root/cimv2:Class.Name="text",Number=5`, the first without colon when there is no
/// namespace.
struct PathText {
    std::string_view nameSpace;
    std::string_view className;
    std::vector<Key> keys;
};

std::string_view WithoutSlashes(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of('/'), text.size()));
    return text.substr(0, text.find_last_not_of('/') + 1);
}

/// What stands before `separator`, which is removed with it; all when it is not there.
std::string_view TakeUntil(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

/// The escape sequences of MOF.
char Unescaped(char letter) {
    switch (letter) {
    case 'b':
        return '\b';
    case 't':
        return '\t';
    case 'n':
        return '\n';
    case 'f':
        return '\f';
    case 'r':
        return '\r';
    default:
        return letter;
    }
}

/// Single characters stand in single quotes.
bool IsQuoted(std::string_view text) {
    return text.starts_with('"') || text.starts_with('\'');
}

/// The text in quotes that `rest` begins with; nothing when it does not end.
std::optional<std::string> TakeQuoted(std::string_view& rest) {
    std::string value;
    for (std::size_t at = 1; at < rest.size(); ++at) {
        if (rest[at] == rest.front()) {
            rest.remove_prefix(at + 1);
            return value;
        }
        if (rest[at] == '\\' && at + 1 < rest.size()) {
            value += Unescaped(rest[++at]);
        } else {
            value += rest[at];
        }
    }
    return std::nullopt;
}

std::optional<Key> TakeKey(std::string_view& rest) {
    Key key;
    key.name = WithoutBlanks(TakeUntil(rest, '='));
    if (!IsQuoted(rest)) {
        key.value = WithoutBlanks(TakeUntil(rest, ','));
        return key;
    }
    auto value = TakeQuoted(rest);
    if (!value || !(rest.empty() || rest.starts_with(','))) {
        return std::nullopt;
    }
    rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
    key.value = std::move(*value);
    return key;
}

void RemoveHost(std::string_view& text) {
    const std::size_t start = text.find("//");
    if (start != std::string_view::npos && start < text.find('"')) {
        text.remove_prefix(start + 2);
        TakeUntil(text, '/');
    }
}

std::optional<PathText> Split(std::string_view text) {
    RemoveHost(text);
    PathText path;
    const std::size_t mark = text.find_first_of(":=\"'");
    if (mark != std::string_view::npos && text[mark] == ':') {
        path.nameSpace = WithoutSlashes(TakeUntil(text, ':'));
    }
    path.className = TakeUntil(text, '.');
    while (!text.empty()) {
        auto key = TakeKey(text);
        if (!key) {
            return std::nullopt;
        }
        path.keys.push_back(std::move(*key));
    }
    return path;
}

bool IsPathOf(const Element& element, std::string_view text);

bool IsValueOf(const Element& element, const Key& key) {
    if (element.name == "VALUE.REFERENCE") {
        return IsPathOf(element.OnlyChild(), key.value);
    }
    const std::string* type = element.Attribute("VALUETYPE");
    const bool isText = type == nullptr || *type == "string";
    return isText ? element.text == key.value
                  : EqualsIgnoringCase(WithoutBlanks(element.text), key.value);
}

bool IsAmong(const std::vector<Key>& keys, const Element& binding) {
    const std::string& name = binding.RequiredAttribute("NAME");
    const Element& value = binding.OnlyChild();
    return std::any_of(keys.begin(), keys.end(), [&](const Key& key) {
        return EqualsIgnoringCase(key.name, name) && IsValueOf(value, key);
    });
}

bool AreKeysOf(const Element& instanceName, const std::vector<Key>& keys) {
    const auto& bindings = instanceName.children;
    if (bindings.size() != keys.size()) {
        return false;
    }
    // The form for a single key, which is not named.
    if (bindings.size() == 1 && bindings.front().name != "KEYBINDING") {
        return IsValueOf(bindings.front(), keys.front());
    }
    return std::all_of(bindings.begin(), bindings.end(),
                       [&](const Element& binding) { return IsAmong(keys, binding); });
}

bool IsNameOf(const Element& element, const PathText& path) {
    if (element.name == "CLASSNAME") {
        return path.keys.empty() &&
               EqualsIgnoringCase(path.className, element.RequiredAttribute("NAME"));
    }
    if (element.name != "INSTANCENAME") {
        throw NotLooselyValid();
    }
    return EqualsIgnoringCase(path.className, element.RequiredAttribute("CLASSNAME")) &&
           AreKeysOf(element, path.keys);
}

bool IsNameSpaceOf(const Element& localNameSpacePath, std::string_view text) {
    const OpenWBEM::String nameSpace = ReadNameSpace(localNameSpacePath);
    return EqualsIgnoringCase(WithoutSlashes(text),
                              WithoutSlashes({nameSpace.c_str(), nameSpace.length()}));
}

/// Any of the forms of a path; a namespace that only one of both has is passed over.
bool IsPathOf(const Element& element, std::string_view text) {
    const auto path = Split(text);
    if (!path) {
        return false;
    }
    if (element.name == "CLASSNAME" || element.name == "INSTANCENAME") {
        return IsNameOf(element, *path);
    }
    if (element.children.size() != 2 || element.children[0].children.empty()) {
        throw NotLooselyValid();
    }
    const Element& place = element.children[0];
    const bool isLocal = place.name == "LOCALNAMESPACEPATH";
    return (path->nameSpace.empty() ||
            IsNameSpaceOf(isLocal ? place : place.children.back(), path->nameSpace)) &&
           IsNameOf(element.children[1], *path);
}

bool IsDecodedObjectOf(const MethodCall& call, std::string_view text) {
    const Element& object = ObjectOf(call);
    if (!call.isExtrinsic) {
        return IsNameSpaceOf(object, text);
    }
    const bool isPath = IsPathOf(object, text);
    const auto path = Split(text);
    return isPath && path && !path->nameSpace.empty();
}

/// Some clients leave percent signs as they are in what stands in quotes.
std::optional<std::string> DecodedBeforeQuotes(std::string_view header) {
    const std::size_t quote = std::min(header.find('"'), header.size());
    auto decoded = PercentDecoded(header.substr(0, quote));
    if (decoded) {
        decoded->append(header.substr(quote));
    }
    return decoded;
}

} // namespace

const Element& ObjectOf(const MethodCall& call) {
    const auto& children = call.element->children;
    const std::string name = children.empty() ? std::string() : children.front().name;
    const bool isObject = call.isExtrinsic ? name == "LOCALCLASSPATH" || name == "LOCALINSTANCEPATH"
                                           : name == "LOCALNAMESPACEPATH";
    if (!isObject) {
        throw NotLooselyValid();
    }
    return children.front();
}

bool IsObjectOf(const MethodCall& call, std::string_view header) {
    const auto decoded = PercentDecoded(header);
    const auto start = DecodedBeforeQuotes(header);
    return (decoded && IsDecodedObjectOf(call, *decoded)) ||
           (start && IsDecodedObjectOf(call, *start));
}

} // namespace cimserver::cimxml
