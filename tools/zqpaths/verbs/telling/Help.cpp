#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/arguments/HelpText.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

ExitStatus help(const std::string& verb) {
    const ProgramTable table = programTable();
    Output output({});
    output.text(verb.empty() ? helpText(table) : helpText(table, requireVerb(table, verb)));
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb helpVerb(std::vector<std::string> verbs) {
    const auto verb = std::make_shared<std::string>();
    Option argumentVerb = argument("VERB", *verb, "all verbs in short if it is not given");
    argumentVerb.isRequired = false;
    argumentVerb.words = std::move(verbs);
    argumentVerb.words.emplace_back("help");
    return {.name = "help",
            .synopsis = "[VERB]",
            .summary = "tell what a verb does, its options and examples",
            .examples = {"zqpaths help find", "zqpaths help"},
            .options = rows(std::move(argumentVerb)),
            .run = [verb] { return help(*verb); }};
}

}  // namespace zqpaths::program
