#include "support/XmlNode.hpp"

#include <memory>

#include <expat.h>

namespace test_support {

namespace {

constexpr std::size_t deepest = 200;

struct Builder {
    XML_Parser parser;
    XmlNode document;
    std::vector<XmlNode*> open{&document};

    static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        auto& open = static_cast<Builder*>(self)->open;
        if (open.size() > deepest) {
            XML_StopParser(static_cast<Builder*>(self)->parser, XML_FALSE);
            return;
        }
        XmlNode& node = open.back()->children.emplace_back();
        node.name = name;
        for (; *attributes != nullptr; attributes += 2) {
            node.attributes[attributes[0]] = attributes[1];
        }
        open.push_back(&node);
    }
    static void XMLCALL End(void* self, const XML_Char* /*name*/) {
        static_cast<Builder*>(self)->open.pop_back();
    }
    static void XMLCALL Doctype(void* self, const XML_Char* /*name*/, const XML_Char* /*system*/,
                                const XML_Char* /*publicId*/, int /*hasInternalSubset*/) {
        XML_StopParser(static_cast<Builder*>(self)->parser, XML_FALSE);
    }
    static void XMLCALL Text(void* self, const XML_Char* text, int length) {
        static_cast<Builder*>(self)->open.back()->text.append(text,
                                                              static_cast<std::size_t>(length));
    }
};

} // namespace

std::string XmlNode::Attribute(const std::string& attributeName) const {
    const auto found = attributes.find(attributeName);
    return found == attributes.end() ? std::string() : found->second;
}

const XmlNode* XmlNode::Find(std::string_view elementName) const {
    for (const XmlNode& child : children) {
        if (child.name == elementName) {
            return &child;
        }
        if (const XmlNode* found = child.Find(elementName)) {
            return found;
        }
    }
    return nullptr;
}

std::vector<const XmlNode*> XmlNode::FindAll(std::string_view elementName) const {
    std::vector<const XmlNode*> all;
    for (const XmlNode& child : children) {
        if (child.name == elementName) {
            all.push_back(&child);
            continue;
        }
        const auto below = child.FindAll(elementName);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

std::optional<XmlNode> ReadXml(std::string_view document) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    Builder builder{parser.get(), {}};
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), &Builder::Start, &Builder::End);
    XML_SetCharacterDataHandler(parser.get(), &Builder::Text);
    XML_SetStartDoctypeDeclHandler(parser.get(), &Builder::Doctype);
    if (XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) !=
        XML_STATUS_OK) {
        return std::nullopt;
    }
    return std::move(builder.document);
}

} // namespace test_support
