#include "cimserver/cimxml/Trailers.hpp"

namespace cimserver::cimxml {

namespace {

constexpr std::size_t longestText = 4096;

std::string EncodedByte(char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    if (byte == '\n' || byte == '\r') {
        return " ";
    }
    if (byte >= ' ' && byte <= '~' && byte != '%') {
        return {byte};
    }
    const auto number = static_cast<unsigned char>(byte);
    return {'%', digits[number >> 4U], digits[number & 0xFU]};
}

std::string OnOneLine(std::string_view text) {
    std::string line;
    for (const char byte : text) {
        const std::string encoded = EncodedByte(byte);
        if (line.size() + encoded.size() > longestText) {
            break;
        }
        line += encoded;
    }
    return line;
}

} // namespace

HeaderList TrailersOf(const OpenWBEM::CIMException& error) {
    return {{"CIMStatusCode", std::to_string(static_cast<int>(error.getErrNo()))},
            {"CIMStatusCodeDescription", OnOneLine(error.getMessage())}};
}

} // namespace cimserver::cimxml
