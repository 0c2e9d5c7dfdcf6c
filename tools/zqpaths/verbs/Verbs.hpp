#pragma once
// The verbs of the program, one source file each. Each gets what its arguments say and the streams
// it may use, and returns what the shell is told; it throws Failure and korvex::Error.

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/Options.hpp"

namespace zqpaths {

ExitStatus runIndex(const IndexOptions& options, const MessageOptions& messages);
ExitStatus runAdd(const AddOptions& options, const MessageOptions& messages);
ExitStatus runGet(const GetOptions& options, const MessageOptions& messages);
ExitStatus runList(const ListOptions& options, const MessageOptions& messages);
ExitStatus runFind(const FindOptions& options, const MessageOptions& messages);
ExitStatus runNumber(const NumberOptions& options, const MessageOptions& messages);
ExitStatus runSample(const SampleOptions& options, const MessageOptions& messages);
ExitStatus runShuffle(const ShuffleOptions& options, const MessageOptions& messages);
ExitStatus runSplit(const SplitOptions& options, const MessageOptions& messages);
ExitStatus runInfo(const InfoOptions& options, const MessageOptions& messages);
ExitStatus runVerify(const VerifyOptions& options, const MessageOptions& messages);
ExitStatus runDiff(const DiffOptions& options, const MessageOptions& messages);
ExitStatus runMerge(const MergeOptions& options, const MessageOptions& messages);
ExitStatus runExport(const ExportOptions& options, const MessageOptions& messages);
ExitStatus runImport(const ImportOptions& options, const MessageOptions& messages);

}  // namespace zqpaths
