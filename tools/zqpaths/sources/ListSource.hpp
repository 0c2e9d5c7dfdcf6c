#pragma once
// ListSource gives the paths of a list: a file, or standard input, in which each path ends with a
// newline, or each with a NUL. The last one need not.

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/PathSource.hpp"
#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {

class ListSource final : public PathSource {
public:
    /// The list in a file, "-" for standard input. Throws Failure kFailed if it cannot be opened.
    ListSource(const std::string& fileName, bool nulDelimited);

    /// Takes what comes when it comes, from pipes too; memory for the longest path.
    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::optional<double> partGiven() const noexcept override;  // of a file, not of a pipe

    /// How messages call such a list.
    static std::string printableName(const std::string& fileName);

private:
    void requirePath(std::string_view path, std::uint64_t number) const;

    std::string name_;  // for people
    char delimiter_;
    FileDescriptor file_;
    std::uint64_t size_;                       // of the file; 0 if it is none
    std::atomic<std::uint64_t> givenSize_{0};  // bytes
};

}  // namespace zqpaths::program
