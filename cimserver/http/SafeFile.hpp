// Files that are replaced at one moment: whoever opens the name meets the whole old or the whole
// new one.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/types.h>

namespace cimserver::http {

/// What is wrong with a file of passwords or certificates, in a sentence that names the file and
/// says what to do. It holds nothing secret.
class CredentialError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws CredentialError: `FILE: ` and the text of that errno.
[[noreturn]] void FailWithError(const std::filesystem::path& file, int error);

/// Writes the file with that mode, beginning with a draft of mode 0600 beside it. One that was
/// there keeps its owner and group, and a symbolic link stays one. Throws CredentialError; then
/// nothing has changed.
void ReplaceFile(const std::filesystem::path& file, const std::string& text, mode_t mode);

} // namespace cimserver::http
