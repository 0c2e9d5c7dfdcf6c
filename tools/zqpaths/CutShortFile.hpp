#pragma once
// A mapped file that somebody else cuts short while it is read lets the system send SIGBUS. The
// program then says which file it was and ends as after any other failure:
//
//     watchForCutShortFiles();        // once
//     nameWhatIsRead("s.zqp");        // whenever another file is read
//
// Threads: called by the thread that opens files; the signal may come to any.

#include <string>

namespace zqpaths::program {

void watchForCutShortFiles() noexcept;

/// What the message names from now on, as printablePath shows it.
void nameWhatIsRead(const std::string& files);

}  // namespace zqpaths::program
