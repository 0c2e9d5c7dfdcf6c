#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {
namespace {

TEST(MessageBytes, areThoseOfTheExample) {
    MessageWriter writer;
    writer.number(300);
    writer.text("usr.zqp");
    const std::string bytes = writer.take();
    EXPECT_EQ(bytes, std::string("\xAC\x02\x07usr.zqp"));
    EXPECT_EQ(writer.size(), 0U);

    MessageReader reader(bytes);
    EXPECT_EQ(reader.number(), 300U);
    EXPECT_EQ(reader.text(), "usr.zqp");
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(MessageBytes, holdNumbersOfAllLengths) {
    MessageWriter writer;
    for (unsigned bit = 0; bit < 64; ++bit) {
        writer.number(std::uint64_t{1} << bit);
        writer.number((std::uint64_t{1} << bit) - 1);
        writer.fixed(std::uint64_t{1} << bit);
    }
    writer.number(std::numeric_limits<std::uint64_t>::max());
    MessageReader reader(writer.bytes());
    for (unsigned bit = 0; bit < 64; ++bit) {
        EXPECT_EQ(reader.number(), std::uint64_t{1} << bit);
        EXPECT_EQ(reader.number(), (std::uint64_t{1} << bit) - 1);
        EXPECT_EQ(reader.fixed(), std::uint64_t{1} << bit);
    }
    EXPECT_EQ(reader.number(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(MessageBytes, holdAnyBytes) {
    const std::string odd("\0\xff\n", 3);
    MessageWriter writer;
    writer.text(odd);
    writer.text("");
    writer.raw("rest");
    MessageReader reader(writer.bytes());
    EXPECT_EQ(reader.text(), odd);
    EXPECT_EQ(reader.text(), "");
    EXPECT_EQ(reader.rest(), "rest");
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(MessageBytes, thatAreCutShortAreRefused) {
    MessageWriter writer;
    writer.number(1U << 20);
    writer.text("path");
    writer.fixed(7);
    const std::string whole = writer.take();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        MessageReader reader(cut);
        EXPECT_THROW(
            {
                reader.number();
                reader.text();
                reader.fixed();
            },
            Failure)
            << size;
    }
}

TEST(MessageBytes, refuseANumberOfTooManyBytes) {
    const std::string endless(11, '\xff');
    EXPECT_THROW(MessageReader(endless).number(), Failure);
}

}  // namespace
}  // namespace zqpaths::program::mpi
