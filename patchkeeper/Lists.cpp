#include "patchkeeper/Lists.hpp"

#include <map>
#include <optional>
#include <set>

#include "patchkeeper/BundleStates.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Inventory.hpp"
#include "patchkeeper/Operation.hpp"

namespace patchkeeper {

namespace {

const std::string notHeldText = " is not held on this machine";

std::optional<Store> Open(const State& state) {
    return state.OpenExisting(state.Settings());
}

std::string Reboot(const HeldBundle& bundle) {
    return bundle.rebootNeeded ? "reboot" : "-";
}

// Calls `use` with the store and the update inside one transaction.
template <typename Use>
void WithBundle(const State& state, const std::string& name, const std::string& version, Use use) {
    if (auto store = Open(state)) {
        const Transaction reading = store->Begin(Transaction::Kind::Read);
        if (const auto bundle = store->FindBundle(name, version)) {
            use(*store, *bundle);
            return;
        }
    }
    throw Failure(ExitCode::SoftwareUpdateFailed, name + ' ' + version + notHeldText);
}

void PrintLines(const std::vector<std::string>& lines, std::ostream& out) {
    for (const auto& line : lines) {
        out << RecordLine({line});
    }
}

std::string LongDescription(Store& store, const std::string& address) {
    const Transaction reading = store.Begin(Transaction::Kind::Read);
    if (const auto bundle = store.FindBundle(address)) {
        return bundle->longDescription;
    }
    if (const auto applied = store.FindApplied(address)) {
        return applied->longDescription;
    }
    throw Failure(ExitCode::SoftwareUpdateFailed, address + notHeldText);
}

std::vector<std::string> FilesOfAll(Store& store) {
    std::vector<std::string> files;
    std::set<std::string> seen;
    for (const auto& bundle : store.Bundles()) {
        for (const auto& file : store.FilesOf(bundle.id)) {
            if (seen.insert(file).second) {
                files.push_back(file);
            }
        }
    }
    return files;
}

} // namespace

void ListInventory(const State& state, const Listing& listing) {
    std::vector<AppliedUpdate> applied;
    if (auto store = Open(state)) {
        applied = store->AppliedUpdates();
    }
    RecordWriter records(listing.out, listing.table,
                         {"Name", "Version", "Classification", "Installed"});
    PrintInventory(PackageDatabase(), applied, records);
    records.Finish();
}

void ListCache(const State& state, const Listing& listing) {
    auto store = Open(state);
    if (!store) {
        return;
    }
    RecordWriter records(listing.out, listing.table,
                         {"Name", "Version", "Description", "Size", "Reboot", "State"});
    const Transaction reading = store->Begin(Transaction::Kind::Read);
    const BundleStates states(*store, state.BundleDirectory());
    for (const auto& bundle : store->Bundles()) {
        records.Add({bundle.name, bundle.version, bundle.shortDescription,
                     std::to_string(bundle.size), Reboot(bundle), std::string(states.Of(bundle))});
    }
    records.Finish();
}

void PrintDescription(const State& state, const std::string& address, std::ostream& out) {
    auto store = Open(state);
    if (!store) {
        throw Failure(ExitCode::SoftwareUpdateFailed, address + notHeldText);
    }
    const std::string text = LongDescription(*store, address);
    std::size_t start = 0;
    do {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        out << (line.empty() && !text.empty() ? line : FieldText(line)) << '\n';
        start = end + 1;
    } while (start < text.size());
}

void ListFiles(const State& state, const std::string& address, std::ostream& out) {
    auto store = Open(state);
    if (store) {
        const Transaction reading = store->Begin(Transaction::Kind::Read);
        if (address.empty()) {
            PrintLines(FilesOfAll(*store), out);
            return;
        }
        if (const auto bundle = store->FindBundle(address)) {
            PrintLines(store->FilesOf(bundle->id), out);
            return;
        }
    }
    if (!address.empty()) {
        throw Failure(ExitCode::SoftwareUpdateFailed, address + notHeldText);
    }
}

void ListWarnings(const State& state, const std::string& name, const std::string& version,
                  std::ostream& out) {
    WithBundle(state, name, version, [&](Store& store, const HeldBundle& bundle) {
        if (!bundle.faults.empty()) {
            out << RecordLine({"This bundle is not valid: " + bundle.faults});
        }
        PrintLines(store.WarningsOf(bundle.id), out);
    });
}

bool HasComponents(const State& state, const std::string& name, const std::string& version) {
    bool any = false;
    WithBundle(state, name, version, [&](Store& store, const HeldBundle& bundle) {
        any = !store.ComponentsOf(bundle.id).empty();
    });
    return any;
}

void ListComponents(const State& state, const std::string& name, const std::string& version,
                    std::ostream& out) {
    WithBundle(state, name, version, [&](Store& store, const HeldBundle& bundle) {
        PrintLines(store.ComponentsOf(bundle.id), out);
    });
}

void ListHistory(const State& state, const Listing& listing) {
    auto store = Open(state);
    if (!store) {
        return;
    }
    RecordWriter records(listing.out, listing.table,
                         {"Name", "Version", "Description", "Category", "Applied", "Removable"});
    for (const auto& update : store->AppliedUpdates()) {
        records.Add({update.name, update.version, update.shortDescription, update.category,
                     DateText(update.appliedAt), update.removable ? "Removable" : "Permanent"});
    }
    records.Finish();
}

void ListSchedules(const State& state, const Listing& listing) {
    auto store = Open(state);
    if (!store) {
        return;
    }
    RecordWriter records(listing.out, listing.table,
                         {"Name", "Version", "Description", "Location", "Fetched", "Apply at",
                          "Reboot", "Size", "State"});
    const Transaction reading = store->Begin(Transaction::Kind::Read);
    std::map<std::int64_t, HeldBundle> bundles;
    for (auto& bundle : store->Bundles()) {
        bundles.emplace(bundle.id, std::move(bundle));
    }
    for (const auto& schedule : store->Schedules()) {
        const HeldBundle& bundle = bundles[schedule.bundle];
        records.Add({bundle.name, bundle.version, bundle.shortDescription, bundle.location,
                     DateText(bundle.takenIn), DateText(schedule.applyAt), Reboot(bundle),
                     std::to_string(bundle.size),
                     schedule.failure.empty() ? "Scheduled" : "Failed: " + schedule.failure});
    }
    records.Finish();
}

void ListActive(const State& state, const Listing& listing) {
    auto store = Open(state);
    if (!store || ReadStatus(state, *store).code != Status::Running) {
        return;
    }
    RecordWriter records(
        listing.out, listing.table,
        {"Name", "Version", "Description", "Location", "Began", "Reboot", "Size", "State"});
    const Transaction reading = store->Begin(Transaction::Kind::Read);
    const OperationRow operation = store->ReadOperation();
    const auto bundle = store->FindBundle(operation.name, operation.version);
    if (operation.state == OperationRow::State::Running && operation.kind == "apply" && bundle) {
        records.Add({bundle->name, bundle->version, bundle->shortDescription, bundle->location,
                     DateText(operation.startedMs / 1000), Reboot(*bundle),
                     std::to_string(bundle->size), "Applying"});
    }
    records.Finish();
}

} // namespace patchkeeper
