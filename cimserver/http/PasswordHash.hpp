// Passwords as yescrypt hashes, in the C library's text form `$y$PARAMETERS$SALT$HASH` (crypt(5)).
// A hash takes 16 MiB of memory while it is made or checked, and some 50 ms of a processor.
#pragma once

#include <string>

namespace cimserver::http {

/// A hash with a salt of its own. `cost` is that of crypt(5), from 1 to 11; 0: the usual one, 5.
/// Throws std::runtime_error for a password of more than 511 bytes or with a NUL in it, and when
/// there is no memory.
std::string HashOf(const std::string& password, unsigned long cost = 0);

/// False also for a text that is no hash.
bool Matches(const std::string& password, const std::string& hash);

/// The text is a whole yescrypt hash.
bool IsHash(const std::string& text);

} // namespace cimserver::http
