#pragma once
// Error is what every operation of the library throws, lack of memory aside (std::bad_alloc). Its
// text is for people and says what is wrong and where; its kind is for programs.
//
//     try {
//         zqpaths::PathSet set = zqpaths::PathSet::open("usr.zqp");
//     } catch (const zqpaths::Error& error) {
//         if (error.kind() == zqpaths::ErrorKind::kNotFound) ...
//         std::cerr << error.what() << '\n';  // "usr.zqp: No such file or directory"
//     }
//
// Names of files stand in the text as bytes; who shows them on a terminal takes care of that.

#include <stdexcept>
#include <string>
#include <string_view>

#include "zqpaths/Export.hpp"

namespace zqpaths {

enum class ErrorKind {
    kNotFound,  // there is no such file
    kExists,    // there is a file, and it may not be replaced
    kNotASet,   // a file that is none of ours, or of a version that is not known here
    kDamaged,   // a set whose bytes are not those that were saved
    kHeld,      // another process writes to the set
    kNoSpace,   // the device or a quota is full
    kSystem,    // the system refuses something else
    kWrongUse,  // an argument that cannot be meant: an empty path, a number beyond the set
};

class ZQPATHS_EXPORT Error : public std::runtime_error {
public:
    /// `place` is a file as a rule, and stands before the reason, if there is one.
    Error(ErrorKind kind, std::string_view place, std::string_view reason, int systemCode = 0);

    ErrorKind kind() const noexcept { return kind_; }

    /// The value of errno where the system has refused something; else 0.
    int systemCode() const noexcept { return systemCode_; }

private:
    ErrorKind kind_;
    int systemCode_;
};

// Reasons that are given in more than one place.
inline constexpr std::string_view kIsThere = "is there already";  // of kExists
inline constexpr std::string_view kIsNoSet = "is no saved set";   // of kNotASet

/// The error of a value of errno at a file, with the system's words.
Error systemError(std::string_view file, int error);

}  // namespace zqpaths
