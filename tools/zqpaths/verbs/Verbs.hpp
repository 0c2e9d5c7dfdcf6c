#pragma once
// The verbs of the program, one source file each with all that is the verb's own: its row of the
// table and its work. The work returns what the shell is told and throws Failure and Error.

#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

Verb addVerb();
Verb compactVerb();
Verb diffVerb();
Verb exportVerb();
Verb findVerb();
Verb getVerb();
Verb importVerb();
Verb indexVerb();
Verb infoVerb();
Verb listVerb();
Verb mergeVerb();
Verb numberVerb();
Verb reportVerb();
Verb sampleVerb();
Verb shuffleVerb();
Verb splitVerb();
Verb treeVerb();
Verb updateVerb();
Verb verifyVerb();

// Those that tell of a program, with the verbs in its table: every program has them.

Verb documentVerb(const std::string& program, TableMaker table);
Verb helpVerb(const std::string& program, TableMaker table,
              std::vector<std::string> verbs);  // all others, by name

/// All of them, in the order in which people read of them.
ProgramTable programTable();

}  // namespace zqpaths::program
