#pragma once
// The colours of names by what LS_COLORS of the environment says, as `dircolors` prints it:
//
//     NameColours colours("di=01;34:*.tar=01;31");
//     colours.ofFolder();         // "01;34"
//     colours.ofFile("x.tar");    // "01;31"
//     colours.ofFile("x");        // ""
//
// Threads: never changes; any number of threads may read it.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqpaths::program {

class NameColours {
public:
    /// What is not understood is passed over, so that nothing but numbers can reach the terminal.
    explicit NameColours(std::string_view variable);

    /// The numbers of a colour; empty for none.
    const std::string& ofFolder() const noexcept { return folder_; }
    const std::string& ofFile(std::string_view name) const noexcept;

private:
    std::string folder_ = "01;34";  // where the variable says nothing
    std::string file_;
    std::vector<std::pair<std::string, std::string>> bySuffix_;  // of several, the last one counts
};

}  // namespace zqpaths::program
