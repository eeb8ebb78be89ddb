// Any bytes are declarations or a mistake with its place.
#include "cimserver/mof/Mof.hpp"
#include "fuzz/Target.hpp"

#include <algorithm>
#include <cctype>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    if (lower.find("include") != std::string::npos) {
        return 0; // it would read files
    }
    cimserver::mof::Schema schema;
    try {
        schema.AddText(text, "fuzz.mof");
        ++fuzz::understood;
    } catch (const cimserver::mof::MofError& error) {
        if (std::string_view(error.what()).find("fuzz.mof") == std::string_view::npos) {
            fuzz::Fail(std::string("a mistake without its file: ") + error.what());
        }
    }
    return 0;
}
