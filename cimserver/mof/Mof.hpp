// Reads MOF (DMTF DSP0004, CIM 2.x) into classes and qualifier types that do not change afterwards.
// Knows nothing of the rest of the server.
#pragma once

#include "OW_CIM.hpp"

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cimserver::mof {

/// A mistake in a MOF text: `FILE:LINE:COLUMN: what is wrong`.
class MofError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The classes and qualifier types of one namespace. Filled at start, then read by several threads.
class Schema {
public:
    /// Adds one file, which may include others with #pragma include relative to itself.
    /// Throws MofError; what was added before stays.
    void AddFile(const std::filesystem::path& file);
    /// The same for a text; `name` stands for the file in errors.
    void AddText(std::string_view text, const std::string& name);

    /// Names are compared without regard to case. Null when there is no such class.
    const OpenWBEM::CIMClass* FindClass(const OpenWBEM::String& name) const;
    /// The direct subclasses, or all below, in the order of declaration; empty name: from the top.
    std::vector<const OpenWBEM::CIMClass*> Subclasses(const OpenWBEM::String& name,
                                                      bool deep) const;
    const OpenWBEM::CIMQualifierType* FindQualifier(const OpenWBEM::String& name) const;
    const std::vector<OpenWBEM::CIMQualifierType>& Qualifiers() const { return qualifiers_; }

private:
    // Classes hold what they inherit as well, marked as propagated, with the class of origin.
    std::map<std::string, OpenWBEM::CIMClass> classes_; ///< key: the name in lower case
    std::vector<std::string> order_;                    ///< keys in the order of declaration
    std::vector<OpenWBEM::CIMQualifierType> qualifiers_;
};

} // namespace cimserver::mof
