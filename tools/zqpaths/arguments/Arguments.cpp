#include "tools/zqpaths/arguments/Arguments.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/GivenOptions.hpp"
#include "tools/zqpaths/arguments/HelpText.hpp"
#include "tools/zqpaths/arguments/Names.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

std::function<ExitStatus()> printing(std::string text) {
    return [text = std::move(text)] {
        Output output({});
        output.text(text);
        output.finish();
        return ExitStatus::kDone;
    };
}

/// What is asked of the program itself, before any verb.
std::function<ExitStatus()> withoutVerb(const ProgramTable& table, const std::string& option) {
    std::vector<std::string> names;
    for (const std::string& name : helpOption().namesApart()) {
        if (option == name) return printing(helpText(table));
        names.push_back(name);
    }
    for (const std::string& name : versionOption().namesApart()) {
        if (option == name) return printing(table.name + ' ' + table.version + '\n');
        names.push_back(name);
    }
    throw wrongUse(table.name + " has no option " + printablePath(option) +
                   nearestInWords(option, names, ""));
}

}  // namespace

const Verb& requireVerb(const ProgramTable& table, const std::string& name) {
    const auto place = std::ranges::find(table.verbs, name, &Verb::name);
    if (place != table.verbs.end()) return *place;
    const std::vector<std::string> names = namesOfVerbs(table);
    const std::string nearest = nearestInWords(name, names, "'");
    throw wrongUse("there is no verb '" + printablePath(name) + "'" +
                   (nearest.empty() ? "; there are " + inWords(names, "and") : nearest));
}

std::vector<std::string> namesOfVerbs(const ProgramTable& table) {
    std::vector<std::string> names(table.verbs.size());
    std::ranges::transform(table.verbs, names.begin(), &Verb::name);
    return names;
}

std::function<ExitStatus()> parseArguments(const ProgramTable& table, int argumentCount,
                                           const char* const* arguments) {
    if (argumentCount < 2)
        throw wrongUse("no verb is given; there are " + inWords(namesOfVerbs(table), "and"));
    const std::string first = arguments[1];
    if (first.starts_with('-')) return withoutVerb(table, first);
    const Verb& verb = requireVerb(table, first);
    if (!takeOptions(table, verb, {arguments + 2, arguments + argumentCount}))
        return printing(helpText(table, verb));
    return verb.run;
}

}  // namespace zqpaths::program
