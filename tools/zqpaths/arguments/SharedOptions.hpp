#pragma once
// What several verbs are told in the same words, and the rows of the table for it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Verb.hpp"
#include "tools/zqpaths/output/PathFields.hpp"
#include "zqpaths/directory/FileIdentity.hpp"

namespace zqpaths::program {

/// How paths are printed.
struct OutputOptions {
    bool nulTerminated = false;  // else by a newline
    bool json = false;           // one object a line
    bool csv = false;            // a table
    bool strict = false;         // what a reader could mistake is a failure
    PathFields fields{};         // empty for what is usual
};

/// What is told on standard error.
struct MessageOptions {
    bool quiet = false;  // errors only
    bool noProgress = false;
    bool lineProgress = false;  // wherever standard error leads; also if quiet
    bool jsonProgress = false;  // objects, to be read by programs; also if quiet
};

/// What --from knows: archives, what tools for object stores print, and objects of JSON; and lists,
/// of which there can be several where --list is given.
enum class SourceFormat { kTar, kZip, kS3, kS3cmd, kRclone, kGsutil, kJsonLines, kList };

/// As --from takes it, which does not know lists.
const char* nameOfFormat(SourceFormat format);

/// Where paths come from.
struct SourceOptions {
    std::vector<std::string> directories;  // or archives; with a format, files of it
    std::optional<SourceFormat> format;
    std::string field;          // whose values are the paths, of kJsonLines
    bool nulDelimited = false;  // paths of lists end with NUL, else with a newline
    bool follow = false;        // symbolic links to directories
    bool oneFileSystem = false;
    bool hidden = false;                   // take names that begin with '.', too
    std::vector<std::string> exclude;      // patterns as gitignore has them
    std::vector<std::string> excludeFrom;  // files of such patterns
    std::string types;                     // of 'f', 'd' and 'l'; empty for all but directories
    std::optional<std::uint64_t> maxDepth;
    bool ignoreUnreadable = false;       // not a failure at the end
    bool verbose = false;                // tell each directory that cannot be read
    unsigned jobs = 0;                   // threads that read directories; 0 for one a core
    std::vector<FileIdentity> notTaken;  // of directories, besides the set itself
};

/// How many processes read the paths together: one, or many, which need files that can be opened
/// again and again.
enum class SourceReaders { kOne, kMany };

/// What verbs that read paths say of where they come from.
inline constexpr const char* kSourceDetails =
    "With --from the files that stand in place of DIR are read: a tar, also by gzip, bzip2, xz or "
    "zstd, or a zip; what 'aws s3 ls --recursive' (s3), 's3cmd ls --recursive', 'rclone ls' or "
    "'gsutil ls -r' print; objects of JSON, one a line (jsonl). A tar or zip that is given as DIR "
    "is recognized. Directories in archives are left out, and so are objects of 0 bytes that mark "
    "folders, whose names end with a separator. GLOBs are lines of gitignore, about the names "
    "below "
    "DIR, or all names of a path that comes from elsewhere; the last one that matches decides, and "
    "--exclude stands after --exclude-from. Names that begin with a dot are left out of "
    "directories "
    "alone. The set itself is never among its paths.";

/// The two saved pieces of a set, as other hosts have them.
struct PieceOptions {
    std::string treeString;  // file for the characters, UTF-16 in little-endian byte order
    std::string pathTree;    // file for the saved form
};

Option setArgument(std::string& set);
Option partialOption(bool& partial);  // of a set that is read
Option forceOption(bool& force);
Option seedOption(std::optional<std::uint64_t>& seed);
Option goneOption(bool& gone);
std::vector<Option> progressOptions(MessageOptions& messages);  // the last of messageOptions()
std::vector<Option> outputOptions(OutputOptions& output);
std::vector<Option> messageOptions(MessageOptions& messages);
std::vector<Option> sourceOptions(SourceOptions& source,
                                  SourceReaders readers = SourceReaders::kOne);
Option directoriesArgument(SourceOptions& source, std::string description);  // need not be given
std::vector<Option> walkOptions(SourceOptions& source);  // the last of sourceOptions()
std::vector<Option> pieceOptions(PieceOptions& pieces);

}  // namespace zqpaths::program
