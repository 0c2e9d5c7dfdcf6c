// What the library must give, byte for byte: one test a file of golden records. The last line that
// is printed says how many of them hold.

#include "tests/golden/GoldenRecords.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

namespace compressedpaths::golden {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(ZQ_SOURCE_DIR) / "tests/data/golden";

const Texts kFiles{"huffman_build",  "code",
                   "decode",         "inflate",
                   "bitpack",        "packed_size",
                   "size_vector",    "byte_vector",
                   "zblock",         "trie_ops",
                   "trie_serialize", "trie_deserialize",
                   "pathset",        "serialize_forms",
                   "truncation"};

std::size_t recordsThatHold = 0;

RecordKinds allKinds() {
    RecordKinds kinds;
    for (const RecordKinds& ofSubject :
         {codingKinds(), packingKinds(), trieKinds(), pathSetKinds()})
        kinds.insert(ofSubject.begin(), ofSubject.end());
    return kinds;
}

class GoldenFile : public testing::TestWithParam<std::string> {};

TEST_P(GoldenFile, holdsRecordByRecord) {
    recordsThatHold += runRecords(kFolder / (GetParam() + ".jsonl"), allKinds());
}

INSTANTIATE_TEST_SUITE_P(Of, GoldenFile, testing::ValuesIn(kFiles),
                         [](const auto& file) { return file.param; });

TEST(GoldenFiles, areAllOfTheFolder) {
    Texts found;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder))
        if (entry.path().extension() == ".jsonl") found.push_back(entry.path().stem());
    EXPECT_THAT(found, testing::UnorderedElementsAreArray(kFiles));
}

}  // namespace
}  // namespace compressedpaths::golden

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::cout << compressedpaths::golden::recordsThatHold << " golden records hold\n";
    return result;
}
