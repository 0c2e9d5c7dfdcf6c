#include "host/runtime/Session.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSDataType.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/runtime/ErrorTranslation.hpp"
#include "host/runtime/MethodCall.hpp"

namespace korvex {

using foundation::core::except::Exception;

namespace {

using Entry = void (*)();

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw Exception<KORVEX::runtime::cannotLoadLibrary>(path, reason);
}

void* mapLibrary(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) refuse(path, "there is no such file");
    // A name without a folder would be looked up among the libraries of the system.
    const std::filesystem::path file = std::filesystem::absolute(path);
    if (void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return library;
    // The loader keeps its last error for each thread apart. NOLINTNEXTLINE(concurrency-mt-unsafe)
    refuse(path, dlerror());
}

Entry findEntry(const std::string& path, void* library, const std::string& prefix) {
    const std::string fileName = std::filesystem::path(path).filename().string();
    const std::string name = prefix + fileName.substr(0, fileName.find('.'));
    if (void* entry = dlsym(library, name.c_str())) return reinterpret_cast<Entry>(entry);
    refuse(path, "it has no entry " + name);
}

void initialize(const std::string& path, Entry entry) {
    try {
        entry();
    } catch (...) {
        refuse(path, handledError().what());
    }
}

kobj::COSClass& requireClass(std::string_view fullName) {
    if (kobj::COSClass* found = kobj::COSClass::getClass(fullName)) return *found;
    throw Exception<KORVEX::kobj::noSuchClass>(std::string(fullName));
}

}  // namespace

Session::~Session() {
    std::for_each(terminators_.rbegin(), terminators_.rend(), [](Entry terminate) { terminate(); });
}

void Session::loadLibrary(const std::string& path) try {
    void* library = mapLibrary(path);
    const Entry initializer = findEntry(path, library, "KVInitialize_");
    const Entry terminator = findEntry(path, library, "KVTerminate_");
    terminators_.reserve(terminators_.size() + 1);
    initialize(path, initializer);
    terminators_.push_back(terminator);
} catch (...) {
    throw handledError();
}

Object Session::constructWith(std::string_view className, const Inputs& inputs) try {
    kobj::COSClass& ofClass = requireClass(className);
    kobj::COSMethodInfo& constructor = ofClass.getMethod(ofClass.getClassInfo().getClassName());
    auto object = std::make_shared<kobj::COSInterface>(ofClass);
    callMethod(constructor, 1, inputs, Array(kxCreateObject(object)));
    return Object(std::move(object));
} catch (...) {
    throw handledError();
}

Object Session::load(std::string_view className, const Array& saved) try {
    return load(className, saved ? Array(kxDuplicateArray(saved.get())) : Array());
} catch (...) {
    throw handledError();
}

Object Session::load(std::string_view className, Array&& saved) try {
    const kobj::COSValue value(kxArrayPtr(saved.release()));
    kobj::COSClass& ofClass = requireClass(className);
    auto object = std::make_shared<kobj::COSInterface>(ofClass);
    ofClass.getClassInfo().customLoad(object, value, kobj::COSDataType::of(value));
    ofClass.getClassInfo().instanceLoaded(object);
    return Object(std::move(object));
} catch (...) {
    throw handledError();
}

}  // namespace korvex
