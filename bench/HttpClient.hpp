#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

/// Asks a server on 127.0.0.1 over a connection of its own and reads the whole answer, in chunks or
/// with its length announced; returns the bytes of its body, of which `keep` gets the text when it
/// is given. Throws std::runtime_error when the status is not 200, the answer ends with trailers or
/// the connection breaks.
std::size_t Ask(std::uint16_t port, const std::string& request, std::string* keep = nullptr);

/// A complete CIM-XML request, head and body, for EnumerateInstances of a class; it offers to take
/// trailers.
std::string Enumerate(const std::string& className);
std::string EnumerateInventory();

} // namespace bench
