// Schemas from texts.
#pragma once

#include "cimserver/mof/Mof.hpp"

#include <string>
#include <string_view>

namespace test {

/// The qualifiers that the tests use, one of each kind.
inline constexpr std::string_view declarations = R"(
Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(Restricted);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Indication : boolean = false, Scope(class, indication), Flavor(DisableOverride, ToSubclass);
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier MaxLen : uint32 = 7, Scope(property);
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride, ToSubclass);
Qualifier Override : string = null, Scope(property, reference, method), Flavor(Restricted);
Qualifier Provider : string = null, Scope(any);
Qualifier Static : boolean = false, Scope(property, method), Flavor(DisableOverride, ToSubclass);
Qualifier Values : string[], Scope(property, method, parameter), Flavor(Translatable);
)";

/// A schema with the declarations above and the text, which counts its own lines from 1.
inline cimserver::mof::Schema Read(std::string_view text) {
    cimserver::mof::Schema schema;
    schema.AddText(declarations, "declarations.mof");
    schema.AddText(text, "test.mof");
    return schema;
}

/// What is wrong with the text; "" when nothing is.
inline std::string ErrorOf(std::string_view text) {
    try {
        Read(text);
    } catch (const cimserver::mof::MofError& error) {
        return error.what();
    }
    return {};
}

} // namespace test
