#pragma once

// How a process-wide list of records is replaced and read while calls overlap.
//
// The CIM server runs enumerations and gets in parallel. A refresh gathers its records aside and
// publishes them at once; whoever reads takes a snapshot and works on that. The lock is held for
// the exchange of a handle or the change of a record, never while the tool runs.
//
// Arrays are copy-on-write: read a snapshot through const only, a non-const access copies the list.

#include <cstddef>
#include <cstdio>

#include "OW_Array.hpp"

#include <mutex>

/// Guards the handles of all shared lists, the selected update (gPatchName, gPatchVersion), which
/// changes together with the list of its components, and gEMCartridgeName. Held briefly.
extern std::mutex gSharedListLock;

/// The list as it is published now. Any thread may call.
template <typename T>
OpenWBEM::Array<T> ListSnapshot(const OpenWBEM::Array<T>& shared) {
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    return shared;
}

/// Replaces the published list. Snapshots taken before keep what they hold. Any thread may call.
template <typename T>
void PublishList(OpenWBEM::Array<T>& shared, OpenWBEM::Array<T> list) {
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    shared.swap(list);
}

/// Changes the published list in place, as one step: `change` is called with it under the lock, so
/// it is brief and touches no other shared list. Snapshots taken before keep what they hold. What
/// it throws passes. Any thread may call.
template <typename T, typename Change>
void ChangeList(OpenWBEM::Array<T>& shared, const Change& change) {
    const std::lock_guard<std::mutex> lock(gSharedListLock);
    change(shared);
}

/// The records of one refresh. Whatever has been gathered is published when the refresh leaves its
/// scope, also by an exception: nothing after a failure of the tool, the records before a line that
/// could not be read. One thread owns it; several refreshes of the same list may run side by side.
template <typename T>
class ListRefresh {
public:
    explicit ListRefresh(OpenWBEM::Array<T>& shared) : shared_(shared) {}
    ~ListRefresh() { PublishList(shared_, records_); }
    ListRefresh(const ListRefresh&) = delete;
    ListRefresh& operator=(const ListRefresh&) = delete;

    OpenWBEM::Array<T>& Records() { return records_; }

private:
    OpenWBEM::Array<T>& shared_;
    OpenWBEM::Array<T> records_;
};
