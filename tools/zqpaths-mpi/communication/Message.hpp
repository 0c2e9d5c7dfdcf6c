#pragma once
// What ranks send each other. Rank 0 leads: it deals the pieces, takes what the others give, and
// ends the job.
//
//     rank 3                          rank 0
//       │ ─────── kWant ───────────────▶ │
//       │ ◀────── kPiece 17 ──────────── │
//       │ ─────── kResult 17, a part ──▶ │   held until pieces 0 to 16 were taken
//       │ ─────── kResult 17, last ────▶ │
//       │ ◀────── kTaken ─────────────── │   so many bytes more may be on their way
//       │ ─────── kWant ───────────────▶ │
//       │ ◀────── kNoPiece ───────────── │
//       │ ─────── kWorkDone ───────────▶ │
//       │ ◀────── kRunOver ───────────── │   when all ranks are done and all was taken
//       │ ─────── kEnded ──────────────▶ │   the verb, with a failure or without one
//       │ ◀────── kBye ───────────────── │   when all have ended: nobody sends any more
//
// After a failure anywhere rank 0 sends kStop, and the others end as soon as they can.

#include <string>

namespace zqpaths::program::mpi {

enum class MessageKind : int {
    kWant,      // to rank 0: a rank is free
    kPiece,     // from rank 0: its number, and what describes it
    kNoPiece,   // from rank 0: all were dealt
    kResult,    // to rank 0: the number of a piece, whether it is the last part, and the part
    kTaken,     // from rank 0: what it took, in bytes
    kCounts,    // to rank 0: how far the rank has come since it last said
    kWords,     // to rank 0: a message for people
    kParcel,    // from any rank to any: what the work has to say
    kWorkDone,  // to rank 0: the work of a run
    kRunOver,   // from rank 0
    kStop,      // from rank 0
    kEnded,     // to rank 0: the status and the text of a failure, or nothing
    kBye,       // from rank 0
};

struct Message {
    int rank = 0;  // that it is for, or that it comes from
    MessageKind kind = MessageKind::kWant;
    std::string bytes{};
};

}  // namespace zqpaths::program::mpi
