#include "tests/host/runtime/LetterClass.hpp"

#include "host/kobj/COSClass.hpp"
#include "host/matrix/Matrix.hpp"
#include "tests/host/runtime/LibraryMethod.hpp"

namespace counters {
namespace {

constexpr const char* kLetterName = "korvex.tests.Letter";

/// The saved text, shared with whoever gave it: a letter only reads it.
using Letter = kobj::COSValue;

Letter& letterOf(const kobj::COSInterface& object) {
    return *static_cast<Letter*>(object.getInstanceData(kLetterName));
}

void constructLetter(Call call) {
    if (call.inputCount == 0) return;
    letterOf(*kobj::omGetArrayElement(call.outputs[0], 0)) =
        Letter(kxArrayPtr(kxDuplicateArray(call.inputs[0])));
}

/// Whether the letter is the one in another array.
void isSameAs(Call call) {
    const auto self = kobj::omGetArrayElement(call.inputs[0], 0);
    const auto other = kobj::omGetArrayElement(call.inputs[1], 0);
    call.outputs[0] = kxCreateNumeric(kxClass::kLogical, {1, 1});
    kxGetData<bool>(call.outputs[0])[0] = self == other;
    call.outputCount = 1;
}

}  // namespace

void LetterClassInfo::initializeClass(kobj::COSClass* newClass, const kobj::COSClient*) {
    using Parameters = LibraryMethod::Parameters;
    newClass->addMethod(new LibraryMethod("Letter", Parameters{{"char", "text", true}},
                                          Parameters{{kLetterName, ""}}, constructLetter));
    newClass->addMethod(
        new LibraryMethod("isSameAs", Parameters{{kLetterName, "letter"}, {kLetterName, "other"}},
                          Parameters{{"logical scalar", ""}}, isSameAs));
}

void* LetterClassInfo::allocateInstance(kobj::COSInterface*) {
    return new Letter;
}

void LetterClassInfo::deallocateInstance(kobj::COSInterface*, void* instance) {
    delete static_cast<Letter*>(instance);
}

bool LetterClassInfo::customSave(kobj::COSInterfacePtr& object, kobj::COSValue& saved) {
    saved = letterOf(*object);
    return true;
}

void LetterClassInfo::customLoad(kobj::COSInterfacePtr& object, kobj::COSValue saved,
                                 kobj::COSDataTypePtr) {
    letterOf(*object) = saved;
}

}  // namespace counters
