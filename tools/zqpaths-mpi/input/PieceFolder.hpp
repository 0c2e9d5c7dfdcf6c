#pragma once
// PieceFolder is the folder beside a set of sets that its set files are in, and while they are
// being made the plan of the work and a report of each piece that is done:
//
//     all.zqs           when all is whole
//     all.zqs.d/
//       000001.zqp      a set file a piece; none for a piece without paths
//       000001.json     what is to be said of it, written before it
//       plan.json       as long as the work goes on, or waits to be resumed
//
// Where a new set takes the place of one whose set files are in the folder, these stay until then:
// the names of the new ones begin with "2-", and those of the next have nothing in front again.
//
// Threads: an object belongs to one thread at a time. The set is locked by whoever makes it.

#include <cstddef>
#include <optional>
#include <string>

#include "tools/zqpaths-mpi/input/PieceReport.hpp"

namespace zqpaths::program::mpi {

class PieceFolder {
public:
    explicit PieceFolder(const std::string& set) : set_(set), path_(set + ".d") {}

    const std::string& path() const noexcept { return path_; }

    /// Makes the folder, unless it is there. Throws Failure kFailed.
    void make() const;

    /// The plan of a run that did not end, as it was written. Throws Failure kFailed if it cannot
    /// be read.
    std::optional<std::string> plan() const;

    /// Throws Failure kFailed if a run that did not end has left something, or a set that is there
    /// no more.
    void requireEmpty() const;

    /// Removes what a run left, and chooses the names that the set, if it is there, does not use.
    void clear();

    /// Takes the names of a run that is resumed.
    void takeGeneration(unsigned generation) noexcept { generation_ = generation; }
    unsigned generation() const noexcept { return generation_; }

    void writePlan(const std::string& text) const;

    /// Whether the set has its files here, so that it is what a run has made.
    bool hasFilesOfSet() const;

    /// What a piece, from 0 on, has become.
    std::string setFile(std::size_t piece) const;
    std::string reportFile(std::size_t piece) const;

    /// The report of a piece that is done, of which all paths are there; nothing otherwise.
    std::optional<PieceReport> reportOfWhole(std::size_t piece) const;

    /// Removes all but the files of the set: the plan first, so that nobody resumes what is done.
    void keepSetFilesAlone() const;

    /// Removes the folder and all that a run has left in it.
    void remove();

private:
    std::string fileOf(std::size_t piece, const char* ending) const;
    std::optional<unsigned> generationOfSet() const;
    void removeFiles(unsigned generation, bool setFiles) const;
    std::string planFile() const { return path_ + "/plan.json"; }

    std::string set_;
    std::string path_;
    unsigned generation_ = 1;
};

}  // namespace zqpaths::program::mpi
