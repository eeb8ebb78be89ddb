// The elements of a request. Requests are small: their number, depth and attributes are bounded, so
// a tree is the simplest form.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cimserver::cimxml {

struct Element {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<Element> children;
    std::string text; ///< all character data directly within, joined

    /// Null when there is no such attribute.
    const std::string* Attribute(std::string_view attributeName) const;
    /// Throws ProtocolError when there is none.
    const std::string& RequiredAttribute(std::string_view attributeName) const;
    /// The only child; throws ProtocolError when there is another number of them.
    const Element& OnlyChild() const;
    /// The only child, which must be of that name.
    const Element& OnlyChild(std::string_view childName) const;
};

/// The document without the elements that the DTD does not know, which a loosely valid one may hold
/// (DMTF DSP0200). Throws ProtocolError: not well-formed; nothing that the DTD knows; a document
/// type declaration or more than a limit allows.
Element ParseXml(std::string_view text, const XmlLimits& limits = {});

} // namespace cimserver::cimxml
