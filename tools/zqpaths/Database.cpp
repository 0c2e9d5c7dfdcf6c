#include "tools/zqpaths/Database.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <system_error>
#include <thread>

namespace zqpaths {
namespace {

constexpr std::chrono::milliseconds kPause{20};  // between two tries to get hold of a file

DatabaseError::Kind kindOf(int code) noexcept {
    switch (code & 0xFF) {  // the primary code; the bits above it say more
        case SQLITE_ERROR:  // a table or column that a set has is not there
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_FORMAT:
        case SQLITE_MISMATCH:
        case SQLITE_CONSTRAINT:
        case SQLITE_TOOBIG:
            return DatabaseError::Kind::kDamaged;
        case SQLITE_BUSY:
            return DatabaseError::Kind::kBusy;
        case SQLITE_FULL:
            return DatabaseError::Kind::kFull;
        default:
            break;
    }
    // A page that ends before its size was cut off; other reads fail for reasons of the device.
    return code == SQLITE_IOERR_SHORT_READ ? DatabaseError::Kind::kDamaged
                                           : DatabaseError::Kind::kOther;
}

/// SQLite gives a meaning to some names, as ":memory:"; it has none for those that begin like this.
std::string plainName(const std::string& path) {
    return path.starts_with('/') ? path : "./" + path;
}

/// SQLite only says that it cannot open files whose full path is long.
void requireShortPath(const std::string& path) {
    std::error_code error;
    const auto fullPath = std::filesystem::canonical(path, error);
    if (error) throw DatabaseError(DatabaseError::Kind::kOther, error.message());
    constexpr std::string_view kJournalEnd = "-journal";
    const std::size_t limit =
        static_cast<std::size_t>(sqlite3_vfs_find(nullptr)->mxPathname) - kJournalEnd.size();
    if (fullPath.native().size() > limit)
        throw DatabaseError(DatabaseError::Kind::kOther,
                            "SQLite takes no full path of more than " + std::to_string(limit) +
                                " bytes, and this one has " +
                                std::to_string(fullPath.native().size()));
}

/// The system's error that made the last call fail, 0 if it is not known.
int systemErrorOf(sqlite3* connection) {
    int error = sqlite3_system_errno(connection);
    // When the changes have been taken back since, only the file still knows.
    if (error == 0) sqlite3_file_control(connection, "main", SQLITE_FCNTL_LAST_ERRNO, &error);
    return error;
}

std::string reasonOf(int code, sqlite3* connection) {
    if (code == SQLITE_READONLY_ROLLBACK)
        return "a save was cut off, and only who may write the file can take it back";
    if ((code & 0xFF) == SQLITE_FULL) return "there is no space left on the device";
    const bool isOfSystem = (code & 0xFF) == SQLITE_IOERR || (code & 0xFF) == SQLITE_CANTOPEN;
    const int error = isOfSystem ? systemErrorOf(connection) : 0;
    return error != 0 ? std::generic_category().message(error) : sqlite3_errmsg(connection);
}

}  // namespace

void Database::Closer::operator()(sqlite3* connection) const noexcept {
    sqlite3_close_v2(connection);
}

Database::Database(const std::string& path, Access access, MayWait mayWait) : mayWait_(mayWait) {
    requireShortPath(path);
    // Readers ask for writing, too: they have to take back a save that was cut off. Where the file
    // must not be written, it is opened for reading all the same.
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(plainName(path).c_str(), &connection,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(connection);
    requireDone(code);
    sqlite3_extended_result_codes(connection, 1);
    sqlite3_busy_handler(connection, &Database::wait, this);
    for (const int option :
         {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_TRIGGER,
          SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_DQS_DDL, SQLITE_DBCONFIG_DQS_DML})
        requireDone(sqlite3_db_config(connection, option, 0, nullptr));
    run("PRAGMA cell_size_check = ON");
    if (access == Access::kRead) run("PRAGMA query_only = ON");
}

Database::~Database() = default;

sqlite3_file* Database::file() {
    // The connection's own handle: to open and close the file once more would let go of the locks
    // that this process has on it.
    sqlite3_file* file = nullptr;
    requireDone(sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file));
    return file;
}

std::string Database::firstBytes(std::size_t count) {
    std::string bytes(std::min<std::uint64_t>(count, fileSize()), '\0');
    requireDone(file()->pMethods->xRead(file(), bytes.data(), static_cast<int>(bytes.size()), 0));
    return bytes;
}

std::uint64_t Database::fileSize() {
    sqlite3_int64 size = 0;
    requireDone(file()->pMethods->xFileSize(file(), &size));
    return static_cast<std::uint64_t>(size);
}

void Database::run(const std::string& statements) {
    requireDone(sqlite3_exec(connection_.get(), statements.c_str(), nullptr, nullptr, nullptr));
}

std::int64_t Database::number(const std::string& statement) {
    Statement query(*this, statement);
    if (!query.step()) throw DatabaseError(DatabaseError::Kind::kDamaged, "a value is missing");
    return query.number(0);
}

int Database::wait(void* self, int callsBefore) noexcept {
    auto& database = *static_cast<Database*>(self);
    const auto now = std::chrono::steady_clock::now();
    if (callsBefore == 0) database.waitingSince_ = now;
    if (now - database.waitingSince_ >= kPatience || !database.mayWait_()) return 0;
    std::this_thread::sleep_for(kPause);
    return 1;
}

void Database::fail(int code) const {
    if ((code & 0xFF) == SQLITE_NOMEM) throw std::bad_alloc();
    throw DatabaseError(kindOf(code), reasonOf(code, connection_.get()));
}

void Database::requireDone(int code) const {
    if (code != SQLITE_OK) fail(code);
}

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Statement::Statement(Database& database, const std::string& text) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    database.requireDone(
        sqlite3_prepare_v2(database.connection_.get(), text.c_str(), -1, &statement, nullptr));
    statement_.reset(statement);
}

void Statement::bind(int index, std::int64_t value) {
    database_.requireDone(sqlite3_bind_int64(statement_.get(), index, value));
}

void Statement::bind(int index, std::string_view text) {
    database_.requireDone(sqlite3_bind_text64(statement_.get(), index, text.data(), text.size(),
                                              SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bind(int index, std::span<const std::uint8_t> bytes) {
    database_.requireDone(
        sqlite3_bind_blob64(statement_.get(), index, bytes.data(), bytes.size(), SQLITE_STATIC));
}

bool Statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) database_.fail(code);
    return false;
}

void Statement::reset() {
    sqlite3_reset(statement_.get());  // repeats the error of the last step, which was thrown
}

void Statement::requireMemory(const void* value) const {
    // No value is a value, too, but not when memory has run out.
    if (value == nullptr && sqlite3_errcode(sqlite3_db_handle(statement_.get())) == SQLITE_NOMEM)
        throw std::bad_alloc();
}

std::int64_t Statement::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string_view Statement::text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    requireMemory(text);
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

std::span<const std::uint8_t> Statement::bytes(int column) const {
    const auto* bytes =
        static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_.get(), column));
    requireMemory(bytes);
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

}  // namespace zqpaths
