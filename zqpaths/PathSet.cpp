#include "zqpaths/PathSet.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/search/PathsUnder.hpp"
#include "zqpaths/search/PatternSearch.hpp"
#include "zqpaths/set/OpenedSet.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/PathsByNumber.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kPathsAStep = 1000;  // of an iterator

/// All that are read together: so many numbers after one, up to the last.
PathNumbers pieceFrom(std::uint64_t first, std::uint64_t last) {
    return {first, first + std::min(kPathsPerPiece - 1, last - first)};
}

/// Some paths, and those after them that have not been read because these are so long.
struct NumberedPiece {
    PathBuffer paths;
    PathNumbers left;

    bool hasAll() const noexcept { return left.first > left.last; }
};

NumberedPiece makePiece(const OpenedSet& set, PathNumbers numbers) {
    NumberedPiece piece{{}, numbers};
    piece.left.first = set.appendPaths(numbers, piece.paths);
    return piece;
}

bool visitUpwards(const OpenedSet& set, NumberedPiece piece, PathVisitor visit) {
    while (piece.paths.visit(visit)) {
        if (piece.hasAll()) return true;
        piece = makePiece(set, piece.left);
    }
    return false;
}

/// What is read begins at the lowest number: where that is not all, the half above comes first.
bool visitDownwards(const OpenedSet& set, const NumberedPiece& piece, PathNumbers numbers,
                    PathVisitor visit) {
    if (piece.hasAll()) return piece.paths.visitBackwards(visit);
    const std::uint64_t middle = numbers.first + (numbers.last - numbers.first) / 2;
    for (const PathNumbers half :
         {PathNumbers{middle + 1, numbers.last}, PathNumbers{numbers.first, middle}})
        if (!visitDownwards(set, makePiece(set, half), half, visit)) return false;
    return true;
}

/// The paths from `first` to `last`, in this order or the other one.
bool visitAll(const OpenedSet& set, PathNumbers numbers, bool isBackwards, PathVisitor visit) {
    const std::uint64_t count = numbers.last - numbers.first + 1;
    const std::uint64_t pieceCount = (count + kPathsPerPiece - 1) / kPathsPerPiece;
    const auto numbersOf = [&](std::size_t step) {
        const std::uint64_t piece = isBackwards ? pieceCount - 1 - step : step;
        return pieceFrom(numbers.first + piece * kPathsPerPiece, numbers.last);
    };
    std::size_t taken = 0;
    return makeInOrder(
        pieceCount, threadsFor(count),
        [&](std::size_t step) { return makePiece(set, numbersOf(step)); },
        [&](NumberedPiece piece) {
            const PathNumbers own = numbersOf(taken++);
            return isBackwards ? visitDownwards(set, piece, own, visit)
                               : visitUpwards(set, std::move(piece), visit);
        });
}

/// The number of a path in a segment, if it is there.
std::optional<std::uint64_t> numberIn(const Segment& segment,
                                      const std::vector<std::u16string>& folder,
                                      const std::u16string& fileName) {
    return segment.read(
        [&](const compressedpaths::HuffmanPathTree& set) -> std::optional<std::uint64_t> {
            const auto id = set.folderOf(folder);
            const auto position = id ? set.numberOf(*id, fileName) : std::nullopt;
            if (!position) return std::nullopt;
            return segment.numberOf(*position);
        });
}

void requirePlace(const std::string& file, std::uint64_t place, std::uint64_t count) {
    if (place >= count)
        throw Error(ErrorKind::kWrongUse, file,
                    "there is no place " + std::to_string(place) + " among " +
                        std::to_string(count) + " paths");
}

/// Calls `search(PatternSearch)` for the parts with some numbers, which are not missing, until it
/// returns false.
template <class Search>
void searchAmong(const OpenedSet& set, const Pattern& pattern, PathNumbers among, Search search) {
    set.requireNumber(among.first);
    set.requireNumber(among.last);
    if (among.last < among.first) return;
    const SetParts& parts = set.parts();
    for (std::size_t i = parts.ofNumber(among.first); i <= parts.ofNumber(among.last); ++i) {
        if (parts[i].isMissing) continue;
        const PinnedPart part = set.part(i);
        if (!search(PatternSearch(*part, pattern, among))) return;
    }
}

