#pragma once
// ListingSource gives the paths in a listing, which a reader of its lines finds in them.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "tools/zqpaths/sources/listings/LineReaders.hpp"

namespace zqpaths::program {

class ListingSource final : public PathSource {
public:
    /// Makes a reader; it is told whether nothing, or an empty line, stands before the first line.
    using ReaderMaker = std::function<LineReader(bool isAfterGap)>;

    /// The listing in a file, "-" for standard input, or a range of it. Throws Failure kFailed if
    /// it cannot be opened.
    ListingSource(const std::string& fileName, const ReaderMaker& makeReader, ByteRange range = {})
        : input_(fileName, '\n', range), reader_(makeReader(input_.isAfterGap())) {}

    /// Throws Failure kFailed, with its place and what was expected, for a line that does not fit.
    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::optional<double> partGiven() const noexcept override { return input_.partRead(); }

private:
    LineInput input_;
    LineReader reader_;
};

}  // namespace zqpaths::program
