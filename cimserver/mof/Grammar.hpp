// The grammar of MOF (DMTF DSP0004, appendix A, CIM 2.x) for PEGTL. Included by Parser.cpp alone,
// which gives an action to every rule that has something to keep and a message to every rule that
// is needed.
//
// A token takes the blanks and comments behind it, so that every rule begins at a first character
// and an error names that place. No rule leads back to itself: the stack does not grow with the
// text.
#pragma once

#include <tao/pegtl.hpp>

namespace cimserver::mof::grammar {

namespace peg = tao::pegtl;

/// Raises the rule's error at the place where the rule begins, not where it stopped to match.
template <typename... Rules>
struct Need : peg::seq<peg::sor<Rules, peg::raise<Rules>>...> {};

// Blanks, comments, tokens

struct OpenComment : peg::string<'/', '*'> {};
struct BlockComment : peg::seq<OpenComment, peg::until<peg::string<'*', '/'>>> {};
struct LineComment : peg::seq<peg::string<'/', '/'>, peg::until<peg::eolf>> {};
struct Gap
    : peg::star<
          peg::sor<peg::space, LineComment, peg::seq<peg::at<OpenComment>, Need<BlockComment>>>> {};

template <typename Rule>
struct Token : peg::seq<Rule, Gap> {};

struct OpenBrace : Token<peg::one<'{'>> {};
struct CloseBrace : Token<peg::one<'}'>> {};
struct OpenParenthesis : Token<peg::one<'('>> {};
struct CloseParenthesis : Token<peg::one<')'>> {};
struct CloseBracket : Token<peg::one<']'>> {};
struct Colon : Token<peg::one<':'>> {};
struct Comma : Token<peg::one<','>> {};
struct Semicolon : Token<peg::one<';'>> {};

template <typename Element>
struct CommaSeparated : peg::seq<Need<Element>, peg::star<Comma, Need<Element>>> {};

struct NameStart
    : peg::sor<peg::ranges<'a', 'z', 'A', 'Z', '_', '_'>, peg::utf8::range<0x80, 0xFFEF>> {};
struct NameRest : peg::sor<NameStart, peg::digit> {};
struct Identifier : peg::seq<NameStart, peg::star<NameRest>> {};

template <typename Text>
struct Word : peg::seq<Text, peg::not_at<NameRest>> {};

struct AsWord : Token<Word<TAO_PEGTL_ISTRING("as")>> {};
struct ClassWord : Token<Word<TAO_PEGTL_ISTRING("class")>> {};
struct FlavorWord : Token<Word<TAO_PEGTL_ISTRING("flavor")>> {};
struct InstanceWord : Token<Word<TAO_PEGTL_ISTRING("instance")>> {};
struct PragmaWord : Token<Word<TAO_PEGTL_ISTRING("#pragma")>> {};
struct QualifierWord : Token<Word<TAO_PEGTL_ISTRING("qualifier")>> {};
struct RefWord : Token<Word<TAO_PEGTL_ISTRING("ref")>> {};
struct ScopeWord : Token<Word<TAO_PEGTL_ISTRING("scope")>> {};

// Values

/// A character that no text may hold: NUL, or a byte that does not belong to a UTF-8 character.
struct Character : peg::failure {};
struct BadCharacter
    : peg::seq<peg::at<peg::sor<peg::one<'\0'>, peg::not_range<'\0', '\x7F'>>>, Need<Character>> {};
struct Escape : peg::seq<peg::one<'\\'>, peg::utf8::not_one<'\n', '\r', '\0'>> {};

template <char Quote>
struct Quoted
    : peg::seq<peg::one<Quote>,
               peg::star<peg::sor<
                   Escape, peg::utf8::not_one<static_cast<char32_t>(Quote), '\\', '\n', '\r', '\0'>,
                   BadCharacter>>,
               peg::one<Quote>> {};
struct StringText : Quoted<'"'> {};
struct CharacterText : Quoted<'\''> {};

struct FirstString : Need<StringText> {};
struct NextString : Need<StringText> {};
struct String : peg::seq<peg::at<peg::one<'"'>>, Token<FirstString>,
                         peg::star<peg::at<peg::one<'"'>>, Token<NextString>>> {};
struct Char16 : peg::seq<peg::at<peg::one<'\''>>, Need<CharacterText>> {};

/// Everything that looks like one number; whether it is one, its text is asked later.
struct Number : peg::seq<peg::opt<peg::one<'+', '-'>>,
                         peg::at<peg::sor<peg::digit, peg::seq<peg::one<'.'>, peg::digit>>>,
                         peg::plus<peg::sor<peg::seq<peg::one<'e', 'E'>, peg::one<'+', '-'>>,
                                            peg::alnum, peg::one<'.', '_'>>>> {};
struct Boolean : peg::sor<Word<TAO_PEGTL_ISTRING("true")>, Word<TAO_PEGTL_ISTRING("false")>> {};
struct Null : Word<TAO_PEGTL_ISTRING("null")> {};

struct Literal : peg::sor<String, Token<Char16>, Token<Number>, Token<Boolean>, Token<Null>> {};
struct ArrayBegin : peg::one<'{'> {};
struct ArrayEnd : CloseBrace {};
struct ArrayValue
    : peg::seq<Token<ArrayBegin>,
               peg::sor<CloseBrace, peg::seq<CommaSeparated<Literal>, Need<ArrayEnd>>>> {};
struct ScalarBegin : peg::success {};
struct Value : peg::sor<ArrayValue, peg::seq<ScalarBegin, Literal>> {};

struct DefaultValue : Need<Value> {};
struct Default : peg::seq<Token<peg::one<'='>>, DefaultValue> {};

// Qualifiers of an element

struct FlavorName : Identifier {};
struct FlavorToken : Token<FlavorName> {};
struct KnownFlavor
    : Word<peg::sor<TAO_PEGTL_ISTRING("enableoverride"), TAO_PEGTL_ISTRING("disableoverride"),
                    TAO_PEGTL_ISTRING("restricted"), TAO_PEGTL_ISTRING("tosubclass"),
                    TAO_PEGTL_ISTRING("translatable")>> {};
struct NextFlavor : peg::seq<peg::opt<Comma>, peg::at<KnownFlavor>, FlavorToken> {};
struct QualifierFlavors : peg::seq<Colon, Need<FlavorToken>, peg::star<NextFlavor>> {};

struct QualifierValue : Need<Value> {};
struct QualifierParameter
    : peg::sor<peg::seq<OpenParenthesis, QualifierValue, Need<CloseParenthesis>>,
               peg::seq<peg::at<ArrayBegin>, QualifierValue>> {};
struct QualifierName : Identifier {};
struct Qualifier
    : peg::seq<Token<QualifierName>, peg::opt<QualifierParameter>, peg::opt<QualifierFlavors>> {};
struct QualifierListEnd : CloseBracket {};
struct QualifierList
    : peg::seq<Token<peg::one<'['>>, CommaSeparated<Qualifier>, Need<QualifierListEnd>> {};

// Classes

struct TypeName : Identifier {};
struct TypeToken : Token<TypeName> {};
struct FeatureType : TypeToken {};
/// A property may be called Ref: no name follows the word then.
struct ReferenceMark : peg::seq<RefWord, peg::at<NameStart>> {};
struct VariableName : Identifier {};
struct VariableNameToken : Token<VariableName> {};
struct ArrayBracket : peg::one<'['> {};
struct ArraySize : Number {};
struct ArrayMark : peg::seq<Token<ArrayBracket>, peg::opt<Token<ArraySize>>, Need<CloseBracket>> {};
struct NameAfterType : peg::seq<peg::opt<ReferenceMark>, Need<VariableNameToken>> {};

struct PropertyEnd : Semicolon {};
struct Property : peg::seq<peg::opt<ArrayMark>, peg::opt<Default>, Need<PropertyEnd>> {};

struct Parameter
    : peg::seq<peg::opt<QualifierList>, Need<TypeToken>, NameAfterType, peg::opt<ArrayMark>> {};
struct ParametersEnd : CloseParenthesis {};
struct ParameterList : peg::seq<Parameter, peg::star<Comma, Parameter>, Need<ParametersEnd>> {};
struct MethodBegin : peg::one<'('> {};
struct MethodEnd : Semicolon {};
struct Method
    : peg::seq<Token<MethodBegin>, peg::sor<CloseParenthesis, ParameterList>, Need<MethodEnd>> {};

struct Feature : peg::seq<peg::opt<QualifierList>, Need<FeatureType>, NameAfterType,
                          peg::sor<Method, Property>> {};

struct ClassName : Identifier {};
struct ClassNameToken : Token<ClassName> {};
struct Alias : Token<peg::seq<peg::one<'$'>, Identifier>> {};
struct SuperClassName : Identifier {};
struct SuperClassToken : Token<SuperClassName> {};
struct ClassEnd : Semicolon {};
struct Class : peg::seq<Need<ClassNameToken>, peg::opt<AsWord, Need<Alias>>,
                        peg::opt<Colon, Need<SuperClassToken>>, Need<OpenBrace>,
                        peg::until<CloseBrace, Feature>, Need<ClassEnd>> {};

struct NoInstance : peg::failure {};
struct Instance : peg::seq<peg::at<InstanceWord>, Need<NoInstance>> {};
struct QualifiedClass : peg::seq<QualifierList, peg::sor<Instance, Need<ClassWord>>, Class> {};

// Qualifier declarations

struct DeclaredName : Identifier {};
struct DeclaredNameToken : Token<DeclaredName> {};
struct ScopeName : Identifier {};
struct ScopeToken : Token<ScopeName> {};
struct BeforeScope : Comma {};
struct Scope : peg::seq<ScopeWord, Need<OpenParenthesis>, CommaSeparated<ScopeToken>,
                        Need<CloseParenthesis>> {};
struct Flavor : peg::seq<FlavorWord, Need<OpenParenthesis>, CommaSeparated<FlavorToken>,
                         Need<CloseParenthesis>> {};
struct DeclarationEnd : Semicolon {};
struct QualifierDeclaration
    : peg::seq<Need<DeclaredNameToken>, Need<Colon>, Need<TypeToken>, peg::opt<ArrayMark>,
               peg::opt<Default>, Need<BeforeScope>, Need<Scope>, peg::opt<Comma, Need<Flavor>>,
               Need<DeclarationEnd>> {};

// The text

struct PragmaName : Identifier {};
struct PragmaNameToken : Token<PragmaName> {};
struct PragmaText : String {};
struct Pragma : peg::seq<Need<PragmaNameToken>, Need<OpenParenthesis>, Need<PragmaText>,
                         Need<CloseParenthesis>> {};

struct Declaration
    : peg::sor<peg::seq<PragmaWord, Pragma>, peg::seq<QualifierWord, QualifierDeclaration>,
               peg::seq<ClassWord, Class>, QualifiedClass, Instance> {};
struct EndOfText : peg::eof {};
struct Text : peg::seq<peg::opt<peg::utf8::bom>, Gap, peg::star<Declaration>, Need<EndOfText>> {};

} // namespace cimserver::mof::grammar
