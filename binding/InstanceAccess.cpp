#include "binding/InstanceAccess.hpp"

#include "binding/ClassName.hpp"

namespace binding {

compressedpaths::HuffmanPathTree& pathTreeOf(const kobj::COSInterfacePtr& object) {
    return *static_cast<compressedpaths::HuffmanPathTree*>(object->getInstanceData(kFullClassName));
}

compressedpaths::HuffmanPathTree& pathTreeOf(const kxArray* object) {
    return pathTreeOf(kobj::omGetArrayElement(object, 0));
}

}  // namespace binding
