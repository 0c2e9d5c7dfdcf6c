#pragma once
// Names that the bytes of an input choose, few enough that folders meet again and again:
//
//     const std::vector<std::u16string> folder = chooseNames(script, 1);  // {u"a", u"hc"}

#include <string>
#include <string_view>
#include <vector>

#include "fuzz/InputScript.hpp"

namespace fuzzing {

inline constexpr std::u16string_view kNameCharacters = u"abcdefgh";

/// One character, seldom two.
inline std::u16string chooseName(InputScript& script) {
    const unsigned choice = script.byte();
    std::u16string name(1, kNameCharacters[choice % kNameCharacters.size()]);
    if (choice >= 192) name.push_back(kNameCharacters[choice / 8 % kNameCharacters.size()]);
    return name;
}

/// `least` names, or up to three more.
inline std::vector<std::u16string> chooseNames(InputScript& script, std::size_t least) {
    std::vector<std::u16string> names(least + script.byte() % 4);
    for (std::u16string& name : names) name = chooseName(script);
    return names;
}

}  // namespace fuzzing
