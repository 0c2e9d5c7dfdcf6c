// Calls of the C interface on a few sets and writers, each compared with what plain lists of paths
// say; arguments that are refused are among them.

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "zqpaths/search/PathScope.hpp"
#include "zqpaths/zqpaths.h"

using fuzzing::InputScript;
using fuzzing::require;

namespace {

using Paths = std::vector<std::string>;

constexpr std::size_t kMaxCalls = 40;
constexpr std::size_t kMaxPaths = 300;

const fuzzing::TemporaryFolder& folder() {
    static const fuzzing::TemporaryFolder made;
    return made;
}

struct CloseSet {
    void operator()(zqp_set* set) const noexcept { zqp_close(set); }
};
struct CloseWriter {
    void operator()(zqp_writer* writer) const noexcept { zqp_writer_close(writer); }
};

/// What is in a file, as long as there is one.
struct File {
    std::string name;
    std::optional<Paths> paths{};
};

/// An opened set and what was in the file when it was opened.
struct OpenSet {
    std::unique_ptr<zqp_set, CloseSet> set;
    std::string name;
    Paths paths;
};

struct OpenWriter {
    std::unique_ptr<zqp_writer, CloseWriter> writer;
    File* file = nullptr;
    Paths paths;  // that the file will have
    bool isCommitted = false;
};

/// What a visit gives, until it has given enough.
struct Visited {
    Paths paths;
    std::vector<std::uint64_t> numbers;
    std::size_t limit = std::numeric_limits<std::size_t>::max();

    static int take(void* context, std::uint64_t number, const char* path, size_t length) {
        auto& visited = *static_cast<Visited*>(context);
        visited.paths.emplace_back(path, length);
        visited.numbers.push_back(number);
        return visited.paths.size() < visited.limit ? ZQP_GO_ON : ZQP_STOP;
    }
};

class Calls {
public:
    explicit Calls(InputScript& script) : script_(script) {
        folder().clear();
        for (std::size_t i = 0; i < files_.size(); ++i)
            files_[i].name = folder().pathOf("set" + std::to_string(i));
    }

    void run() {
        for (std::size_t done = 0; done < kMaxCalls && !script_.isAtEnd(); ++done) {
            const unsigned choice = script_.byte() % 16;
            OpenSet& set = sets_[script_.byte() % sets_.size()];
            OpenWriter& writer = writers_[script_.byte() % writers_.size()];
            if (choice < 2)
                open(set);
            else if (choice < 4)
                openWriter(writer);
            else if (choice < 7)
                add(writer);
            else if (choice == 7)
                commit(writer);
            else if (choice == 8)
                writer = {};  // discards what was not committed
            else if (choice == 9)
                misuse(set, writer);
            else if (set.set)
                ask(set, choice);
        }
        writers_ = {};
        for (const File& file : files_) checkFile(file);
    }

private:
    File& chooseFile() { return files_[script_.byte() % files_.size()]; }

    /// Of few names, so that folders and paths come again; any bytes at times.
    std::string choosePath() {
        const unsigned shape = script_.byte();
        if (shape >= 240) {
            const auto bytes = script_.bytes(shape - 239);
            return {bytes.begin(), bytes.end()};
        }
        std::string path(shape % 5 == 0 ? "/" : "");
        for (unsigned left = shape / 5 % 4; left > 0; --left) {
            path += static_cast<char>('a' + script_.byte() % 4);
            path += left % 3 == 2 && shape % 7 == 0 ? "//" : "/";
        }
        path += static_cast<char>('a' + script_.byte() % 8);
        return path;
    }

    static void requireStatus(zqp_status is, zqp_status expected, const char* law) {
        require(is == expected, law);
        if (is != ZQP_OK) require(*zqp_last_error() != '\0', "a failure has a text");
    }

