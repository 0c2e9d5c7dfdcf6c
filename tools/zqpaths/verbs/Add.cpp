#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/zqpaths/NewSet.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/SetBuilding.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/SetSources.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

bool canHold(const PathSet& set, const CharacterCounts& counted) {
    const std::u16string characters = set.characters();
    return std::ranges::all_of(counted.characters(), [&](char16_t character) {
        return characters.find(character) != std::u16string::npos;
    });
}

/// Where the frequencies of all characters are not known, they stay so.
void updateFrequencies(PathSet& set, const CharacterCounts& added) {
    const std::u16string characters = set.characters();
    std::vector<double> frequencies = set.frequencies();
    if (frequencies.size() != characters.size()) return;
    for (std::size_t i = 0; i < characters.size(); ++i)
        frequencies[i] += static_cast<double>(added.countOf(characters[i]));
    set.setFrequencies(frequencies);
}

/// The saved set with the paths of the source behind its own.
PathSet extend(PathSet set, PathSource& source, const MessageOptions& messages) {
    const CharacterCounts counted = countCharacters(source, messages);
    if (counted.pathCount() == 0) return set;
    if (canHold(set, counted)) {
        addPaths(set, source, counted, messages);
        updateFrequencies(set, counted);
        return set;
    }
    // The characters of a set are fixed when it is built.
    ExtendedSetSource all(set, source);
    return buildSet(all, messages).value();
}

}  // namespace

ExitStatus runAdd(const AddOptions& options, const MessageOptions& messages) {
    const std::unique_ptr<PathSource> source = openSource(options.source);
    SetFile::Update update(options.set);  // what others add meanwhile would get lost
    std::uint64_t sizeBefore = 0;
    PathSet set = againWhilePathsChange([&] {
        PathSet saved = restoreSet(options.set, fieldsOf(options.set, update.load()));
        sizeBefore = saved.size();
        return extend(std::move(saved), *source, messages);
    });
    if (set.size() > sizeBefore) update.save(kPathSetClass, set.fields());
    tellSize(options.set, set, messages);
    return statusAfter(*source, options.source.ignoreUnreadable);
}

}  // namespace zqpaths
