#include "cimserver/mof/Grammar.hpp"
#include "cimserver/mof/Literals.hpp"
#include "cimserver/mof/Messages.hpp"
#include "cimserver/mof/Syntax.hpp"

#include <cctype>
#include <utility>

namespace cimserver::mof::syntax {

namespace {

namespace peg = tao::pegtl;

template <typename Input>
Place PlaceOf(const Input& in) {
    const peg::position position = in.position();
    return {position.line, position.column};
}

std::string Found(std::string_view rest) {
    if (rest.empty()) {
        return "the end of the text";
    }
    std::size_t length = 0;
    while (length < rest.size() &&
           (std::isalnum(static_cast<unsigned char>(rest[length])) != 0 || rest[length] == '_')) {
        ++length;
    }
    return Quote(rest.substr(0, length == 0 ? 1 : length));
}

template <typename Rule>
struct Control : peg::normal<Rule> {
    template <typename Input, typename... States>
    [[noreturn]] static void raise(const Input& in, States&&... /*states*/) {
        std::string text = Message<Rule>::text;
        if (text.starts_with("expected")) {
            text += ", found " + Found({in.current(), in.size()});
        }
        throw Error(PlaceOf(in), text);
    }
};

/// What has been read of the declaration at hand.
struct Builder {
    Receiver& receiver;
    std::vector<Qualifier> qualifiers; ///< of the element that comes next
    Value value;
    Variable variable;
    Method method;
    Class declaredClass;
    QualifierDeclaration qualifier;
    std::vector<Name> flavors;
    Pragma pragma;
};

template <typename Input>
Name NameOf(const Input& in) {
    return {in.string(), PlaceOf(in)};
}

template <typename Input>
std::string TextOf(const Input& in) {
    const Place place = PlaceOf(in);
    return Unescape(std::string_view(in.begin() + 1, in.size() - 2),
                    {place.line, place.column + 1});
}

template <typename Input>
void AddLiteral(Builder& builder, const Input& in, Literal::Kind kind, std::string text) {
    builder.value.elements.push_back({kind, PlaceOf(in), std::move(text)});
}

template <typename Rule>
struct Action : peg::nothing<Rule> {};

template <>
struct Action<grammar::FirstString> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        AddLiteral(builder, in, Literal::Kind::String, TextOf(in));
    }
};

template <>
struct Action<grammar::NextString> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.value.elements.back().text += TextOf(in);
    }
};

template <>
struct Action<grammar::Char16> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        AddLiteral(builder, in, Literal::Kind::Character, TextOf(in));
    }
};

template <>
struct Action<grammar::Number> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        AddLiteral(builder, in, Literal::Kind::Number, in.string());
    }
};

template <>
struct Action<grammar::Boolean> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        AddLiteral(builder, in, Literal::Kind::Boolean, in.size() == 4 ? "true" : "false");
    }
};

template <>
struct Action<grammar::Null> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        AddLiteral(builder, in, Literal::Kind::Null, {});
    }
};

template <>
struct Action<grammar::ArrayBegin> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.value = {true, PlaceOf(in), {}};
    }
};

template <>
struct Action<grammar::ScalarBegin> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.value = {false, PlaceOf(in), {}};
    }
};

template <>
struct Action<grammar::DefaultValue> {
    static void apply0(Builder& builder) { builder.variable.value = std::move(builder.value); }
};

template <>
struct Action<grammar::FlavorName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.flavors.push_back(NameOf(in));
    }
};

template <>
struct Action<grammar::QualifierName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.qualifiers.push_back({NameOf(in), {}, {}});
        builder.flavors.clear();
    }
};

template <>
struct Action<grammar::QualifierValue> {
    static void apply0(Builder& builder) {
        builder.qualifiers.back().value = std::move(builder.value);
    }
};

template <>
struct Action<grammar::QualifierFlavors> {
    static void apply0(Builder& builder) {
        builder.qualifiers.back().flavors = std::move(builder.flavors);
    }
};

template <>
struct Action<grammar::TypeName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.variable = {};
        builder.variable.type = NameOf(in);
        builder.variable.qualifiers = std::exchange(builder.qualifiers, {});
    }
};

template <>
struct Action<grammar::ReferenceMark> {
    static void apply0(Builder& builder) { builder.variable.isReference = true; }
};

template <>
struct Action<grammar::VariableName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.variable.name = NameOf(in);
    }
};

template <>
struct Action<grammar::ArrayBracket> {
    static void apply0(Builder& builder) { builder.variable.array = Array{}; }
};

template <>
struct Action<grammar::ArraySize> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.variable.array->size = Literal{Literal::Kind::Number, PlaceOf(in), in.string()};
    }
};

template <>
struct Action<grammar::Property> {
    static void apply0(Builder& builder) {
        builder.declaredClass.properties.push_back(std::move(builder.variable));
    }
};

template <>
struct Action<grammar::MethodBegin> {
    static void apply0(Builder& builder) {
        Variable& head = builder.variable;
        builder.method = {std::move(head.qualifiers),
                          std::move(head.type),
                          head.isReference,
                          std::move(head.name),
                          {}};
    }
};

template <>
struct Action<grammar::Parameter> {
    static void apply0(Builder& builder) {
        builder.method.parameters.push_back(std::move(builder.variable));
    }
};

template <>
struct Action<grammar::Method> {
    static void apply0(Builder& builder) {
        builder.declaredClass.methods.push_back(std::move(builder.method));
    }
};

template <>
struct Action<grammar::ClassName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.declaredClass = {};
        builder.declaredClass.name = NameOf(in);
        builder.declaredClass.qualifiers = std::exchange(builder.qualifiers, {});
    }
};

template <>
struct Action<grammar::SuperClassName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.declaredClass.superClass = NameOf(in);
    }
};

template <>
struct Action<grammar::Class> {
    static void apply0(Builder& builder) { builder.receiver.Take(builder.declaredClass); }
};

template <>
struct Action<grammar::DeclaredName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.qualifier = {};
        builder.qualifier.name = NameOf(in);
        builder.flavors.clear();
    }
};

template <>
struct Action<grammar::ScopeName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.qualifier.scopes.push_back(NameOf(in));
    }
};

template <>
struct Action<grammar::QualifierDeclaration> {
    static void apply0(Builder& builder) {
        builder.qualifier.type = std::move(builder.variable.type);
        builder.qualifier.array = std::move(builder.variable.array);
        builder.qualifier.value = std::move(builder.variable.value);
        builder.qualifier.flavors = std::move(builder.flavors);
        builder.receiver.Take(builder.qualifier);
    }
};

template <>
struct Action<grammar::PragmaName> {
    template <typename Input>
    static void apply(const Input& in, Builder& builder) {
        builder.pragma = {NameOf(in), {}, {}};
        builder.value = {};
    }
};

template <>
struct Action<grammar::PragmaText> {
    static void apply0(Builder& builder) {
        builder.pragma.text = builder.value.elements.back().text;
        builder.pragma.place = builder.value.elements.back().place;
    }
};

template <>
struct Action<grammar::Pragma> {
    static void apply0(Builder& builder) { builder.receiver.Take(builder.pragma); }
};

} // namespace

void Parse(std::string_view text, Receiver& receiver) {
    peg::memory_input<peg::tracking_mode::eager, peg::eol::lf_crlf> in(text.data(), text.size(),
                                                                       "");
    Builder builder{receiver, {}, {}, {}, {}, {}, {}, {}, {}};
    peg::parse<grammar::Text, Action, Control>(in, builder);
}

} // namespace cimserver::mof::syntax