    void open(OpenSet& set) {
        const File& file = chooseFile();
        auto* opened = reinterpret_cast<zqp_set*>(1);
        const zqp_status status = zqp_open(file.name.c_str(), &opened);
        if (!file.paths) {
            requireStatus(status, ZQP_NOT_FOUND, "there is no such file");
            require(opened == nullptr, "no set after an error");
            return;
        }
        requireStatus(status, ZQP_OK, "a set is opened");
        set = {std::unique_ptr<zqp_set, CloseSet>(opened), file.name, *file.paths};
        require(zqp_size(opened) == set.paths.size(), "the paths are counted");
        require(zqp_file(opened) == file.name, "the file is that which was given");
    }

    /// One writer at a time has a file: another would wait for it.
    bool isHeld(const File& file) const {
        return std::ranges::any_of(writers_, [&](const OpenWriter& writer) {
            return writer.writer && !writer.isCommitted && writer.file == &file;
        });
    }

    void openWriter(OpenWriter& writer) {
        writer = {};
        File& file = chooseFile();
        const unsigned how = script_.byte() % 4;
        if (isHeld(file)) return;
        zqp_writer* opened = nullptr;
        const unsigned form = script_.byte() % 2 == 0 ? 0 : ZQP_PACKED;
        const zqp_status status = zqp_writer_open(file.name.c_str(), how | form, &opened);
        zqp_status expected = ZQP_OK;
        if (how > ZQP_APPEND) expected = ZQP_WRONG_USE;
        if (how == ZQP_CREATE && file.paths) expected = ZQP_EXISTS;
        if (how == ZQP_APPEND && !file.paths) expected = ZQP_NOT_FOUND;
        requireStatus(status, expected, "a writer is opened or refused");
        require((opened != nullptr) == (status == ZQP_OK), "no writer after an error");
        if (status != ZQP_OK) return;
        writer.writer.reset(opened);
        writer.file = &file;
        if (how == ZQP_APPEND) writer.paths = *file.paths;
        require(zqp_writer_size(opened) == writer.paths.size(), "a writer counts what was there");
    }

    void add(OpenWriter& writer) {
        if (!writer.writer) return;
        for (unsigned left = 1 + script_.byte() % 8; left > 0; --left) {
            const std::string path = choosePath();
            const bool isPath = !path.empty() && path.find('\0') == std::string::npos;
            if (writer.paths.size() >= kMaxPaths) return;
            const bool isTaken = isPath && !writer.isCommitted;
            requireStatus(zqp_writer_add(writer.writer.get(), path.data(), path.size()),
                          isTaken ? ZQP_OK : ZQP_WRONG_USE, "a path is taken");
            if (isTaken) writer.paths.push_back(path);
            require(zqp_writer_size(writer.writer.get()) == writer.paths.size(),
                    "a writer counts what was added");
        }
    }

    static void commit(OpenWriter& writer) {
        if (!writer.writer) return;
        requireStatus(zqp_writer_commit(writer.writer.get()),
                      writer.isCommitted ? ZQP_WRONG_USE : ZQP_OK, "a writer commits once");
        if (!writer.isCommitted) writer.file->paths = writer.paths;
        writer.isCommitted = true;
    }

