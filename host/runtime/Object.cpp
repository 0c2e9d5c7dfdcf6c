#include "host/runtime/Object.hpp"

#include <algorithm>
#include <utility>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSTypeRepository.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/runtime/Error.hpp"
#include "host/runtime/ErrorTranslation.hpp"
#include "host/runtime/MethodCall.hpp"

namespace korvex {

using foundation::core::except::Exception;
using kobj::COSProperty;

namespace {

/// Null if `value` is of the property's declared type. Throws wrongProperty.
kxArrayPtr convert(const kxArray* value, const COSProperty& property) {
    try {
        return kobj::COSTypeRepository::convertBorrowed(value, property.type);
    } catch (const Exception<KORVEX::kobj::cannotConvert>& error) {
        throw Exception<KORVEX::runtime::wrongProperty>(property.name, property.type,
                                                        error.arguments().at(1));
    }
}

}  // namespace

Object::Object(kobj::COSInterfacePtr object) : object_(std::move(object)) {}

std::vector<Array> Object::callWith(std::string_view method, std::int32_t outputCount,
                                    const Inputs& inputs) try {
    const kobj::COSClass& ofClass = object_->getClass();
    // A constructor works on the object in its first output; here it would find none.
    if (method == ofClass.getClassInfo().getClassName()) {
        throw Exception<KORVEX::kobj::noSuchMethod>(ofClass.getFullName(), std::string(method));
    }
    const Array self = toArray();
    Inputs all{self.get()};
    all.insert(all.end(), inputs.begin(), inputs.end());
    return callMethod(ofClass.getMethod(method), outputCount, all);
} catch (...) {
    throw handledError();
}

Array Object::get(std::string_view property) const try {
    const COSProperty& accessed = object_->getClass().getProperty(property);
    const std::unique_ptr<kxArray, void (*)(kxArray*)> value(accessed.get(object_),
                                                             accessed.release);
    kxArrayPtr converted = convert(value.get(), accessed);
    if (converted == nullptr) converted.reset(kxDuplicateArray(value.get()));
    return Array(std::move(converted));
} catch (...) {
    throw handledError();
}

void Object::set(std::string_view property, const Array& value) try {
    const COSProperty& accessed = object_->getClass().getProperty(property);
    const kxArrayPtr converted = convert(value.get(), accessed);
    accessed.set(object_, converted == nullptr ? value.get() : converted.get());
} catch (...) {
    throw handledError();
}

Array Object::save(const std::vector<std::string>& fieldNames) try {
    kobj::COSInterfacePtr object = object_;
    kobj::COSValue saved;
    if (object_->getClass().getClassInfo().customSave(object, saved)) {
        return saved.array() == nullptr ? Array() : Array(kxDuplicateArray(saved.array()));
    }
    kxArrayPtr structure(kxCreateStructure({1, 1}, fieldNames));
    auto values = callWith("serialize", static_cast<std::int32_t>(fieldNames.size()), {});
    for (std::size_t i = 0; i < std::min(fieldNames.size(), values.size()); ++i) {
        kxReplaceField(structure.get(), 0, fieldNames[i], values[i].release());
    }
    return Array(std::move(structure));
} catch (...) {
    throw handledError();
}

Array Object::toArray() const try { return Array(kxCreateObject(object_)); } catch (...) {
    throw handledError();
}

}  // namespace korvex
