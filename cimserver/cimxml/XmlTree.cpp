#include "cimserver/cimxml/XmlTree.hpp"

#include "cimserver/cimxml/DtdNames.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <limits>
#include <memory>
#include <new>

#include <expat.h>

namespace cimserver::cimxml {

namespace {

/// Builds the tree below an element that stands for the document. A callback of the C library must
/// not throw: it stops the parser and the reason is thrown afterwards.
class TreeBuilder {
public:
    explicit TreeBuilder(const XmlLimits& limits)
        : limits_(limits), parser_(XML_ParserCreate(nullptr), &XML_ParserFree) {
        if (parser_ == nullptr) {
            throw std::bad_alloc();
        }
        open_.push_back(&document_);
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), &Start, &End);
        XML_SetCharacterDataHandler(parser_.get(), &Text);
        XML_SetStartDoctypeDeclHandler(parser_.get(), &Doctype);
    }

    Element Build(std::string_view text) {
        if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
            throw NotValid();
        }
        const XML_Status status =
            XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
        if (stop_ == Stop::OutOfMemory) {
            throw std::bad_alloc();
        }
        if (stop_ == Stop::Refused) {
            throw NotValid(reached_);
        }
        if (status != XML_STATUS_OK) {
            throw NotWellFormed();
        }
        if (document_.children.empty()) {
            throw NotLooselyValid();
        }
        return std::move(document_.children.front());
    }

private:
    enum class Stop { No, Refused, OutOfMemory };

    static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        static_cast<TreeBuilder*>(self)->StartElement(name, attributes);
    }
    static void XMLCALL End(void* self, const XML_Char* /*name*/) {
        static_cast<TreeBuilder*>(self)->EndElement();
    }
    static void XMLCALL Text(void* self, const XML_Char* text, int length) {
        static_cast<TreeBuilder*>(self)->AddText({text, static_cast<std::size_t>(length)});
    }
    static void XMLCALL Doctype(void* self, const XML_Char* /*name*/, const XML_Char* /*system*/,
                                const XML_Char* /*publicId*/, int /*hasInternalSubset*/) {
        static_cast<TreeBuilder*>(self)->StopWith(Stop::Refused);
    }

    void StopWith(Stop reason) {
        stop_ = reason;
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void StartElement(const XML_Char* name, const XML_Char** attributes) {
        try {
            if (const auto limit = Exceeded(name, attributes)) {
                reached_ = limit;
                return StopWith(Stop::Refused);
            }
            if (unknownDepth_ > 0 || !IsDtdElement(name)) {
                ++unknownDepth_;
                return;
            }
            Element& element = open_.back()->children.emplace_back();
            open_.push_back(&element);
            element.name = name;
            for (; *attributes != nullptr; attributes += 2) {
                element.attributes.emplace_back(attributes[0], attributes[1]);
            }
        } catch (const std::bad_alloc&) {
            StopWith(Stop::OutOfMemory);
        }
    }

    std::optional<XmlLimit> Exceeded(std::string_view name, const XML_Char** attributes) {
        if (++count_ > limits_.elements) {
            return XmlLimit::elements;
        }
        if (open_.size() + unknownDepth_ > limits_.depth) {
            return XmlLimit::depth;
        }
        std::size_t attributeCount = 0;
        while (attributes[2 * attributeCount] != nullptr) {
            ++attributeCount;
        }
        if (attributeCount > limits_.attributes) {
            return XmlLimit::attributes;
        }
        // An instance name holds nothing else.
        if (name == "KEYBINDING" && open_.back()->children.size() >= limits_.keyBindings) {
            return XmlLimit::keyBindings;
        }
        return std::nullopt;
    }

    void EndElement() {
        if (unknownDepth_ > 0) {
            --unknownDepth_;
        } else {
            open_.pop_back();
        }
    }

    void AddText(std::string_view text) {
        if (unknownDepth_ > 0) {
            return;
        }
        try {
            open_.back()->text += text;
        } catch (const std::bad_alloc&) {
            StopWith(Stop::OutOfMemory);
        }
    }

    const XmlLimits& limits_;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    Element document_;
    std::vector<Element*> open_;   ///< each the last child of the one before
    std::size_t unknownDepth_ = 0; ///< how many elements the DTD does not know are open
    std::size_t count_ = 0;
    Stop stop_ = Stop::No;
    std::optional<XmlLimit> reached_;
};

} // namespace

const std::string* Element::Attribute(std::string_view attributeName) const {
    for (const auto& [key, value] : attributes) {
        if (key == attributeName) {
            return &value;
        }
    }
    return nullptr;
}

const std::string& Element::RequiredAttribute(std::string_view attributeName) const {
    const std::string* value = Attribute(attributeName);
    if (value == nullptr) {
        throw NotLooselyValid();
    }
    return *value;
}

const Element& Element::OnlyChild() const {
    if (children.size() != 1) {
        throw NotLooselyValid();
    }
    return children.front();
}

const Element& Element::OnlyChild(std::string_view childName) const {
    const Element& child = OnlyChild();
    if (child.name != childName) {
        throw NotLooselyValid();
    }
    return child;
}

Element ParseXml(std::string_view text, const XmlLimits& limits) {
    return TreeBuilder(limits).Build(text);
}

} // namespace cimserver::cimxml
