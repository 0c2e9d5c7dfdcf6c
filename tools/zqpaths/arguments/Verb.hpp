#pragma once
// A verb is one row of the program's table: its name and its words, its options and its work. The
// parser reads the table, and so do help, the manual page and the shells' completions.
//
//     Verb countVerb() {
//         const auto options = std::make_shared<CountOptions>();
//         return {.name = "count",
//                 .synopsis = "SET",
//                 .summary = "tell how many paths a set has",
//                 .examples = {"zqpaths count usr.zqp", "zqpaths count --quiet usr.zqp"},
//                 .options = rows(setArgument(options->set),
//                                 flag("-q,--quiet", options->quiet, "tell errors only")),
//                 .run = [options] { return count(*options); }};
//     }
//
// Options are bound to variables, which live as long as `run`.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/zqpaths/ExitStatus.hpp"

namespace zqpaths::program {

/// The value of an option that takes a file; shells complete its name.
inline constexpr const char* kFileValue = "FILE";

/// "-j" and "--jobs" of "-j,--jobs"; none of an empty text.
std::vector<std::string> namesApart(const std::string& names);

/// An option, or an argument without a name before it.
struct Option {
    std::string names;        // "-j,--jobs"; "SET" is an argument
    std::string value;        // what follows the name: "N"; empty for a switch
    std::string description;  // what it does
    /// Takes what was given, for a switch nothing. Throws Failure kFailed for what it cannot be.
    std::function<void(const std::string& text)> take;
    bool isRequired = false;
    bool isRepeated = false;           // given any number of times; an argument: all that are left
    std::string excluded{};            // options that cannot be given with it: "-0,--json"
    std::string needed{};              // one that must be
    std::vector<std::string> words{};  // all that it can be, if these are few
    bool isWordList = false;           // it can be several of the words, separated by commas

    bool isArgument() const { return !names.starts_with('-'); }
    bool isSwitch() const { return !isArgument() && value.empty(); }

    std::vector<std::string> namesApart() const { return program::namesApart(names); }

    /// Whether the text is one of the words, or a list of them; true if there are none.
    bool canBe(const std::string& text) const;

    /// The description with what else is to be known: "print one object a line; not with --null",
    /// "show progress; HOW is auto, json or none".
    std::string describedFully() const;
};

struct Verb {
    std::string name;
    std::string synopsis;  // what follows the verb: "SET DIR..."
    std::string summary;
    std::vector<std::string> examples;  // commands, two as a rule
    std::string details{};              // sentences; empty where the summary says it all
    std::vector<Option> options;
    std::function<ExitStatus()> run;
};

struct ProgramTable {
    std::string name;
    std::string version;
    std::string summary;
    std::vector<Verb> verbs;
    std::vector<std::string>
        description{};  // of the manual page, by paragraphs, before what all share
};

/// Makes the table of a program anew, for the verbs that tell of it.
using TableMaker = std::function<ProgramTable()>;

/// A switch that makes `isOn` true, and one that does what it is told.
Option flag(std::string names, bool& isOn, std::string description);
Option flag(std::string names, std::function<void()> work, std::string description);

/// An option with a value, and one of any whole number from 0 on in decimal digits.
Option text(std::string names, std::string value, std::string& taken, std::string description);
Option text(std::string names, std::string value, std::optional<std::string>& taken,
            std::string description);
Option number(std::string names, std::string value, std::uint64_t& taken, std::string description);
Option number(std::string names, std::string value, std::optional<std::uint64_t>& taken,
              std::string description);
Option number(std::string names, std::string value, unsigned& taken, std::string description);

/// An argument that must be there, and all that are left, of which one must be there.
Option argument(std::string name, std::string& taken, std::string description);
Option arguments(std::string name, std::vector<std::string>& taken, std::string description);

/// An option with a value that may be given again and again.
Option texts(std::string names, std::string value, std::vector<std::string>& taken,
             std::string description);

Option required(Option option);
Option excluding(std::string other, Option option);

/// Options and rows of them, one after the other.
template <class... Parts>
std::vector<Option> rows(Parts... parts) {
    std::vector<Option> all;
    const auto append = [&all]<class Part>(Part part) {
        if constexpr (std::is_same_v<Part, Option>)
            all.push_back(std::move(part));
        else
            all.insert(all.end(), std::make_move_iterator(part.begin()),
                       std::make_move_iterator(part.end()));
    };
    (append(std::move(parts)), ...);
    return all;
}

}  // namespace zqpaths::program
