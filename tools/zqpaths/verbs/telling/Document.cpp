#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/zqpaths/arguments/Completions.hpp"
#include "tools/zqpaths/arguments/ManualPage.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct Maker {
    const char* kind;
    std::string (*make)(const ProgramTable& table);
};

constexpr std::array<Maker, 4> kMakers{{{"man", manualPage},
                                        {"bash", bashCompletion},
                                        {"zsh", zshCompletion},
                                        {"fish", fishCompletion}}};

std::vector<std::string> kinds() {
    std::vector<std::string> names(kMakers.size());
    std::ranges::transform(kMakers, names.begin(), &Maker::kind);
    return names;
}

ExitStatus document(const std::string& kind, const ProgramTable& table) {
    Output output({});
    for (const Maker& maker : kMakers)
        if (maker.kind == kind) output.text(maker.make(table));
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb documentVerb(const std::string& program, TableMaker table) {
    const auto kind = std::make_shared<std::string>();
    Option argumentKind = argument("KIND", *kind, "man, bash, zsh or fish");
    argumentKind.words = kinds();
    return {.name = "document",
            .synopsis = "man | bash | zsh | fish",
            .summary = "print the manual page or a shell's completions",
            .examples = {program + " document bash > /etc/bash_completion.d/" + program,
                         program + " document man | man -l -"},
            .options = rows(std::move(argumentKind)),
            .run = [kind, table = std::move(table)] { return document(*kind, table()); }};
}

}  // namespace zqpaths::program
