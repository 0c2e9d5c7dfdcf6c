#include "binding/HuffmanPathsCOSClassInfo.hpp"

#include <algorithm>
#include <iostream>
#include <utility>
#include <vector>

#include "binding/HuffmanPaths_AddPaths.hpp"
#include "binding/HuffmanPaths_Constructor.hpp"
#include "binding/HuffmanPaths_GetNextPath.hpp"
#include "binding/HuffmanPaths_GetPaths.hpp"
#include "binding/HuffmanPaths_HasNextPath.hpp"
#include "binding/HuffmanPaths_ResetPathTree.hpp"
#include "binding/HuffmanPaths_Serialize.hpp"
#include "binding/InstanceAccess.hpp"
#include "binding/RestoredPathTree.hpp"
#include "compressedpaths/HuffmanPathTree.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSTypeRepository.hpp"
#include "host/matrix/Matrix.hpp"

namespace binding {
namespace {

using compressedpaths::HuffmanPathTree;

kxArray* getStringTree(const kobj::COSInterfacePtr& object) {
    return matrix::to_korvex(matrix::create(pathTreeOf(object).getTreeString()));
}

void setStringTree(const kobj::COSInterfacePtr& object, const kxArray* characters) {
    pathTreeOf(object).setTreeString(matrix::get_ustring(characters));
}

kxArray* getFrequencies(const kobj::COSInterfacePtr& object) {
    const std::vector<double> values = pathTreeOf(object).getFrequencies();
    kxArrayPtr column = matrix::detail::do_create_uninitnumeric(values.size(), 1, kxClass::kDouble);
    std::ranges::copy(values, kxGetData<double>(column.get()).begin());
    return matrix::to_korvex(std::move(column));
}

void setFrequencies(const kobj::COSInterfacePtr& object, const kxArray* numbers) {
    std::vector<double> values = matrix::get_doubles(numbers);
    pathTreeOf(object).setFrequencies(values);
}

void loadFields(kobj::COSInterfacePtr& object, const kobj::COSValue& saved,
                const kobj::COSDataType& savedType) {
    const kobj::COSValue converted =
        kobj::COSTypeRepository::getConversion(savedType.getID(), "any").apply(saved);
    const kxArray* const fields = matrix::from_korvex(converted);
    if (fields == nullptr || kxGetFieldNumber(fields, "PathTree") < 0) return;

    const kxArray* const treeString = kxGetField(fields, 0, "StringTree");
    const kxArray* const pathTree = kxGetField(fields, 0, "PathTree");
    HuffmanPathTree& tree = pathTreeOf(object);
    restorePathTree(treeString, pathTree, tree);
    object->setInstanceData(object->getClass().getFullName(), &tree);
}

}  // namespace

void HuffmanPathsCOSClassInfo::initializeClass(kobj::COSClass* newClass,
                                               const kobj::COSClient* /*client*/) {
    newClass->addMethod(new HuffmanPaths_Constructor);
    newClass->addMethod(new HuffmanPaths_AddPaths);
    newClass->addMethod(new HuffmanPaths_GetPaths);
    newClass->addMethod(new HuffmanPaths_GetNextPath);
    newClass->addMethod(new HuffmanPaths_HasNextPath);
    newClass->addMethod(new HuffmanPaths_ResetPathTree);
    newClass->addMethod(new HuffmanPaths_Serialize);

    newClass->addProperty("StringTree", "char vector", getStringTree, setStringTree, kxDestroyArray,
                          0, 2, 0x840, 0);
    newClass->addProperty("Frequencies", "double vector", getFrequencies, setFrequencies,
                          kxDestroyArray, 0, 2, 0x840, 0);
}

void* HuffmanPathsCOSClassInfo::allocateInstance(kobj::COSInterface* /*object*/) {
    return new HuffmanPathTree;
}

void HuffmanPathsCOSClassInfo::deallocateInstance(kobj::COSInterface* /*object*/, void* instance) {
    delete static_cast<HuffmanPathTree*>(instance);
}

void HuffmanPathsCOSClassInfo::customLoad(kobj::COSInterfacePtr& object, kobj::COSValue saved,
                                          kobj::COSDataTypePtr savedType) {
    try {
        loadFields(object, saved, *savedType);
    } catch (...) {
        std::cout << "Error while custom loading CompressedFileSet." << std::endl;
    }
}

}  // namespace binding
