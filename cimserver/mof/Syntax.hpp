// What a MOF text says, before any of it is checked against a schema: one structure per construct,
// each name and value with its place in the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::mof::syntax {

/// Line and column count from 1, columns in bytes.
struct Place {
    std::size_t line = 0;
    std::size_t column = 0;
};

/// A mistake at a place of the text at hand; the schema adds the file's name.
class Error : public std::runtime_error {
public:
    Error(Place place, const std::string& text) : std::runtime_error(text), place_(place) {}
    Place Where() const { return place_; }

private:
    Place place_;
};

struct Name {
    std::string text;
    Place place;
};

struct Literal {
    enum class Kind { Null, Boolean, Number, String, Character };
    Kind kind = Kind::Null;
    Place place;
    /// Boolean: "true" or "false"; number: as written; string and character: UTF-8, escapes
    /// resolved.
    std::string text;
};

struct Value {
    bool isArray = false;
    Place place;
    std::vector<Literal> elements; ///< exactly one unless isArray
};

struct Qualifier {
    Name name;
    std::optional<Value> value;
    std::vector<Name> flavors;
};

struct Array {
    std::optional<Literal> size; ///< absent: any number of elements
};

/// A property, a reference or a parameter.
struct Variable {
    std::vector<Qualifier> qualifiers;
    Name type; ///< the class's name when isReference
    bool isReference = false;
    Name name;
    std::optional<Array> array;
    std::optional<Value> value;
};

struct Method {
    std::vector<Qualifier> qualifiers;
    Name type;
    bool isReference = false;
    Name name;
    std::vector<Variable> parameters;
};

struct Class {
    std::vector<Qualifier> qualifiers;
    Name name;
    std::optional<Name> superClass;
    std::vector<Variable> properties;
    std::vector<Method> methods;
};

struct QualifierDeclaration {
    Name name;
    Name type;
    std::optional<Array> array;
    std::optional<Value> value;
    std::vector<Name> scopes;
    std::vector<Name> flavors;
};

struct Pragma {
    Name name;
    std::string text; ///< what stands in the parentheses
    Place place;      ///< of that text
};

/// Takes the declarations of a text in their order, each as soon as it has been read to its end.
/// May throw; reading stops then.
class Receiver {
public:
    virtual ~Receiver() = default;
    virtual void Take(const Class& declaration) = 0;
    virtual void Take(const QualifierDeclaration& declaration) = 0;
    virtual void Take(const Pragma& pragma) = 0;
};

/// Throws Error where the text is no MOF, and whatever the receiver throws. Takes no more stack for
/// longer or deeper nested texts: MOF's grammar does not refer to itself.
void Parse(std::string_view text, Receiver& receiver);

} // namespace cimserver::mof::syntax
