#pragma once
// SetParts are the rows of a set of sets with what comes before each of them, so that a number, a
// segment, or a place among the gone paths is found in it by a binary search. A set in one file has
// one part.
//
//     row         0       1       2
//     segments    3       1       2          before: 0  3  4
//     paths       300     20      150        first numbers: 1  301  321
//
//     const SetParts parts(rows);
//     parts.ofNumber(305);  // 1
//     parts.ofSegment(4);   // 2
//
// Threads: never changes once it is made; any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "compressedpaths/store/Lazy.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

namespace zqpaths {

struct SetPart {
    ManifestRow row;
    std::uint64_t firstNumber = 1;
    std::uint64_t segmentsBefore = 0;
    std::uint64_t goneBefore = 0;
    std::uint64_t presentBefore = 0;  // neither gone nor missing
    bool isMissing = false;

    std::uint64_t lastNumber() const noexcept { return firstNumber + row.pathCount - 1; }
    std::uint64_t goneCount() const noexcept { return isMissing ? 0 : row.goneCount; }
    std::uint64_t presentCount() const noexcept {
        return isMissing ? 0 : row.pathCount - row.goneCount;
    }
};

class SetParts {
public:
    explicit SetParts(const std::vector<ManifestRow>& rows);

    /// Has the paths of some parts counted neither as gone nor as present. O(parts).
    void markMissing(const std::vector<std::size_t>& parts);

    std::size_t count() const noexcept { return parts_.size(); }
    const SetPart& operator[](std::size_t part) const noexcept { return parts_[part]; }

    std::uint64_t pathCount() const noexcept { return end_.firstNumber - 1; }
    std::uint64_t segmentCount() const noexcept { return end_.segmentsBefore; }
    std::uint64_t goneCount() const noexcept { return end_.goneBefore; }
    std::uint64_t presentCount() const noexcept { return end_.presentBefore; }

    /// The part that has a number, a segment, or the path at a place among those that are gone, or
    /// present; which there is. O(log parts).
    std::size_t ofNumber(std::uint64_t number) const noexcept;
    std::size_t ofSegment(std::uint64_t segment) const noexcept;
    std::size_t ofGone(std::uint64_t place) const noexcept;
    std::size_t ofPresent(std::uint64_t place) const noexcept;

    /// The parts of a file, in their order. The first call takes O(parts log parts).
    std::vector<std::size_t> ofFile(std::size_t file) const;

private:
    void addUp();

    std::vector<SetPart> parts_;
    SetPart end_{};                                           // what comes before the end
    compressedpaths::Lazy<std::vector<std::size_t>> byFile_;  // parts, ordered by their file
};

}  // namespace zqpaths
