#include "host/foundation/HostTexts.hpp"

#include "host/arrays/ArrayErrors.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/matrix/MatrixErrors.hpp"
#include "host/runtime/Error.hpp"

namespace foundation::core::messages {
namespace {

template <class MessageId>
constexpr HostText say(const char* text) {
    return {MessageId::kComponent, MessageId::kKey, text};
}

constexpr HostText kTexts[] = {
    say<KORVEX::arrays::wrongClass>("an array of class {1} is needed, not one of class {2}"),
    say<KORVEX::arrays::indexOutOfRange>(
        "position {1} is outside the array, which has {2} elements"),
    say<KORVEX::arrays::noSuchField>("the array has no field '{1}'"),
    say<KORVEX::arrays::repeatedField>("the field '{1}' is named more than once"),
    say<KORVEX::arrays::tooManyElements>(
        "an array of {1} has more elements than memory can address"),
    say<KORVEX::arrays::noObject>("an object array cannot be made without an object"),
    say<KORVEX::arrays::arrayWithinItself>("an array cannot be put into itself"),

    say<KORVEX::kobj::noSuchClass>("there is no class '{1}'"),
    say<KORVEX::kobj::noSuchMethod>("class {1} has no method '{2}'"),
    say<KORVEX::kobj::noSuchProperty>("class {1} has no property '{2}'"),
    say<KORVEX::kobj::nameIsTaken>("class {1} cannot have another member named '{2}'"),
    say<KORVEX::kobj::notPassedByReference>(
        "class {1} is passed by value, but object arrays share their objects"),
    say<KORVEX::kobj::notAnObject>("an object is needed, this is an array of class {1}"),
    say<KORVEX::kobj::wrongObjectClass>("an object of class {1} is needed, this one is a {2}"),
    say<KORVEX::kobj::cannotConvert>("a value of type '{1}' is needed, and '{2}' cannot be "
                                     "converted to it"),

    say<KORVEX::matrix::tooManyOutputs>("more outputs are wanted than the method has"),
    say<KORVEX::matrix::tooManyInputs>("more inputs are given than the method takes"),
    say<KORVEX::matrix::notEnoughInputs>("fewer inputs are given than the method needs"),
    say<KORVEX::matrix::invalidOutputCount>("the method cannot give this number of outputs"),
    say<KORVEX::matrix::unknownMessage>("the shared errors of methods have no number {1}"),

    say<KORVEX::runtime::cannotLoadLibrary>("cannot load the library '{1}': {2}"),
    say<KORVEX::runtime::wrongInput>(
        "method {1}: input '{2}' is declared as '{3}', but '{4}' was given"),
    say<KORVEX::runtime::wrongOutput>(
        "method {1}: output '{2}' is declared as '{3}', but the method made '{4}'"),
    say<KORVEX::runtime::missingOutput>("method {1}: output {2} was not set"),
    say<KORVEX::runtime::wrongProperty>(
        "property {1}: it is declared as '{2}', but '{3}' was given"),
};

}  // namespace

std::span<const HostText> hostTexts() noexcept {
    return kTexts;
}

}  // namespace foundation::core::messages
