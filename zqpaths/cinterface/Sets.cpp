// The functions for C that read sets. What they do, PathSet does.

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/PathSet.hpp"
#include "zqpaths/cinterface/Failures.hpp"
#include "zqpaths/zqpaths.h"

struct zqp_set {
    zqpaths::PathSet opened;
};

namespace zqpaths::cinterface {
namespace {

const PathSet& given(const Call& call, const zqp_set* set) {
    call.requireGiven(set, "set");
    return set->opened;
}

/// A visitor that is a callback for C.
auto given(const Call& call, zqp_visitor visit, void* context) {
    call.requireGiven(visit, "visit");
    return [visit, context](std::uint64_t number, std::string_view path) {
        return visit(context, number, path.data(), path.size()) == ZQP_GO_ON;
    };
}

Pattern patternOf(const Call& call, std::string_view pattern, unsigned kind) {
    const bool ignoresCase = (kind & ZQP_IGNORE_CASE) != 0;
    const Pattern::Case letterCase = ignoresCase ? Pattern::Case::kIgnore : Pattern::Case::kRespect;
    switch (kind & ~unsigned{ZQP_IGNORE_CASE}) {
        case ZQP_TEXT:
            return Pattern::text(pattern, letterCase);
        case ZQP_GLOB:
            return Pattern::glob(pattern, letterCase);
        case ZQP_REGEX:
            return Pattern::regex(pattern, letterCase);
        default:
            call.refuse("there is no pattern of kind " + std::to_string(kind));
    }
}

/// Puts paths one after the other, as far as there is room, and notes where each begins.
class PathFilling {
public:
    PathFilling(char* bytes, std::size_t capacity, std::size_t* offsets) noexcept
        : bytes_(bytes), capacity_(capacity), nextOffset_(offsets) {
        *nextOffset_ = 0;
    }

    void append(std::string_view path) noexcept {
        const std::size_t begin = *nextOffset_;
        if (begin <= capacity_ && path.size() <= capacity_ - begin)
            std::copy(path.begin(), path.end(), bytes_ + begin);
        *++nextOffset_ = begin + path.size();
    }

    std::size_t needed() const noexcept { return *nextOffset_; }

private:
    char* bytes_;
    std::size_t capacity_;
    std::size_t* nextOffset_;
};

}  // namespace
}  // namespace zqpaths::cinterface

using zqpaths::PathSet;
using zqpaths::cinterface::Call;
using zqpaths::cinterface::fail;
using zqpaths::cinterface::given;
using zqpaths::cinterface::PathFilling;
using zqpaths::cinterface::patternOf;
using zqpaths::cinterface::statusOf;

const char* zqp_version() {
    return ZQPATHS_VERSION;
}

// --- The set.

zqp_status zqp_open(const char* file, zqp_set** set) {
    return statusOf(__func__, [&](const Call& call) {
        call.requireGiven(set, "set");
        *set = nullptr;
        call.requireGiven(file, "file");
        *set = std::make_unique<zqp_set>(zqp_set{PathSet::open(file)}).release();
    });
}

void zqp_close(zqp_set* set) {
    delete set;
}

std::uint64_t zqp_size(const zqp_set* set) {
    return set == nullptr ? 0 : set->opened.size();
}

const char* zqp_file(const zqp_set* set) {
    return set == nullptr ? nullptr : set->opened.file().c_str();
}

// --- Paths by their numbers.

std::uint64_t zqp_gone_count(const zqp_set* set) {
    return set == nullptr ? 0 : set->opened.goneCount();
}

zqp_status zqp_is_gone(const zqp_set* set, std::uint64_t number, int* isGone) {
    return statusOf(__func__, [&](const Call& call) {
        const PathSet& opened = given(call, set);
        call.requireGiven(isGone, "is_gone");
        *isGone = opened.isGone(number) ? 1 : 0;
    });
}

zqp_status zqp_get(const zqp_set* set, std::uint64_t number, char* buffer, std::size_t capacity,
                   std::size_t* length) {
    return statusOf(__func__, [&](const Call& call) {
        const PathSet& opened = given(call, set);
        if (capacity > 0) call.requireGiven(buffer, "buffer");
        call.requireGiven(length, "length");
        const std::string path = opened.path(number);
        *length = path.size();
        if (path.size() >= capacity) return call.failTooSmall(capacity, path.size() + 1);
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return ZQP_OK;
    });
}

zqp_status zqp_get_many(const zqp_set* set, const std::uint64_t* numbers, std::size_t count,
                        char* bytes, std::size_t capacity, std::size_t* offsets) {
    return statusOf(__func__, [&](const Call& call) {
        const PathSet& opened = given(call, set);
        if (count > 0) call.requireGiven(numbers, "numbers");
        if (capacity > 0) call.requireGiven(bytes, "bytes");
        call.requireGiven(offsets, "offsets");
        PathFilling filling(bytes, capacity, offsets);
        opened.paths({numbers, count},
                     [&](std::uint64_t, std::string_view path) { filling.append(path); });
        return filling.needed() <= capacity ? ZQP_OK
                                            : call.failTooSmall(capacity, filling.needed());
    });
}

zqp_status zqp_number_of(const zqp_set* set, const char* path, std::size_t length,
                         std::uint64_t* number) {
    return statusOf(__func__, [&](const Call& call) {
        const PathSet& opened = given(call, set);
        call.requireGiven(number, "number");
        *number = opened.numberOf(call.bytes(path, length, "path")).value_or(0);
    });
}

// --- Visits.

zqp_status zqp_for_each(const zqp_set* set, zqp_visitor visit, void* context) {
    return statusOf(
        __func__, [&](const Call& call) { given(call, set).forEach(given(call, visit, context)); });
}

zqp_status zqp_for_range(const zqp_set* set, std::uint64_t first, std::uint64_t last,
                         zqp_visitor visit, void* context) {
    return statusOf(__func__, [&](const Call& call) {
        given(call, set).forEach(first, last, given(call, visit, context));
    });
}

zqp_status zqp_under(const zqp_set* set, const char* folder, std::size_t length, zqp_visitor visit,
                     void* context) {
    return statusOf(__func__, [&](const Call& call) {
        given(call, set).under(call.bytes(folder, length, "folder"), given(call, visit, context));
    });
}

zqp_status zqp_find(const zqp_set* set, const char* pattern, std::size_t length, unsigned kind,
                    zqp_visitor visit, void* context) {
    return statusOf(__func__, [&](const Call& call) {
        given(call, set).find(patternOf(call, call.bytes(pattern, length, "pattern"), kind),
                              given(call, visit, context));
    });
}

zqp_status zqp_count(const zqp_set* set, const char* pattern, std::size_t length, unsigned kind,
                     std::uint64_t* count) {
    return statusOf(__func__, [&](const Call& call) {
        const PathSet& opened = given(call, set);
        call.requireGiven(count, "count");
        *count = opened.count(patternOf(call, call.bytes(pattern, length, "pattern"), kind));
    });
}

zqp_status zqp_walk(const zqp_set* set, zqp_visitor visit, void* context) {
    return statusOf(__func__,
                    [&](const Call& call) { given(call, set).walk(given(call, visit, context)); });
}

// --- Damage.

zqp_status zqp_verify(const zqp_set* set, zqp_reporter report, void* context) {
    return statusOf(__func__, [&](const Call& call) {
        const std::vector<zqpaths::Error> damages = given(call, set).verify();
        if (report != nullptr)
            for (const zqpaths::Error& damage : damages) report(context, damage.what());
        return damages.empty() ? ZQP_OK : fail(ZQP_DAMAGED, damages.front().what());
    });
}
