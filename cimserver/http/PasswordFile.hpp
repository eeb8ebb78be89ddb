// The file of users and password hashes: lines `user:hash`, empty lines do not count. Nobody but
// its owner may read it.
#pragma once

#include "cimserver/http/SafeFile.hpp"

#include <filesystem>
#include <map>
#include <string>

namespace cimserver::http {

/// Hashes by user name.
using PasswordTable = std::map<std::string, std::string>;

/// Throws CredentialError when the file is missing, can be read by group or others, or has a line
/// that is not `user:` with a yescrypt hash, or a user twice.
PasswordTable ReadPasswordFile(const std::filesystem::path& file);

/// Not empty, without colon and control characters.
bool IsUserName(const std::string& name);

/// Adds the user or gives him another hash; the other lines stay as they are. The file is made when
/// there is none (mode 0600) and otherwise replaced at one moment, keeping its owner; of several
/// processes that do this at a time each has its effect. Throws CredentialError.
void SetPassword(const std::filesystem::path& file, const std::string& user,
                 const std::string& hash);

} // namespace cimserver::http
