#pragma once
// SetFileChange is a set file that is being written: its new content, and how that takes the place
// of the old one. SetFileWriter is its door.
//
//     const std::unique_ptr<SetFileChange> change = appendedSetFile("usr.zqp");
//     change->body().append(segment);
//     change->commit();
//
// A change that is destroyed without a commit leaves the file as it was.
//
// Threads: belongs to one thread at a time. A child of the process that made it leaves it alone.

#include <cstdint>
#include <memory>
#include <string>

#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/file/SetFileBody.hpp"

namespace zqpaths {

class SetFileChange {
public:
    SetFileChange(const SetFileChange&) = delete;
    SetFileChange& operator=(const SetFileChange&) = delete;
    virtual ~SetFileChange() = default;

    virtual SetFileBody& body() noexcept = 0;
    virtual const std::shared_ptr<const SetFile>& committed() const noexcept = 0;

    /// Paths of the set whose numbers are below those of the body.
    virtual std::uint64_t pathsBefore() const noexcept { return 0; }

    /// Once. Throws Error as SetFileWriter::commit does.
    virtual void commit() = 0;

protected:
    SetFileChange() = default;
};

// Throw Error as the constructor of SetFileWriter does.
std::unique_ptr<SetFileChange> createdSetFile(const std::string& path);
std::unique_ptr<SetFileChange> replacedSetFile(const std::string& path);
std::unique_ptr<SetFileChange> appendedSetFile(const std::string& path);

/// A new set file for a set of sets, which has it from the commit on, after all others; null if the
/// file is none.
std::unique_ptr<SetFileChange> addedToManifest(const std::string& path);

/// Writes the end and the header of a new file whose body is complete, and syncs it. `flags` are
/// those of the header that readers may ignore. Throws Error kNoSpace, kSystem.
void finishNewFile(SystemFile& file, SetFileBody& body, std::uint32_t flags);

}  // namespace zqpaths
