#pragma once
// The errors of the object system: Exception<KORVEX::kobj::…>.

namespace KORVEX::kobj {

struct Message {
    static constexpr const char* kComponent = "KORVEX:kobj";
};
/// Argument: the full name.
struct noSuchClass : Message {
    static constexpr const char* kKey = "noSuchClass";
};
/// Arguments: the class, the method.
struct noSuchMethod : Message {
    static constexpr const char* kKey = "noSuchMethod";
};
/// Arguments: the class, the property.
struct noSuchProperty : Message {
    static constexpr const char* kKey = "noSuchProperty";
};
/// Arguments: the class, the method or property that it has already or keeps for itself.
struct nameIsTaken : Message {
    static constexpr const char* kKey = "nameIsTaken";
};
/// Argument: the class. Object arrays share their objects, so others cannot be offered.
struct notPassedByReference : Message {
    static constexpr const char* kKey = "notPassedByReference";
};
/// Argument: the class of the array that should have been an object.
struct notAnObject : Message {
    static constexpr const char* kKey = "notAnObject";
};
/// Arguments: the class that is needed, the class of the object.
struct wrongObjectClass : Message {
    static constexpr const char* kKey = "wrongObjectClass";
};
/// Arguments: the type that is needed, the type that is there.
struct cannotConvert : Message {
    static constexpr const char* kKey = "cannotConvert";
};

}  // namespace KORVEX::kobj
