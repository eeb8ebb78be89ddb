#include "HttpTest.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace http_test {

cimserver::http::Settings AnyPort() {
    cimserver::http::Settings settings;
    settings.port = 0;
    return settings;
}

cimserver::http::Handler Text(std::string text) {
    return [text = std::move(text)](const Request&, Answer& answer) { answer.Append(text); };
}

void Nothing(const Request& /*request*/, Answer& /*answer*/) {
}

std::string Pattern(std::size_t size, std::uint32_t start) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>((start + i) * 2654435761U >> 13U);
    }
    return text;
}

SpoolDirectory::SpoolDirectory() {
    path_ = (std::filesystem::temp_directory_path() / "spool.XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("no directory for the test");
    }
    setenv("TMPDIR", path_.c_str(), 1);
}

SpoolDirectory::~SpoolDirectory() {
    unsetenv("TMPDIR");
    std::filesystem::remove_all(path_);
}

bool SpoolDirectory::IsEmpty() const {
    return std::filesystem::is_empty(path_);
}

std::optional<OpenFile> OpenFileIn(const std::string& directory) {
    std::optional<OpenFile> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const auto target = std::filesystem::read_symlink(entry.path(), gone).string();
        if (gone || !target.starts_with(directory + "/")) {
            continue;
        }
        EXPECT_FALSE(found.has_value()) << "several files are open";
        const int descriptor = std::stoi(entry.path().filename());
        struct stat status = {};
        EXPECT_EQ(fstat(descriptor, &status), 0);
        found = {static_cast<std::uint64_t>(status.st_size),
                 (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0};
    }
    return found;
}

} // namespace http_test
