#pragma once
// Namespaces hold classes and further namespaces; one that is asked for is there.
//
//     kobj::COSNamespace* const top = kobj::omGetNamespace("korvex");
//     kobj::COSNamespace* const shapes = kobj::omGetInnerNamespace(top, "shapes");
//     shapes->getFullName();  // "korvex.shapes"
//     shapes->addClass(new CircleCOSClassInfo, 0, 2);
//
// Threads: safe for concurrent use.

#include <string>
#include <string_view>

#include "host/Export.hpp"

namespace kobj {

class COSClass;
class COSClassInfo;

class KORVEX_API COSNamespace {
public:
    COSNamespace(const COSNamespace* outer, std::string_view name);
    COSNamespace(const COSNamespace&) = delete;
    COSNamespace& operator=(const COSNamespace&) = delete;

    /// Names from the outermost namespace on, joined by '.'.
    const std::string& getFullName() const noexcept { return fullName_; }

    /// Makes a class of `info`, which is taken over, and lets it add its methods and properties.
    /// If the class is there already, it stays as it is and `info` is freed. `access` and `origin`
    /// are kept with the class. Throws notPassedByReference and what `info` throws; no class is
    /// there then, and `info` is freed.
    COSClass* addClass(COSClassInfo* info, int access, int origin);

private:
    std::string fullName_;
};

/// An outermost namespace; it lives until omReset.
KORVEX_API COSNamespace* omGetNamespace(std::string_view name);
KORVEX_API COSNamespace* omGetInnerNamespace(COSNamespace* outer, std::string_view name);

}  // namespace kobj
