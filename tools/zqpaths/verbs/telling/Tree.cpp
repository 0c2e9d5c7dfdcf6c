#include <memory>
#include <string>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/JsonText.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/Terminal.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/tree/FolderTree.hpp"
#include "tools/zqpaths/tree/TreeText.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct TreeVerbOptions {
    std::string set;
    std::string folder;
    TreeOptions tree;
    std::string order = "count";
    std::string colour = "auto";
    bool partial = false;
    bool json = false;
    MessageOptions messages;
};

Colours coloursOf(const std::string& word) {
    if (word == "auto") return Colours::kAuto;
    return word == "always" ? Colours::kAlways : Colours::kNever;
}

FolderTotals::Place topOf(const FolderTotals& totals, const TreeVerbOptions& options) {
    const auto top = totals.find(options.folder);
    if (top) return *top;
    throw failureAt(options.set, printablePath(options.folder) + " is no folder of the set",
                    ExitStatus::kNegative);
}

void put(JsonWriter& writer, std::string_view key, std::uint64_t number) {
    putText(writer, key);
    writer.Uint64(number);
}

std::string jsonOf(const TreeLine& line) {
    rapidjson::StringBuffer text;
    JsonWriter writer(text);
    writer.StartObject();
    const FolderTotals::Totals& totals = line.totals;
    switch (line.kind) {
        case TreeLine::Kind::kFolder:
            putName(writer, "folder", "folderBytes", line.path);
            put(writer, "files", totals.filesBelow);
            put(writer, "folders", totals.foldersBelow);
            put(writer, "filesInIt", totals.filesIn);
            put(writer, "foldersInIt", totals.foldersIn);
            break;
        case TreeLine::Kind::kFile:
            putName(writer, "file", "fileBytes", line.path);
            break;
        case TreeLine::Kind::kRest:
            putName(writer, "restOf", "restOfBytes", line.path);
            put(writer, "files", totals.filesBelow);
            put(writer, "filesInIt", totals.filesIn);
            put(writer, "foldersInIt", totals.foldersIn);
            break;
    }
    put(writer, "level", line.level);
    writer.EndObject();
    return {text.GetString(), text.GetSize()};
}

void printText(const FolderTree& tree, std::uint64_t whole, const TreeVerbOptions& options,
               Output& output) {
    const DrawingStyle style{charsetOfLocale() == Charset::kUtf8,
                             hasColours(coloursOf(options.colour))};
    TreeText drawn(printablePath(options.set), whole, outputWidth(), style,
                   NameColours(environmentValue("LS_COLORS").value_or("")));
    tree.visit([&](const TreeLine& line) { output.text(drawn.lineOf(line)); });
}

ExitStatus tree(TreeVerbOptions options) {
    options.tree.order =
        options.order == "name" ? TreeOptions::Order::kName : TreeOptions::Order::kCount;
    const PathSet set = openSet(options.set, options.partial);
    const FolderTotals totals(set);
    const FolderTotals::Place top = topOf(totals, options);
    const std::uint64_t whole = totals.of(top).filesBelow;
    FolderTree shown(totals, top, options.tree);
    if (options.tree.hasFiles) {
        Progress progress("finding files", options.messages, whole);
        shown.findFiles(set, [&progress] { progress.advance(); });
    }
    Output output({});
    if (options.json)
        shown.visit([&](const TreeLine& line) { output.line(jsonOf(line)); });
    else
        printText(shown, whole, options, output);
    output.finish();
    return ExitStatus::kDone;
}

Option oneOf(std::vector<std::string> words, Option option) {
    option.words = std::move(words);
    return option;
}

}  // namespace

Verb treeVerb() {
    const auto options = std::make_shared<TreeVerbOptions>();
    Option folder = argument("FOLDER", options->folder, "the folder to begin with");
    folder.isRequired = false;
    return {
        .name = "tree",
        .synopsis = "SET [FOLDER]",
        .summary = "show the folders of a set and how many files they hold",
        .examples = {"zqpaths tree usr.zqp", "zqpaths tree usr.zqp /usr/share --depth 1 --files"},
        .details =
            "A line has the files in a folder and below it, their share of all that is shown, and "
            "the folder. One that holds nothing but another folder shares its line. Names have "
            "the colours of LS_COLORS. Status 1 tells that FOLDER is none.",
        .options = rows(
            setArgument(options->set), std::move(folder),
            number("--depth", "N", options->tree.depth, "levels below the folder (2)"),
            number("--top", "K", options->tree.most,
                   "show K folders in each folder, 0 for all, and sum up the rest (10)"),
            oneOf({"count", "name"}, text("--sort", "ORDER", options->order,
                                          "count, most files first, or name (count)")),
            flag("--files", options->tree.hasFiles, "show files, too, the first K in each folder"),
            oneOf({"auto", "always", "never"},
                  text("--color", "WHEN", options->colour,
                       "colours: auto, which is on a terminal, always or never (auto)")),
            partialOption(options->partial),
            flag("--json", options->json, "print one JSON object a line"),
            messageOptions(options->messages)),
        .run = [options] { return tree(*options); }};
}

}  // namespace zqpaths::program
