// Lack of memory while paths are fetched, walked and found.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/compressedpaths/failing/FailingSets.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;

TEST(FailingAllocations, fetchAllThatIsAskedForOrNothing) {
    struct Fetching : Subject {
        std::vector<Path> folders{path("f")};
        std::vector<Path> files{path("g")};
    };
    const std::vector<double> numbers{1, 2, 4, 5, 3, 1};
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<Fetching>(); },
        [&](Fetching& subject) { subject.set->getPath(subject.folders, subject.files, numbers); },
        [](Fetching& subject) {
            EXPECT_TRUE(stateOf(*subject.set) == subject.before);
            EXPECT_EQ(subject.folders, (std::vector<Path>{path("f")}));
            EXPECT_EQ(subject.files, (std::vector<Path>{path("g")}));
        },
        [&](Fetching& subject) {
            subject.folders.erase(subject.folders.begin());
            subject.files.erase(subject.files.begin());
            TextPaths paths;
            for (std::size_t group = 0; group < subject.files.size(); ++group) {
                for (const Bytes& file : subject.files[group]) {
                    paths.push_back(decoded(*subject.set, subject.folders.at(group)));
                    paths.back().push_back(subject.set->generatePathFrom(file));
                }
            }
            const TextPaths all = pathsOf(kEntries);
            EXPECT_EQ(paths, (TextPaths{all[0], all[1], all[3], all[4], all[2], all[0]}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, startAWalkOrLeaveTheOneThereWas) {
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Subject>(); },
                     [](Subject& subject) { subject.set->resetPathsToBTree(); },
                     [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
                     [](Subject& subject) {
                         EXPECT_EQ(Peer::iterationPosition(*subject.set), 0U);
                         Path first;
                         subject.set->getNextPathFromBTree(first);
                         EXPECT_EQ(decoded(*subject.set, first), (TextPath{u"a", u"b", u"d"}));
                     });
    // A walk may begin in room that it has.
    EXPECT_LE(failures, kMostBlocks);
}

TEST(FailingAllocations, stepOnOrStandStill) {
    const TextPaths all = walkedPaths(*someSet());
    for (std::size_t step = 0; step < all.size(); ++step) {
        struct Walking : Subject {
            Path out{{7}};
        };
        forEachBlock(
            [&] {
                auto walking = std::make_unique<Walking>();
                walking->set->resetPathsToBTree();
                for (std::size_t i = 0; i < step; ++i) {
                    Path path;
                    walking->set->getNextPathFromBTree(path);
                }
                walking->before = stateOf(*walking->set);
                return walking;
            },
            [](Walking& walking) { walking.set->getNextPathFromBTree(walking.out); },
            [](Walking& walking) {
                EXPECT_TRUE(stateOf(*walking.set) == walking.before);
                EXPECT_EQ(walking.out, (Path{{7}}));
            },
            [&](Walking& walking) {
                if (walking.out[0] == Bytes{7}) walking.out.erase(walking.out.begin());
                EXPECT_EQ(decoded(*walking.set, walking.out), all[step]);
                EXPECT_EQ(Peer::iterationPosition(*walking.set), step + 1);
            });
    }
}

TEST(FailingAllocations, appendAWholeTextOrNothing) {
    const TextPaths all = pathsOf(kEntries);
    for (std::size_t number = 1; number <= all.size(); ++number) {
        struct Reading : Subject {
            std::string bytes = "-";
            std::u16string units = u"-";
        };
        forEachBlock([] { return std::make_unique<Reading>(); },
                     [&](Reading& reading) {
                         if (reading.bytes == "-")
                             reading.set->appendText(number, "/", reading.bytes);
                         reading.set->appendText(number, u"/", reading.units);
                     },
                     [](Reading& reading) {
                         EXPECT_TRUE(stateOf(*reading.set) == reading.before);
                         EXPECT_EQ(reading.units, u"-");
                     },
                     [&](Reading& reading) {
                         std::u16string expected = u"-" + all[number - 1][0];
                         for (std::size_t i = 1; i < all[number - 1].size(); ++i)
                             expected += (i > 1 ? u"/" : u"") + all[number - 1][i];
                         EXPECT_EQ(reading.units, expected);
                         EXPECT_EQ(reading.bytes, std::string(expected.begin(), expected.end()));
                     });
    }
}

TEST(FailingAllocations, findWhatIsThereOrSayThatTheyCouldNot) {
    struct Finding : Subject {
        std::optional<FolderId> folder;
        std::optional<std::size_t> number;
        std::vector<FolderId> inside;
        std::size_t entries = 0;
    };
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Finding>(); },
                     [](Finding& finding) {
                         finding.folder = finding.set->folderOf({u"a", u"b"});
                         finding.number = finding.set->numberOf(*finding.folder, u"d");
                         finding.inside = finding.set->foldersIn(*finding.set->folderOf({u"a"}));
                         finding.entries = finding.set->entriesOf(*finding.folder).size();
                     },
                     [](Finding& finding) { EXPECT_TRUE(stateOf(*finding.set) == finding.before); },
                     [](Finding& finding) {
                         EXPECT_EQ(finding.number, 4U);
                         EXPECT_EQ(finding.inside, (std::vector<FolderId>{*finding.folder}));
                         EXPECT_EQ(finding.entries, 1U);
                     });
    EXPECT_GT(failures, 0U);
}

}  // namespace
}  // namespace compressedpaths
