#include "tools/zqpaths/Arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/zqpaths/Documents.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/VerbDetails.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

constexpr const char* kName = "zqpaths";
constexpr const char* kSummary = "hold very large sets of file paths in small files";
constexpr const char* kNoTypeText = " ";  // instead of the type that the parser would print

struct Verb {
    CLI::App* app;
    std::string synopsis;
    std::string example;
    std::string details;  // may be empty
    std::vector<std::string> words;
    std::function<ExitStatus()> run;
};

/// The program's parser. What options are bound to lives as long as the work of their verb.
class Parser {
public:
    Parser();

    std::function<ExitStatus()> parse(int argumentCount, const char* const* arguments);
    ProgramTable table() const;

private:
    void addIndexing();
    void addReading();
    void addSearching();
    void addSelecting();
    void addInspecting();
    void addCombining();
    void addDocuments();

    /// `declare(CLI::App&, Options&, MessageOptions&)` declares the options of the verb.
    template <class Options, class Declare>
    void addVerb(const char* name, const char* synopsis, const char* summary, const char* example,
                 ExitStatus (*run)(const Options&, const MessageOptions&), Declare declare);

    /// Tells more about the verb that was added last.
    void explain(const char* details);

    CLI::App app_;
    std::vector<Verb> verbs_;
};

/// The parser takes "[a,b]" apart, and refuses "--" once a verb has one of its files; files
/// have all sorts of names. So an argument that it could take for something else is
/// marked, and one that begins with a mark as well.
constexpr char kMark = '\1';
constexpr std::string_view kEndOfOptions = "--";

/// The arguments behind the program's name, the last one first, as the parser wants them.
std::vector<std::string> markedArguments(int argumentCount, const char* const* arguments) {
    std::vector<std::string> marked;
    bool mayBeOption = true;
    for (int i = 1; i < argumentCount; ++i) {
        std::string text = arguments[i];
        if (mayBeOption && text == kEndOfOptions) {
            mayBeOption = false;
            continue;
        }
        const bool needsMark = text.starts_with('[') || text.starts_with(kMark) ||
                               (!mayBeOption && text.starts_with('-'));
        if (needsMark) text.insert(text.begin(), kMark);
        marked.push_back(std::move(text));
    }
    std::ranges::reverse(marked);
    return marked;
}

std::string unmarked(const std::string& argument) {
    return argument.starts_with(kMark) ? argument.substr(1) : argument;
}

/// Text in lines that fit a terminal.
std::string inLines(const std::string& text) {
    constexpr std::size_t kLineLength = 80;
    std::istringstream words(text);
    std::string lines;
    std::size_t length = 0;
    for (std::string word; words >> word; length += word.size() + 1) {
        const bool fits = length + word.size() <= kLineLength;
        if (!fits) length = 0;
        if (!lines.empty()) lines += fits ? ' ' : '\n';
        lines += word;
    }
    return lines + '\n';
}

void addSet(CLI::App& verb, std::string& set) {
    verb.add_option("SET", set, "the saved set")->required()->option_text(kNoTypeText);
}

void addOutput(CLI::App& verb, OutputOptions& output) {
    auto* null = verb.add_flag("-0,--null", output.nulTerminated,
                               "end each path with NUL, not with a newline");
    verb.add_flag("--json", output.json, "print one JSON object a line")->excludes(null);
}

void addProgress(CLI::App& verb, MessageOptions& messages) {
    verb.add_flag("--no-progress", messages.noProgress, "show no progress");
}

void addMessages(CLI::App& verb, MessageOptions& messages) {
    verb.add_flag("-q,--quiet", messages.quiet, "tell errors only");
    addProgress(verb, messages);
}

void addForce(CLI::App& verb, bool& force) {
    verb.add_flag("--force", force, "replace a set that is there");
}

/// A whole number, written with decimal digits alone: the parser's own conversion would also take
/// -1, and 010 for eight.
template <class Value>
CLI::Option* addNumber(CLI::App& verb, const char* names, Value& value, const char* description) {
    using Number = std::conditional_t<std::is_same_v<Value, unsigned>, unsigned, std::uint64_t>;
    return verb.add_option_function<std::string>(
        names,
        [names, &value](const std::string& text) {
            Number number = 0;
            const char* const end = text.data() + text.size();
            const auto [parsed, error] = std::from_chars(text.data(), end, number);
            if (error != std::errc() || parsed != end)
                throw CLI::ValidationError(names, text + " is no whole number, or too large");
            value = number;
        },
        description);
}

