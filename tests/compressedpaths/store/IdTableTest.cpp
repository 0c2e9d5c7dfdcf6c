#include "compressedpaths/store/IdTable.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace compressedpaths {
namespace {

/// Ids and their hashes, in a table and in a map.
class TwoTables {
public:
    explicit TwoTables(IdTable::Tags tags) : table_(tags) {}

private:
    auto hashOf() const {
        return [this](std::uint32_t id) { return hashes_.at(id); };
    }

public:
    void insert(std::uint32_t id, std::uint64_t hash) {
        table_.reserveForOne(id, hashOf());
        hashes_[id] = hash;
        table_.insert(hash, id);
    }
    void erase(std::uint32_t id) {
        table_.erase(id, hashOf());
        hashes_.erase(id);
    }
    void replace(std::uint32_t id, std::uint32_t newId) {
        table_.reserveForOne(newId, hashOf());
        const std::uint64_t hash = hashes_.at(id);
        table_.replace(hash, id, newId);
        hashes_.erase(id);
        hashes_[newId] = hash;
    }

    bool finds(std::uint32_t id, std::uint64_t hash) const {
        return table_.find(hash, [id](std::uint32_t other) { return other == id; }) == id;
    }
    /// True if the table finds every id of the map and holds no other.
    bool agree() const {
        for (const auto& [id, hash] : hashes_)
            if (!finds(id, hash)) return false;
        std::size_t taken = 0;
        for (const std::uint32_t word : table_.slots().values()) taken += word != IdTable::kNone;
        return taken == hashes_.size() && table_.count() == hashes_.size();
    }

    const IdTable& table() const { return table_; }
    const std::map<std::uint32_t, std::uint64_t>& hashes() const { return hashes_; }

private:
    IdTable table_;
    std::map<std::uint32_t, std::uint64_t> hashes_;
};

class IdTableWith : public testing::TestWithParam<IdTable::Tags> {};

INSTANTIATE_TEST_SUITE_P(tags, IdTableWith,
                         testing::Values(IdTable::Tags::kNone, IdTable::Tags::kInSlots),
                         [](const auto& test) {
                             return test.param == IdTable::Tags::kNone ? "without" : "with";
                         });

TEST(IdTable, findsNothingBeforeAnythingIsInIt) {
    const IdTable table;
    EXPECT_EQ(table.find(0, [](std::uint32_t) { return true; }), IdTable::kNone);
}

TEST_P(IdTableWith, findsTheFirstThatIsEqualInTheOrderOfProbing) {
    TwoTables tables(GetParam());
    for (std::uint32_t id = 0; id < 3; ++id) tables.insert(id, 5);
    EXPECT_EQ(tables.table().find(5, [](std::uint32_t id) { return id > 0; }), 1U);
    EXPECT_EQ(tables.table().find(5, [](std::uint32_t id) { return id > 2; }), IdTable::kNone);
}

TEST(IdTable, passesNumbersOfAnotherHashWithoutALookAtThem) {
    TwoTables tables(IdTable::Tags::kInSlots);
    const std::uint64_t sameSlot = std::uint64_t{1} << 60 | 5;  // differs from 5 in the tag
    tables.insert(1, 5);
    tables.insert(2, sameSlot);
    std::vector<std::uint32_t> looked;
    tables.table().find(sameSlot, [&](std::uint32_t id) {
        looked.push_back(id);
        return false;
    });
    EXPECT_EQ(looked, std::vector<std::uint32_t>{2});
}

TEST_P(IdTableWith, findsAllThatItHeldBeforeItGrew) {
    TwoTables tables(GetParam());
    for (std::uint32_t id = 0; id < 1000; ++id) tables.insert(id, id * 0x9E3779B97F4A7C15);
    EXPECT_TRUE(tables.agree());
    EXPECT_LE(tables.table().count() * 4, tables.table().slots().size() * 3);
}

TEST_P(IdTableWith, findsAnotherIdInThePlaceOfTheOneItReplaced) {
    TwoTables tables(GetParam());
    tables.insert(1, 15);
    tables.insert(2, 15);  // past the end, in slot 0
    tables.replace(2, 3);
    EXPECT_TRUE(tables.agree());
    EXPECT_FALSE(tables.finds(2, 15));
}

// All begin at the last three slots of sixteen, so that most stand past the end, in the first ones.
TEST_P(IdTableWith, findsWhatIsLeftOfProbesThatWrapAroundWhicheverIsErased) {
    const std::vector<std::uint64_t> hashes{14, 15, 14, 0, 15, 13, 1, 14};
    for (std::uint32_t first = 0; first < hashes.size(); ++first) {
        for (std::uint32_t second = 0; second < hashes.size(); ++second) {
            if (first == second) continue;
            TwoTables tables(GetParam());
            for (std::uint32_t id = 0; id < hashes.size(); ++id) tables.insert(id, hashes[id]);
            tables.erase(first);
            ASSERT_TRUE(tables.agree()) << first;
            tables.erase(second);
            ASSERT_TRUE(tables.agree()) << first << ' ' << second;
        }
    }
}

TEST_P(IdTableWith, agreesWithAMapAfterEveryRandomStep) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        TwoTables tables(GetParam());
        const std::uint64_t hashCount = 1 + random() % 40;  // few, so that probes are long
        for (std::uint32_t step = 0; step < 150; ++step) {
            const bool erases = !tables.hashes().empty() && random() % 5 < 2;
            if (erases)
                tables.erase(
                    std::next(tables.hashes().begin(),
                              static_cast<std::ptrdiff_t>(random() % tables.hashes().size()))
                        ->first);
            else
                tables.insert(step, 0xFFFFFFF0 + random() % hashCount);
            ASSERT_TRUE(tables.agree()) << "round " << round << ", step " << step;
        }
    }
}

TEST_P(IdTableWith, findsNumbersThatNeedMoreBitsThanThoseBefore) {
    TwoTables tables(GetParam());
    for (std::uint32_t bit = 0; bit < 31; ++bit)
        for (const std::uint32_t id : {(1U << bit) - 1, 1U << bit, (1U << bit) + 1})
            if (!tables.hashes().contains(id)) tables.insert(id, ~std::uint64_t{0} << bit);
    EXPECT_TRUE(tables.agree());
}

TEST(IdTable, looksOnlyOnceAtEachSlotOfATableThatIsFull) {
    FlatArray<std::uint32_t> slots;
    slots.assign(8, 1);
    const IdTable table(std::move(slots), 8);
    std::size_t asked = 0;
    const auto isEqual = [&](std::uint32_t) {
        ++asked;
        return false;
    };
    EXPECT_EQ(table.find(6, isEqual), IdTable::kNone);
    EXPECT_EQ(asked, 8U);
}

TEST(IdTable, copiesSlotsFromOutsideBeforeItChangesThem) {
    const std::vector<std::uint32_t> lent(16, IdTable::kNone);
    IdTable table(FlatArray<std::uint32_t>::borrowing(lent), 0);
    const auto hashOf = [](std::uint32_t id) { return std::uint64_t{id}; };
    table.reserveForOne(7, hashOf);
    table.insert(7, 7);
    EXPECT_EQ(table.find(7, [](std::uint32_t id) { return id == 7; }), 7U);
    EXPECT_EQ(lent, std::vector<std::uint32_t>(16, IdTable::kNone));
}

}  // namespace
}  // namespace compressedpaths
