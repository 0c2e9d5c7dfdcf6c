#include "tools/zqpaths/sources/listings/LineReaders.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zqpaths::program {
namespace {

using testing::StartsWith;

/// The path in a line; "none" if it has none, "expected ..." if it does not fit.
std::string readBy(const LineReader& reader, std::string_view line) {
    try {
        const std::optional<std::string_view> path = reader(line);
        return path ? std::string(*path) : "none";
    } catch (const UnexpectedLine& unexpected) {
        return "expected " + unexpected.expected;
    }
}

std::string s3(std::string_view line) {
    return readBy(s3Reader(), line);
}

TEST(S3Reader, takesTheKeyToItsEnd) {
    EXPECT_EQ(s3("2023-05-01 12:34:56       1234 dir/a b.txt"), "dir/a b.txt");
    EXPECT_EQ(s3("2023-05-01 12:34:56       1234   two spaces first "), "  two spaces first ");
    EXPECT_EQ(s3("2023-05-01 12:34:56 1234567890 a"), "a");
    EXPECT_EQ(s3("2023-05-01 12:34:56 1234567890123 a"), "a");
    EXPECT_EQ(s3("2023-05-01 12:34:56          0 empty"), "empty");
    EXPECT_EQ(s3("2023-05-01 12:34:56          5 2023-05-01 12:34:56          5 x"),
              "2023-05-01 12:34:56          5 x");
    EXPECT_EQ(s3("2023-05-01 12:34:56          5 \xFF\t\x01"), "\xFF\t\x01");
}

TEST(S3Reader, tellsSizesForPeopleFromKeys) {
    EXPECT_EQ(s3("2023-05-01 12:34:56    1.2 KiB a"), "a");
    EXPECT_EQ(s3("2023-05-01 12:34:56   10 Bytes Bytes"), "Bytes");
    EXPECT_EQ(s3("2023-05-01 12:34:56     1 Byte a"), "a");
    EXPECT_EQ(s3("2023-05-01 12:34:56         10 Bytes a"), "Bytes a");
    EXPECT_EQ(s3("2023-05-01 12:34:56    0 Bytes dir/"), "none");
}

TEST(S3Reader, leavesOutMarkersOfFoldersAndSums) {
    EXPECT_EQ(s3("2023-05-01 12:34:56          0 dir/"), "none");
    EXPECT_EQ(s3("2023-05-01 12:34:56         10 dir/"), "dir/");
    EXPECT_EQ(s3(""), "none");
    EXPECT_EQ(s3("Total Objects: 2"), "none");
    EXPECT_EQ(s3("   Total Size: 1.2 KiB"), "none");
}

TEST(S3Reader, refusesOtherLines) {
    for (const char* line :
         {"a", "2023-05-01 12:34:56       1234", "2023-05-01 12:34:56       1234 ",
          "2023-05-01 12:34:56  1234 a", "2023-05-01 12:34       1234 a",
          "2023-05-01 12:34:56       12x4 a", "                           PRE dir/",
          "2023-05-01 12:34:56   10 Apples a", "2023-05-01 12:34:56      10. a"})
        EXPECT_EQ(s3(line), "expected DATE TIME SIZE KEY, as 'aws s3 ls --recursive' prints it")
            << line;
}

std::string s3cmd(std::string_view line) {
    return readBy(s3cmdReader(), line);
}

TEST(S3cmdReader, takesTheAddressToItsEnd) {
    EXPECT_EQ(s3cmd("2023-05-01 12:34      1234  s3://bucket/dir/a b"), "s3://bucket/dir/a b");
    EXPECT_EQ(s3cmd("2023-05-01 12:34         1234  s3://b/ s3://c"), "s3://b/ s3://c");
    EXPECT_EQ(s3cmd("2023-05-01 12:34       12K  s3://b/a"), "s3://b/a");
    EXPECT_EQ(s3cmd("2023-05-01 12:34         1234  d41d8cd98f00b204e9800998ecf8427e  STANDARD  "
                    "   s3://b/a"),
              "s3://b/a");
}

TEST(S3cmdReader, leavesOutFolders) {
    EXPECT_EQ(s3cmd("                       DIR   s3://bucket/dir/"), "none");
    EXPECT_EQ(s3cmd("2023-05-01 12:34         0  s3://bucket/dir/"), "none");
    EXPECT_EQ(s3cmd("2023-05-01 12:34         1  s3://bucket/dir/"), "s3://bucket/dir/");
    EXPECT_EQ(s3cmd(""), "none");
}

TEST(S3cmdReader, refusesOtherLines) {
    for (const char* line :
         {"a", "2023-05-01 12:34  s3://bucket", "2023-05-01 12:34      1234  gs://bucket/a",
          "2023-05-01 12:34      1234 s3://b/a", "2023-05-01 12:34      1234  /x s3://b/a"})
        EXPECT_THAT(s3cmd(line), StartsWith("expected DATE TIME SIZE s3://BUCKET/KEY")) << line;
}

std::string rclone(std::string_view line) {
    return readBy(rcloneReader(), line);
}

TEST(RcloneReader, takesThePathToItsEnd) {
    EXPECT_EQ(rclone("     1234 dir/a b"), "dir/a b");
    EXPECT_EQ(rclone("     1234  a "), " a ");
    EXPECT_EQ(rclone("1234567890123 a"), "a");
    EXPECT_EQ(rclone("       -1 unknown"), "unknown");
    EXPECT_EQ(rclone("  1.205Ki a"), "a");
    EXPECT_EQ(rclone("        0 dir/"), "none");
    EXPECT_EQ(rclone("        7 K"), "K");
}

TEST(RcloneReader, refusesOtherLines) {
    for (const char* line : {"", "a", "1234 a", "     1234", "     1234 ", "         a"})
        EXPECT_EQ(rclone(line), "expected SIZE PATH, as 'rclone ls' prints it") << line;
}

TEST(GsutilReader, leavesOutHeadingsAndFolders) {
    const LineReader reader = gsutilReader();
    EXPECT_EQ(readBy(reader, "gs://bucket/:"), "none");
    EXPECT_EQ(readBy(reader, "gs://bucket/a b"), "gs://bucket/a b");
    EXPECT_EQ(readBy(reader, "gs://bucket/:"), "gs://bucket/:");  // an object that is a colon
    EXPECT_EQ(readBy(reader, ""), "none");
    EXPECT_EQ(readBy(reader, "gs://bucket/dir/:"), "none");
    EXPECT_EQ(readBy(reader, "gs://bucket/dir/"), "none");
    EXPECT_EQ(readBy(reader, "gs://bucket/dir/x "), "gs://bucket/dir/x ");
}

TEST(GsutilReader, readsLongLines) {
    const LineReader reader = gsutilReader();
    EXPECT_EQ(readBy(reader, "gs://bucket/:"), "none");
    EXPECT_EQ(readBy(reader, "      1234  2023-05-01T12:34:56Z  gs://bucket/a"), "gs://bucket/a");
    EXPECT_EQ(readBy(reader, "  1.21 KiB  2023-05-01T12:34:56Z  gs://bucket/a"), "gs://bucket/a");
    EXPECT_EQ(readBy(reader, "         0  2023-05-01T12:34:56Z  gs://bucket/d/"), "none");
    EXPECT_EQ(readBy(reader, "                                 gs://bucket/dir/"), "none");
    EXPECT_EQ(readBy(reader, "TOTAL: 1 objects, 1234 bytes (1.21 KiB)"), "none");
}

TEST(GsutilReader, refusesOtherLines) {
    for (const char* line : {"a", "s3://bucket/a", "      1234  gs://bucket/a",
                             "      1234  2023-05-01 12:34:56  gs://bucket/a",
                             "      1234  2023-05-01T12:34:56Z  /a", "  gs://bucket/a"})
        EXPECT_THAT(readBy(gsutilReader(), line), StartsWith("expected gs://BUCKET/NAME")) << line;
}

std::string json(std::string_view line, const std::string& field = "path") {
    return readBy(jsonLinesReader(field), line);
}

TEST(JsonLinesReader, takesTheTextOfAMember) {
    EXPECT_EQ(json(R"({"path":"a/b"})"), "a/b");
    EXPECT_EQ(json(R"( {"size": 3, "path" : " a\n\u00e9\"\ud83d\ude00" } )"),
              " a\n\xC3\xA9\"\xF0\x9F\x98\x80");
    EXPECT_EQ(json("{\"path\":\"\xFF\"}"), "\xFF");
    EXPECT_EQ(json(R"({"path":""})"), "");
    EXPECT_EQ(json(" \t\r"), "none");
}

