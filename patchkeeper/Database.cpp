#include "patchkeeper/Database.hpp"

#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

constexpr int primaryCode = 0xFF; // the rest of a result tells more of the same

std::string Reason(int result, sqlite3* handle, std::chrono::milliseconds waited) {
    const int systemError = handle != nullptr ? sqlite3_system_errno(handle) : 0;
    const std::string system =
        systemError != 0 ? ": " + std::generic_category().message(systemError) : "";
    switch (result & primaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return " is busy: another command has kept it for " + std::to_string(waited.count()) +
               " ms";
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return " is damaged: " + std::string(sqlite3_errstr(result & primaryCode));
    case SQLITE_FULL:
        return " cannot be written: there is no room left";
    case SQLITE_READONLY:
        return " cannot be written: it, or its directory, is read-only";
    case SQLITE_CANTOPEN:
        return " cannot be opened" + system;
    case SQLITE_IOERR:
        return " cannot be read or written" + system;
    default:
        return ": " + std::string(handle != nullptr ? sqlite3_errmsg(handle) : "no memory");
    }
}

} // namespace

void Database::Close::operator()(sqlite3* handle) const noexcept {
    sqlite3_close(handle);
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Database::Database(std::filesystem::path file, Access access, std::chrono::milliseconds busyTimeout)
    : file_(std::move(file)), busyTimeout_(busyTimeout) {
    sqlite3* handle = nullptr;
    const int create = access == Access::CreateIfMissing ? SQLITE_OPEN_CREATE : 0;
    const int result = sqlite3_open_v2(
        file_.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | create, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK) {
        Throw(result);
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, static_cast<int>(busyTimeout_.count()));
    Execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = EXTRA; PRAGMA trusted_schema = OFF");
    if (access == Access::CreateIfMissing) {
        RefuseDamaged();
    }
}

void Database::Throw(int result) const {
    throw StateProblem("the database " + file_.string() +
                       Reason(result, handle_.get(), busyTimeout_));
}

void Database::Execute(const std::string& statements) {
    const int result = sqlite3_exec(Handle(), statements.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Throw(result);
    }
}

void Database::RefuseDamaged() {
    Statement check(*this, "PRAGMA quick_check(1)");
    if (!check.Step() || check.Text(0) != "ok") {
        Throw(SQLITE_CORRUPT);
    }
}

Statement::Statement(Database& database, std::string_view text) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(database_.Handle(), text.data(),
                                          static_cast<int>(text.size()), &statement, nullptr);
    statement_.reset(statement);
    if (result != SQLITE_OK) {
        database_.Throw(result);
    }
}

void Statement::BindNext(std::int64_t value) {
    const int result = sqlite3_bind_int64(statement_.get(), ++bound_, value);
    if (result != SQLITE_OK) {
        database_.Throw(result);
    }
}

void Statement::BindNext(std::string_view value) {
    const int result = sqlite3_bind_text64(statement_.get(), ++bound_, value.data(), value.size(),
                                           SQLITE_TRANSIENT, SQLITE_UTF8);
    if (result != SQLITE_OK) {
        database_.Throw(result);
    }
}

bool Statement::Step() {
    const int result = sqlite3_step(statement_.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        database_.Throw(result);
    }
    return result == SQLITE_ROW;
}

void Statement::Run() {
    while (Step()) {
    }
}

std::int64_t Statement::Integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string Statement::Text(int column) const {
    const auto* text = sqlite3_column_text(statement_.get(), column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text), size);
}

Transaction::Transaction(Database& database, Kind kind) : database_(database) {
    database_.Execute(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
    if (open_) {
        sqlite3_exec(database_.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::Commit() {
    database_.Execute("COMMIT");
    open_ = false;
}

} // namespace patchkeeper