void addSeed(CLI::App& verb, std::uint64_t& seed) {
    addNumber(verb, "--seed", seed, "the same seed gives the same order everywhere")
        ->required()
        ->option_text("S");
}

void addSource(CLI::App& verb, SourceOptions& source) {
    auto* directories =
        verb.add_option("DIR", source.directories,
                        "directories to walk: all in them that is no directory is taken")
            ->option_text(kNoTypeText);
    auto* list = verb.add_option("--list", source.list, "the paths in FILE, - for standard input")
                     ->option_text(kFileValue)
                     ->excludes(directories);
    verb.add_flag("-0,--null", source.nulDelimited, "the paths of the list end with NUL")
        ->needs(list);
    verb.add_flag("--follow", source.follow, "follow symbolic links to directories");
    verb.add_flag("--one-file-system", source.oneFileSystem, "stay on the file system of DIR");
    verb.add_flag("--hidden", source.hidden, "take names that begin with a dot, too");
    verb.add_flag("--ignore-unreadable", source.ignoreUnreadable,
                  "end with status 0 although something could not be read");
    addNumber(verb, "-j,--jobs", source.jobs, "threads that read directories (one a core)")
        ->option_text("N");
    verb.callback([&source] {
        if (source.directories.empty() && !source.list) throw CLI::RequiredError("DIR or --list");
    });
}

void addRawPieces(CLI::App& verb, std::string& treeString, std::string& pathTree) {
    verb.add_option("--tree-string", treeString, "the characters, UTF-16 in little-endian order")
        ->required()
        ->option_text(kFileValue);
    verb.add_option("--path-tree", pathTree, "the saved form of the paths")
        ->required()
        ->option_text(kFileValue);
}

Parser::Parser() : app_(kSummary, kName) {
    app_.set_help_flag("-h,--help", "print this help");
    app_.set_version_flag("--version", std::string(kName) + " " ZQ_VERSION, "print the version");
    app_.require_subcommand(1);
    addIndexing();
    addReading();
    addSearching();
    addSelecting();
    addInspecting();
    addCombining();
    addDocuments();
}

template <class Options, class Declare>
void Parser::addVerb(const char* name, const char* synopsis, const char* summary,
                     const char* example, ExitStatus (*run)(const Options&, const MessageOptions&),
                     Declare declare) {
    auto options = std::make_shared<Options>();
    auto messages = std::make_shared<MessageOptions>();
    CLI::App* const verb = app_.add_subcommand(name, summary);
    verb->footer(std::string("Example:\n  ") + example);
    declare(*verb, *options, *messages);
    for (CLI::Option* const option : verb->get_options())
        if (option->get_expected_max() > 0) option->transform(unmarked);
    verbs_.push_back({verb, synopsis, example, "", {}, [options, messages, run] {
                          return run(*options, *messages);
                      }});
}

void Parser::addIndexing() {
    addVerb("index", "SET DIR... | SET --list FILE", "make a set of directories or of a list",
            "zqpaths index usr.zqp /usr", runIndex,
            [](CLI::App& verb, IndexOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addSource(verb, options.source);
                addForce(verb, options.force);
                addMessages(verb, messages);
            });
    addVerb("add", "SET DIR... | SET --list FILE", "add paths behind those of a set",
            "zqpaths add usr.zqp /opt", runAdd,
            [](CLI::App& verb, AddOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addSource(verb, options.source);
                addMessages(verb, messages);
            });
}

void Parser::addReading() {
    addVerb("get", "SET NUMBER...", "print paths by number", "zqpaths get usr.zqp 1 10:20 100:1:-1",
            runGet, [](CLI::App& verb, GetOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_option("NUMBER", options.numbers,
                                "N, A:B or A:B:STEP; - for those on standard input")
                    ->required()
                    ->option_text("...");
                verb.add_flag("--groups", options.groups, "print each folder, then its files");
                addOutput(verb, options.output);
                addMessages(verb, messages);
            });
    explain(kNumberDetails);
    addVerb("list", "SET", "print all paths in the order of their numbers",
            "zqpaths list usr.zqp --under /usr/lib --glob '*.so'", runList,
            [](CLI::App& verb, ListOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_flag("--walk", options.walk, "in the order of the set's own walk");
                verb.add_option("--under", options.under, "only paths in this folder")
                    ->option_text("FOLDER");
                verb.add_option("--glob", options.glob, "only paths that match")
                    ->option_text("PATTERN");
                addNumber(verb, "--depth", options.depth, "at most N names behind the folder")
                    ->option_text("N");
                addOutput(verb, options.output);
                addMessages(verb, messages);
            });
    explain(kListDetails);
}

