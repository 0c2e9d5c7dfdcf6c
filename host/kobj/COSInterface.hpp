#pragma once
// COSInterface is one object of a class. Object arrays share it; when the last of them is freed,
// the class frees the instance.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "host/Export.hpp"
#include "host/arrays/kxArray.hpp"

namespace kobj {

class COSClass;

class KORVEX_API COSInterface : public kxObject {
public:
    /// An object of `ofClass` with a newly allocated instance.
    explicit COSInterface(COSClass& ofClass);
    ~COSInterface() override;

    COSClass& getClass() const noexcept { return class_; }
    const std::string& className() const override;

    /// Throws wrongObjectClass unless the object is of the class of this full name.
    void* getInstanceData(std::string_view fullClassName) const;
    /// Another instance in place of the present one, which is freed unless it is the same.
    void setInstanceData(std::string_view fullClassName, void* instance);

private:
    void requireClass(std::string_view fullClassName) const;
    void freeInstance() noexcept;

    COSClass& class_;
    void* instance_ = nullptr;
};

using COSInterfacePtr = std::shared_ptr<COSInterface>;

/// One object of an object array, counted from 0. Throws notAnObject and indexOutOfRange.
KORVEX_API COSInterfacePtr omGetArrayElement(const kxArray* objects, std::size_t index);

}  // namespace kobj
