#include "zqpaths/PathSet.hpp"

#include <algorithm>
#include <string>
#include <utility>

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

/// The paths from `first` to `last`, in this order or the other one.
bool visitAll(const OpenedSet& set, PathNumbers numbers, bool isBackwards, PathVisitor visit) {
    const std::uint64_t count = numbers.last - numbers.first + 1;
    const std::uint64_t pieceCount = (count + kPathsPerPiece - 1) / kPathsPerPiece;
    const auto make = [&](std::size_t step) {
        const std::uint64_t piece = isBackwards ? pieceCount - 1 - step : step;
        PathBuffer paths;
        set.appendPaths(pieceFrom(numbers.first + piece * kPathsPerPiece, numbers.last), paths);
        return paths;
    };
    return makeInOrder(pieceCount, threadsFor(count), make, [&](const PathBuffer& paths) {
        return isBackwards ? paths.visitBackwards(visit) : paths.visit(visit);
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

std::u16string utf16(std::string_view bytes) {
    std::u16string text;
    appendUtf16(bytes, text);
    return text;
}

}  // namespace

PathSet PathSet::open(const std::string& file) {
    return PathSet(OpenedSet::open(file));
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
    return opened_->file().path();
}

std::uint64_t PathSet::size() const noexcept {
    return opened_->size();
}

std::uint64_t PathSet::fingerprint() const noexcept {
    return opened_->file().state().superblock.directorySum;
}

// --- Paths by their numbers.

std::string PathSet::path(std::uint64_t number) const {
    std::string text;
    appendPath(number, text);
    return text;
}

void PathSet::appendPath(std::uint64_t number, std::string& text) const {
    opened_->file().requireWhole();
    opened_->requireNumber(number);
    opened_->appendPath(number, text);
}

void PathSet::paths(std::span<const std::uint64_t> numbers, PathVisitor visit) const {
    opened_->file().requireWhole();
    for (const std::uint64_t number : numbers) opened_->requireNumber(number);
    visitByNumber(*opened_, numbers, visit);
}

void PathSet::forEach(PathVisitor visit) const {
    opened_->file().requireWhole();
    if (size() > 0) visitAll(*opened_, {1, size()}, false, visit);
}

void PathSet::forEach(std::uint64_t first, std::uint64_t last, PathVisitor visit) const {
    opened_->file().requireWhole();
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
    firstOfBuffer_ = first;
    if (first > opened_->size()) return;
    opened_->file().requireWhole();
    PathBuffer paths;
    opened_->appendPaths({first, first + std::min(kPathsAStep - 1, opened_->size() - first)},
                         paths);
    paths.visit([this](std::uint64_t /*number*/, std::string_view path) {
        buffer_.append(path);
        ends_.push_back(buffer_.size());
    });
    number_ = first;
}

// --- Paths that are gone.

std::uint64_t PathSet::goneCount() const noexcept {
    return opened_->gone().count();
}

std::uint64_t PathSet::presentCount() const noexcept {
    return opened_->gone().presentCount();
}

bool PathSet::isGone(std::uint64_t number) const {
    opened_->requireNumber(number);
    return opened_->gone().has(number);
}

std::uint64_t PathSet::goneCount(std::uint64_t first, std::uint64_t last) const {
    opened_->requireNumber(first);
    opened_->requireNumber(last);
    if (last < first) return 0;
    const std::uint64_t after = opened_->gone().countBelow(last + 1);
    return after - std::min(after, opened_->gone().countBelow(first));  // in a damaged set, too
}

std::uint64_t PathSet::goneNumber(std::uint64_t place) const {
    requirePlace(file(), place, goneCount());
    return opened_->file().naming([&] { return opened_->gone().goneNumber(place); });
}

std::uint64_t PathSet::presentNumber(std::uint64_t place) const {
    requirePlace(file(), place, presentCount());
    return opened_->file().naming([&] { return opened_->gone().presentNumber(place); });
}

// --- Finding.

std::optional<std::uint64_t> PathSet::numberOf(std::string_view path) const {
    opened_->file().requireWhole();
    if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
    const CutPath cut = cutPath(path);
    std::vector<std::u16string> folder(cut.folder.size());
    std::transform(cut.folder.begin(), cut.folder.end(), folder.begin(), utf16);
    const std::u16string fileName = utf16(cut.fileName);
    for (const zqpaths::Segment& segment : opened_->segments())
        if (const auto number = numberIn(segment, folder, fileName)) return number;
    return std::nullopt;
}

void PathSet::under(std::string_view folder, PathVisitor visit) const {
    if (folder.empty()) return forEach(visit);
    opened_->file().requireWhole();
    visitPathsUnder(*opened_, folder, visit);
}

void PathSet::find(const Pattern& pattern, PathVisitor visit) const {
    opened_->file().requireWhole();
    PatternSearch(*opened_, pattern).find(visit);
}

std::uint64_t PathSet::count(const Pattern& pattern) const {
    opened_->file().requireWhole();
    return PatternSearch(*opened_, pattern).count();
}

void PathSet::findNumbers(
    const Pattern& pattern,
    const std::function<bool(std::uint64_t first, std::uint64_t last)>& visit) const {
    opened_->file().requireWhole();
    PatternSearch(*opened_, pattern).findNumbers([&](PathNumbers numbers) {
        return visit(numbers.first, numbers.last);
    });
}

void PathSet::walk(PathVisitor visit) const {
    opened_->file().requireWhole();
    std::uint64_t step = 0;
    std::string text;
    for (const zqpaths::Segment& segment : opened_->segments()) {
        const auto set = segment.openAnew();
        segment.translated([&] { set->resetPathsToBTree(); });
        const auto hasNext = [&] {
            return segment.translated([&] {
                if (!set->hasNextPathFromBTree()) return false;
                set->getNextTextFromBTree(zqpaths::Segment::kSeparatorText, text);
                return true;
            });
        };
        while (hasNext())
            if (!visit(++step, pathOfComponents(text))) return;
    }
}

// --- The file.

std::vector<Error> PathSet::verify() const {
    return verify(WorkWatcher());
}

std::vector<Error> PathSet::verify(const WorkWatcher& watch) const {
    const auto& segments = opened_->segments();
    std::vector<Error> damages;
    try {
        damages = opened_->file().verifySums(watch);
    } catch (const Error& damage) {
        if (damage.kind() != ErrorKind::kDamaged) throw;
        return {damage};  // too short to be looked into
    }
    try {
        opened_->file().naming([&] { opened_->gone().verify(); });
    } catch (const Error& damage) {
        damages.push_back(damage);
    }
    const auto verifyOne = [&](std::size_t i) -> std::optional<Error> {
        try {
            segments[i].verify(watch);
            return std::nullopt;
        } catch (const Error& damage) {
            return damage;
        }
    };
    makeInOrder(segments.size(), threadCount(), verifyOne, [&](const std::optional<Error>& damage) {
        if (damage) damages.push_back(*damage);
    });
    return damages;
}

std::vector<PathSet::Segment> PathSet::segments() const {
    std::vector<Segment> segments;
    for (const zqpaths::Segment& segment : opened_->segments()) {
        const SegmentEntry& entry = segment.entry();
        segments.push_back({entry.form == SegmentForm::kPacked, segment.firstNumber(),
                            entry.pathCount, entry.textSize, entry.offset, entry.size});
    }
    return segments;
}

}  // namespace zqpaths