/// The paths of a segment, folder by folder, after so many steps.
bool walkOne(const Segment& segment, std::uint64_t& step, PathVisitor visit) {
    std::string text;
    const auto set = segment.openAnew();
    segment.translated([&] { set->resetPathsToBTree(); });
    const auto hasNext = [&] {
        return segment.translated([&] {
            if (!set->hasNextPathFromBTree()) return false;
            set->getNextTextFromBTree(Segment::kSeparatorText, text);
            return true;
        });
    };
    while (hasNext())
        if (!visit(++step, pathOfComponents(text))) return false;
    return true;
}

/// Does `work()`, and keeps the Error that it throws.
template <class Work>
void addDamage(std::vector<Error>& damages, Work work) {
    try {
        work();
    } catch (const Error& damage) {
        damages.push_back(damage);
    }
}

/// Of bytes whose sum does not hold, that is all there is to say.
void verifyScans(const SetFile& file) {
    const auto& block = file.state().directory.scans;
    const std::span<const std::byte> record = file.bytesOf(block);
    if (block && sumOf(record) == block->sum) decodeScans(record);
}

void verifySegments(const OpenedPart& part, const WorkWatcher& watch, std::vector<Error>& damages) {
    const auto verifyOne = [&](std::size_t i) -> std::optional<Error> {
        try {
            part.segments()[i].verify(watch);
            return std::nullopt;
        } catch (const Error& damage) {
            return damage;
        }
    };
    makeInOrder(part.segments().size(), threadCount(), verifyOne,
                [&](const std::optional<Error>& damage) {
                    if (damage) damages.push_back(*damage);
                });
}

std::u16string utf16(std::string_view bytes) {
    std::u16string text;
    appendUtf16(bytes, text);
    return text;
}

}  // namespace

PathSet PathSet::open(const std::string& file) {
    return PathSet(OpenedSet::open(file));
}

PathSet PathSet::openPartial(const std::string& file) {
    return PathSet(OpenedSet::openPartial(file));
}

PathSet::PathSet(std::shared_ptr<const OpenedSet> opened) noexcept : opened_(std::move(opened)) {}
PathSet::PathSet(const PathSet&) noexcept = default;
PathSet::PathSet(PathSet&&) noexcept = default;
PathSet& PathSet::operator=(const PathSet&) noexcept = default;
PathSet& PathSet::operator=(PathSet&&) noexcept = default;
PathSet::~PathSet() = default;

const OpenedSet& openedSetOf(const PathSet& set) noexcept {
    return *set.opened_;
}

const std::string& PathSet::file() const noexcept {
    return opened_->name();
}

std::uint64_t PathSet::size() const noexcept {
    return opened_->size();
}

std::uint64_t PathSet::fingerprint() const noexcept {
    return opened_->fingerprint();
}

const std::vector<PathSet::Missing>& PathSet::missing() const noexcept {
    return opened_->missing();
}

// --- Paths by their numbers.

std::string PathSet::path(std::uint64_t number) const {
    std::string text;
    appendPath(number, text);
    return text;
}

void PathSet::appendPath(std::uint64_t number, std::string& text) const {
    opened_->requireWhole();
    opened_->requirePresent(number);
    opened_->appendPath(number, text);
}

void PathSet::paths(std::span<const std::uint64_t> numbers, PathVisitor visit) const {
    opened_->requireWhole();
    for (const std::uint64_t number : numbers) opened_->requirePresent(number);
    visitByNumber(*opened_, numbers, visit);
}

void PathSet::forEach(PathVisitor visit) const {
    opened_->requireWhole();
    if (size() > 0) visitAll(*opened_, {1, size()}, false, visit);
}

void PathSet::forEach(std::uint64_t first, std::uint64_t last, PathVisitor visit) const {
    opened_->requireWhole();
    opened_->requireNumber(first);
    opened_->requireNumber(last);
    visitAll(*opened_, {std::min(first, last), std::max(first, last)}, last < first, visit);
}

