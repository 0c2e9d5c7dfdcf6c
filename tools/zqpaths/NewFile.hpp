#pragma once
// NewFile is a file that appears under its name only when it is whole. Until then it has another
// name in the same directory, and it is gone if it is not published:
//
//     NewFile file("paths.zqp");
//     write(file.temporaryPath());
//     if (!file.publish()) ...  // somebody else has made a file of that name meanwhile
//
// Whoever can be ended by a signal needs DeferredSignals around it.
//
// Threads: a file belongs to one thread at a time; several may make the same one.

#include <string>

namespace zqpaths {

class NewFile {
public:
    /// Makes an empty file. Throws Failure kFailed.
    explicit NewFile(std::string path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    const std::string& temporaryPath() const noexcept { return temporaryPath_; }

    /// Gives the file its name, unless there is one of that name: returns false then. Throws
    /// Failure kFailed.
    bool publish();

    /// Gives the file its name, in the place of one that may have it. Throws Failure kFailed.
    void publishInPlace();

private:
    void noteInDirectory();

    std::string path_;
    std::string temporaryPath_;  // empty when it is published
};

}  // namespace zqpaths
