#pragma once
// The errors of the class, and how its methods raise them:
//
//     raise<errors::folderElementEmpty>("3, 1");

#include <exception>

#include "host/foundation/Exceptions.hpp"
#include "host/matrix/MatrixErrors.hpp"

namespace KORVEX::datastoreio::huffmanpaths {

struct Message {
    static constexpr const char* kComponent = "KORVEX:datastoreio:huffmanpaths";
};
struct fileListNotEven : Message {
    static constexpr const char* kKey = "fileListNotEven";
};
struct unequalNumFolderFileList : Message {
    static constexpr const char* kKey = "unequalNumFolderFileList";
};
/// Argument: the element's position, from 1, or that and the component's, as "3, 1".
struct folderElementEmpty : Message {
    static constexpr const char* kKey = "folderElementEmpty";
};
/// Argument: the element's position, from 1, or that and the name's, as "3, 1".
struct fileElementEmpty : Message {
    static constexpr const char* kKey = "fileElementEmpty";
};
/// Argument: the class that is there.
struct frequenciesNotDouble : Message {
    static constexpr const char* kKey = "frequenciesNotDouble";
};
/// Arguments: the number of characters, the number of frequencies.
struct tooFewFrequencies : Message {
    static constexpr const char* kKey = "tooFewFrequencies";
};

}  // namespace KORVEX::datastoreio::huffmanpaths

namespace binding {

namespace errors = KORVEX::datastoreio::huffmanpaths;

/// Gives the host the texts of these errors.
void addErrorTexts();

template <class MessageId, class... Arguments>
[[noreturn]] void raise(const Arguments&... arguments) {
    matrix::detail::do_legacy_kx_error(
        foundation::core::except::Exception<MessageId, std::exception, void>(arguments...));
}

}  // namespace binding
