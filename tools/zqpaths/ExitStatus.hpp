#pragma once

namespace zqpaths::program {

/// What the program tells the shell.
enum class ExitStatus : int {
    kDone = 0,
    kNegative = 1,  // a negative answer: nothing found, sets differ
    kFailed = 2,    // wrong use, or something could not be read or written
    kDamaged = 3,   // a set whose contents are not what was saved
    kLimit = 4,     // more than the program or the machine can hold
};

}  // namespace zqpaths::program
