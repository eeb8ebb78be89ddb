#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper_test {

// What a test wants to be in a bundle; the rest is made up.
struct BundleContent {
    std::string name = "demo";
    std::string version = "1.0";
    std::string shortDescription = "A demo";
    std::string more{}; // further items of the manifest, each with a comma behind it
    std::string path = "etc/demo.conf";
    std::string text = "hello\n";
    std::string component{}; // with one file in it
};

// Makes an unsigned bundle.
inline std::filesystem::path MakeTestBundle(const std::filesystem::path& file,
                                            const BundleContent& content = {}) {
    const TemporaryDirectory directory;
    directory.Write("files/" + content.path, content.text);
    std::string components;
    if (!content.component.empty()) {
        directory.Write("components/" + content.component + "/usr/" + content.component, "part\n");
        components = R"("components": [")" + content.component + R"("],)";
    }
    directory.Write("manifest.json",
                    R"({"name": ")" + content.name + R"(", "version": ")" + content.version +
                        R"(", )" + components + content.more +
                        R"("category": "Fixes", "classification": "Middleware",)"
                        R"("reboot_needed": false, "removable": true, "short_description": ")" +
                        content.shortDescription + R"("})");
    std::filesystem::create_directories(file.parent_path());
    return patchkeeper::MakeBundle(directory.Path(), file, std::nullopt);
}

// A text that does not become shorter by packing.
inline std::string Noise(std::size_t size) {
    std::string text(size, '\0');
    unsigned state = 1;
    for (char& letter : text) {
        state = state * 1103515245U + 12345U;
        letter = static_cast<char>(state >> 16U);
    }
    return text;
}

} // namespace patchkeeper_test
