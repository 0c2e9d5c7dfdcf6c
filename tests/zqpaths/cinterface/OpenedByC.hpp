#pragma once
// A set as a program in C opens it, closed when the test is done with it, and what its visits give:
//
//     const OpenedByC set(file);
//     visitedByC([&](zqp_visitor visit, void* context) {
//         return zqp_for_each(set.get(), visit, context);
//     });  // {{1, "a/b"}, {2, "c"}}
//
// Threads: belongs to one thread at a time.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/zqpaths.h"

namespace zqpaths {

/// Fails the test that asks, with the text of the error, if a status is another.
inline void expectStatus(zqp_status status, zqp_status expected) {
    EXPECT_EQ(status, expected) << zqp_last_error();
}

struct ClosedByC {
    void operator()(zqp_set* set) const noexcept { zqp_close(set); }
    void operator()(zqp_writer* writer) const noexcept { zqp_writer_close(writer); }
};

class OpenedByC {
public:
    explicit OpenedByC(const std::string& file) {
        zqp_set* set = nullptr;
        expectStatus(zqp_open(file.c_str(), &set), ZQP_OK);
        set_.reset(set);
    }

    const zqp_set* get() const noexcept { return set_.get(); }

private:
    std::unique_ptr<zqp_set, ClosedByC> set_;
};

using WriterOfC = std::unique_ptr<zqp_writer, ClosedByC>;

/// A writer that has begun; fails the test that asks if it cannot.
inline WriterOfC writerOfC(const std::string& file, unsigned how) {
    zqp_writer* writer = nullptr;
    expectStatus(zqp_writer_open(file.c_str(), how, &writer), ZQP_OK);
    return WriterOfC(writer);
}

/// A visitor whose context is a std::vector<Numbered>.
inline int collect(void* context, std::uint64_t number, const char* path, std::size_t length) {
    static_cast<std::vector<Numbered>*>(context)->emplace_back(number, std::string(path, length));
    return ZQP_GO_ON;
}

/// One that must not be called.
inline int refuseVisit(void* /*context*/, std::uint64_t number, const char* /*path*/,
                       std::size_t /*length*/) {
    ADD_FAILURE() << "number " << number << " is visited";
    return ZQP_GO_ON;
}

/// What `visitAll(visitor, context)` visits, in its order; fails the test that asks if the status
/// is an error.
template <class VisitAll>
std::vector<Numbered> visitedByC(VisitAll visitAll) {
    std::vector<Numbered> visited;
    expectStatus(visitAll(collect, &visited), ZQP_OK);
    return visited;
}

}  // namespace zqpaths
