#include "tools/zqpaths/SetFile.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "tools/zqpaths/Database.hpp"
#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/FileHolder.hpp"
#include "tools/zqpaths/NewFile.hpp"
#include "tools/zqpaths/SetTables.hpp"

namespace zqpaths {
namespace {

/// Whether there is a file, which is then one that can hold a set. Throws Failure kFailed.
bool isThere(const std::string& path) {
    struct stat file {};
    if (stat(path.c_str(), &file) != 0) {
        if (errno == ENOENT) return false;
        throw systemFailureAt(path, errno);
    }
    if (S_ISDIR(file.st_mode)) throw systemFailureAt(path, EISDIR);
    if (!S_ISREG(file.st_mode)) throw failureAt(path, "is no regular file");
    return true;
}

void requireThere(const std::string& path) {
    if (!isThere(path)) throw systemFailureAt(path, ENOENT);
}

/// The result of `work`, with its errors as those of the program. By the time that an error gets
/// here, the database that `work` had open is closed.
template <class Work>
auto inTermsOfProgram(const std::string& path, const Work& work) {
    try {
        return work();
    } catch (const DatabaseError& error) {
        switch (error.kind()) {
            case DatabaseError::Kind::kDamaged:
                throw failureAt(path, error.what(), ExitStatus::kDamaged);
            case DatabaseError::Kind::kBusy:
                throw failureAt(path, "is held by " + holderOf(path));
            default:
                throw failureAt(path, error.what());
        }
    }
}

// --- Writing.

/// The fields of a structure in their order. Throws Failure kFailed if one cannot be stored.
StoredObject describeObject(const std::string& className, const kxArray* structure) {
    StoredObject object{className, {}};
    for (const std::string& name : kxGetFieldNames(structure)) {
        const std::optional<ArrayForm> form = formOf(kxGetField(structure, 0, name));
        if (!form)
            throw Failure(ExitStatus::kFailed, "field " + name +
                                                   " is neither a row of characters nor a column "
                                                   "of uint8 or double and cannot be saved");
        const auto key = static_cast<std::int64_t>(object.fields.size()) + 1;
        object.fields.push_back({key, name, *form});
    }
    return object;
}

/// What is to be saved.
struct Saving {
    StoredObject object;
    const kxArray* structure;
};

Saving describeSaving(const std::string& className, const korvex::Array& fields) {
    return {describeObject(className, fields.get()), fields.get()};
}

/// Within a transaction. Throws Failure if a signal came.
void write(Database& database, const Saving& saving) {
    addObject(database, saving.object);
    PartWriter parts(database);
    for (const StoredField& field : saving.object.fields) {
        const kxArray* const array = kxGetField(saving.structure, 0, field.name);
        for (std::uint64_t number = 0; number < partCount(field); ++number) {
            parts.add(field, number,
                      storedBytes(array, number * kPartSize, partSize(field, number)));
            DeferredSignals::throwIfOneCame();
        }
    }
}

/// Returns false if there is a file of that name meanwhile.
bool makeFile(const std::string& path, const Saving& saving) {
    NewFile file(path);
    {
        // Nobody else sees the file, and nobody needs what was in it before: no journal.
        Database database(file.temporaryPath(), Database::Access::kWrite);
        prepareTables(database);
        database.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = FULL; BEGIN IMMEDIATE");
        makeTables(database);
        write(database, saving);
        database.run("COMMIT");
    }
    DeferredSignals::throwIfOneCame();
    return file.publish();
}

bool mayWait() noexcept {
    return !DeferredSignals::hasOneCome();
}

/// A set in which a transaction has begun that writes; other writers wait.
std::unique_ptr<Database> openForWriting(const std::string& path) {
    auto database = std::make_unique<Database>(path, Database::Access::kWrite, mayWait);
    requireSet(*database, path);
    // A rollback journal, not a write-ahead log: a set is one file, which can be copied whenever
    // nobody writes it and read from media that cannot be written; a log stands in files beside it,
    // which even readers have to make. Readers have the file only while they load it. They read on
    // while the new pages gather in memory (no spilling, which would shut them out early), and wait
    // while the pages are written.
    database->run("PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
    database->run("PRAGMA cache_spill = OFF; BEGIN IMMEDIATE");
    return database;
}

/// Without its end, closing the database takes all back.
void replaceContent(Database& database, const Saving& saving) {
    clearTables(database);
    write(database, saving);
    database.run("COMMIT");
}

/// Runs `work`, which writes, and then lets signals do what they do.
template <class Work>
void saveInTermsOfProgram(const std::string& path, const Work& work) {
    const DeferredSignals signals;
    try {
        inTermsOfProgram(path, work);
    } catch (const Failure&) {
        DeferredSignals::throwIfOneCame();  // a wait that a signal ended fails, too
        throw;
    }
}

// --- Reading.

/// Calls `onPart(field index, offset, bytes)` or `onDamage(damage)` for each part of the fields.
template <class OnPart, class OnDamage>
void readParts(Database& database, const std::vector<StoredField>& fields, const OnPart& onPart,
               const OnDamage& onDamage) {
    PartReader parts(database);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        for (std::uint64_t number = 0; number < partCount(fields[i]); ++number) {
            const std::uint64_t offset = number * kPartSize;
            try {
                onPart(i, offset, parts.read(fields[i], number));
            } catch (const DatabaseError& error) {
                if (error.kind() != DatabaseError::Kind::kDamaged) throw;
                onDamage(SetFile::Damage{fields[i].name, offset, error.what()});
            }
        }
    }
}

SetFile::Content readContent(Database& database, const std::string& path) {
    StoredObject object = readObject(database);
    std::vector<std::string> names;
    std::vector<korvex::Array> arrays;
    for (const StoredField& field : object.fields) {
        names.push_back(field.name);
        arrays.push_back(makeArray(field.form));
    }
    readParts(
        database, object.fields,
        [&arrays](std::size_t index, std::uint64_t offset, std::span<const std::uint8_t> bytes) {
            restoreBytes(bytes, offset, arrays[index].get());
        },
        [&path](const SetFile::Damage& damage) {
            throw failureAt(path, SetFile::describe(damage), ExitStatus::kDamaged);
        });
    korvex::Array structure(kxCreateStructure({1, 1}, names));
    for (std::size_t i = 0; i < names.size(); ++i)
        kxReplaceField(structure.get(), 0, names[i], arrays[i].release());
    return {std::move(object.className), std::move(structure)};
}

void findDamages(Database& database, std::vector<SetFile::Damage>& damages) {
    for (std::string& reason : damagesOfPages(database))
        damages.push_back({"", 0, std::move(reason)});
    const StoredObject object = readObject(database);
    readParts(
        database, object.fields, [](auto...) {},
        [&damages](SetFile::Damage damage) { damages.push_back(std::move(damage)); });
}

}  // namespace

void SetFile::save(const std::string& path, const std::string& className,
                   const korvex::Array& fields, Existing existing) {
    const Saving saving = describeSaving(className, fields);
    saveInTermsOfProgram(path, [&] {
        if (!isThere(path) && makeFile(path, saving)) return;
        if (existing == Existing::kRefuse) throw failureAt(path, kIsThere);
        replaceContent(*openForWriting(path), saving);
    });
}

SetFile::Content SetFile::load(const std::string& path) {
    requireThere(path);
    return inTermsOfProgram(path, [&path] {
        Database database(path, Database::Access::kRead, mayWait);
        requireSet(database, path);
        database.run("BEGIN");  // all is read as it was at one moment
        return readContent(database, path);
    });
}

std::vector<SetFile::Damage> SetFile::check(const std::string& path) {
    requireThere(path);
    return inTermsOfProgram(path, [&path] {
        std::vector<Damage> damages;
        Database database(path, Database::Access::kRead, mayWait);
        try {
            requireSet(database, path);
            database.run("BEGIN");
            findDamages(database, damages);
        } catch (const DatabaseError& error) {
            if (error.kind() != DatabaseError::Kind::kDamaged) throw;
            damages.push_back({"", 0, error.what()});
        }
        return damages;
    });
}

std::string SetFile::describe(const Damage& damage) {
    if (damage.field.empty()) return damage.reason;
    return "field " + damage.field + ", byte " + std::to_string(damage.offset) + ": " +
           damage.reason;
}

SetFile::Update::Update(std::string path) : path_(std::move(path)) {
    requireThere(path_);
    database_ = inTermsOfProgram(path_, [this] { return openForWriting(path_); });
}

SetFile::Update::~Update() = default;

SetFile::Content SetFile::Update::load() {
    return inTermsOfProgram(path_, [this] { return readContent(*database_, path_); });
}

void SetFile::Update::save(const std::string& className, const korvex::Array& fields) {
    const Saving saving = describeSaving(className, fields);
    saveInTermsOfProgram(path_, [&] {
        const std::unique_ptr<Database> database = std::move(database_);
        replaceContent(*database, saving);
    });
}

}  // namespace zqpaths
