// docs/errors.md has a row for each error of the host and of the class, with exactly its text.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>

#include "host/foundation/Messages.hpp"
#include "host/runtime/Session.hpp"
#include "tests/docs/ErrorRows.hpp"

namespace {

using Texts = std::map<std::string, std::string>;  // by identifier

/// What stands after `name` = " on a line.
std::optional<std::string> constantIn(const std::string& line, const std::string& name) {
    const std::string opening = name + " = \"";
    const std::size_t begin = line.find(opening);
    if (begin == std::string::npos) return std::nullopt;
    const std::size_t end = begin + opening.size();
    return line.substr(end, line.find('"', end) - end);
}

/// The text of each message id that a header declares, holes unfilled.
void addTextsDeclaredIn(const docs::Page& header, Texts& texts) {
    std::string component;
    for (const std::string& line : header.lines()) {
        if (line.starts_with("//")) continue;
        component = constantIn(line, "kComponent").value_or(component);
        const std::optional<std::string> key = constantIn(line, "kKey");
        if (!key) continue;
        texts[component + ":" + *key] = foundation::core::messages::format(component, *key, {});
    }
}

Texts declaredTexts() {
    korvex::Session session;
    session.loadLibrary(ZQ_LIBRARY);  // it brings the texts of its class
    const std::filesystem::path top = ZQ_SOURCE_DIR;
    Texts texts;
    for (const char* folder : {"host", "binding"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top / folder)) {
            if (entry.path().extension() == ".hpp")
                addTextsDeclaredIn(docs::Page(std::filesystem::relative(entry.path(), top)), texts);
        }
    }
    return texts;
}

TEST(HostErrorsPage, hasTheTextOfEachErrorThatAHeaderDeclares) {
    Texts described;
    for (const docs::ErrorRow& row : docs::errorRowsOf(docs::Page("docs/errors.md"))) {
        if (!row.isOfTheHost()) continue;
        EXPECT_TRUE(described.emplace(row.name, row.text).second) << "two rows for " << row.name;
    }
    EXPECT_EQ(described, declaredTexts());
}

TEST(HostErrors, allHaveTexts) {
    for (const auto& [identifier, text] : declaredTexts())
        EXPECT_FALSE(text.starts_with(identifier));
}

}  // namespace
