#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "patchkeeper/Database.hpp"
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

// An update that has been applied and not been taken back.
struct AppliedUpdate {
    std::string name;
    std::string version;
    std::string shortDescription;
    std::string longDescription;
    std::string category;
    std::string classification;
    bool removable = false;
    std::time_t appliedAt = 0;
};

struct Schedule {
    std::int64_t bundle = 0; // id of the held bundle
    std::time_t applyAt = 0;
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

    // In the order in which they were applied.
    std::vector<AppliedUpdate> AppliedUpdates();
    std::optional<AppliedUpdate> FindApplied(std::string_view address);
    // The earliest first.
    std::vector<Schedule> Schedules();

    OperationRow ReadOperation();
    void WriteOperation(const OperationRow& row);

private:
    std::vector<std::string> Texts(std::string_view statement, std::int64_t bundle);
    void AddTexts(std::string_view statement, std::int64_t bundle,
                  const std::vector<std::string>& texts);

    Database database_;
};

} // namespace patchkeeper