    void misuse(const OpenSet& set, const OpenWriter& writer) {
        zqp_set* const given = set.set.get();
        std::uint64_t number = 0;
        std::size_t length = 0;
        const std::array<zqp_status, 16> refused{
            zqp_open(nullptr, nullptr),
            zqp_get(nullptr, 1, nullptr, 0, &length),
            zqp_get(given, 0, nullptr, 0, &length),
            zqp_get(given, set.paths.size() + 1, nullptr, 0, &length),
            zqp_get(given, 1, nullptr, 0, nullptr),
            zqp_get(given, 1, nullptr, 1, &length),
            zqp_get_many(given, nullptr, 1, nullptr, 0, &length),
            zqp_number_of(given, nullptr, 1, &number),
            zqp_number_of(given, "a", 1, nullptr),
            zqp_is_gone(given, set.paths.size() + 1, nullptr),
            zqp_for_each(given, nullptr, nullptr),
            zqp_for_range(given, 1, set.paths.size() + 1, Visited::take, nullptr),
            zqp_find(given, "[", 1, ZQP_REGEX, Visited::take, nullptr),
            zqp_count(given, "a", 1, 7, &number),
            zqp_writer_add(writer.writer.get(), nullptr, 1),
            zqp_writer_commit(nullptr)};
        for (const zqp_status status : refused)
            requireStatus(status, ZQP_WRONG_USE, "what cannot be meant is refused");
        require(zqp_size(nullptr) == 0 && zqp_writer_size(nullptr) == 0 &&
                    zqp_gone_count(nullptr) == 0 && zqp_file(nullptr) == nullptr,
                "nothing has nothing");
    }

    void ask(const OpenSet& set, unsigned choice) {
        switch (choice) {
            case 10:
                get(set);
                break;
            case 11:
                getMany(set);
                break;
            case 12:
                numberOf(set);
                break;
            case 13:
                visitRange(set);
                break;
            case 14:
                search(set);
                break;
            default:
                checkSet(set);
                break;
        }
    }

    void get(const OpenSet& set) {
        if (set.paths.empty()) return;
        const std::size_t index = script_.byte() % set.paths.size();
        const std::string& path = set.paths[index];
        std::string buffer(script_.byte() % 16, '#');
        std::size_t length = 0;
        const bool fits = path.size() + 1 <= buffer.size();
        requireStatus(zqp_get(set.set.get(), index + 1, buffer.empty() ? nullptr : buffer.data(),
                              buffer.size(), &length),
                      fits ? ZQP_OK : ZQP_TOO_SMALL, "a path fits or does not");
        require(length == path.size(), "the length is told all the same");
        if (fits)
            require(buffer.substr(0, length + 1) == path + '\0', "a path ends with a NUL");
        else
            require(buffer.find_first_not_of('#') == std::string::npos, "the buffer is as it was");
    }

    void getMany(const OpenSet& set) {
        if (set.paths.empty()) return;
        std::vector<std::uint64_t> numbers(script_.byte() % 8);
        std::string expected;
        for (std::uint64_t& number : numbers) {
            number = 1 + script_.byte() % set.paths.size();
            expected += set.paths[number - 1];
        }
        std::string bytes(script_.byte(), '\0');
        std::vector<std::size_t> offsets(numbers.size() + 1);
        const bool fits = expected.size() <= bytes.size();
        requireStatus(zqp_get_many(set.set.get(), numbers.data(), numbers.size(), bytes.data(),
                                   bytes.size(), offsets.data()),
                      fits ? ZQP_OK : ZQP_TOO_SMALL, "paths fit or do not");
        require(offsets.back() == expected.size(), "the size of all is told");
        for (std::size_t i = 0; i < numbers.size(); ++i)
            require(offsets[i + 1] - offsets[i] == set.paths[numbers[i] - 1].size(),
                    "the offsets are those of the paths");
        if (fits) require(bytes.starts_with(expected), "the paths stand one after the other");
    }

    void numberOf(const OpenSet& set) {
        const std::string path = choosePath();
        const auto found = std::ranges::find(set.paths, path);
        std::uint64_t number = 7;
        requireStatus(zqp_number_of(set.set.get(), path.data(), path.size(), &number), ZQP_OK,
                      "any path may be asked for");
        require(number == (found == set.paths.end()
                               ? 0
                               : static_cast<std::uint64_t>(found - set.paths.begin()) + 1),
                "a path has its lowest number");
    }