void Parser::addSearching() {
    addVerb("find", "SET PATTERN", "print numbers and paths that match a glob",
            "zqpaths find usr.zqp '*.hpp'", runFind,
            [](CLI::App& verb, FindOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_option("PATTERN", options.pattern, "what to look for")
                    ->required()
                    ->option_text(kNoTypeText);
                auto* regex = verb.add_flag_callback(
                    "-r,--regex", [&options] { options.kind = PatternKind::kRegex; },
                    "PATTERN is a regular expression");
                verb.add_flag_callback(
                        "-F,--fixed", [&options] { options.kind = PatternKind::kFixed; },
                        "PATTERN is a text that occurs in the path")
                    ->excludes(regex);
                verb.add_flag("-i,--ignore-case", options.ignoreCase, "without regard to case");
                verb.add_flag("-c,--count", options.countOnly, "print only how many match");
                verb.add_flag("-q,--quiet", options.statusOnly,
                              "print nothing; status 0 if something matches");
                addOutput(verb, options.output);
                addProgress(verb, messages);
            });
    explain(kPatternDetails);
    addVerb("number", "SET PATH...", "print the numbers of exact paths",
            "zqpaths number usr.zqp /usr/bin/env", runNumber,
            [](CLI::App& verb, NumberOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_option("PATH", options.paths, "the paths")->required()->option_text("...");
                addOutput(verb, options.output);
                addMessages(verb, messages);
            });
    explain(kNumberOfDetails);
}

void Parser::addSelecting() {
    addVerb("sample", "SET -n K --seed S", "print paths chosen at random",
            "zqpaths sample usr.zqp -n 10 --seed 7", runSample,
            [](CLI::App& verb, SampleOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addNumber(verb, "-n,--count", options.count,
                          "how many, each at most once; all if there are fewer")
                    ->required()
                    ->option_text("K");
                addSeed(verb, options.seed);
                addOutput(verb, options.output);
                addMessages(verb, messages);
            });
    addVerb("shuffle", "SET --seed S", "print all paths in a random order",
            "zqpaths shuffle usr.zqp --seed 7", runShuffle,
            [](CLI::App& verb, ShuffleOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addSeed(verb, options.seed);
                addOutput(verb, options.output);
                addMessages(verb, messages);
            });
    addVerb(
        "split", "SET --rank R --of N", "print the share of one of several readers",
        "zqpaths split usr.zqp --rank 0 --of 4", runSplit,
        [](CLI::App& verb, SplitOptions& options, MessageOptions& messages) {
            addSet(verb, options.set);
            addNumber(verb, "--rank", options.rank,
                      "which reader, from 0: number k is for k - 1 modulo N")
                ->required()
                ->option_text("R");
            addNumber(verb, "--of", options.of, "how many readers")->required()->option_text("N");
            addOutput(verb, options.output);
            addMessages(verb, messages);
        });
}

void Parser::addInspecting() {
    addVerb("info", "SET", "tell what is in a set and where its bytes go", "zqpaths info usr.zqp",
            runInfo, [](CLI::App& verb, InfoOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_flag("--json", options.json, "print one JSON object");
                addMessages(verb, messages);
            });
    addVerb("verify", "SET", "read everything and tell what is damaged",
            "zqpaths verify usr.zqp --disk", runVerify,
            [](CLI::App& verb, VerifyOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                verb.add_flag("--disk", options.disk, "compare with the file system");
                addMessages(verb, messages);
            });
    addVerb(
        "diff", "A B", "print the paths that only one of two sets has",
        "zqpaths diff monday.zqp tuesday.zqp", runDiff,
        [](CLI::App& verb, DiffOptions& options, MessageOptions& messages) {
            verb.add_option("A", options.first, "a saved set")
                ->required()
                ->option_text(kNoTypeText);
            verb.add_option("B", options.second, "another")->required()->option_text(kNoTypeText);
            addOutput(verb, options.output);
            addMessages(verb, messages);
        });
    explain(kDiffDetails);
}

