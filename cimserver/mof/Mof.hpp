// Reads MOF (DMTF DSP0004, CIM 2.x) into classes and qualifier types that do not change afterwards.
// Knows nothing of the rest of the server.
#pragma once

#include "OW_CIM.hpp"

#include <cstddef>
#include <deque>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::mof {

/// A mistake in a MOF text: `FILE:LINE:COLUMN: what is wrong`, counted from 1, columns in bytes.
/// For a file that cannot be read: `FILE: why`, or the place of its #pragma include.
class MofError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The classes and qualifier types of one namespace. Filled at start, then read by several threads.
class Schema {
public:
    /// Adds one file, which may include others with #pragma include relative to itself. A class
    /// stands behind those that it names. Throws MofError; what was read before the mistake stays.
    void AddFile(const std::filesystem::path& file);
    /// The same for a text; `name` stands for the file in errors, and includes are relative to it.
    void AddText(std::string_view text, const std::string& name);

    /// Names are compared without regard to case. Null when there is no such class.
    const OpenWBEM::CIMClass* FindClass(const OpenWBEM::String& name) const;
    /// The direct subclasses, or all below, in the order of declaration; empty name: from the top.
    std::vector<const OpenWBEM::CIMClass*> Subclasses(const OpenWBEM::String& name,
                                                      bool deep) const;
    const OpenWBEM::CIMQualifierType* FindQualifier(const OpenWBEM::String& name) const;
    const std::vector<OpenWBEM::CIMQualifierType>& Qualifiers() const { return qualifiers_; }

private:
    class Reader;

    // Classes hold what they inherit as well, marked as propagated, with the class of origin.
    struct Entry {
        OpenWBEM::CIMClass cimClass;
        std::size_t superClass; ///< index into classes_; none: noClass
    };
    static constexpr std::size_t noClass = static_cast<std::size_t>(-1);

    std::size_t IndexOf(const OpenWBEM::String& name) const;

    std::deque<Entry> classes_; ///< in the order of declaration
    std::map<OpenWBEM::CIMName, std::size_t> index_;
    std::vector<OpenWBEM::CIMQualifierType> qualifiers_;
};

} // namespace cimserver::mof