// --- The iterator.

PathSet::Iterator PathSet::begin() const {
    return Iterator(opened_);
}

PathSet::Iterator::Iterator(std::shared_ptr<const OpenedSet> opened) : opened_(std::move(opened)) {
    fill();
}

bool PathSet::Iterator::operator==(std::default_sentinel_t) const noexcept {
    return number_ > opened_->size();
}

std::string_view PathSet::Iterator::operator*() const noexcept {
    const std::size_t place = number_ - firstOfBuffer_;
    const std::size_t begin = place == 0 ? 0 : ends_[place - 1];
    return std::string_view(buffer_).substr(begin, ends_[place] - begin);
}

PathSet::Iterator& PathSet::Iterator::operator++() {
    ++number_;
    if (number_ - firstOfBuffer_ == ends_.size()) fill();
    return *this;
}

/// Reads some paths from the current one on. If it throws, the iterator is at the end.
void PathSet::Iterator::fill() {
    const std::uint64_t first = std::exchange(number_, opened_->size() + 1);
    buffer_.clear();
    ends_.clear();
    const std::optional<PathNumbers> there = opened_->nextThere(first);
    if (!there) return;
    opened_->requireWhole();
    firstOfBuffer_ = there->first;
    PathBuffer paths;
    opened_->appendPaths(
        {there->first, there->first + std::min(kPathsAStep - 1, there->last - there->first)},
        paths);
    paths.visit([this](std::uint64_t /*number*/, std::string_view path) {
        buffer_.append(path);
        ends_.push_back(buffer_.size());
    });
    number_ = there->first;
}

// --- Paths that are gone.

std::uint64_t PathSet::goneCount() const noexcept {
    return opened_->parts().goneCount();
}

std::uint64_t PathSet::presentCount() const noexcept {
    return opened_->parts().presentCount();
}

bool PathSet::isGone(std::uint64_t number) const {
    opened_->requireNumber(number);
    return opened_->isGone(number);
}

std::uint64_t PathSet::goneCount(std::uint64_t first, std::uint64_t last) const {
    opened_->requireNumber(first);
    opened_->requireNumber(last);
    if (last < first) return 0;
    const std::uint64_t after = opened_->goneBelow(last + 1);
    return after - std::min(after, opened_->goneBelow(first));  // in a damaged set, too
}

std::uint64_t PathSet::goneNumber(std::uint64_t place) const {
    requirePlace(file(), place, goneCount());
    return opened_->goneNumber(place);
}

std::uint64_t PathSet::presentNumber(std::uint64_t place) const {
    requirePlace(file(), place, presentCount());
    return opened_->presentNumber(place);
}

// --- Finding.

std::optional<std::uint64_t> PathSet::numberOf(std::string_view path) const {
    return numberOf(path, 0, segmentCount());
}

std::optional<std::uint64_t> PathSet::numberOf(std::string_view path, std::uint64_t firstSegment,
                                               std::uint64_t count) const {
    opened_->requireWhole();
    opened_->requireSegments(firstSegment, count);
    if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
    const CutPath cut = cutPath(path);
    std::vector<std::u16string> folder(cut.folder.size());
    std::transform(cut.folder.begin(), cut.folder.end(), folder.begin(), utf16);
    const std::u16string fileName = utf16(cut.fileName);
    for (std::uint64_t place = firstSegment; place < firstSegment + count; ++place) {
        if (opened_->parts()[opened_->parts().ofSegment(place)].isMissing) continue;
        const PinnedSegment segment = opened_->segment(place);
        if (const auto number = numberIn(*segment, folder, fileName)) return number;
    }
    return std::nullopt;
}

void PathSet::under(std::string_view folder, PathVisitor visit) const {
    if (folder.empty()) return forEach(visit);
    opened_->requireWhole();
    visitPathsUnder(*opened_, folder, visit);
}

void PathSet::find(const Pattern& pattern, PathVisitor visit) const {
    if (size() > 0) find(pattern, {1, size()}, visit);
}

