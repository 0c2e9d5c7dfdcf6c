#pragma once
// SetFile is a saved set on disk: a database that holds, for each saved object, its class name and
// its fields, each field as an array in parts with a checksum a part. docs/zqp.md describes it.
//
//     SetFile::save("paths.zqp", kPathSetClass, set.fields(), SetFile::Existing::kRefuse);
//     SetFile::Content content = SetFile::load("paths.zqp");
//
// Who saves what it makes of the old content holds the file meanwhile, so that no other save gets
// lost:
//
//     SetFile::Update update("paths.zqp");  // other writers wait from here on
//     SetFile::Content content = update.load();
//     update.save(kPathSetClass, set.fields());
//
// Saving replaces what is there in one transaction: after a crash at any moment the file holds the
// old object or the new one. Readers read on meanwhile. A file that is new appears when it is
// whole.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/runtime/Arrays.hpp"

namespace zqpaths {

class Database;

class SetFile {
public:
    enum class Existing { kRefuse, kReplace };

    /// What is said of a file that must not be replaced.
    static constexpr const char* kIsThere = "is there already; --force replaces it";

    struct Content {
        std::string className;
        korvex::Array fields;  // a structure of 1 by 1
    };

    /// What is wrong with a part of a file.
    struct Damage {
        std::string field;     // empty for what is beside the fields
        std::uint64_t offset;  // of the part in the field's bytes
        std::string reason;
    };

    /// Saves a structure of character rows, uint8 columns and double columns. Throws Failure:
    /// kFailed if the file is there and must not be replaced, is no set, cannot be written or is
    /// held by another program, which is then named, or if a field is another array; kDamaged if
    /// the file's own pages are damaged. The old content stays then.
    ///
    /// SIGINT, SIGTERM and SIGHUP wait until the new content is whole or the old one back.
    static void save(const std::string& path, const std::string& className,
                     const korvex::Array& fields, Existing existing);

    /// Throws Failure: kFailed if the file cannot be read or is no set, kDamaged with field and
    /// offset of the first damage.
    static Content load(const std::string& path);

    /// All damages of a file that can be opened. Throws Failure as load does, save for damages.
    static std::vector<Damage> check(const std::string& path);

    /// "field PathTree, byte 1048576: the checksum differs".
    static std::string describe(const Damage& damage);

    class Update;
};

/// Throws Failure as the calls of SetFile do. The file is let go when it is saved or the update is
/// destroyed.
class SetFile::Update {
public:
    explicit Update(std::string path);
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;
    ~Update();

    Content load();

    /// Once; the update is over then, also if it fails.
    void save(const std::string& className, const korvex::Array& fields);

private:
    std::string path_;
    std::unique_ptr<Database> database_;
};

}  // namespace zqpaths
