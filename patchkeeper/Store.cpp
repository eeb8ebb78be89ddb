#include "patchkeeper/Store.hpp"

#include <algorithm>
#include <array>

#include "patchkeeper/Schema.hpp"

namespace patchkeeper {

namespace {

constexpr std::string_view selectBundles =
    "SELECT id, name, version, short_description, long_description, category, classification, "
    "reboot_needed, removable, size, file, location, taken_in, faults FROM bundles ";

constexpr std::string_view selectApplied =
    "SELECT id, state, name, version, short_description, long_description, category, "
    "classification, removable, applied_at, target, kept FROM applied ";

// In the order of AppliedUpdate::State.
constexpr std::array<std::string_view, 3> appliedTexts = {"applying", "applied", "removing"};

// In the order of Standing::Kind.
constexpr std::array<std::string_view, 3> kindTexts = {"nothing", "file", "link"};

// In the order of OperationRow::State.
constexpr std::array<std::string_view, 5> stateTexts = {"none", "marked", "running", "done",
                                                        "failed"};

// The tables accept no other texts than these.
template <typename Enum, std::size_t size>
Enum EnumOf(const std::array<std::string_view, size>& texts, std::string_view text) {
    return static_cast<Enum>(std::find(texts.begin(), texts.end(), text) - texts.begin());
}

template <std::size_t size, typename Enum>
std::string_view TextOf(const std::array<std::string_view, size>& texts, Enum value) {
    return texts.at(static_cast<std::size_t>(value));
}

HeldBundle BundleOf(const Statement& row) {
    HeldBundle bundle;
    bundle.id = row.Integer(0);
    bundle.name = row.Text(1);
    bundle.version = row.Text(2);
    bundle.shortDescription = row.Text(3);
    bundle.longDescription = row.Text(4);
    bundle.category = row.Text(5);
    bundle.classification = row.Text(6);
    bundle.rebootNeeded = row.Integer(7) != 0;
    bundle.removable = row.Integer(8) != 0;
    bundle.size = static_cast<std::uint64_t>(row.Integer(9));
    bundle.file = row.Text(10);
    bundle.location = row.Text(11);
    bundle.takenIn = row.Integer(12);
    bundle.faults = row.Text(13);
    return bundle;
}

AppliedUpdate AppliedOf(const Statement& row) {
    AppliedUpdate update;
    update.id = row.Integer(0);
    update.state = EnumOf<AppliedUpdate::State>(appliedTexts, row.Text(1));
    update.name = row.Text(2);
    update.version = row.Text(3);
    update.shortDescription = row.Text(4);
    update.longDescription = row.Text(5);
    update.category = row.Text(6);
    update.classification = row.Text(7);
    update.removable = row.Integer(8) != 0;
    update.appliedAt = row.Integer(9);
    update.target = row.Text(10);
    update.kept = row.Text(11);
    return update;
}

std::string Query(std::string_view select, std::string_view rest) {
    return std::string(select).append(rest);
}

std::int64_t Signed(std::uint64_t value) {
    return static_cast<std::int64_t>(value);
}

} // namespace

Store::Store(const std::filesystem::path& file, Database::Access access,
             std::chrono::milliseconds busyTimeout)
    : database_(file, access, busyTimeout) {
    BringUpToDate(database_);
}

std::vector<HeldBundle> Store::Bundles() {
    Statement query(database_, Query(selectBundles, "ORDER BY id"));
    std::vector<HeldBundle> bundles;
    while (query.Step()) {
        bundles.push_back(BundleOf(query));
    }
    return bundles;
}

std::optional<HeldBundle> Store::FindBundle(std::string_view name, std::string_view version) {
    Statement query(database_, Query(selectBundles, "WHERE name = ? AND version = ?"));
    query.Bind(name, version);
    return query.Step() ? std::optional(BundleOf(query)) : std::nullopt;
}

std::optional<HeldBundle> Store::FindBundle(std::string_view address) {
    Statement query(database_, Query(selectBundles, "WHERE name || '-' || version = ?"));
    query.Bind(address);
    return query.Step() ? std::optional(BundleOf(query)) : std::nullopt;
}

std::vector<std::string> Store::Texts(std::string_view statement, std::int64_t bundle) {
    Statement query(database_, statement);
    query.Bind(bundle);
    std::vector<std::string> texts;
    while (query.Step()) {
        texts.push_back(query.Text(0));
    }
    return texts;
}

std::vector<std::string> Store::FilesOf(std::int64_t bundle) {
    return Texts("SELECT path FROM bundle_files WHERE bundle = ? ORDER BY position", bundle);
}

std::vector<std::string> Store::ComponentsOf(std::int64_t bundle) {
    return Texts("SELECT name FROM bundle_components WHERE bundle = ? ORDER BY position", bundle);
}

std::vector<std::string> Store::WarningsOf(std::int64_t bundle) {
    return Texts("SELECT text FROM bundle_warnings WHERE bundle = ? ORDER BY position", bundle);
}

void Store::AddTexts(std::string_view statement, std::int64_t bundle,
                     const std::vector<std::string>& texts) {
    std::int64_t position = 0;
    for (const auto& text : texts) {
        Statement(database_, statement).Bind(bundle, position++, std::string_view(text)).Run();
    }
}

std::int64_t Store::AddBundle(const Manifest& manifest, const HeldBundle& rest) {
    Statement insert(database_,
                     "INSERT INTO bundles (id, name, version, short_description, long_description, "
                     "category, classification, reboot_needed, removable, size, file, location, "
                     "taken_in, faults) "
                     "VALUES (nullif(?, 0), ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) "
                     "RETURNING id");
    insert.Bind(rest.id, std::string_view(manifest.name), std::string_view(manifest.version),
                std::string_view(manifest.shortDescription),
                std::string_view(manifest.longDescription), std::string_view(manifest.category),
                std::string_view(manifest.classification), std::int64_t{manifest.rebootNeeded},
                std::int64_t{manifest.removable}, Signed(manifest.size),
                std::string_view(rest.file), std::string_view(rest.location),
                std::int64_t{rest.takenIn}, std::string_view(rest.faults));
    insert.Step();
    const std::int64_t id = insert.Integer(0);
    insert.Run();
    std::vector<std::string> paths;
    std::transform(manifest.files.begin(), manifest.files.end(), std::back_inserter(paths),
                   [](const BundleFile& file) { return file.path; });
    AddTexts("INSERT INTO bundle_files VALUES (?, ?, ?)", id, paths);
    AddTexts("INSERT INTO bundle_components VALUES (?, ?, ?)", id, manifest.components);
    AddTexts("INSERT INTO bundle_warnings VALUES (?, ?, ?)", id, manifest.warnings);
    return id;
}

void Store::RemoveBundle(std::int64_t bundle) {
    Statement(database_, "DELETE FROM bundles WHERE id = ?").Bind(bundle).Run();
}

void Store::RemoveForReplacement(std::int64_t bundle) {
    database_.Execute("PRAGMA defer_foreign_keys = ON"); // until the transaction ends
    RemoveBundle(bundle);
}

std::vector<AppliedUpdate> Store::AppliedWhere(std::string_view rest) {
    Statement query(database_, Query(selectApplied, rest));
    std::vector<AppliedUpdate> updates;
    while (query.Step()) {
        updates.push_back(AppliedOf(query));
    }
    return updates;
}

std::vector<AppliedUpdate> Store::AppliedUpdates() {
    return AppliedWhere("WHERE state = 'applied' ORDER BY id");
}

std::vector<AppliedUpdate> Store::UnfinishedUpdates() {
    return AppliedWhere("WHERE state <> 'applied' ORDER BY id DESC");
}

std::optional<AppliedUpdate> Store::FindApplied(std::string_view address) {
    Statement query(database_, Query(selectApplied, "WHERE name || '-' || version = ?"));
    query.Bind(address);
    return query.Step() ? std::optional(AppliedOf(query)) : std::nullopt;
}

std::optional<AppliedUpdate> Store::FindApplied(std::string_view name, std::string_view version) {
    Statement query(database_, Query(selectApplied, "WHERE name = ? AND version = ?"));
    query.Bind(name, version);
    return query.Step() ? std::optional(AppliedOf(query)) : std::nullopt;
}

std::int64_t Store::AddApplying(const Manifest& manifest, const AppliedUpdate& rest,
                                const std::vector<Change>& changes,
                                const std::set<std::string>& directories) {
    Statement insert(database_,
                     "INSERT INTO applied (name, version, short_description, long_description, "
                     "category, classification, removable, applied_at, state, target, kept) "
                     "VALUES (?, ?, ?, ?, ?, ?, ?, ?, 'applying', ?, ?) RETURNING id");
    insert.Bind(std::string_view(manifest.name), std::string_view(manifest.version),
                std::string_view(manifest.shortDescription),
                std::string_view(manifest.longDescription), std::string_view(manifest.category),
                std::string_view(manifest.classification), std::int64_t{manifest.removable},
                std::int64_t{rest.appliedAt}, std::string_view(rest.target),
                std::string_view(rest.kept));
    insert.Step();
    const std::int64_t id = insert.Integer(0);
    insert.Run();
    std::int64_t position = 0;
    for (const auto& change : changes) {
        Statement(database_, "INSERT INTO changes VALUES (?, ?, ?, ?, ?, ?, ?)")
            .Bind(id, position++, std::string_view(change.path),
                  TextOf(kindTexts, change.before.kind), std::int64_t{change.before.mode},
                  Signed(change.before.size), std::string_view(change.before.link))
            .Run();
    }
    for (const auto& directory : directories) {
        Statement(database_, "INSERT OR IGNORE INTO made_directories VALUES (?, ?)")
            .Bind(std::string_view(rest.target), std::string_view(directory))
            .Run();
    }
    return id;
}

void Store::SetAppliedState(std::int64_t applied, AppliedUpdate::State state) {
    Statement(database_, "UPDATE applied SET state = ? WHERE id = ?")
        .Bind(TextOf(appliedTexts, state), applied)
        .Run();
}

void Store::RemoveApplied(std::int64_t applied) {
    Statement(database_, "DELETE FROM applied WHERE id = ?").Bind(applied).Run();
}

void Store::DropKept(std::int64_t applied) {
    Statement(database_, "UPDATE applied SET kept = '' WHERE id = ?").Bind(applied).Run();
}

std::vector<std::string> Store::KeptDirectories() {
    Statement query(database_, "SELECT kept FROM applied WHERE kept <> ''");
    std::vector<std::string> directories;
    while (query.Step()) {
        directories.push_back(query.Text(0));
    }
    return directories;
}

std::vector<Change> Store::ChangesOf(std::int64_t applied) {
    Statement query(database_, "SELECT path, before, mode, size, link FROM changes "
                               "WHERE applied = ? ORDER BY position");
    query.Bind(applied);
    std::vector<Change> changes;
    while (query.Step()) {
        changes.push_back({query.Text(0),
                           {EnumOf<Standing::Kind>(kindTexts, query.Text(1)),
                            static_cast<unsigned>(query.Integer(2)),
                            static_cast<std::uint64_t>(query.Integer(3)), query.Text(4)}});
    }
    return changes;
}

std::optional<Store::Conflict> Store::LaterChange(const AppliedUpdate& update) {
    Statement query(database_, "SELECT theirs.path, other.name, other.version FROM changes mine "
                               "JOIN changes theirs ON theirs.path = mine.path "
                               "JOIN applied other ON other.id = theirs.applied "
                               "WHERE mine.applied = ?1 AND other.id > ?1 AND other.target = ?2 "
                               "ORDER BY other.id DESC, theirs.position LIMIT 1");
    query.Bind(update.id, std::string_view(update.target));
    if (!query.Step()) {
        return std::nullopt;
    }
    return Conflict{query.Text(0), query.Text(1), query.Text(2)};
}

std::vector<std::string> Store::MadeDirectories(std::string_view target) {
    Statement query(database_, "SELECT path FROM made_directories WHERE target = ?");
    query.Bind(target);
    std::vector<std::string> directories;
    while (query.Step()) {
        directories.push_back(query.Text(0));
    }
    return directories;
}

void Store::ForgetMadeDirectory(std::string_view target, std::string_view path) {
    Statement(database_, "DELETE FROM made_directories WHERE target = ? AND path = ?")
        .Bind(target, path)
        .Run();
}

std::vector<Schedule> Store::Schedules() {
    Statement query(database_,
                    "SELECT bundle, apply_at, failure FROM schedules ORDER BY apply_at, bundle");
    std::vector<Schedule> schedules;
    while (query.Step()) {
        schedules.push_back({query.Integer(0), query.Integer(1), query.Text(2)});
    }
    return schedules;
}

std::optional<Schedule> Store::FindSchedule(std::int64_t bundle) {
    Statement query(database_, "SELECT bundle, apply_at, failure FROM schedules WHERE bundle = ?");
    query.Bind(bundle);
    if (!query.Step()) {
        return std::nullopt;
    }
    return Schedule{query.Integer(0), query.Integer(1), query.Text(2)};
}

void Store::WriteSchedule(const Schedule& schedule) {
    Statement(database_, "INSERT OR REPLACE INTO schedules (bundle, apply_at, failure) "
                         "VALUES (?, ?, ?)")
        .Bind(schedule.bundle, std::int64_t{schedule.applyAt}, std::string_view(schedule.failure))
        .Run();
}

void Store::RemoveSchedule(std::int64_t bundle) {
    Statement(database_, "DELETE FROM schedules WHERE bundle = ?").Bind(bundle).Run();
}

OperationRow Store::ReadOperation() {
    Statement query(database_, "SELECT number, state, kind, name, version, started_ms, bytes, "
                               "total, text FROM operation");
    query.Step();
    OperationRow row;
    row.number = query.Integer(0);
    row.state = EnumOf<OperationRow::State>(stateTexts, query.Text(1));
    row.kind = query.Text(2);
    row.name = query.Text(3);
    row.version = query.Text(4);
    row.startedMs = query.Integer(5);
    row.bytes = static_cast<std::uint64_t>(query.Integer(6));
    row.total = static_cast<std::uint64_t>(query.Integer(7));
    row.text = query.Text(8);
    return row;
}

void Store::WriteOperation(const OperationRow& row) {
    Statement(database_, "UPDATE operation SET number = ?, state = ?, kind = ?, name = ?, "
                         "version = ?, started_ms = ?, bytes = ?, total = ?, text = ?")
        .Bind(row.number, TextOf(stateTexts, row.state), std::string_view(row.kind),
              std::string_view(row.name), std::string_view(row.version), row.startedMs,
              Signed(row.bytes), Signed(row.total), std::string_view(row.text))
        .Run();
}

} // namespace patchkeeper
