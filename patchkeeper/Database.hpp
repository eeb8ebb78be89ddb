#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace patchkeeper {

// An SQLite database in a file. Writes survive a loss of power once a transaction is committed: the
// rollback journal (not the write-ahead log) is used, because a file that is only read must not
// need a writable directory. All functions throw StateProblem with a sentence that names the file.
// One thread at a time; the object is not copied.
class Database {
public:
    enum class Access {
        Existing,       // the file must be there; written to only when the system allows it
        CreateIfMissing // and checked for damage
    };

    // `busyTimeout` bounds how long a statement waits for other processes.
    Database(std::filesystem::path file, Access access, std::chrono::milliseconds busyTimeout);

    // One or several statements without parameters.
    void Execute(const std::string& statements);

    const std::filesystem::path& File() const { return file_; }
    sqlite3* Handle() const { return handle_.get(); }

    // The exception for the error that the last call on the handle reported.
    [[noreturn]] void Throw(int result) const;

private:
    struct Close {
        void operator()(sqlite3* handle) const noexcept;
    };

    void RefuseDamaged();

    std::filesystem::path file_;
    std::chrono::milliseconds busyTimeout_;
    std::unique_ptr<sqlite3, Close> handle_;
};

// One statement with `?` parameters, bound in order. It refers to the database, which outlives it.
class Statement {
public:
    Statement(Database& database, std::string_view text);

    template <typename... Values>
    Statement& Bind(const Values&... values) {
        (BindNext(values), ...);
        return *this;
    }

    // The next row; false when there is none.
    bool Step();
    // For statements without rows.
    void Run();

    // Columns of the current row, counted from 0.
    std::int64_t Integer(int column) const;
    std::string Text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };

    void BindNext(std::int64_t value);
    void BindNext(std::string_view value);

    Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    int bound_ = 0;
};

// Everything between the construction and Commit() happens as a whole or not at all.
class Transaction {
public:
    enum class Kind {
        Read, // all reads see the same state
        Write // keeps other writers out from the start
    };

    Transaction(Database& database, Kind kind);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    void Commit();

private:
    Database& database_;
    bool open_ = true;
};

} // namespace patchkeeper
