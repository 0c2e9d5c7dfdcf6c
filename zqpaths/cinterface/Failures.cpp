#include "zqpaths/cinterface/Failures.hpp"

#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>

namespace zqpaths::cinterface {
namespace {

// The text of the thread's last failure. The block that it stands in belongs to a key of the
// threads, which frees it when the thread ends. A thread_local object with a destructor would be
// simpler, but the C library ends the process if it has no memory to note the destructor.
thread_local const char* lastText = "";

struct BlockKey {
    BlockKey() noexcept : isMade(pthread_key_create(&key, std::free) == 0) {}

    pthread_key_t key = 0;
    bool isMade;  // there are only so many keys in a process
};

/// Never destroyed: other threads may fail while the process ends.
const BlockKey& blockKey() noexcept {
    static const BlockKey key;
    return key;
}

const char* meaningOf(zqp_status status) noexcept {
    switch (status) {
        case ZQP_OK:
            return "";
        case ZQP_NOT_FOUND:
            return "there is no such file";
        case ZQP_EXISTS:
            return "the file is there already";
        case ZQP_NOT_A_SET:
            return "the file is no saved set";
        case ZQP_DAMAGED:
            return "the set is damaged";
        case ZQP_HELD:
            return "another process writes to the set";
        case ZQP_NO_SPACE:
            return "there is no space left on the device";
        case ZQP_SYSTEM:
            return "the system refuses something";
        case ZQP_WRONG_USE:
            return "an argument cannot be meant";
        case ZQP_NO_MEMORY:
            return "there is not enough memory";
        case ZQP_TOO_SMALL:
            return "the buffer is too small";
        case ZQP_UNEXPECTED:
            break;
    }
    return "something unexpected has happened";
}

zqp_status statusOfKind(ErrorKind kind) noexcept {
    switch (kind) {
        case ErrorKind::kNotFound:
            return ZQP_NOT_FOUND;
        case ErrorKind::kExists:
            return ZQP_EXISTS;
        case ErrorKind::kNotASet:
            return ZQP_NOT_A_SET;
        case ErrorKind::kDamaged:
            return ZQP_DAMAGED;
        case ErrorKind::kHeld:
            return ZQP_HELD;
        case ErrorKind::kNoSpace:
            return ZQP_NO_SPACE;
        case ErrorKind::kSystem:
            return ZQP_SYSTEM;
        case ErrorKind::kWrongUse:
            return ZQP_WRONG_USE;
    }
    return ZQP_UNEXPECTED;
}

/// A copy of the text that stays until the thread's next; nullptr if there is no memory for it.
const char* keptCopy(std::string_view text) noexcept {
    const BlockKey& blocks = blockKey();
    if (!blocks.isMade) return nullptr;
    auto* const block = static_cast<char*>(std::malloc(text.size() + 1));
    if (block == nullptr) return nullptr;
    std::memcpy(block, text.data(), text.size());
    block[text.size()] = '\0';
    void* const before = pthread_getspecific(blocks.key);
    const bool isKept = pthread_setspecific(blocks.key, block) == 0;
    std::free(isKept ? before : block);
    return isKept ? block : nullptr;
}

}  // namespace

zqp_status fail(zqp_status status, std::string_view text) noexcept {
    const char* const kept = keptCopy(text);
    lastText = kept != nullptr ? kept : meaningOf(status);
    return status;
}

zqp_status failWithException() noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return fail(statusOfKind(error.kind()), error.what());
    } catch (const std::bad_alloc&) {
        return fail(ZQP_NO_MEMORY, meaningOf(ZQP_NO_MEMORY));
    } catch (const std::exception& error) {
        return fail(ZQP_UNEXPECTED, error.what());
    } catch (...) {
        return fail(ZQP_UNEXPECTED, meaningOf(ZQP_UNEXPECTED));
    }
}

zqp_status Call::failTooSmall(std::size_t capacity, std::size_t needed) const {
    return fail(ZQP_TOO_SMALL, std::string(function_) + ": the buffer has room for " +
                                   std::to_string(capacity) + " bytes, " + std::to_string(needed) +
                                   " are needed");
}

}  // namespace zqpaths::cinterface

const char* zqp_last_error() {
    return zqpaths::cinterface::lastText;
}
