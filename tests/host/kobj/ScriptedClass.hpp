#pragma once
// A class whose behaviour a test writes down:
//
//     kobj::ClassScript script;
//     script.initialize = [](kobj::COSClass& described) {
//         described.addMethod(new kobj::ScriptedMethod("draw"));
//     };
//     kobj::omGetNamespace("korvex")->addClass(new kobj::ScriptedClassInfo(script), 0, 2);
//
// Instances are numbers; those that are alive are counted.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSClassInfo.hpp"
#include "host/kobj/COSMethodInfo.hpp"
#include "host/kobj/COSMethodSignature.hpp"

namespace kobj {

struct ClassScript {
    std::string name = "Shape";
    std::function<void(COSClass&)> initialize = [](COSClass&) {};
    std::function<int*()> allocate = [] { return new int(0); };
    std::string reservedProperty;
    int passingMode = 0;
};

class ScriptedClassInfo : public COSClassInfo {
public:
    /// Frees go through the class's own operators, as libraries may have them.
    inline static std::atomic<int> aliveInOwnMemory = 0;
    inline static std::atomic<int> deallocations = 0;

    static void* operator new(std::size_t size);
    static void operator delete(void* memory);

    explicit ScriptedClassInfo(ClassScript script) : script_(std::move(script)) {}

    const char* getClassName() const override { return script_.name.c_str(); }
    void initializeClass(COSClass* newClass, const COSClient*) override {
        script_.initialize(*newClass);
    }
    void* allocateInstance(COSInterface*) override { return script_.allocate(); }
    void deallocateInstance(COSInterface*, void* instance) override {
        ++deallocations;
        delete static_cast<int*>(instance);
    }
    bool isPropertyNameReservedByThisClass(const char* propertyName) const override {
        return propertyName == script_.reservedProperty;
    }
    int getPassingMode() const override { return script_.passingMode; }

private:
    ClassScript script_;
};

class ScriptedMethod : public COSMethodInfo {
public:
    explicit ScriptedMethod(std::string name) : name_(std::move(name)) {}

    const char* getMethodName() const override { return name_.c_str(); }
    const COSMethodSignature& getSignature() const override { return *signature_; }
    void call(std::int32_t&, kxArray**, std::int32_t, const kxArray* const*) override {}

private:
    std::string name_;
    std::unique_ptr<COSMethodSignature> signature_ =
        COSMethodSignature::createMethodSignature({}, {});
};

}  // namespace kobj