TEST(JsonLinesReader, findsMembersOfMembers) {
    EXPECT_EQ(json(R"({"a":{"b":{"c":"x"}}})", "a.b.c"), "x");
    EXPECT_EQ(json(R"({"a.b":"x","a":{"b":"y"}})", "a.b"), "x");
    EXPECT_EQ(json(R"({"a":{"b.c":"x"}})", "a.b.c"), "x");
    EXPECT_EQ(json(R"({"a.b":{"c":"x"},"a":3})", "a.b.c"), "x");
}

TEST(JsonLinesReader, refusesLinesWithoutTheMember) {
    for (const char* line : {R"({})", R"({"Path":"a"})", R"({"path":7})", R"({"path":null})",
                             R"(["path"])", R"("path")", R"({"a":{"path":"x"}})"})
        EXPECT_EQ(json(line), "expected an object with the member \"path\", a text") << line;
    EXPECT_EQ(json(R"({"a":"x"})", "a.b"), "expected an object with the member \"a.b\", a text");
}

TEST(JsonLinesReader, refusesWhatIsNoJson) {
    for (const std::string_view line :
         {std::string_view("a"), std::string_view("{\"path\":\"a\""), std::string_view("{"),
          std::string_view("{\"path\":\"a\"} {}"), std::string_view("{\"path\":\"\\ud800\"}"),
          std::string_view("{\"path\":\"a\"}\0x", 14), std::string_view("{\"path\":'a'}")})
        EXPECT_THAT(json(line), StartsWith("expected an object of JSON")) << line;
}

TEST(JsonLinesReader, readsAnyDepthAndAnyNumberOfLines) {
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_EQ(json("{\"x\":" + deep + ",\"path\":\"a\"}"), "a");
    const LineReader reader = jsonLinesReader("path");
    for (int i = 0; i < 1000; ++i) {
        const std::string name(static_cast<std::size_t>(i) * 100, 'x');
        ASSERT_EQ(readBy(reader, "{\"path\":\"" + name + "\"}"), name);
    }
}

}  // namespace
}  // namespace zqpaths::program
