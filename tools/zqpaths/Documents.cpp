#include "tools/zqpaths/Documents.hpp"
namespace zqpaths {
const std::vector<std::string>& documentKinds() { static const std::vector<std::string> k{"man","bash","zsh","fish"}; return k; }
ExitStatus runDocument(const DocumentOptions&, const MessageOptions&) { return ExitStatus::kFailed; }
}
