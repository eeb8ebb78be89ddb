#include "patchkeeper/Schema.hpp"

#include <array>
#include <cstdint>
#include <string>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

constexpr std::int64_t applicationId = 0x504B4550; // tells our files from other programs'

constexpr std::array<std::string_view, 2> steps = {R"sql(
CREATE TABLE bundles (
    id                INTEGER PRIMARY KEY AUTOINCREMENT,
    name              TEXT NOT NULL,
    version           TEXT NOT NULL,
    short_description TEXT NOT NULL,
    long_description  TEXT NOT NULL,
    category          TEXT NOT NULL,
    classification    TEXT NOT NULL,
    reboot_needed     INTEGER NOT NULL,
    removable         INTEGER NOT NULL,
    size              INTEGER NOT NULL,
    file              TEXT NOT NULL UNIQUE,
    location          TEXT NOT NULL,
    taken_in          INTEGER NOT NULL,
    faults            TEXT NOT NULL,
    UNIQUE (name, version)
);
CREATE UNIQUE INDEX bundle_addresses ON bundles (name || '-' || version);
CREATE TABLE bundle_files (
    bundle    INTEGER NOT NULL REFERENCES bundles ON DELETE CASCADE,
    position  INTEGER NOT NULL,
    path      TEXT NOT NULL,
    PRIMARY KEY (bundle, position)
) WITHOUT ROWID;
CREATE TABLE bundle_components (
    bundle    INTEGER NOT NULL REFERENCES bundles ON DELETE CASCADE,
    position  INTEGER NOT NULL,
    name      TEXT NOT NULL,
    PRIMARY KEY (bundle, position)
) WITHOUT ROWID;
CREATE TABLE bundle_warnings (
    bundle    INTEGER NOT NULL REFERENCES bundles ON DELETE CASCADE,
    position  INTEGER NOT NULL,
    text      TEXT NOT NULL,
    PRIMARY KEY (bundle, position)
) WITHOUT ROWID;
CREATE TABLE applied (
    id                INTEGER PRIMARY KEY AUTOINCREMENT,
    name              TEXT NOT NULL,
    version           TEXT NOT NULL,
    short_description TEXT NOT NULL,
    long_description  TEXT NOT NULL,
    category          TEXT NOT NULL,
    classification    TEXT NOT NULL,
    removable         INTEGER NOT NULL,
    applied_at        INTEGER NOT NULL,
    UNIQUE (name, version)
);
CREATE TABLE schedules (
    bundle    INTEGER PRIMARY KEY REFERENCES bundles,
    apply_at  INTEGER NOT NULL
);
CREATE TABLE operation (
    only       INTEGER PRIMARY KEY CHECK (only = 1),
    number     INTEGER NOT NULL,
    state      TEXT NOT NULL CHECK (state IN ('none', 'marked', 'running', 'done', 'failed')),
    kind       TEXT NOT NULL,
    name       TEXT NOT NULL,
    version    TEXT NOT NULL,
    started_ms INTEGER NOT NULL,
    bytes      INTEGER NOT NULL,
    total      INTEGER NOT NULL,
    text       TEXT NOT NULL
);
INSERT INTO operation VALUES (1, 0, 'none', '', '', '', 0, 0, 0, '');
)sql",
                                                   R"sql(
ALTER TABLE applied ADD COLUMN state TEXT NOT NULL DEFAULT 'applied'
    CHECK (state IN ('applying', 'applied', 'removing'));
ALTER TABLE applied ADD COLUMN target TEXT NOT NULL DEFAULT '';
ALTER TABLE applied ADD COLUMN kept TEXT NOT NULL DEFAULT '';
CREATE TABLE changes (
    applied   INTEGER NOT NULL REFERENCES applied ON DELETE CASCADE,
    position  INTEGER NOT NULL,
    path      TEXT NOT NULL,
    before    TEXT NOT NULL CHECK (before IN ('nothing', 'file', 'link')),
    mode      INTEGER NOT NULL,
    size      INTEGER NOT NULL,
    link      TEXT NOT NULL,
    PRIMARY KEY (applied, position)
) WITHOUT ROWID;
CREATE INDEX changes_of_path ON changes (path);
CREATE TABLE made_directories (
    target    TEXT NOT NULL,
    path      TEXT NOT NULL,
    PRIMARY KEY (target, path)
) WITHOUT ROWID;
ALTER TABLE schedules ADD COLUMN failure TEXT NOT NULL DEFAULT '';
)sql"};

std::int64_t Pragma(Database& database, const std::string& name) {
    Statement read(database, "PRAGMA " + name);
    read.Step();
    return read.Integer(0);
}

bool IsEmpty(Database& database) {
    Statement count(database, "SELECT count(*) FROM sqlite_schema");
    count.Step();
    return count.Integer(0) == 0;
}

// The version of the tables; 0 for an empty file.
std::int64_t Version(Database& database, std::int64_t newest) {
    const std::int64_t version = Pragma(database, "user_version");
    const bool ours = Pragma(database, "application_id") == applicationId;
    if (!ours && !(version == 0 && IsEmpty(database))) {
        throw StateProblem("the database " + database.File().string() +
                           " was made by another program");
    }
    if (version > newest) {
        throw StateProblem("the database " + database.File().string() + " has version " +
                           std::to_string(version) + ", which is newer than this program's " +
                           std::to_string(newest));
    }
    return version;
}

} // namespace

std::span<const std::string_view> SchemaSteps() {
    return steps;
}

void BringUpToDate(Database& database, std::span<const std::string_view> wanted) {
    const auto newest = static_cast<std::int64_t>(wanted.size());
    {
        const Transaction look(database, Transaction::Kind::Read); // all of it at one moment
        if (Version(database, newest) == newest) {
            return;
        }
    }
    Transaction transaction(database, Transaction::Kind::Write);
    // Another process may have been quicker.
    for (auto i = static_cast<std::size_t>(Version(database, newest)); i < wanted.size(); ++i) {
        database.Execute(std::string(wanted[i]));
    }
    database.Execute("PRAGMA application_id = " + std::to_string(applicationId));
    database.Execute("PRAGMA user_version = " + std::to_string(newest));
    transaction.Commit();
}

} // namespace patchkeeper
