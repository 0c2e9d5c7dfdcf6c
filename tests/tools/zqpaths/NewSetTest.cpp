#include "tools/zqpaths/NewSet.hpp"

#include <gtest/gtest.h>

#include "tests/support/TemporaryTree.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

using test_support::TemporaryTree;

TEST(NewSet, refusesAPlaceThatIsTakenOrCannotBe) {
    const TemporaryTree tree;
    const std::string file = tree.addFile("s.zqp");
    EXPECT_THROW(requireRoomFor(file, false), Failure);
    EXPECT_NO_THROW(requireRoomFor(file, true));
    EXPECT_NO_THROW(requireRoomFor(tree.pathOf("new.zqp"), false));
    EXPECT_THROW(requireRoomFor(tree.pathOf("none/new.zqp"), true), Failure);
    tree.addSymbolicLink("dangling", "nowhere");
    EXPECT_THROW(requireRoomFor(tree.pathOf("dangling"), false), Failure);
}

}  // namespace
}  // namespace zqpaths
