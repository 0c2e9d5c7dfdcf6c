#include "zqpaths/manifest/SetManifest.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

const std::string kExample = R"({
 "zqs": 1,
 "files": [
  {
   "path": "all.zqs.d/1.zqp",
   "sum": "00c0ffee00c0ffee"
  },
  {
   "path": "more/�.zqp",
   "pathBytes": "bW9yZS//LnpxcA==",
   "sum": "0123456789abcdef"
  }
 ],
 "rows": [
  [0, 0, 2, 300, 0],
  [1, 4, 1, 20, 3],
  [0, 2, 1, 7, 7]
 ]
}
)";

const SetManifest kSaid{
    {{"all.zqs.d/1.zqp", 0x00c0ffee00c0ffee}, {"more/\xFF.zqp", 0x0123456789abcdef}},
    {{0, 0, 2, 300, 0}, {1, 4, 1, 20, 3}, {0, 2, 1, 7, 7}}};

/// A manifest with other members in the place of its own.
std::string withMembers(const std::string& files, const std::string& rows) {
    return R"({"zqs": 1, "files": )" + files + R"(, "rows": )" + rows + "}";
}
const std::string kOneFile = R"([{"path": "a", "sum": "0123456789abcdef"}])";

Error refusalOfText(const std::string& text) {
    try {
        decodeManifest(text);
    } catch (const Error& error) {
        return error;
    }
    ADD_FAILURE() << "taken: " << text;
    return {ErrorKind::kSystem, {}, {}};
}

TEST(SetManifest, isWrittenARowALine) {
    EXPECT_EQ(encodeManifest(kSaid), kExample);
}

TEST(SetManifest, isReadAsItWasWritten) {
    EXPECT_EQ(decodeManifest(kExample), kSaid);
    const SetManifest nothing;
    EXPECT_EQ(decodeManifest(encodeManifest(nothing)), nothing);
}

TEST(SetManifest, mayBeLaidOutOtherwiseAndHaveMembersOfItsOwner) {
    const std::string text =
        R"( {"zqs":1,"by":{"me":[null]},"rows":[[0,0,1,1,0]],"files":)" + kOneFile + "}";
    EXPECT_EQ(decodeManifest(text).rows, (std::vector<ManifestRow>{{0, 0, 1, 1, 0}}));
}

TEST(SetManifest, refusesWhatIsNone) {
    for (const char* const text :
         {"", "{", "[]", "{}", R"({"zqs": "1"})", R"({"files": []})", "nul"})
        EXPECT_EQ(refusalOfText(text).kind(), ErrorKind::kNotASet) << text;
    EXPECT_STREQ(refusalOfText("{}").what(), "is no set of sets: it has no version \"zqs\"");
}

TEST(SetManifest, refusesALaterVersion) {
    const Error refusal = refusalOfText(R"({"zqs": 2, "files": 7})");
    EXPECT_EQ(refusal.kind(), ErrorKind::kNotASet);
    EXPECT_STREQ(refusal.what(), "is a set that needs a newer version of this program");
}

