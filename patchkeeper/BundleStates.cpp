#include "patchkeeper/BundleStates.hpp"

#include <algorithm>
#include <system_error>

#include "patchkeeper/Version.hpp"

namespace patchkeeper {

BundleStates::BundleStates(Store& store, std::filesystem::path bundleDirectory)
    : bundleDirectory_(std::move(bundleDirectory)), applied_(store.AppliedUpdates()) {
    for (const auto& schedule : store.Schedules()) {
        scheduled_.insert(schedule.bundle);
    }
}

bool BundleStates::IsScheduled(const HeldBundle& bundle) const {
    return scheduled_.count(bundle.id) != 0;
}

std::string_view BundleStates::Of(const HeldBundle& bundle) const {
    std::error_code ignored; // a file that cannot be looked at is as good as gone
    if (!bundle.faults.empty() ||
        !std::filesystem::is_regular_file(bundleDirectory_ / bundle.file, ignored)) {
        return bundle_state::invalid;
    }
    const auto anyApplied = [&](auto&& fits) {
        return std::any_of(applied_.begin(), applied_.end(), [&](const AppliedUpdate& update) {
            return update.name == bundle.name && fits(update.version);
        });
    };
    if (anyApplied([&](const std::string& version) { return IsOlder(bundle.version, version); })) {
        return bundle_state::obsolete;
    }
    if (anyApplied([&](const std::string& version) { return version == bundle.version; })) {
        return bundle_state::applied;
    }
    return IsScheduled(bundle) ? bundle_state::scheduled : bundle_state::available;
}

} // namespace patchkeeper
