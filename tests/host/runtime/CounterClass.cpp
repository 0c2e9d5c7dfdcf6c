#include "tests/host/runtime/CounterClass.hpp"

#include <bit>
#include <cmath>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/COSClass.hpp"
#include "host/matrix/Matrix.hpp"
#include "host/runtime/Error.hpp"
#include "tests/host/runtime/LibraryMethod.hpp"

namespace counters {

using foundation::core::except::Exception;
using kobj::COSInterfacePtr;

namespace {

constexpr const char* kCounterName = "korvex.tests.Counter";

struct Counter {
    double total = 0;
    std::u16string unit;
    bool wasLoaded = false;

    void setTotal(double newTotal) {
        if (newTotal < 0) {
            throw Exception<KORVEX::tests::negativeTotal>(std::to_string(std::lround(newTotal)));
        }
        total = newTotal;
    }
};

Counter& counterOf(const kobj::COSInterface& object) {
    return *static_cast<Counter*>(object.getInstanceData(kCounterName));
}

Counter& counterOf(const kxArray* object) {
    return counterOf(*kobj::omGetArrayElement(object, 0));
}

kxArray* numberArray(double number) {
    kxArray* array = kxCreateNumeric(kxClass::kDouble, {1, 1});
    kxGetData<double>(array)[0] = number;
    return array;
}

kxArray* textArray(std::u16string_view text) {
    return matrix::to_korvex(matrix::create(text));
}

double address(const kxArray* array) {
    return static_cast<double>(std::bit_cast<std::uintptr_t>(array));
}

// --- Methods.

void constructCounter(Call call) {
    Counter& counter = counterOf(call.outputs[0]);
    if (call.inputCount > 0) counter.setTotal(kxGetNumber(call.inputs[0], 0));
    if (call.inputCount > 1) counter.unit = matrix::get_ustring(call.inputs[1]);
}

void add(Call call) {
    Counter& counter = counterOf(call.inputs[0]);
    const auto amounts = matrix::get_doubles(call.inputs[1]);
    counter.setTotal(std::accumulate(amounts.begin(), amounts.end(), counter.total));
    call.outputs[0] = numberArray(counter.total);
}

void addressesOf(Call call) {
    for (int i = 0; i < 3; ++i) call.outputs[i] = numberArray(address(call.inputs[i + 1]));
}

/// Input 2 is what the output count becomes, input 3 what goes into the slots; "-" is left out.
void give(Call call) {
    const kxArray* values = call.inputs[2];
    for (std::size_t i = 0; i < kxGetNumberOfElements(values); ++i) {
        const kxArray* value = kxGetCell(values, i);
        const bool isLeftOut =
            kxGetClass(value) == kxClass::kCharacter && kxGetCharacters(value) == u"-";
        if (!isLeftOut) call.outputs[i] = kxDuplicateArray(value);
    }
    call.outputCount = static_cast<std::int32_t>(kxGetNumber(call.inputs[1], 0));
}

void fail(Call call) {
    const std::string kind = matrix::get_string(call.inputs[1]);
    // Whatever is thrown, the outputs that are there already must not be lost.
    call.outputs[0] = numberArray(1);
    call.outputs[1] = numberArray(2);
    if (kind == "host") counterOf(call.inputs[0]).setTotal(-5);
    if (kind == "host array") kxGetNumber(call.inputs[1], 99);
    if (kind == "standard") throw std::out_of_range("Too far out.");
    if (kind == "memory") throw foundation::core::except::bad_alloc();
    if (kind == "error") throw korvex::Error("KORVEX:tests:own", "An error as it is.");
    if (kind == "number") throw 17;
}

void serialize(Call call) {
    const Counter& counter = counterOf(call.inputs[0]);
    call.outputs[0] = numberArray(counter.total);
    if (call.outputCount == 2) call.outputs[1] = textArray(counter.unit);
}

void terminations(Call call) {
    call.outputs[0] = numberArray(terminationCount());
}

// --- Properties.

kxArray* getTotal(const COSInterfacePtr& object) {
    return numberArray(counterOf(*object).total);
}
void setTotal(const COSInterfacePtr& object, const kxArray* value) {
    counterOf(*object).setTotal(kxGetData<double>(value)[0]);
}
kxArray* getUnit(const COSInterfacePtr& object) {
    return textArray(counterOf(*object).unit);
}
void setUnit(const COSInterfacePtr& object, const kxArray* value) {
    counterOf(*object).unit = matrix::get_ustring(value);
}
kxArray* getWasLoaded(const COSInterfacePtr& object) {
    kxArray* flag = kxCreateNumeric(kxClass::kLogical, {1, 1});
    kxGetData<bool>(flag)[0] = counterOf(*object).wasLoaded;
    return flag;
}
kxArray* getNothing(const COSInterfacePtr&) {
    return nullptr;
}
void setNothing(const COSInterfacePtr&, const kxArray*) {}

void addProperties(kobj::COSClass& described) {
    const auto addProperty = [&](const char* name, const char* type, auto get, auto set) {
        described.addProperty(name, type, get, set, kxDestroyArray, 0, 2, 0x840, 0);
    };
    addProperty("Total", "double scalar", getTotal, setTotal);
    addProperty("Unit", "char vector", getUnit, setUnit);
    addProperty("WasLoaded", "double scalar", getWasLoaded, setNothing);
    addProperty("TotalAsCell", "cell", getTotal, setNothing);
    addProperty("Nothing", "any", getNothing, setNothing);
}

}  // namespace

void CounterClassInfo::initializeClass(kobj::COSClass* newClass, const kobj::COSClient*) {
    const auto addMethod = [&](const char* name, LibraryMethod::Parameters inputs,
                               LibraryMethod::Parameters outputs, LibraryMethod::Body body) {
        newClass->addMethod(new LibraryMethod(name, std::move(inputs), std::move(outputs), body));
    };
    const kobj::COSParameter self{kCounterName, "counter"};
    addMethod("Counter", {{"double scalar", "total", true}, {"char", "unit", true}},
              {{kCounterName, "counter"}}, constructCounter);
    addMethod("add", {self, {"double vector", "amounts"}}, {{"double scalar", "total"}}, add);
    addMethod("addressesOf", {self, {"cell", "texts"}, {"double", "numbers"}, {"any", ""}},
              {{"any", "texts"}, {"any", "numbers"}, {"any", ""}}, addressesOf);
    addMethod("give", {self, {"double scalar", "count"}, {"cell", "values"}},
              {{"double", "first"}, {"char vector", ""}, {"any", "third", true}}, give);
    addMethod("fail", {self, {"char", "kind"}}, {{"any", ""}, {"any", ""}}, fail);
    addMethod("serialize", {self}, {{"double", "total"}, {"char", "unit", true}}, serialize);
    addMethod("terminations", {self}, {{"double", "count"}}, terminations);
    addProperties(*newClass);
}

void* CounterClassInfo::allocateInstance(kobj::COSInterface*) {
    return new Counter;
}

void CounterClassInfo::deallocateInstance(kobj::COSInterface*, void* instance) {
    delete static_cast<Counter*>(instance);
}

void CounterClassInfo::instanceLoaded(COSInterfacePtr& object) {
    counterOf(*object).wasLoaded = true;
}

void CounterClassInfo::customLoad(COSInterfacePtr& object, kobj::COSValue saved,
                                  kobj::COSDataTypePtr savedType) {
    Counter& counter = counterOf(*object);
    const kxArray* structure = matrix::from_korvex(saved);
    if (savedType->getID() != "struct") {
        counter.unit.assign(savedType->getID().begin(), savedType->getID().end());
        return;
    }
    counter.setTotal(kxGetNumber(kxGetField(structure, 0, "total"), 0));
    counter.unit = matrix::get_ustring(kxGetField(structure, 0, "unit"));
}

}  // namespace counters
