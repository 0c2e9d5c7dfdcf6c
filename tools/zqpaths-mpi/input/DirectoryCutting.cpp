#include "tools/zqpaths-mpi/input/DirectoryCutting.hpp"

#include <cstddef>
#include <deque>
#include <iterator>
#include <list>
#include <string_view>
#include <utility>

namespace zqpaths::program::mpi {
namespace {

constexpr std::size_t kMostLevels = 64;    // each part is opened from the root down
constexpr std::size_t kMostRead = 10'000;  // by one process while the others wait

/// The parts of a tree while it is being cut, in the order of the walk.
class Cutting {
public:
    Cutting(const std::string& root, const WalkOptions& options) : root_(root), options_(options) {
        parts_.push_back({});
        uncut_.push_back(parts_.begin());
    }

    /// Directories with all below them that stand side by side.
    std::size_t wholeCount() const noexcept { return uncut_.size() + keptCount_; }

    bool mayGoOn() const noexcept { return !uncut_.empty() && readCount_ < kMostRead; }

    /// Cuts the next directory into what is directly in it and each of its sub-directories.
    void cutNext() {
        const Place place = uncut_.front();
        uncut_.pop_front();
        const Contents contents =
            place->part.names.size() < kMostLevels ? read(place->part.names) : Contents();
        if (!contents.isRead) {
            ++keptCount_;
            return;
        }
        place->part.isDeep = false;
        place->textSize = contents.textSize;
        const auto next = std::next(place);
        for (const std::string& name : contents.subdirectories) {
            WalkPart below{place->part.names, true};
            below.names.push_back(name);
            uncut_.push_back(parts_.insert(next, {std::move(below), std::nullopt}));
        }
    }

    std::vector<DirectoryCut> parts() && {
        return {std::make_move_iterator(parts_.begin()), std::make_move_iterator(parts_.end())};
    }

private:
    using Place = std::list<DirectoryCut>::iterator;

    struct Contents {
        bool isRead = false;
        std::uint64_t textSize = 0;
        std::vector<std::string> subdirectories;
    };

    Contents read(const std::vector<std::string>& names) {
        Contents contents;
        ++readCount_;
        const auto isReadAs = [](ScanState state) {
            return state == ScanState::kRead || state == ScanState::kReadAgain;
        };
        walkPart(
            root_, {names, false}, options_,
            {.onError = [](std::string_view, std::string_view) {},
             .onPath = [&contents](std::string_view path) { contents.textSize += path.size() + 1; },
             .onDirectory =
                 [&](const MetDirectory& met) { contents.isRead = isReadAs(met.directory.state); },
             .onSubdirectory =
                 [&contents](std::string_view name) {
                     contents.subdirectories.emplace_back(name);
                 }});
        return contents;
    }

    const std::string& root_;
    const WalkOptions& options_;
    std::list<DirectoryCut> parts_;
    std::deque<Place> uncut_;    // those that are with all below them, upper levels first
    std::size_t keptCount_ = 0;  // those that stay so
    std::size_t readCount_ = 0;
};

}  // namespace

std::vector<DirectoryCut> cutDirectory(const std::string& root, const WalkOptions& options,
                                       std::size_t enough) {
    Cutting cutting(root, options);
    while (cutting.wholeCount() < enough && cutting.mayGoOn()) cutting.cutNext();
    return std::move(cutting).parts();
}

}  // namespace zqpaths::program::mpi