    void visitRange(const OpenSet& set) {
        if (set.paths.empty()) return;
        const std::size_t first = script_.byte() % set.paths.size();
        const std::size_t last = script_.byte() % set.paths.size();
        Visited visited;
        visited.limit = 1 + script_.byte() % 64;
        requireStatus(zqp_for_range(set.set.get(), first + 1, last + 1, Visited::take, &visited),
                      ZQP_OK, "a range is visited");
        const std::size_t count = (first > last ? first - last : last - first) + 1;
        require(visited.paths.size() == std::min(count, visited.limit), "a visit stops in time");
        for (std::size_t i = 0; i < visited.paths.size(); ++i) {
            const std::size_t index = first > last ? first - i : first + i;
            require(visited.numbers[i] == index + 1 && visited.paths[i] == set.paths[index],
                    "a range is visited in its order");
        }
    }

    /// The paths by a rule, as the interface is to visit them.
    template <class Rule>
    static void requireVisited(const OpenSet& set, const Visited& visited, Rule rule,
                               const char* law) {
        std::size_t next = 0;
        for (std::size_t i = 0; i < set.paths.size(); ++i) {
            if (!rule(set.paths[i])) continue;
            require(next < visited.paths.size() && visited.numbers[next] == i + 1 &&
                        visited.paths[next] == set.paths[i],
                    law);
            ++next;
        }
        require(next == visited.paths.size(), law);
    }

    void search(const OpenSet& set) {
        const std::string text = choosePath();
        const bool hasNul = text.find('\0') != std::string::npos;
        if (hasNul) return;
        Visited found;
        requireStatus(
            zqp_find(set.set.get(), text.data(), text.size(), ZQP_TEXT, Visited::take, &found),
            ZQP_OK, "any text may be looked for");
        const auto holds = [&](const std::string& path) {
            return path.find(text) != std::string::npos;
        };
        requireVisited(set, found, holds, "a text is found where it is");
        std::uint64_t count = 0;
        requireStatus(zqp_count(set.set.get(), text.data(), text.size(), ZQP_TEXT, &count), ZQP_OK,
                      "any text may be counted");
        require(count == found.paths.size(), "what is found is counted");
        Visited below;
        requireStatus(zqp_under(set.set.get(), text.data(), text.size(), Visited::take, &below),
                      ZQP_OK, "any folder may be asked for");
        const zqpaths::PathScope scope(text);
        requireVisited(
            set, below, [&](const std::string& path) { return scope.contains(path); },
            "a folder has the paths below it");
    }

    static void checkSet(const OpenSet& set) {
        Visited visited;
        requireStatus(zqp_for_each(set.set.get(), Visited::take, &visited), ZQP_OK,
                      "all paths are visited");
        require(visited.paths == set.paths, "a set has the paths that were committed");
        Visited walked;
        requireStatus(zqp_walk(set.set.get(), Visited::take, &walked), ZQP_OK, "a set is walked");
        for (const std::string& path : walked.paths)
            require(std::ranges::find(set.paths, path) != set.paths.end(),
                    "a walk gives paths of the set");
        requireStatus(zqp_verify(set.set.get(), nullptr, nullptr), ZQP_OK, "a set is whole");
        require(zqp_gone_count(set.set.get()) == 0, "nothing is gone");
        int isGone = 1;
        if (set.paths.empty()) return;
        requireStatus(zqp_is_gone(set.set.get(), set.paths.size(), &isGone), ZQP_OK,
                      "each path may be asked for");
        require(isGone == 0, "no path is gone");
    }

    static void checkFile(const File& file) {
        require(std::filesystem::exists(file.name) == file.paths.has_value(),
                "a file is there once it was committed");
        if (!file.paths) return;
        zqp_set* opened = nullptr;
        requireStatus(zqp_open(file.name.c_str(), &opened), ZQP_OK, "a set is opened");
        checkSet({std::unique_ptr<zqp_set, CloseSet>(opened), file.name, *file.paths});
    }

    InputScript& script_;
    std::array<File, 3> files_;
    std::array<OpenSet, 3> sets_;
    std::array<OpenWriter, 2> writers_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    Calls(script).run();
    return 0;
}
