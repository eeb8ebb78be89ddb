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
    "SELECT name, version, short_description, long_description, category, classification, "
    "removable, applied_at FROM applied ";

// In the order of OperationRow::State.
constexpr std::array<std::string_view, 5> stateTexts = {"none", "marked", "running", "done",
                                                        "failed"};

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
    update.name = row.Text(0);
    update.version = row.Text(1);
    update.shortDescription = row.Text(2);
    update.longDescription = row.Text(3);
    update.category = row.Text(4);
    update.classification = row.Text(5);
    update.removable = row.Integer(6) != 0;
    update.appliedAt = row.Integer(7);
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

std::vector<AppliedUpdate> Store::AppliedUpdates() {
    Statement query(database_, Query(selectApplied, "ORDER BY id"));
    std::vector<AppliedUpdate> updates;
    while (query.Step()) {
        updates.push_back(AppliedOf(query));
    }
    return updates;
}

std::optional<AppliedUpdate> Store::FindApplied(std::string_view address) {
    Statement query(database_, Query(selectApplied, "WHERE name || '-' || version = ?"));
    query.Bind(address);
    return query.Step() ? std::optional(AppliedOf(query)) : std::nullopt;
}

std::vector<Schedule> Store::Schedules() {
    Statement query(database_, "SELECT bundle, apply_at FROM schedules ORDER BY apply_at, bundle");
    std::vector<Schedule> schedules;
    while (query.Step()) {
        schedules.push_back({query.Integer(0), query.Integer(1)});
    }
    return schedules;
}

OperationRow Store::ReadOperation() {
    Statement query(database_, "SELECT number, state, kind, name, version, started_ms, bytes, "
                               "total, text FROM operation");
    query.Step();
    OperationRow row;
    row.number = query.Integer(0);
    const auto* state = std::find(stateTexts.begin(), stateTexts.end(), query.Text(1));
    row.state = static_cast<OperationRow::State>(state - stateTexts.begin());
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
        .Bind(row.number, stateTexts[static_cast<std::size_t>(row.state)],
              std::string_view(row.kind), std::string_view(row.name), std::string_view(row.version),
              row.startedMs, Signed(row.bytes), Signed(row.total), std::string_view(row.text))
        .Run();
}

} // namespace patchkeeper
