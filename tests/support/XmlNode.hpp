// A strict XML client: the document as a parser that follows XML 1.0 hands it over, with attribute
// values normalised and line ends as line feeds.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

struct XmlNode {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::vector<XmlNode> children;
    std::string text; ///< directly within, joined

    /// The value; empty when there is no such attribute.
    std::string Attribute(const std::string& attributeName) const;
    /// The first element of that name below this one, in the order of the document; null when
    /// there is none.
    const XmlNode* Find(std::string_view elementName) const;
    /// All of that name below this one, not looking into them.
    std::vector<const XmlNode*> FindAll(std::string_view elementName) const;
};

/// Nothing when the document is not well-formed, has a document type or is nested deeper than 200.
std::optional<XmlNode> ReadXml(std::string_view document);

} // namespace test_support
