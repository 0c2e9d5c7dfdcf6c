#pragma once
// ClassRegistry holds all namespaces and classes of the process, by full name. It owns them and
// decides who is first.
//
// Threads: safe for concurrent use. No library code runs while it is locked.

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSNamespace.hpp"

namespace kobj {

class ClassRegistry {
public:
    /// The registry of the process. It is never destroyed: an object that a program keeps in a
    /// static variable needs its class until the very end.
    static ClassRegistry& instance();

    /// The namespace of this name within `outer`, or an outermost one if `outer` is null.
    COSNamespace* getNamespace(const COSNamespace* outer, std::string_view name);

    /// Null if there is none.
    COSClass* findClass(std::string_view fullName) const;

    /// The class of the new one's name: the new one, unless another was there first; then the new
    /// one is freed.
    COSClass* addClass(std::unique_ptr<COSClass> newClass);

    void clear() noexcept;

private:
    mutable std::mutex mutex_;
    std::map<std::string, std::unique_ptr<COSNamespace>, std::less<>> namespaces_;
    std::map<std::string, std::unique_ptr<COSClass>, std::less<>> classes_;
};

}  // namespace kobj
