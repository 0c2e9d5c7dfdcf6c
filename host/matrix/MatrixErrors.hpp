#pragma once
// How libraries report errors to the host: those that all methods share,
// Exception<KORVEX::matrix::…>, and errors of their own.

#include "host/Export.hpp"
#include "host/foundation/Exceptions.hpp"

namespace KORVEX::matrix {

struct Message {
    static constexpr const char* kComponent = "KORVEX:matrix";
};
struct tooManyOutputs : Message {
    static constexpr const char* kKey = "tooManyOutputs";
};
struct tooManyInputs : Message {
    static constexpr const char* kKey = "tooManyInputs";
};
struct notEnoughInputs : Message {
    static constexpr const char* kKey = "notEnoughInputs";
};
struct invalidOutputCount : Message {
    static constexpr const char* kKey = "invalidOutputCount";
};
/// Argument: the number.
struct unknownMessage : Message {
    static constexpr const char* kKey = "unknownMessage";
};

}  // namespace KORVEX::matrix

namespace matrix::detail {

[[noreturn]] KORVEX_API void error_maxlhs();
[[noreturn]] KORVEX_API void error_maxrhs();
[[noreturn]] KORVEX_API void error_minrhs();

/// The shared error of this number: 0 tooManyOutputs, 1 tooManyInputs, 2 notEnoughInputs,
/// 3 invalidOutputCount; unknownMessage for others.
[[noreturn]] KORVEX_API void error_message(int number);

/// Reports an error to whoever called the method.
[[noreturn]] KORVEX_API void do_legacy_kx_error(const foundation::core::except::HostError& error);

}  // namespace matrix::detail
