#include "binding/HuffmanPaths_Constructor.hpp"

#include <string>
#include <vector>

#include "binding/ClassName.hpp"
#include "binding/CountedCharacters.hpp"
#include "binding/HuffmanPathsErrors.hpp"
#include "binding/InstanceAccess.hpp"
#include "binding/RestoredPathTree.hpp"
#include "host/matrix/Matrix.hpp"

namespace binding {
namespace {

using compressedpaths::HuffmanPathTree;

void fromFrequencies(const kxArray* characters, const kxArray* frequencies, HuffmanPathTree& tree) {
    const std::u16string text = matrix::get_ustring(characters);
    if (kxGetClass(frequencies) != kxClass::kDouble)
        raise<errors::frequenciesNotDouble>(kxGetClassName(frequencies));
    const std::size_t frequencyCount = kxGetNumberOfElements(frequencies);
    if (frequencyCount < text.size())
        raise<errors::tooFewFrequencies>(std::to_string(text.size()),
                                         std::to_string(frequencyCount));

    tree.deflateHuffman(kxGetData<double>(frequencies).data(), text);
}

void countName(const kxArray* name, CountedCharacters& characters) {
    characters.count(kxGetCharacters(name));
}

void countNames(const kxArray* names, CountedCharacters& characters) {
    for (std::size_t i = 0; i < kxGetNumberOfElements(names); ++i)
        countName(kxGetCell(names, i), characters);
}

void fromFiles(const kxArray* foldersAndFiles, HuffmanPathTree& tree) {
    const std::size_t count = kxGetNumberOfElements(foldersAndFiles);
    if (kxGetDimensions(foldersAndFiles).empty() || count % 2 != 0)
        raise<errors::fileListNotEven>();

    CountedCharacters characters;
    // The first folder tells for all whether folders are lists of components or whole texts.
    const bool areLists = count > 0 && kxGetClass(kxGetCell(foldersAndFiles, 0)) == kxClass::kCell;
    for (std::size_t i = 0; i < count / 2; ++i)
        (areLists ? countNames : countName)(kxGetCell(foldersAndFiles, i), characters);
    for (std::size_t i = count / 2; i < count; ++i)
        countNames(kxGetCell(foldersAndFiles, i), characters);
    tree.deflateHuffman(characters.frequencies());
}

void fromSaved(const kxArray* treeString, const kxArray* pathTree, const kxArray* frequencies,
               HuffmanPathTree& tree) {
    restorePathTree(treeString, pathTree, tree);
    std::vector<double> values = matrix::get_doubles(frequencies);
    tree.setFrequencies(values);
}

}  // namespace

HuffmanPaths_Constructor::HuffmanPaths_Constructor()
    : HuffmanPathsMethodInfo({{"char", "createFrom", true},
                              {"any", "uniqueCharsOrObjectOrFolders", true},
                              {"any", "pathTree", true},
                              {"any", "frequencies", true}},
                             {{kFullClassName, "instance"}}) {}

void HuffmanPaths_Constructor::run(std::int32_t& /*outputCount*/, kxArray** outputs,
                                   std::int32_t inputCount, const kxArray* const* inputs) {
    HuffmanPathTree& tree = pathTreeOf(outputs[0]);
    if (inputCount < 2) return;

    const std::string createFrom = matrix::get_string(inputs[0]);
    if (inputCount == 2 && createFrom == "copy") tree.copyTree(pathTreeOf(inputs[1]));
    if (inputCount == 2 && createFrom == "files") fromFiles(inputs[1], tree);
    if (inputCount == 3 && createFrom == "frequencies") fromFrequencies(inputs[1], inputs[2], tree);
    if (inputCount == 4 && createFrom == "tree") fromSaved(inputs[1], inputs[2], inputs[3], tree);
}

}  // namespace binding
