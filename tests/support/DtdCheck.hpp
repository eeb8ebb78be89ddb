// Checks a CIM-XML answer against the DMTF's DTD (DSP0203 2.x): the content model and the
// attributes of each element that this server sends stand in DtdCheck.cpp as a table, so that
// "valid" does not depend on the code that writes the answers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// What is wrong with the document: not well-formed, an unknown element, children in the wrong
/// order or number, a missing or unknown attribute, a value outside its enumeration, text where
/// none may stand. Empty when it is valid.
std::vector<std::string> DtdProblems(std::string_view xml);

/// What a client without a real XML parser stumbles over although it is valid: empty-element tags,
/// comments, CDATA, numeric character references but those of tab, line feed and carriage return,
/// for which XML leaves no choice. Empty when there is nothing of it.
std::vector<std::string> PlainClientProblems(std::string_view xml);

} // namespace test_support
