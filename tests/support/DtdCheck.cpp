#include "support/DtdCheck.hpp"

#include "support/ContentModel.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include <expat.h>

namespace test_support {

namespace {

struct ElementRule {
    ElementRule(std::string_view name, std::string_view model, std::vector<std::string_view> needed,
                std::vector<std::string_view> allowed)
        : element(name), content(model), required(std::move(needed)), optional(std::move(allowed)) {
    }

    std::string_view element;
    ContentModel content;
    std::vector<std::string_view> required;
    std::vector<std::string_view> optional;
};

const ElementRule rules[] = {
    {"CIM", "(MESSAGE|DECLARATION)", {"CIMVERSION", "DTDVERSION"}, {}},
    {"MESSAGE",
     "(SIMPLEREQ|MULTIREQ|SIMPLERSP|MULTIRSP|SIMPLEEXPREQ|MULTIEXPREQ|SIMPLEEXPRSP|"
     "MULTIEXPRSP)",
     {"ID", "PROTOCOLVERSION"},
     {}},
    {"SIMPLERSP", "(METHODRESPONSE|IMETHODRESPONSE)", {}, {}},
    {"METHODRESPONSE", "(ERROR|(RETURNVALUE?,PARAMVALUE*))", {"NAME"}, {}},
    {"IMETHODRESPONSE", "(ERROR|(IRETURNVALUE?,PARAMVALUE*))", {"NAME"}, {}},
    {"ERROR", "(INSTANCE*)", {"CODE"}, {"DESCRIPTION"}},
    {"IRETURNVALUE",
     "(CLASSNAME*|INSTANCENAME*|VALUE*|VALUE.OBJECTWITHPATH*|VALUE.OBJECTWITHLOCALPATH*"
     "|VALUE.OBJECT*|OBJECTPATH*|QUALIFIER.DECLARATION*|VALUE.ARRAY?|VALUE.REFERENCE?|CLASS*"
     "|INSTANCE*|INSTANCEPATH*|VALUE.NAMEDINSTANCE*|VALUE.INSTANCEWITHPATH*)",
     {},
     {}},
    {"RETURNVALUE", "(VALUE|VALUE.REFERENCE)", {}, {"PARAMTYPE", "EmbeddedObject"}},
    {"PARAMVALUE",
     "((VALUE|VALUE.REFERENCE|VALUE.ARRAY|VALUE.REFARRAY|CLASSNAME|INSTANCENAME|CLASS|INSTANCE"
     "|VALUE.NAMEDINSTANCE)?)",
     {"NAME"},
     {"PARAMTYPE", "EmbeddedObject"}},
    {"VALUE", "#PCDATA", {}, {}},
    {"VALUE.ARRAY", "((VALUE|VALUE.NULL)*)", {}, {}},
    {"VALUE.REFERENCE",
     "(CLASSPATH|LOCALCLASSPATH|CLASSNAME|INSTANCEPATH|LOCALINSTANCEPATH|INSTANCENAME)",
     {},
     {}},
    {"VALUE.REFARRAY", "((VALUE.REFERENCE|VALUE.NULL)*)", {}, {}},
    {"VALUE.NAMEDINSTANCE", "(INSTANCENAME,INSTANCE)", {}, {}},
    {"VALUE.OBJECTWITHPATH", "((CLASSPATH,CLASS)|(INSTANCEPATH,INSTANCE))", {}, {}},
    {"OBJECTPATH", "(INSTANCEPATH|CLASSPATH)", {}, {}},
    {"NAMESPACEPATH", "(HOST,LOCALNAMESPACEPATH)", {}, {}},
    {"LOCALNAMESPACEPATH", "(NAMESPACE+)", {}, {}},
    {"HOST", "#PCDATA", {}, {}},
    {"NAMESPACE", "EMPTY", {"NAME"}, {}},
    {"CLASSPATH", "(NAMESPACEPATH,CLASSNAME)", {}, {}},
    {"LOCALCLASSPATH", "(LOCALNAMESPACEPATH,CLASSNAME)", {}, {}},
    {"CLASSNAME", "EMPTY", {"NAME"}, {}},
    {"INSTANCEPATH", "(NAMESPACEPATH,INSTANCENAME)", {}, {}},
    {"LOCALINSTANCEPATH", "(LOCALNAMESPACEPATH,INSTANCENAME)", {}, {}},
    {"INSTANCENAME", "(KEYBINDING*|KEYVALUE?|VALUE.REFERENCE?)", {"CLASSNAME"}, {}},
    {"KEYBINDING", "(KEYVALUE|VALUE.REFERENCE)", {"NAME"}, {}},
    {"KEYVALUE", "#PCDATA", {}, {"VALUETYPE", "TYPE"}},
    {"CLASS",
     "(QUALIFIER*,(PROPERTY|PROPERTY.ARRAY|PROPERTY.REFERENCE)*,METHOD*)",
     {"NAME"},
     {"SUPERCLASS"}},
    {"INSTANCE",
     "(QUALIFIER*,(PROPERTY|PROPERTY.ARRAY|PROPERTY.REFERENCE)*)",
     {"CLASSNAME"},
     {"xml:lang"}},
    {"QUALIFIER",
     "((VALUE|VALUE.ARRAY)?)",
     {"NAME", "TYPE"},
     {"PROPAGATED", "OVERRIDABLE", "TOSUBCLASS", "TOINSTANCE", "TRANSLATABLE", "xml:lang"}},
    {"PROPERTY",
     "(QUALIFIER*,VALUE?)",
     {"NAME", "TYPE"},
     {"CLASSORIGIN", "PROPAGATED", "EmbeddedObject", "xml:lang"}},
    {"PROPERTY.ARRAY",
     "(QUALIFIER*,VALUE.ARRAY?)",
     {"NAME", "TYPE"},
     {"ARRAYSIZE", "CLASSORIGIN", "PROPAGATED", "EmbeddedObject", "xml:lang"}},
    {"PROPERTY.REFERENCE",
     "(QUALIFIER*,VALUE.REFERENCE?)",
     {"NAME"},
     {"REFERENCECLASS", "CLASSORIGIN", "PROPAGATED"}},
    {"QUALIFIER.DECLARATION",
     "(SCOPE?,(VALUE|VALUE.ARRAY)?)",
     {"NAME", "TYPE"},
     {"ISARRAY", "ARRAYSIZE", "OVERRIDABLE", "TOSUBCLASS", "TOINSTANCE", "TRANSLATABLE"}},
    {"SCOPE",
     "EMPTY",
     {},
     {"CLASS", "ASSOCIATION", "REFERENCE", "PROPERTY", "METHOD", "PARAMETER", "INDICATION"}},
    {"METHOD",
     "(QUALIFIER*,(PARAMETER|PARAMETER.REFERENCE|PARAMETER.ARRAY|PARAMETER.REFARRAY)*)",
     {"NAME"},
     {"TYPE", "CLASSORIGIN", "PROPAGATED"}},
    {"PARAMETER", "(QUALIFIER*)", {"NAME", "TYPE"}, {}},
    {"PARAMETER.REFERENCE", "(QUALIFIER*)", {"NAME"}, {"REFERENCECLASS"}},
    {"PARAMETER.ARRAY", "(QUALIFIER*)", {"NAME", "TYPE"}, {"ARRAYSIZE"}},
    {"PARAMETER.REFARRAY", "(QUALIFIER*)", {"NAME"}, {"REFERENCECLASS", "ARRAYSIZE"}},
};

struct AttributeRule {
    std::string_view attribute;
    std::vector<std::string_view> values;
};

const std::vector<std::string_view> yesOrNo = {"true", "false"};
const AttributeRule enumerations[] = {
    {"TYPE",
     {"boolean", "string", "char16", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32",
      "uint64", "sint64", "datetime", "real32", "real64"}},
    {"PARAMTYPE",
     {"boolean", "string", "char16", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32",
      "uint64", "sint64", "datetime", "real32", "real64", "reference"}},
    {"VALUETYPE", {"string", "boolean", "numeric"}},
    {"PROPAGATED", yesOrNo},
    {"OVERRIDABLE", yesOrNo},
    {"TOSUBCLASS", yesOrNo},
    {"TOINSTANCE", yesOrNo},
    {"TRANSLATABLE", yesOrNo},
    {"ISARRAY", yesOrNo},
    {"CLASS", yesOrNo},
    {"ASSOCIATION", yesOrNo},
    {"REFERENCE", yesOrNo},
    {"PROPERTY", yesOrNo},
    {"METHOD", yesOrNo},
    {"PARAMETER", yesOrNo},
    {"INDICATION", yesOrNo},
};

class Checker {
public:
    std::vector<std::string> Run(std::string_view xml) {
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
            XML_ParserCreate(nullptr), &XML_ParserFree);
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), &Start, &End);
        XML_SetCharacterDataHandler(parser.get(), &Text);
        if (XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) ==
            XML_STATUS_ERROR) {
            problems_.push_back("not well-formed at byte " +
                                std::to_string(XML_GetCurrentByteIndex(parser.get())) + ": " +
                                XML_ErrorString(XML_GetErrorCode(parser.get())));
        }
        return problems_;
    }

