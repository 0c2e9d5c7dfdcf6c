#pragma once
// Runs the golden records of a file, one JSON object a line, each by the function of its kind.
//
//     const std::size_t holding = runRecords(file, codingKinds());

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "tests/golden/RecordFields.hpp"

namespace compressedpaths::golden {

/// Compares one record with the library, by expectations of the running test.
using RunRecord = void (*)(Fields& record);
using RecordKinds = std::map<std::string, RunRecord, std::less<>>;

// The kinds of records, by subject.
RecordKinds codingKinds();
RecordKinds packingKinds();
RecordKinds trieKinds();
RecordKinds pathSetKinds();

/// Expectations of the running test that have failed so far.
int failureCount();

/// Runs all records of a file and returns the number of those that hold. A record that does not
/// hold fails the running test, and so do an unknown kind, an unknown field, a repeated name and a
/// file without records.
std::size_t runRecords(const std::filesystem::path& file, const RecordKinds& kinds);

/// Runs the steps of a script on one `Script`, each by the function of its "op", up to the first
/// one that fails: those after it would only fail for the same reason.
template <class Script>
void runSteps(const Json& steps,
              const std::map<std::string, void (Script::*)(Fields&), std::less<>>& operations) {
    if (!steps.IsArray() || steps.Empty()) throw UnreadableRecord("a script without steps");
    Script script;
    const int failuresBefore = failureCount();
    std::size_t number = 0;
    for (const Json& value : steps.GetArray()) {
        Fields step(value);
        const std::string op = textOf(step["op"]);
        SCOPED_TRACE("step " + std::to_string(number++) + " (from 0), " + op);
        const auto operation = operations.find(op);
        if (operation == operations.end()) throw UnreadableRecord("unknown op " + op);
        try {
            (script.*operation->second)(step);
            step.requireAllRead();
        } catch (const std::exception& exception) {
            ADD_FAILURE() << exception.what();
        }
        if (failureCount() != failuresBefore) return;
    }
}

}  // namespace compressedpaths::golden
