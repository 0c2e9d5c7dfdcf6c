#pragma once
// COSClass is a class as the host sees it: full name, methods and properties by name, and the
// COSClassInfo that makes its instances. It lives from COSNamespace::addClass until omReset.
// Methods and properties have different names, for programs may well write both as `object.name`.
//
// Threads: methods and properties are added within addClass; afterwards safe for concurrent use.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSClassInfo.hpp"
#include "host/kobj/COSInterface.hpp"
#include "host/kobj/COSMethodInfo.hpp"

namespace kobj {

/// A property is reached by its accessors: `get` hands out an array, which goes back to `release`
/// when the host has copied it; `set` reads an array.
struct COSProperty {
    std::string name;
    std::string type;
    kxArray* (*get)(const COSInterfacePtr& object);
    void (*set)(const COSInterfacePtr& object, const kxArray* value);
    void (*release)(kxArray* value);
    int getAccess;
    int setAccess;
    int flags;
    int origin;
};

class KORVEX_API COSClass {
public:
    /// The class of this full name, or null.
    static COSClass* getClass(std::string_view fullName);

    /// Use COSNamespace::addClass.
    COSClass(std::string fullName, std::unique_ptr<COSClassInfo> info, int access, int origin);
    COSClass(const COSClass&) = delete;
    COSClass& operator=(const COSClass&) = delete;
    ~COSClass();

    const std::string& getFullName() const noexcept { return fullName_; }
    COSClassInfo& getClassInfo() const noexcept { return *info_; }
    int getAccess() const noexcept { return access_; }
    int getOrigin() const noexcept { return origin_; }

    /// Takes `method` over; it is freed if this throws. Throws nameIsTaken.
    void addMethod(COSMethodInfo* method);
    /// Throws nameIsTaken, also for a name that the class keeps for itself.
    void addProperty(std::string_view name, std::string_view type,
                     kxArray* (*get)(const COSInterfacePtr&),
                     void (*set)(const COSInterfacePtr&, const kxArray*), void (*release)(kxArray*),
                     int getAccess, int setAccess, int flags, int origin);

    /// By name. Throw noSuchMethod and noSuchProperty.
    COSMethodInfo& getMethod(std::string_view name) const;
    const COSProperty& getProperty(std::string_view name) const;
    /// In the order of adding.
    const std::vector<std::unique_ptr<COSMethodInfo>>& getMethods() const noexcept {
        return methods_;
    }
    const std::vector<COSProperty>& getProperties() const noexcept { return properties_; }

private:
    COSMethodInfo* findMethod(std::string_view name) const noexcept;
    const COSProperty* findProperty(std::string_view name) const noexcept;
    void requireFreeName(std::string_view name) const;

    std::string fullName_;
    std::unique_ptr<COSClassInfo> info_;
    int access_;
    int origin_;
    std::vector<std::unique_ptr<COSMethodInfo>> methods_;
    std::vector<COSProperty> properties_;
};

}  // namespace kobj
