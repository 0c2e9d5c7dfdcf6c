#include "tools/zqpaths/PathSet.hpp"

#include <unistd.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "host/matrix/Matrix.hpp"

#include "tools/zqpaths/CharacterCounts.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/NumberRanges.hpp"
#include "tools/zqpaths/PathBatch.hpp"
#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::u16string_view kSeparatorText = u"/";

korvex::Object construct(const CharacterCounts& characters) {
    return pathSetSession().construct(kPathSetClass, korvex::text(u"frequencies"),
                                      korvex::text(characters.characters()),
                                      korvex::numbers(characters.frequencies()));
}

std::vector<double> toDoubles(std::span<const std::uint64_t> numbers) {
    return {numbers.begin(), numbers.end()};
}

/// Sends what is written to standard output to standard error while it lives: the class tells there
/// that it could not load a set, and standard output is for paths.
class StandardOutputAside {
public:
    StandardOutputAside() : kept_(dup(STDOUT_FILENO)) { dup2(STDERR_FILENO, STDOUT_FILENO); }
    StandardOutputAside(const StandardOutputAside&) = delete;
    StandardOutputAside& operator=(const StandardOutputAside&) = delete;
    ~StandardOutputAside() {
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }

private:
    int kept_;
};

/// The class's words for a number beyond its paths. Whatever else keeps a path from being read, it
/// has a number, and is not to be lost in silence.
constexpr std::string_view kNoSuchNumber =
    "The path number is not a whole number from 1 to the number of paths.";

bool hasNumber(korvex::Object& object, std::uint64_t number) {
    try {
        const auto value = static_cast<double>(number);
        object.call("getPaths", 1, korvex::numbers({&value, 1}), korvex::text(kSeparatorText));
        return true;
    } catch (const korvex::Error& error) {
        return error.what() != kNoSuchNumber;
    }
}

/// The class does not tell how many paths it has, but refuses numbers that it has not.
/// O(log paths) calls.
std::uint64_t countPaths(korvex::Object& object) {
    std::uint64_t beyond = 1;
    while (hasNumber(object, beyond)) beyond *= 2;
    std::uint64_t present = beyond / 2;
    while (beyond - present > 1) {
        const std::uint64_t middle = present + (beyond - present) / 2;
        (hasNumber(object, middle) ? present : beyond) = middle;
    }
    return present;
}

void toBytes(std::u16string_view text, std::string& bytes) {
    const bool hasNoFolder = !text.empty() && text.front() == u'\0';
    bytes.clear();
    appendBytes(hasNoFolder ? text.substr(1) : text, bytes);
}

/// The text of a column of components: the first carries the separators behind it.
std::u16string joinComponents(const kxArray* names) {
    std::u16string text;
    for (std::size_t i = 0; i < kxGetNumberOfElements(names); ++i) {
        if (i > 1) text += kSeparatorText;
        text += kxGetCharacters(kxGetCell(names, i));
    }
    return text;
}

/// The text of a folder as it stands in front of its files.
std::string folderBytes(const kxArray* names) {
    std::u16string text = joinComponents(names);
    if (kxGetNumberOfElements(names) > 1) text += kSeparatorText;
    std::string bytes;
    toBytes(text, bytes);
    return bytes;
}

std::vector<std::string> nameBytes(const kxArray* names) {
    std::vector<std::string> bytes(kxGetNumberOfElements(names));
    for (std::size_t i = 0; i < bytes.size(); ++i)
        appendBytes(kxGetCharacters(kxGetCell(names, i)), bytes[i]);
    return bytes;
}

std::size_t countNames(const kxArray* groups) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < kxGetNumberOfElements(groups); ++i)
        count += kxGetNumberOfElements(kxGetCell(groups, i));
    return count;
}

}  // namespace

PathSet::PathSet(const CharacterCounts& characters)
    : PathSet(construct(characters), 0, "the new set") {}

PathSet::PathSet(korvex::Object object, std::uint64_t size, std::string name)
    : object_(std::move(object)), size_(size), name_(std::move(name)) {}

PathSet PathSet::restored(korvex::Array fields, const std::string& name) {
    const kxArray* const structure = fields.get();
    for (const char* field : {kTreeStringField, kPathTreeField})
        if (kxGetFieldNumber(structure, field) < 0)
            throw failureAt(name, std::string("has no field ") + field, ExitStatus::kDamaged);
    const std::u16string characters =
        matrix::get_ustring(kxGetField(structure, 0, kTreeStringField));
    std::vector<double> frequencies;
    if (kxGetFieldNumber(structure, kFrequenciesField) >= 0)
        frequencies = matrix::get_doubles(kxGetField(structure, 0, kFrequenciesField));

    const auto load = [&fields] {
        const StandardOutputAside aside;
        return pathSetSession().load(kPathSetClass, std::move(fields));
    };
    korvex::Object object = load();
    PathSet set(object, countPaths(object), name);
    if (set.characters() != characters)
        throw failureAt(name, "the saved form of the paths cannot be read", ExitStatus::kDamaged);
    set.setFrequencies(frequencies);
    return set;
}

