#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/arrays/ArrayErrors.hpp"
#include "host/foundation/Messages.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/matrix/MatrixErrors.hpp"
#include "host/runtime/Error.hpp"

namespace {

using foundation::core::messages::format;

struct HostError {
    std::string component;
    std::string key;
    std::size_t argumentCount;
};

void PrintTo(const HostError& host, std::ostream* out) {
    *out << host.component << ":" << host.key;
}

template <class MessageId>
HostError error(std::size_t argumentCount) {
    return {MessageId::kComponent, MessageId::kKey, argumentCount};
}

std::vector<HostError> hostErrors() {
    return {
        error<KORVEX::arrays::wrongClass>(2),         error<KORVEX::arrays::indexOutOfRange>(2),
        error<KORVEX::arrays::noSuchField>(1),        error<KORVEX::arrays::repeatedField>(1),
        error<KORVEX::arrays::tooManyElements>(1),    error<KORVEX::arrays::noObject>(0),
        error<KORVEX::arrays::arrayWithinItself>(0),  error<KORVEX::kobj::noSuchClass>(1),
        error<KORVEX::kobj::noSuchMethod>(2),         error<KORVEX::kobj::noSuchProperty>(2),
        error<KORVEX::kobj::nameIsTaken>(2),          error<KORVEX::kobj::notPassedByReference>(1),
        error<KORVEX::kobj::notAnObject>(1),          error<KORVEX::kobj::wrongObjectClass>(2),
        error<KORVEX::kobj::cannotConvert>(2),        error<KORVEX::matrix::tooManyOutputs>(0),
        error<KORVEX::matrix::tooManyInputs>(0),      error<KORVEX::matrix::notEnoughInputs>(0),
        error<KORVEX::matrix::invalidOutputCount>(0), error<KORVEX::matrix::unknownMessage>(1),
        error<KORVEX::runtime::cannotLoadLibrary>(2), error<KORVEX::runtime::wrongInput>(4),
        error<KORVEX::runtime::wrongOutput>(4),       error<KORVEX::runtime::missingOutput>(2),
        error<KORVEX::runtime::wrongProperty>(3),
    };
}

class HostTexts : public testing::TestWithParam<HostError> {
protected:
    static std::vector<std::string> argumentsOf(std::size_t count) {
        std::vector<std::string> arguments;
        for (std::size_t i = 1; i <= count; ++i) arguments.push_back("<" + std::to_string(i) + ">");
        return arguments;
    }
};

TEST_P(HostTexts, haveAHoleForEachArgumentAndNoOther) {
    const auto& [component, key, argumentCount] = GetParam();
    const std::vector<std::string> arguments = argumentsOf(argumentCount);
    const std::string text = format(component, key, arguments);
    for (const std::string& argument : arguments) EXPECT_THAT(text, testing::HasSubstr(argument));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("{")));
}

TEST_P(HostTexts, areSentencesAndNotTheIdentifier) {
    const auto& [component, key, argumentCount] = GetParam();
    const std::string text = format(component, key, argumentsOf(argumentCount));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr(key)));
    EXPECT_THAT(text, testing::ContainsRegex("^[a-z]+ .* "));
}

std::string nameOf(const testing::TestParamInfo<HostError>& info) {
    const std::string& component = info.param.component;
    return component.substr(component.find(':') + 1) + "_" + info.param.key;
}

INSTANTIATE_TEST_SUITE_P(Host, HostTexts, testing::ValuesIn(hostErrors()), nameOf);

/// The text that a line of a header gives to a constant, empty if it gives none. A comment begins
/// where the line does.
std::string textOf(const std::string& constant, const std::string& line) {
    const std::string beginning = constant + " = \"";
    const std::size_t found = line.find(beginning);
    if (found == std::string::npos || line.starts_with("//")) return {};
    const std::size_t start = found + beginning.size();
    return line.substr(start, line.find('"', start) - start);
}

using Identifiers = std::set<std::pair<std::string, std::string>>;

/// Component and key of each error that a header of the host declares.
Identifiers declaredIdentifiers() {
    Identifiers identifiers;
    const std::filesystem::path host = std::filesystem::path(ZQ_SOURCE_DIR) / "host";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(host)) {
        if (entry.path().extension() != ".hpp") continue;
        std::ifstream header(entry.path());
        std::string component;
        for (std::string line; std::getline(header, line);) {
            if (const std::string text = textOf("kComponent", line); !text.empty())
                component = text;
            if (const std::string text = textOf("kKey", line); !text.empty())
                identifiers.emplace(component, text);
        }
    }
    return identifiers;
}

TEST(HostTextsTable, isTestedForEachErrorThatAHeaderDeclares) {
    Identifiers tested;
    for (const HostError& host : hostErrors()) tested.emplace(host.component, host.key);
    EXPECT_EQ(declaredIdentifiers(), tested);
}

}  // namespace