void Parser::addCombining() {
    addVerb("merge", "OUT SET...", "make one set of many, each path once",
            "zqpaths merge all.zqp usr.zqp opt.zqp", runMerge,
            [](CLI::App& verb, MergeOptions& options, MessageOptions& messages) {
                verb.add_option("OUT", options.out, "the set to make")
                    ->required()
                    ->option_text(kNoTypeText);
                verb.add_option("SET", options.sets, "saved sets")->required()->option_text("...");
                addForce(verb, options.force);
                addMessages(verb, messages);
            });
    addVerb("export", "SET --tree-string FILE --path-tree FILE",
            "write the two saved pieces of a set as they are",
            "zqpaths export usr.zqp --tree-string usr.chars --path-tree usr.paths", runExport,
            [](CLI::App& verb, ExportOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addRawPieces(verb, options.treeString, options.pathTree);
                addMessages(verb, messages);
            });
    addVerb("import", "SET --tree-string FILE --path-tree FILE",
            "make a set of two pieces that another host saved",
            "zqpaths import usr.zqp --tree-string usr.chars --path-tree usr.paths", runImport,
            [](CLI::App& verb, ImportOptions& options, MessageOptions& messages) {
                addSet(verb, options.set);
                addRawPieces(verb, options.treeString, options.pathTree);
                addForce(verb, options.force);
                addMessages(verb, messages);
            });
}

void Parser::addDocuments() {
    addVerb("document", "man | bash | zsh | fish", "print the manual page or a shell's completions",
            "zqpaths document bash > /etc/bash_completion.d/zqpaths", runDocument,
            [](CLI::App& verb, DocumentOptions& options, MessageOptions& /*messages*/) {
                verb.add_option("KIND", options.kind, "man, bash, zsh or fish")
                    ->required()
                    ->option_text(kNoTypeText)
                    ->check(CLI::IsMember(documentKinds()));
            });
    verbs_.back().words = documentKinds();
}

void Parser::explain(const char* details) {
    Verb& verb = verbs_.back();
    verb.details = details;
    verb.app->footer(inLines(verb.details) + "\n" + verb.app->get_footer());
}

std::function<ExitStatus()> Parser::parse(int argumentCount, const char* const* arguments) {
    std::vector<std::string> texts = markedArguments(argumentCount, arguments);
    try {
        app_.parse(texts);
    } catch (const CLI::ParseError& error) {
        // Help and version come as errors without a failure.
        if (error.get_exit_code() != 0)
            throw Failure(ExitStatus::kFailed,
                          std::string(error.what()) + "\nRun with --help for more.");
        std::ostringstream text;
        app_.exit(error, text, text);
        return [shown = text.str()] {
            Output output({});
            output.text(shown);
            output.finish();
            return ExitStatus::kDone;
        };
    }
    for (const Verb& verb : verbs_)
        if (verb.app->parsed()) return verb.run;
    throw Failure(ExitStatus::kFailed, "no verb is given");
}

ProgramTable Parser::table() const {
    ProgramTable table{kName, ZQ_VERSION, kSummary, {}};
    for (const Verb& verb : verbs_) {
        VerbText text{verb.app->get_name(),
                      verb.synopsis,
                      verb.app->get_description(),
                      verb.example,
                      verb.details,
                      {},
                      verb.words};
        for (const CLI::Option* option : verb.app->get_options()) {
            if (option->nonpositional()) {
                OptionText shown{{}, "", option->get_description()};
                for (const std::string& name : option->get_snames())
                    shown.names.push_back("-" + name);
                for (const std::string& name : option->get_lnames())
                    shown.names.push_back("--" + name);
                if (option->get_expected_max() > 0) shown.value = option->get_option_text();
                text.options.push_back(std::move(shown));
            }
        }
        table.verbs.push_back(std::move(text));
    }
    return table;
}

}  // namespace

std::function<ExitStatus()> parseArguments(int argumentCount, const char* const* arguments) {
    return Parser().parse(argumentCount, arguments);
}

ProgramTable programTable() {
    return Parser().table();
}

}  // namespace zqpaths
