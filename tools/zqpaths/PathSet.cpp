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

bool hasNumber(korvex::Object& object, std::uint64_t number) {
    try {
        const double value = static_cast<double>(number);
        object.call("getPaths", 1, korvex::numbers({&value, 1}), korvex::text(kSeparatorText));
        return true;
    } catch (const korvex::Error&) {
        return false;
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

void appendNames(const kxArray* names, std::vector<std::string>& out) {
    for (std::size_t i = 0; i < kxGetNumberOfElements(names); ++i)
        appendBytes(kxGetCharacters(kxGetCell(names, i)), out.emplace_back());
}

}  // namespace

PathSet::PathSet(const CharacterCounts& characters) : PathSet(construct(characters), 0) {}

PathSet::PathSet(korvex::Object object, std::uint64_t size)
    : object_(std::move(object)), size_(size) {}

PathSet PathSet::restored(korvex::Array fields) {
    const kxArray* const structure = fields.get();
    for (const char* name : {kTreeStringField, kPathTreeField})
        if (kxGetFieldNumber(structure, name) < 0)
            throw Failure(ExitStatus::kDamaged, std::string("the set has no field ") + name);
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
    PathSet set(object, countPaths(object));
    if (set.characters() != characters)
        throw Failure(ExitStatus::kDamaged, "the saved form of the paths cannot be read");
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
    const auto outputs = object_.call("getPaths", 1, korvex::numbers(toDoubles(numbers)),
                                      korvex::text(kSeparatorText));
    std::string bytes;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        toBytes(kxGetCharacters(kxGetCell(outputs[0].get(), i)), bytes);
        visit(numbers[i], bytes);
    }
}

void PathSet::getGroups(std::span<const std::uint64_t> numbers, const GroupVisitor& visit) {
    std::ranges::for_each(numbers, [this](std::uint64_t number) { requireNumber(number); });
    std::string folder;
    std::vector<std::string> fileNames;
    for (; !numbers.empty(); numbers = numbers.subspan(std::min(kPathsACall, numbers.size()))) {
        const auto some = numbers.first(std::min(kPathsACall, numbers.size()));
        const auto outputs = object_.call("getPaths", 2, korvex::numbers(toDoubles(some)));
        for (std::size_t group = 0; group < kxGetNumberOfElements(outputs[0].get()); ++group) {
            std::string nextFolder = folderBytes(kxGetCell(outputs[0].get(), group));
            if (nextFolder != folder && !fileNames.empty()) {
                visit(folder, fileNames);
                fileNames.clear();
            }
            folder = std::move(nextFolder);
            appendNames(kxGetCell(outputs[1].get(), group), fileNames);
        }
    }
    if (!fileNames.empty()) visit(folder, fileNames);
}

void PathSet::walk(const PathBytesVisitor& visit) {
    object_.call("reset", 0);
    std::string bytes;
    while (kxGetData<bool>(object_.call("hasNextPath", 1)[0].get())[0]) {
        const auto outputs = object_.call("getNextPath", 1);
        toBytes(joinComponents(outputs[0].get()), bytes);
        visit(bytes);
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
