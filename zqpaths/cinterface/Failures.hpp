#pragma once
// How the functions for C fail: an exception becomes a status, and its text stays with the thread.
//
//     zqp_status zqp_open(const char* file, zqp_set** set) {
//         return statusOf(__func__, [&](const Call& call) {
//             call.requireGiven(file, "file");  // "zqp_open: file is NULL"
//             ...
//         });
//     }
//
// Threads: each has a text of its own.

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "zqpaths/Error.hpp"
#include "zqpaths/zqpaths.h"

namespace zqpaths::cinterface {

/// Keeps the text for zqp_last_error and returns the status. Where there is no memory for the text,
/// it keeps what the status means.
zqp_status fail(zqp_status status, std::string_view text) noexcept;

/// Fails with the exception that is being handled.
zqp_status failWithException() noexcept;

/// A call of a function, which its errors name.
class Call {
public:
    explicit Call(const char* function) noexcept : function_(function) {}

    [[noreturn]] void refuse(std::string_view reason) const {
        throw Error(ErrorKind::kWrongUse, function_, reason);
    }

    /// Throws Error kWrongUse if an argument is NULL.
    template <class Pointer>
    void requireGiven(Pointer argument, const char* name) const {
        if (argument == nullptr) refuse(std::string(name) + " is NULL");
    }

    /// Bytes that are given; none may be at NULL.
    std::string_view bytes(const char* bytes, std::size_t length, const char* name) const {
        if (length > 0) requireGiven(bytes, name);
        return {bytes, length};
    }

    /// Fails for a buffer of `capacity` bytes.
    zqp_status failTooSmall(std::size_t capacity, std::size_t needed) const;

private:
    const char* function_;
};

/// What `step(call)` returns, ZQP_OK if that is nothing; the status of what it throws.
template <class Step>
zqp_status statusOf(const char* function, Step step) noexcept {
    try {
        const Call call(function);
        if constexpr (std::is_void_v<std::invoke_result_t<Step&, const Call&>>) {
            step(call);
            return ZQP_OK;
        } else {
            return step(call);
        }
    } catch (...) {
        return failWithException();
    }
}

}  // namespace zqpaths::cinterface
