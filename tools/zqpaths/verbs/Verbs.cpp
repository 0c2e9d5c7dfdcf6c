#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {

ProgramTable programTable() {
    return {"zqpaths",
            ZQ_VERSION,
            "hold very large sets of file paths in small files",
            {indexVerb(), addVerb(), updateVerb(), getVerb(), listVerb(), findVerb(), numberVerb(),
             sampleVerb(), shuffleVerb(), splitVerb(), infoVerb(), verifyVerb(), diffVerb(),
             mergeVerb(), compactVerb(), exportVerb(), importVerb(), documentVerb()}};
}

}  // namespace zqpaths::program
