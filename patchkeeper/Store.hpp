#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "patchkeeper/Database.hpp"
#include "patchkeeper/Standing.hpp"
#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper {

// A bundle that has been taken in.
struct HeldBundle {
    std::int64_t id = 0;
    std::string name;
    std::string version;
    std::string shortDescription;
    std::string longDescription;
    std::string category;
    std::string classification;
    bool rebootNeeded = false;
    bool removable = false;
    std::uint64_t size = 0; // bytes of all files in it
    std::string file;       // its name in the bundle directory
    std::string location;   // where it came from
    std::time_t takenIn = 0;
    std::string faults; // why it can never be applied; "" for a good one
};

// An update that has been applied and not been taken back, or one on its way there or back.
struct AppliedUpdate {
    // What changes files below the target is journaled here before it begins: whoever finds
    // another state than Applied, and the operation lock free, puts back what was replaced.
    enum class State { Applying, Applied, Removing };

    std::int64_t id = 0; // grows from one to the next
    State state = State::Applied;
    std::string name;
    std::string version;
    std::string shortDescription;
    std::string longDescription;
    std::string category;
    std::string classification;
    bool removable = false;
    std::time_t appliedAt = 0;
    std::string target; // the directory that it was installed to
    std::string kept;   // the name of the directory with what it replaced, "" for none
};

// One file or link that an update puts below its target.
struct Change {
    std::string path; // below the target
    Standing before;  // what stood there; the content of a file is kept under the position
};

struct Schedule {
    std::int64_t bundle = 0; // id of the held bundle
    std::time_t applyAt = 0;
    std::string failure; // why it failed when it was due; it is not tried again. "" before
};

// The last operation (fetch, apply, roll-back), running or ended, or the mark that announces one.
struct OperationRow {
    enum class State { None, Marked, Running, Done, Failed };

    std::int64_t number = 0; // counts the operations
    State state = State::None;
    std::string kind; // "fetch", "apply", "rback"; "" for a mark
    std::string name; // of the update, where the operation is about one
    std::string version;
    std::int64_t startedMs = 0; // since 1970; of a mark when it was set
    std::uint64_t bytes = 0;    // of the end; while it runs the progress file tells
    std::uint64_t total = 0;
    std::string text; // what it is about, or how it ended
};

// What the tool remembers: typed access to the tables of the database. Every function throws
// StateProblem. Several processes may have it open; each function is one transaction unless the
// caller has begun a larger one.
class Store {
public:
    // Opens or makes the database and brings its tables up to date.
    Store(const std::filesystem::path& file, Database::Access access,
          std::chrono::milliseconds busyTimeout);

    Transaction Begin(Transaction::Kind kind) { return {database_, kind}; }

    // In the order in which they were taken in.
    std::vector<HeldBundle> Bundles();
    std::optional<HeldBundle> FindBundle(std::string_view name, std::string_view version);
    // By name, dash and version in one text.
    std::optional<HeldBundle> FindBundle(std::string_view address);
    std::vector<std::string> FilesOf(std::int64_t bundle);
    std::vector<std::string> ComponentsOf(std::int64_t bundle);
    std::vector<std::string> WarningsOf(std::int64_t bundle);
    // What the manifest does not tell comes from `rest`; its id, unless it is 0, becomes that of
    // the row. Returns the id.
    std::int64_t AddBundle(const Manifest& manifest, const HeldBundle& rest);
    void RemoveBundle(std::int64_t bundle);
    // For one that AddBundle puts back with the same id in the same transaction: what refers to it
    // stays.
    void RemoveForReplacement(std::int64_t bundle);

    // In the order in which they were applied. What is not Applied is not among them.
    std::vector<AppliedUpdate> AppliedUpdates();
    // In whatever state, by name, dash and version in one text.
    std::optional<AppliedUpdate> FindApplied(std::string_view address);
    std::optional<AppliedUpdate> FindApplied(std::string_view name, std::string_view version);
    // Those that are Applying or Removing, the last one first.
    std::vector<AppliedUpdate> UnfinishedUpdates();
    // The journal of an apply: the update as Applying, with what it is about to change and the
    // directories that it is about to make. `rest` tells what the manifest does not.
    // Returns the id.
    std::int64_t AddApplying(const Manifest& manifest, const AppliedUpdate& rest,
                             const std::vector<Change>& changes,
                             const std::set<std::string>& directories);
    void SetAppliedState(std::int64_t applied, AppliedUpdate::State state);
    // With all that is recorded of its changes.
    void RemoveApplied(std::int64_t applied);
    // What it replaced is no longer kept.
    void DropKept(std::int64_t applied);
    std::vector<std::string> KeptDirectories();
    // By position.
    std::vector<Change> ChangesOf(std::int64_t applied);

    // A path which a later update has changed too.
    struct Conflict {
        std::string path;
        std::string name;
        std::string version;
    };
    std::optional<Conflict> LaterChange(const AppliedUpdate& update);

    // Directories that an apply has made below a target, and that must go once they are empty.
    std::vector<std::string> MadeDirectories(std::string_view target);
    void ForgetMadeDirectory(std::string_view target, std::string_view path);

    // The earliest first.
    std::vector<Schedule> Schedules();
    std::optional<Schedule> FindSchedule(std::int64_t bundle);
    // Replaces one that is there.
    void WriteSchedule(const Schedule& schedule);
    void RemoveSchedule(std::int64_t bundle);

    OperationRow ReadOperation();
    void WriteOperation(const OperationRow& row);

private:
    std::vector<AppliedUpdate> AppliedWhere(std::string_view rest);
    std::vector<std::string> Texts(std::string_view statement, std::int64_t bundle);
    void AddTexts(std::string_view statement, std::int64_t bundle,
                  const std::vector<std::string>& texts);

    Database database_;
};

} // namespace patchkeeper
