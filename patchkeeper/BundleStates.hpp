#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "patchkeeper/Store.hpp"

namespace patchkeeper {

// The words that say what may be done with a held bundle. Readers know exactly these.
namespace bundle_state {
constexpr std::string_view obsolete = "Obsolete";   // an update of this name and a later version
                                                    // has been applied
constexpr std::string_view applied = "Applied";     // this one has been applied
constexpr std::string_view scheduled = "Schedule";  // will be applied later
constexpr std::string_view available = "Available"; // may be applied
constexpr std::string_view invalid = "Invalid";     // can never be applied
} // namespace bundle_state

// What is known of all bundles at one moment.
class BundleStates {
public:
    // Reads from the store; call it and everything else that must fit in one transaction.
    BundleStates(Store& store, std::filesystem::path bundleDirectory);

    // The first of Invalid, Obsolete, Applied, Schedule, Available that holds. A bundle whose file
    // is gone is Invalid.
    std::string_view Of(const HeldBundle& bundle) const;
    bool IsScheduled(const HeldBundle& bundle) const;

private:
    std::filesystem::path bundleDirectory_;
    std::vector<AppliedUpdate> applied_;
    std::set<std::int64_t> scheduled_;
};

} // namespace patchkeeper