TEST(SetManifest, saysWhatCannotBeAndWhere) {
    const std::array cases{
        std::pair{std::string(R"({"zqs": 1, "files": [)"), "Invalid value. at byte 21"},
        std::pair{std::string(R"({"zqs": 1, "rows": []})"), "has no array \"files\""},
        std::pair{std::string(R"({"zqs": 1, "files": []})"), "has no array \"rows\""},
        std::pair{withMembers("{}", "[]"), "has no array \"files\""},
        std::pair{withMembers("[]", "7"), "has no array \"rows\""},
        std::pair{withMembers("[3]", "[]"), "file 0 is no object"},
        std::pair{withMembers(R"([{"sum": "0123456789abcdef"}])", "[]"), "file 0 has no \"path\""},
        std::pair{withMembers(R"([{"path": 7}])", "[]"), "file 0 has no \"path\""},
        std::pair{withMembers(R"([{"path": "", "sum": "0123456789abcdef"}])", "[]"),
                  "file 0 has a \"path\" that no file can have"},
        std::pair{withMembers(R"([{"path": "a\u0000", "sum": "0123456789abcdef"}])", "[]"),
                  "file 0 has a \"path\" that no file can have"},
        std::pair{withMembers(R"([{"path": "a", "pathBytes": "?"}])", "[]"),
                  "file 0 has a \"pathBytes\" that is not base64"},
        std::pair{withMembers(R"([{"path": "a", "pathBytes": null}])", "[]"),
                  "file 0 has a \"pathBytes\" that is not base64"},
        std::pair{withMembers(R"([{"path": "a"}])", "[]"),
                  "file 0 has no \"sum\" of 16 hexadecimal digits"},
        std::pair{withMembers(R"([{"path": "a", "sum": 123456789}])", "[]"),
                  "file 0 has no \"sum\" of 16 hexadecimal digits"},
        std::pair{withMembers(R"([{"path": "a", "sum": "x123456789abcdef"}])", "[]"),
                  "file 0 has no \"sum\" of 16 hexadecimal digits"},
        std::pair{withMembers(R"([{"path": "a", "sum": "123456789abcdef"}])", "[]"),
                  "file 0 has no \"sum\" of 16 hexadecimal digits"},
        std::pair{withMembers(R"([{"path": "a", "sum": "0123456789abcdeg"}])", "[]"),
                  "file 0 has no \"sum\" of 16 hexadecimal digits"},
        std::pair{withMembers(kOneFile, "[0]"),
                  "row 0 is not five counts: file, first segment, segments, paths, gone paths"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, 4611686018427387904, 0]]"),
                  "row 0 is not five counts: file, first segment, segments, paths, gone paths"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, 1]]"),
                  "row 0 is not five counts: file, first segment, segments, paths, gone paths"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, -1, 0]]"),
                  "row 0 is not five counts: file, first segment, segments, paths, gone paths"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, 1, 0], [1, 0, 1, 1, 0]]"),
                  "row 1 is of file 1, which the manifest has not"},
        std::pair{withMembers(kOneFile, "[[0, 0, 0, 1, 0]]"), "row 0 has counts that cannot be"},
        std::pair{withMembers(kOneFile, "[[0, 0, 2, 1, 0]]"), "row 0 has counts that cannot be"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, 1, 2]]"), "row 0 has counts that cannot be"},
        std::pair{withMembers(kOneFile, "[[0, 0, 1, 4611686018427387903, 0], [0, 1, 1, 1, 0]]"),
                  "row 1 has counts that cannot be"}};
    for (const auto& [text, reason] : cases) {
        const Error refusal = refusalOfText(text);
        EXPECT_EQ(refusal.kind(), ErrorKind::kDamaged) << text;
        EXPECT_STREQ(refusal.what(), reason) << text;
    }
}

TEST(SetManifest, isRefusedCutShortAnywhere) {
    const std::size_t end = kExample.find_last_of('}');
    for (std::size_t size = 0; size <= end; ++size)
        EXPECT_THROW(decodeManifest(kExample.substr(0, size)), Error) << size;
}

TEST(SetManifest, isReadHoweverDeepWhatItDoesNotKnowIs) {
    const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
    EXPECT_EQ(decodeManifest(R"({"zqs": 1, "x": )" + deep + R"(, "files": [], "rows": []})"),
              SetManifest());
}

TEST(SetManifest, isKnownByItsFirstMember) {
    EXPECT_TRUE(beginsLikeManifest(kExample));
    EXPECT_TRUE(beginsLikeManifest("\r\n\t{ \"zqs\" and whatever else"));
    for (const char* const text : {"", "{", "{\"zqp\": 1", "[{\"zqs\": 1}]", "\x89zqp\r\n"})
        EXPECT_FALSE(beginsLikeManifest(text)) << text;
}

TEST(SetManifest, hasTheFingerprintOfItsPaths) {
    SetManifest other = kSaid;
    other.files[0].path = "moved";
    EXPECT_EQ(fingerprintOf(other), fingerprintOf(kSaid));
    other.files[0].sum ^= 1;
    EXPECT_NE(fingerprintOf(other), fingerprintOf(kSaid));
    other = kSaid;
    std::swap(other.rows[0], other.rows[1]);
    EXPECT_NE(fingerprintOf(other), fingerprintOf(kSaid));
}

}  // namespace
}  // namespace zqpaths
