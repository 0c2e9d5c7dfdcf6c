#pragma once
// TeamProgress shows on rank 0 how far all ranks are, in one line:
//
//     TeamProgress progress(team, "finding", messages, set.size());
//     team.run({..., .advance = progress.counter()});
//
// Threads: it belongs to the main thread.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/progress/Progress.hpp"

namespace zqpaths::program::mpi {

class TeamProgress {
public:
    /// Of one phase that goes through paths, or of several, as Progress has them. There is nothing
    /// to be seen of it but on rank 0.
    TeamProgress(const Team& team, std::string work, const MessageOptions& messages,
                 std::optional<std::uint64_t> total,
                 Progress::Prints prints = Progress::Prints::kNothing)
        : progress_(std::move(work), ofRank(team, messages), total, prints) {}
    TeamProgress(const Team& team, std::string work, std::vector<WorkPhase> phases,
                 const MessageOptions& messages,
                 Progress::Prints prints = Progress::Prints::kNothing)
        : progress_(std::move(work), std::move(phases), ofRank(team, messages), prints) {}

    Progress& progress() noexcept { return progress_; }

    /// For TeamWork::advance.
    std::function<void(std::size_t phase, std::uint64_t items)> counter() {
        return [this](std::size_t phase, std::uint64_t items) {
            progress_.advancePhase(phase, items);
        };
    }

private:
    static MessageOptions ofRank(const Team& team, MessageOptions messages) {
        if (!team.isFirst()) messages.noProgress = true;
        return messages;
    }

    Progress progress_;
};

}  // namespace zqpaths::program::mpi
