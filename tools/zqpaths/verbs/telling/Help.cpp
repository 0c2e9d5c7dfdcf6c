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

ExitStatus help(const std::string& verb, const ProgramTable& table) {
    Output output({});
    output.text(verb.empty() ? helpText(table) : helpText(table, requireVerb(table, verb)));
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb helpVerb(const std::string& program, TableMaker table, std::vector<std::string> verbs) {
    const auto verb = std::make_shared<std::string>();
    Option argumentVerb = argument("VERB", *verb, "all verbs in short if it is not given");
    argumentVerb.isRequired = false;
    argumentVerb.words = std::move(verbs);
    argumentVerb.words.emplace_back("help");
    return {.name = "help",
            .synopsis = "[VERB]",
            .summary = "tell what a verb does, its options and examples",
            .examples = {program + " help find", program + " help"},
            .options = rows(std::move(argumentVerb)),
            .run = [verb, table = std::move(table)] { return help(*verb, table()); }};
}

}  // namespace zqpaths::program
