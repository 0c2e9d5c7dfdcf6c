#pragma once
// ListingSource gives the paths in a listing, which a reader of its lines finds in them.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "tools/zqpaths/sources/listings/LineReaders.hpp"

namespace zqpaths::program {

class ListingSource final : public PathSource {
public:
    /// The listing in a file, "-" for standard input. Throws Failure kFailed if it cannot be
    /// opened.
    ListingSource(const std::string& fileName, LineReader reader)
        : input_(fileName, '\n'), reader_(std::move(reader)) {}

    /// Throws Failure kFailed, with its number and what was expected, for a line that does not fit.
    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::optional<double> partGiven() const noexcept override { return input_.partRead(); }

private:
    LineInput input_;
    LineReader reader_;
};

}  // namespace zqpaths::program
