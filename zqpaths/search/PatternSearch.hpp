#pragma once
// PatternSearch finds the paths of a part of a set that match a pattern, among some numbers:
//
//     PatternSearch(part, Pattern::text("lib"), {1, 1000}).find([](auto number, auto path) { ...
//     });
//
// What a matching path must hold, the pattern's longest piece, is looked for in the coded names of
// files, and once in the name of each folder: a folder whose text holds it is a folder of
// candidates as a whole.
//
//     piece "python3"     usr/lib/python3/    all of its files are candidates
//                         usr/bin/            python3 and python3.11 are, by their names
//                         usr/share/          none is, and no path is looked at
//
// A text without a separator is all piece: its candidates match, and only what is visited is
// decoded. Candidates of other patterns are decoded and tested. A text with a separator that the
// text of a folder holds is in all of its paths. Without a piece all paths are tested.
//
// That bytes and coded characters say the same: a piece is whole characters of UTF-8. None of their
// first bytes can stand within another character, so that where the piece's bytes stand in a path,
// characters begin and end, and were coded as those of the piece; where its coded characters stand,
// their bytes do. What is not UTF-8 in a path was coded byte by byte as units that no character
// has.
//
// Threads: belongs to one thread, and starts others, which are joined before a call returns.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "compressedpaths/store/Lazy.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathVisitor.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/search/PatternMatching.hpp"
#include "zqpaths/set/OpenedPart.hpp"
#include "zqpaths/set/PathBuffer.hpp"

namespace zqpaths {

class PatternSearch {
public:
    /// Part and pattern outlive the search.
    PatternSearch(const OpenedPart& part, const Pattern& pattern, PathNumbers among);

    /// The paths that match, in the order of their numbers, until `visit` says to stop; false then.
    /// Throws Error kDamaged.
    bool find(PathVisitor visit) const;

    /// The numbers of these paths, neighbours as one range. Decodes what is to be tested alone.
    bool findNumbers(const std::function<bool(PathNumbers numbers)>& visit) const;

private:
    using Positions = Segment::Positions;
    using PathTree = compressedpaths::HuffmanPathTree;

    /// Neighbours in a segment that match, or that may.
    struct Candidates {
        Positions positions;
        bool isCertain;
    };
    class CandidateList;

    /// Which folders of a segment have a text that holds the piece; nothing if none has.
    using FoldersWithPiece = std::vector<bool>;
    struct SearchedSegment {
        explicit SearchedSegment(const Segment& of) : segment(&of), readText(of), foldersText(of) {}

        const Segment* segment;
        mutable Segment::TextLeft readText;     // of candidates, each looked at once
        mutable Segment::TextLeft foldersText;  // of one path an entry
        compressedpaths::Lazy<FoldersWithPiece> foldersWithPiece;
    };
    /// What is searched in one go.
    struct Slice {
        const SearchedSegment* in;
        Positions positions;
    };

    /// Paths of a slice that match, and the candidates that have still to be looked at because
    /// these are so long.
    struct Matches {
        const SearchedSegment* in;
        std::vector<Candidates> candidates;
        std::size_t next = 0;  // candidate
        PathBuffer paths{};

        bool hasAll() const noexcept { return next == candidates.size(); }
    };

    std::vector<Slice> slices() const;
    Matches matchesIn(const Slice& slice) const;
    void readMatches(Matches& matches) const;
    bool visitMatches(Matches matches, PathVisitor visit) const;
    std::vector<PathNumbers> numbersIn(const Slice& slice) const;
    std::vector<Candidates> candidatesIn(const Slice& slice) const;
    FoldersWithPiece foldersWithPieceOf(const PathTree& set) const;
    void appendFilesOfFolder(const SearchedSegment& in, const PathTree& set, Positions positions,
                             const std::vector<std::size_t>& named, CandidateList& list) const;

    const Pattern::Matching& matching_;
    std::u16string piece_;
    bool isAllPiece_;  // what holds the piece matches
    PathNumbers among_;
    std::deque<SearchedSegment> segments_;
};

}  // namespace zqpaths
