#include "tools/zqpaths/Documents.hpp"

#include <algorithm>
#include <array>
#include <cassert>

#include "tools/zqpaths/Arguments.hpp"
#include "tools/zqpaths/Completions.hpp"
#include "tools/zqpaths/ManualPage.hpp"
#include "tools/zqpaths/Output.hpp"

namespace zqpaths {
namespace {

struct Maker {
    const char* kind;
    std::string (*make)(const ProgramTable& table);
};

constexpr std::array<Maker, 4> kMakers{{{"man", manualPage},
                                        {"bash", bashCompletion},
                                        {"zsh", zshCompletion},
                                        {"fish", fishCompletion}}};

}  // namespace

const std::vector<std::string>& documentKinds() {
    static const std::vector<std::string> kinds = [] {
        std::vector<std::string> names(kMakers.size());
        std::ranges::transform(kMakers, names.begin(), &Maker::kind);
        return names;
    }();
    return kinds;
}

std::string makeDocument(const std::string& kind, const ProgramTable& table) {
    const auto* const maker = std::ranges::find(kMakers, kind, &Maker::kind);
    assert(maker != kMakers.end());
    return maker->make(table);
}

ExitStatus runDocument(const DocumentOptions& options, const MessageOptions& /*messages*/) {
    Output output({});
    output.text(makeDocument(options.kind, programTable()));
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace zqpaths
