#include "tools/zqpaths/verbs/Verbs.hpp"

#include "tools/zqpaths/arguments/Arguments.hpp"

namespace zqpaths::program {
namespace {

ProgramTable tableWithoutHelp() {
    return {"zqpaths",
            ZQ_VERSION,
            "hold very large sets of file paths in small files",
            {indexVerb(),   addVerb(),    updateVerb(), getVerb(),
             listVerb(),    findVerb(),   numberVerb(), sampleVerb(),
             shuffleVerb(), splitVerb(),  infoVerb(),   treeVerb(),
             reportVerb(),  verifyVerb(), diffVerb(),   mergeVerb(),
             compactVerb(), exportVerb(), importVerb(), documentVerb("zqpaths", programTable)}};
}

}  // namespace

ProgramTable programTable() {
    ProgramTable table = tableWithoutHelp();
    table.verbs.push_back(helpVerb(table.name, programTable, namesOfVerbs(table)));
    return table;
}

}  // namespace zqpaths::program
