#pragma once
// Host errors. Each kind is a type of its own, made from a message id:
//
//     namespace KORVEX::printer {
//     struct outOfPaper {
//         static constexpr const char* kComponent = "KORVEX:printer";
//         static constexpr const char* kKey = "outOfPaper";
//     };
//     }
//     throw Exception<KORVEX::printer::outOfPaper>("2", "desk");
//
// The text comes from the message catalogue when the error is made. Whoever does not know the kind
// catches HostError, which knows identifier and arguments, or std::exception.

#include <exception>
#include <new>
#include <string>
#include <vector>

#include "host/Export.hpp"
#include "host/foundation/Messages.hpp"

namespace foundation::core::except {

/// What all host errors have in common.
class KORVEX_API HostError {
public:
    HostError() = default;
    HostError(const HostError&) = default;
    HostError& operator=(const HostError&) = default;
    virtual ~HostError();

    /// Component and key, joined by ':'.
    virtual std::string identifier() const = 0;
    virtual const std::vector<std::string>& arguments() const noexcept = 0;
    virtual const char* text() const noexcept = 0;

    /// Throws a copy of this error as the type that it is.
    [[noreturn]] virtual void raise() const = 0;
};

/// The error `MessageId`, which is also a `Base`.
template <class MessageId, class Base = std::exception, class = void>
class Exception : public Base, public HostError {
public:
    template <class... Arguments>
    explicit Exception(const Arguments&... arguments)
        : arguments_{std::string(arguments)...},
          text_(messages::format(MessageId::kComponent, MessageId::kKey, arguments_)) {}

    std::string identifier() const override {
        return std::string(MessageId::kComponent) + ":" + MessageId::kKey;
    }
    const std::vector<std::string>& arguments() const noexcept override { return arguments_; }
    const char* text() const noexcept override { return text_.c_str(); }
    const char* what() const noexcept override { return text_.c_str(); }
    [[noreturn]] void raise() const override { throw Exception(*this); }

private:
    std::vector<std::string> arguments_;
    std::string text_;
};

/// Memory for an object of the host could not be had.
class KORVEX_API bad_alloc : public std::bad_alloc {
public:
    ~bad_alloc() override;
    const char* what() const noexcept override;
};

}  // namespace foundation::core::except