private:
    struct Open {
        const ElementRule* rule;
        std::vector<std::string> children;
    };

    static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        static_cast<Checker*>(self)->StartElement(name, attributes);
    }
    static void XMLCALL End(void* self, const XML_Char* name) {
        static_cast<Checker*>(self)->EndElement(name);
    }
    static void XMLCALL Text(void* self, const XML_Char* text, int length) {
        static_cast<Checker*>(self)->AddText({text, static_cast<std::size_t>(length)});
    }

    void StartElement(std::string_view name, const XML_Char** attributes) {
        if (open_.empty() && name != "CIM") {
            problems_.push_back("root element " + std::string(name));
        }
        if (!open_.empty()) {
            open_.back().children.emplace_back(name);
        }
        const auto* rule = std::find_if(std::begin(rules), std::end(rules),
                                        [&](const auto& one) { return one.element == name; });
        const bool isKnown = rule != std::end(rules);
        open_.push_back({isKnown ? rule : nullptr, {}});
        if (isKnown) {
            CheckAttributes(*rule, attributes);
        } else {
            problems_.push_back("unknown element " + std::string(name));
        }
    }

    void CheckAttributes(const ElementRule& rule, const XML_Char** attributes) {
        std::vector<std::string_view> present;
        for (; *attributes != nullptr; attributes += 2) {
            present.emplace_back(attributes[0]);
            CheckValue(rule, attributes[0], attributes[1]);
            if (!Holds(rule.required, attributes[0]) && !Holds(rule.optional, attributes[0])) {
                problems_.push_back(std::string(rule.element) + " has no attribute " +
                                    attributes[0]);
            }
        }
        for (const std::string_view name : rule.required) {
            if (!Holds(present, name)) {
                problems_.push_back(std::string(rule.element) + " lacks attribute " +
                                    std::string(name));
            }
        }
    }

    void CheckValue(const ElementRule& rule, std::string_view name, std::string_view value) {
        for (const AttributeRule& one : enumerations) {
            if (one.attribute == name && !Holds(one.values, value)) {
                problems_.push_back(std::string(rule.element) + " attribute " + std::string(name) +
                                    " cannot be " + std::string(value));
            }
        }
    }

    void EndElement(std::string_view name) {
        const Open closed = std::move(open_.back());
        open_.pop_back();
        if (closed.rule == nullptr) {
            return;
        }
        if (!closed.rule->content.Fits(closed.children)) {
            std::string found;
            for (std::size_t i = 0; i < std::min<std::size_t>(closed.children.size(), 20); ++i) {
                found += " " + closed.children[i];
            }
            problems_.push_back(std::string(name) + " holds" + found + " instead of " +
                                std::string(closed.rule->content.Text()));
        }
    }

    void AddText(std::string_view text) {
        if (open_.back().rule == nullptr || open_.back().rule->content.MayHoldText()) {
            return;
        }
        const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string_view::npos;
        if (!isBlank || open_.back().rule->content.IsEmpty()) {
            problems_.push_back("text in " + std::string(open_.back().rule->element));
        }
    }

    static bool Holds(const std::vector<std::string_view>& list, std::string_view name) {
        return std::find(list.begin(), list.end(), name) != list.end();
    }

    std::vector<Open> open_;
    std::vector<std::string> problems_;
};

} // namespace

std::vector<std::string> DtdProblems(std::string_view xml) {
    return Checker().Run(xml);
}

std::vector<std::string> PlainClientProblems(std::string_view xml) {
    std::vector<std::string> problems;
    for (const std::string_view bad : {"/>", "<!--", "<![CDATA["}) {
        const std::size_t at = xml.find(bad);
        if (at != std::string_view::npos) {
            problems.push_back(std::string(bad) + " at byte " + std::to_string(at));
        }
    }
    for (std::size_t at = xml.find("&#"); at != std::string_view::npos;
         at = xml.find("&#", at + 1)) {
        const std::string_view reference = xml.substr(at, xml.find(';', at) - at);
        if (reference != "&#9" && reference != "&#10" && reference != "&#13") {
            problems.push_back("&# at byte " + std::to_string(at));
            break;
        }
    }
    return problems;
}

} // namespace test_support
