#include "tools/zqpaths-mpi/input/PlanText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tools/zqpaths-mpi/input/PieceMaking.hpp"
#include "tools/zqpaths-mpi/input/PieceReport.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {
namespace {

InputPlan planOfTwo() {
    return {.pieceSize = 10,
            .sources = {{"/a", SourceKind::kLines, {10, 7}}, {"/b", SourceKind::kDirectory, {}}},
            .pieces = {{{{.source = 0, .bytes = {0, 10}}}, 10},
                       {{{.source = 1, .directory = {{"x"}, true}}}, 10}}};
}

std::string textOf(const InputPlan& plan, const SourceOptions& options = {}) {
    return encodePlan(plan, options, {1, false, plan.pieces.size()});
}

std::string refusalOf(const std::string& begun, const std::string& present) {
    try {
        requireSamePlan(begun, present, "all.zqs.d");
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "none";
}

TEST(PlanText, isTheSameForTheSameInput) {
    EXPECT_EQ(refusalOf(textOf(planOfTwo()), textOf(planOfTwo())), "none");
    // What a run may replace is no matter of its input.
    EXPECT_EQ(refusalOf(encodePlan(planOfTwo(), {}, {2, true, 2}), textOf(planOfTwo())), "none");
}

TEST(PlanText, tellsWhatIsNotTheSame) {
    const std::string begun = textOf(planOfTwo());
    const auto refusalAfter = [&begun](auto change) {
        InputPlan plan = planOfTwo();
        change(plan);
        return refusalOf(begun, textOf(plan));
    };
    const std::string end = "; --force begins anew";
    EXPECT_EQ(refusalAfter([](InputPlan& plan) { plan.sources[0].stamp.changed = 8; }),
              "/a: has changed since the run began" + end);
    EXPECT_EQ(refusalAfter([](InputPlan& plan) { plan.sources[0].name = "/c"; }),
              "/c: the run was begun with /a in its place" + end);
    EXPECT_EQ(refusalAfter([](InputPlan& plan) {
                  plan.sources.pop_back();
                  plan.pieces.pop_back();  // which is of it
              }),
              "all.zqs.d: the run was begun with other files or directories" + end);
    EXPECT_EQ(refusalAfter([](InputPlan& plan) { plan.pieceSize = 11; }),
              "all.zqs.d: the run was begun with another --piece-size" + end);
    EXPECT_EQ(
        refusalAfter([](InputPlan& plan) { plan.pieces[1].parts[0].directory.names = {"y"}; }),
        "/b: has other directories than when the run began" + end);
    EXPECT_EQ(refusalAfter([](InputPlan& plan) { plan.pieces.pop_back(); }),
              "/b: has other directories than when the run began" + end);
}

TEST(PlanText, tellsOptionsThatAreNotTheSame) {
    SourceOptions options;
    options.hidden = true;
    options.exclude = {"*.\xFF"};
    EXPECT_EQ(refusalOf(textOf(planOfTwo()), textOf(planOfTwo(), options)),
              "all.zqs.d: the run was begun with no options, not with --hidden --exclude "
              "*.\xEF\xBF\xBD; --force begins anew");
    SourceOptions other = options;
    other.exclude = {"*.\xFE"};  // looks the same
    EXPECT_NE(refusalOf(textOf(planOfTwo(), options), textOf(planOfTwo(), other)), "none");
    SourceOptions list;
    list.format = SourceFormat::kList;
    SourceOptions tar;
    tar.format = SourceFormat::kTar;
    EXPECT_THAT(refusalOf(textOf(planOfTwo(), list), textOf(planOfTwo(), tar)),
                testing::HasSubstr("begun with --list, not with --from tar"));
}

TEST(PlanText, isSummedUpUnlessItIsNone) {
    const auto summary = summaryOfPlan(encodePlan(planOfTwo(), {}, {2, true, 2}));
    ASSERT_TRUE(summary);
    EXPECT_EQ(summary->generation, 2U);
    EXPECT_TRUE(summary->mayReplace);
    EXPECT_EQ(summary->pieceCount, 2U);
    for (const char* text : {"", "{", "[]", "{}", R"({"plan":2,"generation":1,"pieces":[]})"})
        EXPECT_FALSE(summaryOfPlan(text)) << text;
}

TEST(PieceReport, comesBackAsItWas) {
    PieceReport report;
    report.pathCount = 7;
    report.source.leftOut = {1, 2, 3, 4, 5};
    report.source.unreadableCount = 6;
    report.source.firstUnreadable = "/a\\xFF\"\n: Permission denied";
    EXPECT_EQ(decodeReport(encodeReport(report)), report);
    const std::string whole = encodeReport(report);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decodeReport(whole.substr(0, length))) << length;
    EXPECT_FALSE(decodeReport(R"({"paths":1})"));
}

TEST(DealtPiece, comesBackAsItWas) {
    const DealtPiece piece{.setFile = "a/1.zqp",
                           .reportFile = "a/1.json",
                           .weight = 99,
                           .parts = {{.source = 1, .bytes = {3, 1U << 31}},
                                     {.source = 2, .directory = {{"x", "\xFF\n"}, false}}},
                           .stamps = {{5, -6}, {}}};
    const DealtPiece back = decodePiece(encodePiece(piece));
    EXPECT_EQ(back.setFile, piece.setFile);
    EXPECT_EQ(back.reportFile, piece.reportFile);
    EXPECT_EQ(back.weight, piece.weight);
    EXPECT_EQ(back.parts, piece.parts);
    EXPECT_EQ(back.stamps, piece.stamps);
}

}  // namespace
}  // namespace zqpaths::program::mpi
