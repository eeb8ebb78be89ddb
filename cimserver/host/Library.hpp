// A provider library that is open, and an object that it made.
#pragma once

#include "OW_CppProviderBaseIFC.hpp"
#include "OW_IntrusiveReference.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace cimserver::host {

/// Why a library cannot be used; the text is for the log and for clients.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Open from construction to destruction. What the library's functions throw leaves as
/// RethrowAsCimException makes it, so that it can be read when the library is closed.
class Library {
public:
    /// All its symbols are bound at once and visible to the libraries opened later. Throws Refusal.
    explicit Library(const std::filesystem::path& file);
    ~Library();
    Library(Library&& other) noexcept;
    Library& operator=(Library&&) = delete;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Asks the library for the version it was made for, and throws Refusal unless that is exactly
    /// ours.
    void CheckVersion() const;
    bool Offers(const std::string& symbol) const;
    /// Runs `createProvider<id>`. Throws Refusal when there is none or it returns nothing.
    OpenWBEM::IntrusiveReference<OpenWBEM::CppProviderBaseIFC>
    CreateProvider(const std::string& id) const;

private:
    void* Find(const std::string& symbol) const;

    std::filesystem::path file_;
    void* handle_;
};

/// An object with the library it came from, destroyed in that order.
struct LoadedProvider {
    Library library;
    OpenWBEM::IntrusiveReference<OpenWBEM::CppProviderBaseIFC> object;
};

} // namespace cimserver::host
