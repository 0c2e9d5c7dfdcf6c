#pragma once
// Error is how all failures of the host and of libraries reach a host program.

#include <stdexcept>
#include <string>

#include "host/Export.hpp"

namespace korvex {

class KORVEX_API Error : public std::runtime_error {
public:
    Error(std::string identifier, const std::string& text);
    Error(const Error&) = default;
    Error& operator=(const Error&) = default;
    ~Error() override;

    /// Component and key of a host error; "KORVEX:runtime:nativeException" for an exception of a
    /// library that is none. what() is its text, unchanged.
    const std::string& identifier() const noexcept { return identifier_; }

private:
    std::string identifier_;
};

}  // namespace korvex

namespace KORVEX::runtime {

struct Message {
    static constexpr const char* kComponent = "KORVEX:runtime";
};
/// Arguments: the file, the reason.
struct cannotLoadLibrary : Message {
    static constexpr const char* kKey = "cannotLoadLibrary";
};
/// Arguments: the method, the input's name, its declared type, the type that was given.
struct wrongInput : Message {
    static constexpr const char* kKey = "wrongInput";
};
/// Arguments: the method, the output's name or position, its declared type, the type it has.
struct wrongOutput : Message {
    static constexpr const char* kKey = "wrongOutput";
};
/// Arguments: the method, the output's position.
struct missingOutput : Message {
    static constexpr const char* kKey = "missingOutput";
};
/// Arguments: the property, its declared type, the type that was given.
struct wrongProperty : Message {
    static constexpr const char* kKey = "wrongProperty";
};

}  // namespace KORVEX::runtime
