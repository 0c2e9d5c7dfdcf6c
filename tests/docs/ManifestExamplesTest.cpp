// The example of docs/zqs.md is what a manifest is written as, and every refusal that the page
// lists is one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "tests/docs/Page.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

namespace zqpaths {
namespace {

const docs::Page& page() {
    static const docs::Page read("docs/zqs.md");
    return read;
}

std::string example() {
    return page().blocksIn("json").at("zqs-manifest");
}

SetManifest described() {
    return {.files = {{"usr.zqp", 0x0123456789ABCDEF}, {"caf\xE9/opt.zqp", 0xFF}},
            .rows = {{0, 0, 2, 2, 0}, {1, 0, 1, 2, 1}, {0, 2, 1, 1, 0}}};
}

TEST(ManifestPage, showsWhatAManifestHolds) {
    EXPECT_EQ(encodeManifest(described()), example());
    EXPECT_EQ(decodeManifest(example()), described());
    EXPECT_EQ(page().blocksIn("json").size(), 1U);  // no example that nobody checks
}

/// The example with the first such text replaced.
std::string with(std::string_view text, std::string_view other) {
    std::string changed = example();
    const std::size_t at = changed.find(text);
    EXPECT_NE(at, std::string::npos) << text;
    return changed.replace(at, text.size(), other);
}

struct Refusal {
    std::string text;
    ErrorKind kind;
    const char* message;  // as the page has it
};

TEST(ManifestPage, listsWhatIsRefused) {
    const Refusal refusals[] = {
        {with("]\n}", "]"), ErrorKind::kDamaged, "at byte N"},
        {with("\"zqs\": 1", "\"zqs\": 2"), ErrorKind::kNotASet,
         "is a set that needs a newer version of this program"},
        {with("\"files\"", "\"others\""), ErrorKind::kDamaged, "has no array \"files\""},
        {with("\"path\"", "\"name\""), ErrorKind::kDamaged, "file N has no \"path\""},
        {with("0123456789abcdef", "0123"), ErrorKind::kDamaged,
         "file N has no \"sum\" of 16 hexadecimal digits"},
        {with("[0, 0, 2, 2, 0]", "[0, 0, 2, 2]"), ErrorKind::kDamaged,
         "row N is not five counts: file, first segment, segments, paths, gone paths"},
        {with("[0, 0, 2, 2, 0]", "[0, 0, 2, 4611686018427387904, 0]"), ErrorKind::kDamaged,
         "row N is not five counts: file, first segment, segments, paths, gone paths"},
        {with("[1, 0, 1", "[2, 0, 1"), ErrorKind::kDamaged,
         "row N is of file M, which the manifest has not"},
        {with("[0, 0, 2, 2, 0]", "[0, 0, 2, 2, 3]"), ErrorKind::kDamaged,
         "row N has counts that cannot be"},
        {with("[0, 0, 2, 2, 0]", "[0, 0, 0, 2, 0]"), ErrorKind::kDamaged,
         "row N has counts that cannot be"},
        {with("[0, 0, 2, 2, 0]", "[0, 0, 2, 4611686018427387903, 0]"), ErrorKind::kDamaged,
         "row N has counts that cannot be"}};
    std::string text;
    for (const std::string& line : page().lines()) text += line + '\n';
    for (const auto& [manifest, kind, message] : refusals) {
        SCOPED_TRACE(manifest);
        EXPECT_THAT(text, testing::HasSubstr(std::string("\"") + message + "\""));
        try {
            decodeManifest(manifest);
            ADD_FAILURE() << "nothing is thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), kind);
            std::string told = error.what();  // with its numbers as N and M
            for (const char* const letter : {"N", "M"}) {
                const auto digit =
                    std::ranges::find_if(told, [](char c) { return c >= '0' && c <= '9'; });
                if (digit == told.end() ||
                    std::string_view(message).find(letter) == std::string_view::npos)
                    break;
                const auto end = std::find_if_not(digit, told.end(),
                                                  [](char c) { return c >= '0' && c <= '9'; });
                told.replace(digit, end, letter);
            }
            EXPECT_THAT(told, testing::HasSubstr(message));
        }
    }
}

TEST(ManifestPage, saysThatUnknownMembersArePassedOver) {
    EXPECT_EQ(decodeManifest(with("\"files\"", "\"more\": {\"a\": [1]},\n \"files\"")),
              described());
}

}  // namespace
}  // namespace zqpaths
