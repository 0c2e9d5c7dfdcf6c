#include "binding/HuffmanPathsErrors.hpp"

#include "host/foundation/Messages.hpp"

namespace binding {
namespace {

template <class MessageId>
void addText(const char* text) {
    foundation::core::messages::add(MessageId::kComponent, MessageId::kKey, text);
}

}  // namespace

void addErrorTexts() {
    addText<errors::fileListNotEven>(
        "folders and lists of files must come in equal number, folders first, in one cell array");
    addText<errors::unequalNumFolderFileList>(
        "there must be a list of files for each folder and a folder for each list of files");
    addText<errors::folderElementEmpty>("the folder at {1} is empty");
    addText<errors::fileElementEmpty>("the list of files at {1} is empty");
    addText<errors::frequenciesNotDouble>("frequencies must be a double array; this is {1}");
    addText<errors::tooFewFrequencies>("there are {1} characters but only {2} frequencies");
}

}  // namespace binding
