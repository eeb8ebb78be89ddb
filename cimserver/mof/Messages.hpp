// What is told of a MOF text where a rule of the grammar is needed and does not match. Included by
// Parser.cpp alone.
#pragma once

#include "cimserver/mof/Grammar.hpp"

namespace cimserver::mof::syntax {

/// What is wrong where a needed rule does not match. A text that begins with "expected" is
/// completed with what stands there instead.
template <typename Rule>
struct Message;

#define CIMSERVER_MOF_MESSAGE(rule, words)                                                         \
    template <>                                                                                    \
    struct Message<grammar::rule> {                                                                \
        static constexpr const char* text = words;                                                 \
    }

CIMSERVER_MOF_MESSAGE(BlockComment, "the comment that begins here is not closed");
CIMSERVER_MOF_MESSAGE(StringText, "the string that begins here is not closed on its line");
CIMSERVER_MOF_MESSAGE(CharacterText, "the character that begins here is not closed on its line");
CIMSERVER_MOF_MESSAGE(Character, "expected a UTF-8 character");
CIMSERVER_MOF_MESSAGE(NoInstance, "instances are not supported, only classes and qualifiers");
CIMSERVER_MOF_MESSAGE(EndOfText, "expected a class, a qualifier or a #pragma");
CIMSERVER_MOF_MESSAGE(ClassWord, "expected the word class after the qualifiers");
CIMSERVER_MOF_MESSAGE(ClassNameToken, "expected the name of the class");
CIMSERVER_MOF_MESSAGE(SuperClassToken, "expected the name of the superclass");
CIMSERVER_MOF_MESSAGE(Alias, "expected an alias that begins with $");
CIMSERVER_MOF_MESSAGE(OpenBrace, "expected '{' before the class body");
CIMSERVER_MOF_MESSAGE(ClassEnd, "expected ';' after the class");
CIMSERVER_MOF_MESSAGE(FeatureType, "expected a property, a method or '}'");
CIMSERVER_MOF_MESSAGE(TypeToken, "expected a type");
CIMSERVER_MOF_MESSAGE(VariableNameToken, "expected a name after the type");
CIMSERVER_MOF_MESSAGE(CloseBracket, "expected ']' after the array size");
CIMSERVER_MOF_MESSAGE(PropertyEnd, "expected ';' after the property");
CIMSERVER_MOF_MESSAGE(ParametersEnd, "expected ',' or ')' after the parameter");
CIMSERVER_MOF_MESSAGE(MethodEnd, "expected ';' after the method");
CIMSERVER_MOF_MESSAGE(Qualifier, "expected a qualifier");
CIMSERVER_MOF_MESSAGE(QualifierListEnd, "expected ',' or ']' after the qualifier");
CIMSERVER_MOF_MESSAGE(Value, "expected a value");
CIMSERVER_MOF_MESSAGE(Literal, "expected a value");
CIMSERVER_MOF_MESSAGE(ArrayEnd, "expected ',' or '}' after the value");
CIMSERVER_MOF_MESSAGE(CloseParenthesis, "expected ')'");
CIMSERVER_MOF_MESSAGE(OpenParenthesis, "expected '('");
CIMSERVER_MOF_MESSAGE(FlavorToken, "expected a flavor");
CIMSERVER_MOF_MESSAGE(DeclaredNameToken, "expected the name of the qualifier");
CIMSERVER_MOF_MESSAGE(Colon, "expected ':' and the type of the qualifier");
CIMSERVER_MOF_MESSAGE(BeforeScope, "expected ',' and the scope of the qualifier");
CIMSERVER_MOF_MESSAGE(Scope, "expected the scope of the qualifier");
CIMSERVER_MOF_MESSAGE(ScopeToken, "expected a scope");
CIMSERVER_MOF_MESSAGE(Flavor, "expected the flavor of the qualifier");
CIMSERVER_MOF_MESSAGE(DeclarationEnd, "expected ';' after the qualifier");
CIMSERVER_MOF_MESSAGE(PragmaNameToken, "expected the name of the pragma");
CIMSERVER_MOF_MESSAGE(PragmaText, "expected a text in double quotes");

#undef CIMSERVER_MOF_MESSAGE

} // namespace cimserver::mof::syntax
