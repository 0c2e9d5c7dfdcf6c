#include "tests/golden/GoldenRecords.hpp"

#include <fstream>
#include <set>

#include "tests/golden/Throwing.hpp"

namespace compressedpaths::golden {
namespace {

void runRecord(Fields& record, const RecordKinds& kinds) {
    const std::string kind = textOf(record["kind"]);
    const auto run = kinds.find(kind);
    if (run == kinds.end()) throw UnreadableRecord("unknown kind " + kind);
    run->second(record);
    record.requireAllRead();
}

}  // namespace

int failureCount() {
    const testing::TestResult& result =
        *testing::UnitTest::GetInstance()->current_test_info()->result();
    int count = 0;
    for (int i = 0; i < result.total_part_count(); ++i)
        count += result.GetTestPartResult(i).failed() ? 1 : 0;
    return count;
}

std::size_t runRecords(const std::filesystem::path& file, const RecordKinds& kinds) {
    std::ifstream lines(file);
    EXPECT_TRUE(lines.is_open()) << file;
    std::set<std::string> names;
    std::size_t holding = 0;
    std::string line;
    while (std::getline(lines, line)) {
        rapidjson::Document document;
        document.Parse(line.c_str(), line.size());
        const int failuresBefore = failureCount();
        const auto thrown = thrownBy([&] {
            if (document.HasParseError()) throw UnreadableRecord("not JSON: " + line);
            Fields record(document);
            const std::string name = textOf(record["name"]);
            SCOPED_TRACE("record " + name);
            if (!names.insert(name).second) throw UnreadableRecord("repeated name " + name);
            const auto failed = thrownBy([&] { runRecord(record, kinds); });
            if (failed) ADD_FAILURE() << *failed;
        });
        if (thrown) ADD_FAILURE() << *thrown;
        if (failureCount() == failuresBefore) ++holding;
    }
    EXPECT_GT(holding, 0U) << file << " holds no records";
    return holding;
}

}  // namespace compressedpaths::golden
