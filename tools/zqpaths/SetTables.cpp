#include "tools/zqpaths/SetTables.hpp"

#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <string_view>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

// These stand in saved files.
constexpr std::string_view kMagic{"SQLite format 3\0", 16};  // at the begin of every database
constexpr std::int64_t kApplicationId = 0x7A71'7073;         // "zqps"
constexpr std::int64_t kVersion = 1;
constexpr std::int64_t kObjectKey = 1;
constexpr const char* kTables = R"(
CREATE TABLE objects (
    object INTEGER PRIMARY KEY,
    class TEXT NOT NULL,
    checksum INTEGER NOT NULL
);
CREATE TABLE fields (
    field INTEGER PRIMARY KEY,
    object INTEGER NOT NULL REFERENCES objects,
    name TEXT NOT NULL,
    class TEXT NOT NULL,
    row_count INTEGER NOT NULL,
    column_count INTEGER NOT NULL
);
CREATE TABLE parts (
    field INTEGER NOT NULL REFERENCES fields,
    number INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    data BLOB NOT NULL,
    PRIMARY KEY (field, number)
) WITHOUT ROWID;
)";

constexpr int kMostPageDamages = 100;

[[noreturn]] void refuseAsDamaged(const std::string& reason) {
    throw DatabaseError(DatabaseError::Kind::kDamaged, reason);
}

/// As integers of the database are: with a sign.
std::int64_t checksumOf(const void* bytes, std::size_t count) {
    return std::bit_cast<std::int64_t>(std::uint64_t{XXH3_64bits(bytes, count)});
}

/// The checksum of all about an object that is not in its parts, in the form in which the sqlite3
/// shell prints it.
std::int64_t checksumOf(const StoredObject& object) {
    std::string lines = object.className + '\n';
    for (const auto& [key, name, form] : object.fields)
        lines += name + '|' + form.className + '|' + std::to_string(form.rowCount) + '|' +
                 std::to_string(form.columnCount) + '\n';
    return checksumOf(lines.data(), lines.size());
}

std::vector<StoredField> readFields(Database& database) {
    const std::uint64_t fileSize = database.fileSize();
    Statement statement(database,
                        "SELECT field, name, class, row_count, column_count FROM fields "
                        "ORDER BY field");
    std::vector<StoredField> fields;
    while (statement.step()) {
        StoredField field{
            statement.number(0),
            std::string(statement.text(1)),
            {std::string(statement.text(2)), static_cast<std::uint64_t>(statement.number(3)),
             static_cast<std::uint64_t>(statement.number(4))}};
        if (!field.form.isStorable(fileSize))
            refuseAsDamaged("field " + field.name + " cannot be " +
                            std::to_string(field.form.rowCount) + " by " +
                            std::to_string(field.form.columnCount) + " of " + field.form.className);
        fields.push_back(std::move(field));
    }
    return fields;
}

}  // namespace

void prepareTables(Database& database) {
    // Pages that a smaller set no longer needs are given back.
    database.run("PRAGMA page_size = 65536; PRAGMA auto_vacuum = FULL");
}

void makeTables(Database& database) {
    database.run(kTables);
    database.run("PRAGMA application_id = " + std::to_string(kApplicationId));
    database.run("PRAGMA user_version = " + std::to_string(kVersion));
}

void requireSet(Database& database, const std::string& path) {
    const auto refuse = [&path](const std::string& reason) { throw failureAt(path, reason); };
    if (database.firstBytes(kMagic.size()) != kMagic) refuse("is no saved set");
    if (database.number("PRAGMA application_id") != kApplicationId)
        refuse("is a database of another program");
    const std::int64_t version = database.number("PRAGMA user_version");
    if (version != kVersion)
        refuse("is a set of version " + std::to_string(version) + ", and only version " +
               std::to_string(kVersion) + " is known here");
}

void clearTables(Database& database) {
    database.run("DELETE FROM parts; DELETE FROM fields; DELETE FROM objects");
}

