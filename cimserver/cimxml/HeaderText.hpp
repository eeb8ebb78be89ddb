// Reads the texts of HTTP headers (RFC 9110, 5).
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::cimxml {

/// ASCII letters only.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

std::string_view WithoutBlanks(std::string_view text);

/// Of every header of that name, in any case, in order.
std::vector<std::string_view> ValuesOf(const HeaderList& headers, std::string_view name);

/// The parts between the separators, without blanks around them; none of an empty text.
std::vector<std::string_view> Parts(std::string_view text, char separator);

/// `x` of `"x"`, and any other text as it is.
std::string_view WithoutQuotes(std::string_view text);

/// With `%2F` as the byte it stands for (RFC 3986, 2.1); nothing when a percent sign has no two
/// hexadecimal digits behind it.
std::optional<std::string> PercentDecoded(std::string_view text);

} // namespace cimserver::cimxml
