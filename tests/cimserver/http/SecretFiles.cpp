#include "cimserver/http/SecretFiles.hpp"

#include "cimserver/http/SelfSigned.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <sys/stat.h>

namespace http_test {

using cimserver::http::HashOf;
using cimserver::http::SetPassword;

SecretFiles::SecretFiles() {
    std::string name = (std::filesystem::temp_directory_path() / "secrets.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no directory for the test");
    }
    directory_ = name;
}

SecretFiles::~SecretFiles() {
    std::filesystem::remove_all(directory_);
}

void SecretFiles::Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name)) << text;
    if (chmod(Path(name).c_str(), 0600) != 0) {
        throw std::runtime_error("no file for the test");
    }
}

std::vector<std::string> SecretFiles::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

cimserver::http::UserSettings SecretFiles::AnnaAndBert() const {
    SetPassword(Path("passwords"), "anna", HashOf("secret", cheap));
    SetPassword(Path("passwords"), "bert", HashOf("hidden", cheap));
    return {Path("passwords")};
}

cimserver::http::CertificateFiles SecretFiles::PairFor(const std::string& name) const {
    const auto pair = cimserver::http::MakeSelfSigned({name, "127.0.0.1"}, 1);
    Write("pair.pem", pair.certificate + pair.key);
    return {Path("pair.pem"), Path("pair.pem")};
}

} // namespace http_test