void PathSet::find(const Pattern& pattern, PathNumbers among, PathVisitor visit) const {
    opened_->requireWhole();
    searchAmong(*opened_, pattern, among,
                [&](const PatternSearch& search) { return search.find(visit); });
}

std::uint64_t PathSet::count(const Pattern& pattern) const {
    std::uint64_t total = 0;
    findNumbers(pattern, [&](std::uint64_t first, std::uint64_t last) {
        total += last - first + 1;
        return true;
    });
    return total;
}

void PathSet::findNumbers(
    const Pattern& pattern,
    const std::function<bool(std::uint64_t first, std::uint64_t last)>& visit) const {
    if (size() > 0) findNumbers(pattern, {1, size()}, visit);
}

void PathSet::findNumbers(
    const Pattern& pattern, PathNumbers among,
    const std::function<bool(std::uint64_t first, std::uint64_t last)>& visit) const {
    opened_->requireWhole();
    searchAmong(*opened_, pattern, among, [&](const PatternSearch& search) {
        return search.findNumbers(
            [&](PathNumbers numbers) { return visit(numbers.first, numbers.last); });
    });
}

void PathSet::walk(PathVisitor visit) const {
    opened_->requireWhole();
    std::uint64_t step = 0;
    opened_->forEachPart([&](const OpenedPart& part) {
        return std::ranges::all_of(
            part.segments(), [&](const auto& segment) { return walkOne(segment, step, visit); });
    });
}

// --- The file.

std::vector<Error> PathSet::verify() const {
    return verify(WorkWatcher());
}

std::vector<Error> PathSet::verify(const WorkWatcher& watch) const {
    std::vector<Error> damages;
    for (std::size_t place = 0; place < fileCount(); ++place)
        for (Error& damage : verifyFile(place, watch)) damages.push_back(std::move(damage));
    return damages;
}

std::vector<Error> PathSet::verifyFile(std::size_t place, const WorkWatcher& watch) const {
    const std::vector<std::size_t> parts = opened_->parts().ofFile(place);
    const auto isMissing = [this](std::size_t part) { return opened_->parts()[part].isMissing; };
    if (!parts.empty() && std::ranges::all_of(parts, isMissing)) return {};
    std::vector<Error> damages;
    try {
        const std::shared_ptr<const SetFile> file = opened_->file(place);
        damages = file->verifySums(watch);
        addDamage(damages, [&] { file->naming([&] { gonePathsOf(*file).verify(); }); });
        addDamage(damages, [&] { file->naming([&] { verifyScans(*file); }); });
    } catch (const Error& error) {
        // A set file that was opened and cannot be read is no damage; one that the set lacks is.
        if (opened_->onlyFile() != nullptr && error.kind() != ErrorKind::kDamaged) throw;
        return {error};  // too short to be looked into, or not there
    }
    for (const std::size_t part : parts)
        if (!isMissing(part))
            addDamage(damages, [&] { verifySegments(*opened_->part(part), watch, damages); });
    return damages;
}

bool PathSet::isSetOfSets() const noexcept {
    return opened_->onlyFile() == nullptr;
}

std::size_t PathSet::fileCount() const noexcept {
    return opened_->fileCount();
}

std::string PathSet::fileName(std::size_t place) const {
    return opened_->fileName(place);
}

std::uint64_t PathSet::segmentCount() const noexcept {
    return opened_->segmentCount();
}

std::vector<PathSet::Segment> PathSet::segments() const {
    std::vector<Segment> segments;
    segments.reserve(segmentCount());
    for (std::size_t i = 0; i < opened_->parts().count(); ++i) {
        if (opened_->parts()[i].isMissing) continue;
        const PinnedPart part = opened_->part(i);
        for (const zqpaths::Segment& segment : part->segments()) {
            const SegmentEntry& entry = segment.entry();
            segments.push_back({entry.form == SegmentForm::kPacked, segment.firstNumber(),
                                entry.pathCount, entry.textSize, opened_->parts()[i].row.file,
                                entry.offset, entry.size});
        }
    }
    return segments;
}

}  // namespace zqpaths
