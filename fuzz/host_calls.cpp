// Calls of host programs on a few objects of the class, each compared with a plain path set, and
// calls that are refused among them. At the end the host has freed as many objects as it made.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/ChosenNames.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "host/foundation/LiveObjects.hpp"
#include "host/runtime/Session.hpp"
#include "tests/support/PlainPathSet.hpp"

using compressedpaths::Bytes;
using compressedpaths::Path;
using compressedpaths::PlainPathSet;
using foundation::core::liveObjects;
using fuzzing::chooseNames;
using fuzzing::InputScript;
using fuzzing::kNameCharacters;
using fuzzing::require;

namespace {

using Names = std::vector<std::u16string>;
using Lists = std::vector<Names>;

constexpr const char* kClassName = "korvex.io.datastore.internal.fileset.HuffmanPaths";
constexpr std::size_t kMaxCalls = 40;

korvex::Session& session() {
    static korvex::Session made;
    static const bool isLoaded = (made.loadLibrary(ZQ_LIBRARY), true);
    require(isLoaded, "the library is loaded");
    return made;
}

korvex::Array namesOf(const Names& names) {
    std::vector<korvex::Array> elements;
    for (const std::u16string& name : names) elements.push_back(korvex::text(name));
    return korvex::cell(std::move(elements));
}

korvex::Array listsOf(const Lists& lists) {
    std::vector<korvex::Array> elements;
    for (const Names& names : lists) elements.push_back(namesOf(names));
    return korvex::cell(std::move(elements));
}

Names namesIn(const kxArray* column) {
    Names names;
    for (std::size_t i = 0; i < kxGetNumberOfElements(column); ++i)
        names.emplace_back(kxGetCharacters(kxGetCell(column, i)));
    return names;
}

/// The plain set takes names for codes: all that it asks of them is whether two are the same.
Bytes codeOf(const std::u16string& name) {
    Bytes code;
    for (const char16_t character : name) code.push_back(static_cast<std::uint8_t>(character));
    return code;
}

Path codesOf(const Names& names) {
    Path codes;
    for (const std::u16string& name : names) codes.push_back(codeOf(name));
    return codes;
}

template <class Call>
bool isRefused(Call call) {
    return !fuzzing::succeeds<korvex::Error>(call);
}

/// An object and what it should hold.
struct Pair {
    korvex::Object object;
    PlainPathSet plain;
};

class Calls {
public:
    explicit Calls(InputScript& script) : script_(script) {}

    void run() {
        for (std::size_t done = 0; done < kMaxCalls && !script_.isAtEnd(); ++done) {
            std::optional<Pair>& pair = choosePair();
            const unsigned choice = script_.byte() % 12;
            if (!pair || choice == 0)
                pair = made();
            else
                call(*pair, choice);
        }
        for (std::optional<Pair>& pair : pairs_)
            if (pair) requireSame(*pair);
    }

private:
    void call(Pair& pair, unsigned choice) {
        switch (choice) {
            case 1:
            case 2:
            case 3:
                add(pair);
                break;
            case 4:
            case 5:
                fetch(pair);
                break;
            case 6:
                walk(pair);
                break;
            case 7:
                copy(pair, choosePair());
                break;
            case 8:
                restore(pair);
                break;
            case 9:
                requireSame(pair);
                break;
            default:
                misuse(pair);
                break;
        }
    }

    std::optional<Pair>& choosePair() { return pairs_[script_.byte() % pairs_.size()]; }

    Pair made() {
        std::vector<double> frequencies;
        for (std::size_t i = 0; i < kNameCharacters.size(); ++i)
            frequencies.push_back(script_.byte());
        return {session().construct(kClassName, korvex::text(u"frequencies"),
                                    korvex::text(kNameCharacters), korvex::numbers(frequencies)),
                {}};
    }

    void add(Pair& pair) {
        Lists folders(script_.byte() % 4);
        Lists files;
        for (Names& folder : folders) {
            folder = chooseNames(script_, 1);
            files.push_back(chooseNames(script_, 1));
            pair.plain.addEntry(codesOf(folder), codesOf(files.back()));
        }
        pair.object.call("addPaths", 0, listsOf(folders), listsOf(files));
    }

    /// The components of the paths with these numbers, one after the other; nothing if the numbers
    /// are refused.
    static std::optional<std::vector<Path>> fetched(Pair& pair,
                                                    const std::vector<double>& numbers) {
        std::vector<Path> paths;
        const auto ask = [&] {
            const auto outputs = pair.object.call("getPaths", 2, korvex::numbers(numbers));
            const kxArray* const folders = outputs.at(0).get();
            for (std::size_t group = 0; group < kxGetNumberOfElements(folders); ++group) {
                const Path folder = codesOf(namesIn(kxGetCell(folders, group)));
                for (const Bytes& file : codesOf(namesIn(kxGetCell(outputs.at(1).get(), group)))) {
                    paths.push_back(folder);
                    paths.back().push_back(file);
                }
            }
        };
        return isRefused(ask) ? std::nullopt : std::optional(paths);
    }

