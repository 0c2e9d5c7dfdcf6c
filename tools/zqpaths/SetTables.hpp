#pragma once
// The tables of a set file; docs/zqp.md describes them.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/zqpaths/Database.hpp"
#include "tools/zqpaths/StoredArray.hpp"

namespace zqpaths {

inline constexpr std::uint64_t kPartSize = std::uint64_t{1} << 20;  // of all but a field's last

/// An array of a saved object, without its elements.
struct StoredField {
    std::int64_t key;  // of its row
    std::string name;
    ArrayForm form;
};

struct StoredObject {
    std::string className;
    std::vector<StoredField> fields;
};

/// Sets what an empty database needs before its first transaction, and makes the tables in it.
void prepareTables(Database& database);
void makeTables(Database& database);

/// Throws Failure kFailed unless the database is a set of a version that is known here.
void requireSet(Database& database, const std::string& path);

/// Removes all objects, and adds one without its parts.
void clearTables(Database& database);
void addObject(Database& database, const StoredObject& object);

/// Throws DatabaseError kDamaged if there is not one object, or it is not as it was saved.
StoredObject readObject(Database& database);

std::uint64_t partCount(const StoredField& field);
std::uint64_t partSize(const StoredField& field, std::uint64_t number);  // numbers count from 0

class PartWriter {
public:
    explicit PartWriter(Database& database);
    void add(const StoredField& field, std::uint64_t number, std::span<const std::uint8_t> data);

private:
    Statement insertion_;
};

class PartReader {
public:
    explicit PartReader(Database& database);

    /// The bytes of a part, valid until the next call. Throws DatabaseError kDamaged if they are
    /// not there or not those that were saved.
    std::span<const std::uint8_t> read(const StoredField& field, std::uint64_t number);

private:
    Statement selection_;
};

/// What SQLite finds wrong with the pages of the database, a line each.
std::vector<std::string> damagesOfPages(Database& database);

}  // namespace zqpaths
