#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "patchkeeper/Descriptor.hpp"
#include "patchkeeper/Failure.hpp"

namespace patchkeeper::bundle {

// What an error number means, in words.
std::string SystemReason(int error);

// A text of foreign origin for a message: in single quotes, control characters as \xNN, cut when it
// is long.
std::string Quoted(std::string_view text);

// "FILE cannot be DONE: REASON", the reason from an error number; the code is SoftwareUpdateFailed
// unless another is given.
Failure CannotBe(const std::string& done, const std::filesystem::path& file, int error,
                 ExitCode code = ExitCode::SoftwareUpdateFailed);

// Opens a regular file for reading and does not wait for the other end of a pipe. Throws Failure.
Descriptor OpenRegularFile(const std::filesystem::path& file,
                           ExitCode code = ExitCode::SoftwareUpdateFailed);

// The whole of a file that has at most `limit` bytes. Throws Failure.
std::string ReadSmallFile(const std::filesystem::path& file, std::uint64_t limit);

// Reads up to `size` bytes; 0 at the end of the file, a negative error number on failure.
long ReadSome(int descriptor, char* buffer, std::size_t size);

// Writes all of it; 0 or the error number.
int WriteAll(int descriptor, std::string_view data);

} // namespace patchkeeper::bundle
