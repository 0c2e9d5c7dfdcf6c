#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {

ProgramTable programTable() {
    return {"zqpaths",
            ZQ_VERSION,
            "hold very large sets of file paths in small files",
            {indexVerb(), addVerb(), getVerb(), listVerb(), findVerb(), numberVerb(), sampleVerb(),
             shuffleVerb(), splitVerb(), infoVerb(), treeVerb(), reportVerb(), verifyVerb(),
             diffVerb(), mergeVerb(), compactVerb(), exportVerb(), importVerb(), documentVerb()}};
}

}  // namespace zqpaths::program
