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

/// The first character of UTF-8, with the bytes that continue it.
std::string_view FirstCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        ++length;
    }
    return text.substr(0, length);
}

std::string OnOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::string_view character = FirstCharacter(text);
        std::string encoded;
        for (const char byte : character) {
            encoded += EncodedByte(byte);
        }
        if (line.size() + encoded.size() > longestText) {
            break;
        }
        line += encoded;
        text.remove_prefix(character.size());
    }
    return line;
}

} // namespace

HeaderList TrailersOf(const OpenWBEM::CIMException& error) {
    return {{"CIMStatusCode", std::to_string(static_cast<int>(error.getErrNo()))},
            {"CIMStatusCodeDescription", OnOneLine(error.getMessage())}};
}

} // namespace cimserver::cimxml
