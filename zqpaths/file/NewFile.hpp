#pragma once
// NewFile is a file of ours that is made where there was none, or takes the place of another, whole
// or not at all:
//
//     NewFile file = NewFile::created("usr.zqp");
//     file.commit([&](SystemFile& written) {
//         written.writeAt(0, bytes);
//         written.sync();
//     });
//
// What is not committed is gone with it.
//
// Threads: belongs to one thread at a time. A child of the process that made it leaves it alone.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "zqpaths/file/PendingFile.hpp"
#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths {

class NewFile {
public:
    /// Throws Error: kExists if there is anything of this name, kNotFound, kNotASet, kHeld,
    /// kNoSpace, kSystem.
    static NewFile created(const std::string& path);

    /// In the place of a set, whatever its state, or a set of sets, if there is one: nobody else
    /// writes that meanwhile, and its rights are kept. Throws Error kNotASet for any other file,
    /// else as created().
    static NewFile replaced(const std::string& path);

    SystemFile& file() noexcept { return pending_->file(); }

    /// Calls `finish`, which writes what is left and syncs, and gives the file its name. Once.
    /// Throws Error kExists if another has made the file meanwhile, kNoSpace, kSystem, and what
    /// `finish` throws; what was there is then as it was.
    void commit(const std::function<void(SystemFile& file)>& finish);

private:
    NewFile(std::string path, const std::string& name, bool isReplacing,
            std::optional<SystemFile> there);

    void takeRights();

    std::string path_;
    bool isReplacing_;
    std::unique_ptr<PendingFile> pending_;
    std::optional<SystemFile> there_;  // what is replaced, locked
};

}  // namespace zqpaths
