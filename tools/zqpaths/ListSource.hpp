#pragma once
// ListSource gives the paths of a list: a file, or standard input, in which each path ends with a
// newline, or each with a NUL. The last one need not.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "tools/zqpaths/FileDescriptor.hpp"
#include "tools/zqpaths/PathSource.hpp"

namespace zqpaths {

class ListSource final : public PathSource {
public:
    /// The list in a file, "-" for standard input. What can be read only once is copied to a
    /// temporary file. Throws Failure kFailed if the list cannot be read or copied.
    ListSource(const std::string& fileName, bool nulDelimited);

    /// Reads the list as it is by then: if it has changed, other paths than before.
    void visit(const std::function<void(std::string_view path)>& visitor) override;
    std::uint64_t unreadableCount() const noexcept override { return 0; }

private:
    std::size_t readAt(std::uint64_t offset, std::span<char> bytes) const;
    void requirePath(std::string_view path, std::uint64_t number) const;

    std::string name_;  // for people
    char delimiter_;
    FileDescriptor file_;
};

}  // namespace zqpaths