void PathSet::add(PathBatch& batch) {
    const std::size_t count = batch.size();
    const korvex::Array folders = batch.takeFolders();
    const korvex::Array files = batch.takeFiles();
    object_.call("addPaths", 0, folders, files);
    size_ += count;
}

void PathSet::get(std::uint64_t first, std::uint64_t last, const NumberedPathVisitor& visit) {
    if (first > last) return;
    requireNumber(first);
    requireNumber(last);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t begin = first; begin <= last; begin += kPathsACall) {
        numbers.resize(std::min<std::uint64_t>(kPathsACall, last - begin + 1));
        std::iota(numbers.begin(), numbers.end(), begin);
        visitSome(numbers, visit);
    }
}

void PathSet::get(std::span<const std::uint64_t> numbers, const NumberedPathVisitor& visit) {
    std::ranges::for_each(numbers, [this](std::uint64_t number) { requireNumber(number); });
    for (; !numbers.empty(); numbers = numbers.subspan(std::min(kPathsACall, numbers.size())))
        visitSome(numbers.first(std::min(kPathsACall, numbers.size())), visit);
}

void PathSet::visitSome(std::span<const std::uint64_t> numbers, const NumberedPathVisitor& visit) {
    std::vector<korvex::Array> outputs;
    try {
        outputs = object_.call("getPaths", 1, korvex::numbers(toDoubles(numbers)),
                               korvex::text(kSeparatorText));
    } catch (const korvex::Error& error) {
        if (numbers.size() == 1) throw unreadable(numbers.front(), error.what());
        // One by one, up to the one that cannot be read.
        for (const std::uint64_t& number : numbers) visitSome({&number, 1}, visit);
        return;
    }
    std::string bytes;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const kxArray* const path = kxGetCell(outputs[0].get(), i);
        if (kxGetClass(path) != kxClass::kCharacter)
            throw unreadable(numbers[i], "it is in none of the folders that were added");
        toBytes(kxGetCharacters(path), bytes);
        visit(numbers[i], bytes);
    }
}

Failure PathSet::unreadable(std::uint64_t number, const std::string& reason) const {
    return failureAt(name_, "path " + std::to_string(number) + " cannot be read: " + reason,
                     ExitStatus::kDamaged);
}

std::vector<korvex::Array> PathSet::fetchGroups(std::span<const std::uint64_t> numbers) {
    const auto tellWhichIsUnreadable = [&] { visitSome(numbers, [](auto...) {}); };
    try {
        auto groups = object_.call("getPaths", 2, korvex::numbers(toDoubles(numbers)));
        if (countNames(groups[1].get()) != numbers.size()) tellWhichIsUnreadable();
        return groups;
    } catch (const korvex::Error&) {
        tellWhichIsUnreadable();
        throw;
    }
}

void PathSet::getGroups(std::span<const std::uint64_t> numbers, const GroupVisitor& visit) {
    std::ranges::for_each(numbers, [this](std::uint64_t number) { requireNumber(number); });
    for (; !numbers.empty(); numbers = numbers.subspan(std::min(kPathsACall, numbers.size()))) {
        const auto groups = fetchGroups(numbers.first(std::min(kPathsACall, numbers.size())));
        for (std::size_t i = 0; i < kxGetNumberOfElements(groups[0].get()); ++i)
            visit(folderBytes(kxGetCell(groups[0].get(), i)),
                  nameBytes(kxGetCell(groups[1].get(), i)));
    }
}

void PathSet::walk(const PathBytesVisitor& visit) {
    object_.call("reset", 0);
    std::string bytes;
    while (kxGetData<bool>(object_.call("hasNextPath", 1)[0].get())[0]) {
        toBytes(joinComponents(nextPath().get()), bytes);
        visit(bytes);
    }
}

korvex::Array PathSet::nextPath() {
    try {
        return std::move(object_.call("getNextPath", 1)[0]);
    } catch (const korvex::Error& error) {
        throw failureAt(name_, std::string("the paths cannot be walked: ") + error.what(),
                        ExitStatus::kDamaged);
    }
}

std::u16string PathSet::characters() const {
    return matrix::get_ustring(object_.get(kTreeStringField).get());
}

std::vector<double> PathSet::frequencies() const {
    return matrix::get_doubles(object_.get(kFrequenciesField).get());
}

void PathSet::setFrequencies(std::span<const double> frequencies) {
    object_.set(kFrequenciesField, korvex::numbers(frequencies));
}

korvex::Array PathSet::fields() {
    auto pieces = object_.call("serialize", 2);
    korvex::Array structure(
        kxCreateStructure({1, 1}, {kTreeStringField, kPathTreeField, kFrequenciesField}));
    kxReplaceField(structure.get(), 0, kTreeStringField, pieces[0].release());
    kxReplaceField(structure.get(), 0, kPathTreeField, pieces[1].release());
    kxReplaceField(structure.get(), 0, kFrequenciesField, object_.get(kFrequenciesField).release());
    return structure;
}

void PathSet::requireNumber(std::uint64_t number) const {
    requirePathNumber(number, size_);
}

}  // namespace zqpaths
