// What a fuzz target is: a function that takes any bytes. With the preset `fuzz` libFuzzer calls
// it, elsewhere Replay.cpp with each file of the seed corpus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// Always 0. What must not happen ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Up to the first NUL, as whoever reads it as a C string sees it.
inline std::string TextWithoutNul(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Text(data, size);
    return std::string(text.substr(0, text.find('\0')));
}

/// How many inputs were understood, not refused: a corpus of which none is shows nothing.
inline int understood = 0;

[[noreturn]] inline void Fail(const std::string& reason) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::abort();
}

} // namespace fuzz
