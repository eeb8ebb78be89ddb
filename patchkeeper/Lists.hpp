#pragma once

#include <ostream>
#include <string>

#include "patchkeeper/State.hpp"

namespace patchkeeper {

// Where a list goes and in which form.
struct Listing {
    std::ostream& out;
    bool table; // for a person
};

// The lists of the state. Each reads everything in one transaction, makes nothing, and prints
// nothing when there is nothing. They throw StateProblem, and Failure (SoftwareUpdateFailed) for an
// update that is not there.

// What bundles have installed and, before it, the packages of this machine. Throws Failure
// (General) when the package database cannot be read.
void ListInventory(const State& state, const Listing& listing);

// Held bundles: name, version, short description, size, "reboot" or "-", state (BundleStates).
void ListCache(const State& state, const Listing& listing);

// The long description of an update that is held or applied, by name, dash and version in one text.
// Its own lines are kept.
void PrintDescription(const State& state, const std::string& address, std::ostream& out);

// A line per file: those of one held update, by name, dash and version, or for an empty text those
// of all, each path once.
void ListFiles(const State& state, const std::string& address, std::ostream& out);

// A line per warning; the faults of a bundle that is not valid stand before its own.
void ListWarnings(const State& state, const std::string& name, const std::string& version,
                  std::ostream& out);

bool HasComponents(const State& state, const std::string& name, const std::string& version);

// A line per optional component.
void ListComponents(const State& state, const std::string& name, const std::string& version,
                    std::ostream& out);

// Applied updates: name, version, short description, category, date, "Removable" or "Permanent".
void ListHistory(const State& state, const Listing& listing);

// Scheduled updates: name, version, short description, location, date of the fetch, date at which
// it will be applied, "reboot" or "-", size, state.
void ListSchedules(const State& state, const Listing& listing);

// The update that is being applied now: name, version, short description, location, date of the
// beginning, "reboot" or "-", size, state.
void ListActive(const State& state, const Listing& listing);

} // namespace patchkeeper