    /// Nothing for a number whose path the plain set does not know for certain.
    static std::optional<Path> expected(const Pair& pair, std::size_t number) {
        const PlainPathSet::Fetched path = pair.plain.fetch(number);
        if (path.kind != PlainPathSet::Fetched::Kind::kPath) return std::nullopt;
        Path components = path.entry->components;
        components.push_back(path.file->key);
        return components;
    }

    void fetch(Pair& pair) {
        if (pair.plain.pathCount() == 0) return;
        std::vector<double> numbers(1 + script_.byte() % 8);
        std::vector<Path> paths;
        for (double& number : numbers) {
            const std::size_t chosen = 1 + script_.byte() % pair.plain.pathCount();
            const std::optional<Path> path = expected(pair, chosen);
            if (!path) return;
            number = static_cast<double>(chosen);
            paths.push_back(*path);
        }
        require(fetched(pair, numbers) == paths, "paths are fetched in the order asked");
    }

    void walk(Pair& pair) {
        const unsigned steps = script_.byte();
        if (steps % 2 == 0) {
            pair.object.call("reset", 0);
            pair.plain.resetWalk();
        }
        for (unsigned left = steps / 2 % 16; left > 0; --left) {
            const auto hasNext = pair.object.call("hasNextPath", 1);
            require((kxGetNumber(hasNext.at(0).get(), 0) != 0) == pair.plain.hasNext(),
                    "the walk ends in time");
            const std::optional<PlainPathSet::Step> step = pair.plain.next();
            Path path;
            const bool isOver = isRefused([&] {
                const auto outputs = pair.object.call("getNextPath", 1);
                path = codesOf(namesIn(outputs.at(0).get()));
            });
            require(isOver == !step.has_value(), "the walk gives a path or none");
            require(!step || path == step->path, "the walk gives the paths in order");
        }
    }

    static void copy(const Pair& from, std::optional<Pair>& to) {
        const korvex::Array self = from.object.toArray();
        to.emplace(Pair{session().construct(kClassName, korvex::text(u"copy"), self), from.plain});
        requireSame(*to);
    }

    /// From what serialize gives, or as the host keeps objects.
    void restore(Pair& pair) {
        const PlainPathSet plain = pair.plain.loaded();
        if (script_.byte() % 2 == 0) {
            const auto saved = pair.object.call("serialize", 2);
            pair = {session().construct(kClassName, korvex::text(u"tree"), saved.at(0), saved.at(1),
                                        korvex::numbers({})),
                    plain};
        } else {
            const korvex::Array saved = pair.object.save({"StringTree", "PathTree"});
            pair = {session().load(kClassName, saved), plain};
        }
        requireSame(pair);
    }

    /// All are refused, and nothing has changed.
    void misuse(Pair& pair) {
        korvex::Object& object = pair.object;
        const auto past = static_cast<double>(pair.plain.pathCount() + 1);
        const korvex::Array good = listsOf({{u"a"}});
        const korvex::Array text = korvex::text(u"ab");
        const auto refusedFetch = [&](double number) { return !fetched(pair, {number}); };
        bool isAll = true;
        switch (script_.byte() % 8) {
            case 0:
                isAll = refusedFetch(past) && refusedFetch(0) && refusedFetch(-1);
                break;
            case 1:
                isAll = refusedFetch(0.5) && !fetched(pair, {1, past});
                break;
            case 2:
                isAll = isRefused([&] { object.call("addPaths", 0, good, listsOf({{u"?"}})); });
                break;
            case 3:
                isAll = isRefused([&] { object.call("addPaths", 0, good, listsOf({{u""}})); });
                break;
            case 4:
                isAll = isRefused([&] {
                    object.call("addPaths", 0, good, listsOf({{u"a"}, {u"b"}}));
                });
                break;
            case 5:
                isAll = isRefused([&] { object.call("addPaths", 0, text, good); }) &&
                        isRefused([&] { object.call("addPaths", 0, good, listsOf({{}})); });
                break;
            case 6:
                isAll = isRefused([&] { object.call("getPaths", 2, text, good); });
                break;
            default:
                isAll = isRefused([&] { object.call("noSuchMethod", 1); }) &&
                        isRefused([&] { object.get("NoSuchProperty"); });
        }
        require(isAll, "what cannot be meant is refused");
        requireSame(pair);
    }

    static void requireSame(Pair& pair) {
        for (std::size_t number = 1; number <= pair.plain.pathCount(); ++number) {
            const std::optional<Path> path = expected(pair, number);
            if (!path) continue;
            require(fetched(pair, {static_cast<double>(number)}) == std::vector<Path>{*path},
                    "an object holds the paths that were added");
        }
        const auto past = static_cast<double>(pair.plain.pathCount() + 1);
        require(!fetched(pair, {past}), "an object holds no other paths");
    }

    InputScript& script_;
    std::array<std::optional<Pair>, 3> pairs_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    session();
    const foundation::core::LiveObjects before = liveObjects();
    InputScript script(data, size);
    Calls(script).run();
    require(liveObjects() == before, "as many objects are freed as were made");
    return 0;
}
