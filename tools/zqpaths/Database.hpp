#pragma once
// Database is a connection to an SQLite database, and Statement a statement of it:
//
//     Database database("paths.zqp", Database::Access::kRead);
//     Statement statement(database, "SELECT name FROM fields WHERE field = ?");
//     statement.bind(1, std::int64_t{7});
//     while (statement.step()) use(statement.text(0));
//
// All errors are DatabaseError. What a file holds is not trusted: triggers and views in it are off.
//
// Threads: a database and its statements belong to one thread at a time.

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_file;
struct sqlite3_stmt;

namespace zqpaths {

class DatabaseError : public std::runtime_error {
public:
    enum class Kind {
        kDamaged,  // the file's pages or tables are not as they were written
        kBusy,     // another program holds the file
        kFull,     // there is no more space
        kOther,
    };

    DatabaseError(Kind kind, const std::string& reason) : std::runtime_error(reason), kind_(kind) {}

    Kind kind() const noexcept { return kind_; }

private:
    Kind kind_;
};

class Database {
public:
    /// kRead does not write, save that it takes back what a save that was cut off left behind.
    enum class Access { kRead, kWrite };

    /// How long a call waits for another program before it fails as kBusy. A save of a gigabyte
    /// holds readers up for a second or two.
    static constexpr std::chrono::milliseconds kPatience{5'000};

    /// Asked while a call waits for another program; the call fails as kBusy when it says no.
    using MayWait = bool (*)() noexcept;

    /// Opens a file that is there.
    Database(
        const std::string& path, Access access, MayWait mayWait = []() noexcept { return true; });
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database();

    /// The first bytes of the file as they are, fewer if it is shorter.
    std::string firstBytes(std::size_t count);

    std::uint64_t fileSize();  // in bytes

    /// Runs statements that return nothing of interest.
    void run(const std::string& statements);

    /// The integer that a statement returns.
    std::int64_t number(const std::string& statement);

private:
    friend class Statement;

    sqlite3_file* file();
    static int wait(void* self, int callsBefore) noexcept;
    [[noreturn]] void fail(int code) const;
    void requireDone(int code) const;

    struct Closer {
        void operator()(sqlite3* connection) const noexcept;
    };

    MayWait mayWait_;
    std::chrono::steady_clock::time_point waitingSince_;
    std::unique_ptr<sqlite3, Closer> connection_;
};

class Statement {
public:
    Statement(Database& database, const std::string& text);

    /// Sets parameter `index`, from 1. Bytes must stay where they are until the statement is run.
    void bind(int index, std::int64_t value);
    void bind(int index, std::string_view text);
    void bind(int index, std::span<const std::uint8_t> bytes);

    /// Goes to the next row; false if there is none.
    bool step();

    /// Makes ready for running once more, also after an error.
    void reset();

    /// A column of the row, from 0. Views are valid until the next call of step or reset.
    std::int64_t number(int column) const;
    std::string_view text(int column) const;
    std::span<const std::uint8_t> bytes(int column) const;

private:
    void requireMemory(const void* value) const;

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };

    Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

}  // namespace zqpaths
