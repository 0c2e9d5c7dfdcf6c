#pragma once
// ListSource gives the paths of a list: a file, or standard input, in which each path ends with a
// newline, or each with a NUL. The last one need not.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {

class ListSource final : public PathSource {
public:
    /// The list in a file, "-" for standard input, or a range of it. Throws Failure kFailed if it
    /// cannot be opened.
    ListSource(const std::string& fileName, bool nulDelimited, ByteRange range = {});

    /// Takes what comes when it comes, from pipes too; memory for the longest path.
    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::optional<double> partGiven() const noexcept override { return input_.partRead(); }

private:
    LineInput input_;
    const char* unit_;  // what messages call one of its lines
};

}  // namespace zqpaths::program
