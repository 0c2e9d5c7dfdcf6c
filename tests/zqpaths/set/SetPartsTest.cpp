#include "zqpaths/set/SetParts.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zqpaths {
namespace {

/// Rows of chance, and which of them are missing.
struct Made {
    explicit Made(unsigned seed) : random(seed) {
        for (std::size_t i = 0; i < 1 + random() % 6; ++i) {
            const std::uint64_t segments = 1 + random() % 3;
            const std::uint64_t paths = segments + random() % 4;
            rows.push_back({random() % 3, random() % 5, segments, paths, random() % (paths + 1)});
            if (random() % 4 == 0) missing.push_back(i);
        }
    }

    std::mt19937 random;
    std::vector<ManifestRow> rows;
    std::vector<std::size_t> missing;
};

TEST(SetParts, findWhatGoingThroughThemFinds) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const Made made(seed);
        SetParts parts(made.rows);
        parts.markMissing(made.missing);
        std::uint64_t number = 0;
        std::uint64_t segment = 0;
        std::uint64_t gone = 0;
        std::uint64_t present = 0;
        for (std::size_t i = 0; i < parts.count(); ++i) {
            const ManifestRow& row = made.rows[i];
            const bool isMissing = std::ranges::count(made.missing, i) > 0;
            for (std::uint64_t k = 0; k < row.pathCount; ++k)
                ASSERT_EQ(parts.ofNumber(++number), i);
            for (std::uint64_t k = 0; k < row.segmentCount; ++k)
                ASSERT_EQ(parts.ofSegment(segment++), i);
            for (std::uint64_t k = 0; !isMissing && k < row.goneCount; ++k)
                ASSERT_EQ(parts.ofGone(gone++), i);
            for (std::uint64_t k = 0; !isMissing && k < row.pathCount - row.goneCount; ++k)
                ASSERT_EQ(parts.ofPresent(present++), i);
            ASSERT_EQ(parts[i].lastNumber(), number);
        }
        EXPECT_EQ(parts.pathCount(), number);
        EXPECT_EQ(parts.segmentCount(), segment);
        EXPECT_EQ(parts.goneCount(), gone);
        EXPECT_EQ(parts.presentCount(), present);
    }
}

TEST(SetParts, areListedByTheirFile) {
    const SetParts parts({{1, 0, 1, 1, 0}, {0, 0, 1, 1, 0}, {1, 1, 1, 1, 0}});
    EXPECT_EQ(parts.ofFile(0), (std::vector<std::size_t>{1}));
    EXPECT_EQ(parts.ofFile(1), (std::vector<std::size_t>{0, 2}));
    EXPECT_TRUE(parts.ofFile(2).empty());
}

TEST(SetParts, mayBeNone) {
    const SetParts parts({});
    EXPECT_EQ(parts.count(), 0U);
    EXPECT_EQ(parts.pathCount(), 0U);
}

}  // namespace
}  // namespace zqpaths