void addObject(Database& database, const StoredObject& object) {
    Statement toObjects(database, "INSERT INTO objects VALUES (?, ?, ?)");
    toObjects.bind(1, kObjectKey);
    toObjects.bind(2, object.className);
    toObjects.bind(3, checksumOf(object));
    toObjects.step();
    Statement toFields(database, "INSERT INTO fields VALUES (?, ?, ?, ?, ?, ?)");
    for (const StoredField& field : object.fields) {
        toFields.bind(1, field.key);
        toFields.bind(2, kObjectKey);
        toFields.bind(3, field.name);
        toFields.bind(4, field.form.className);
        toFields.bind(5, static_cast<std::int64_t>(field.form.rowCount));
        toFields.bind(6, static_cast<std::int64_t>(field.form.columnCount));
        toFields.step();
        toFields.reset();
    }
}

StoredObject readObject(Database& database) {
    // SQLite takes what is missing of the last page for zeros.
    const auto expectedSize = static_cast<std::uint64_t>(database.number("PRAGMA page_count") *
                                                         database.number("PRAGMA page_size"));
    if (database.fileSize() < expectedSize)
        refuseAsDamaged("the file has " + std::to_string(database.fileSize()) +
                        " bytes instead of " + std::to_string(expectedSize));
    Statement statement(database, "SELECT class, checksum FROM objects");
    if (!statement.step()) refuseAsDamaged("there is no object in it");
    StoredObject object{std::string(statement.text(0)), {}};
    const std::int64_t checksum = statement.number(1);
    if (statement.step()) refuseAsDamaged("there is more than one object in it");
    object.fields = readFields(database);
    if (checksumOf(object) != checksum)
        refuseAsDamaged("the checksum of the class name and the fields' forms differs");
    return object;
}

std::uint64_t partCount(const StoredField& field) {
    return (field.form.byteCount() + kPartSize - 1) / kPartSize;
}

std::uint64_t partSize(const StoredField& field, std::uint64_t number) {
    return std::min(kPartSize, field.form.byteCount() - number * kPartSize);
}

PartWriter::PartWriter(Database& database)
    : insertion_(database, "INSERT INTO parts VALUES (?, ?, ?, ?)") {}

void PartWriter::add(const StoredField& field, std::uint64_t number,
                     std::span<const std::uint8_t> data) {
    insertion_.bind(1, field.key);
    insertion_.bind(2, static_cast<std::int64_t>(number));
    insertion_.bind(3, checksumOf(data.data(), data.size()));
    insertion_.bind(4, data);
    insertion_.step();
    insertion_.reset();
}

PartReader::PartReader(Database& database)
    : selection_(database, "SELECT checksum, data FROM parts WHERE field = ? AND number = ?") {}

std::span<const std::uint8_t> PartReader::read(const StoredField& field, std::uint64_t number) {
    selection_.reset();
    selection_.bind(1, field.key);
    selection_.bind(2, static_cast<std::int64_t>(number));
    if (!selection_.step()) refuseAsDamaged("the part is missing");
    const std::int64_t checksum = selection_.number(0);
    const std::span<const std::uint8_t> data = selection_.bytes(1);
    const std::uint64_t size = partSize(field, number);
    if (data.size() != size)
        refuseAsDamaged("the part has " + std::to_string(data.size()) + " bytes instead of " +
                        std::to_string(size));
    if (checksumOf(data.data(), data.size()) != checksum) refuseAsDamaged("the checksum differs");
    return data;
}

std::vector<std::string> damagesOfPages(Database& database) {
    Statement statement(database,
                        "PRAGMA integrity_check(" + std::to_string(kMostPageDamages) + ")");
    std::vector<std::string> damages;
    while (statement.step())
        if (statement.text(0) != "ok") damages.emplace_back(statement.text(0));
    return damages;
}

}  // namespace zqpaths
