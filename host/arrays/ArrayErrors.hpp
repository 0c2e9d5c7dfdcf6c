#pragma once
// The errors of wrong use of arrays: Exception<KORVEX::arrays::…>.

namespace KORVEX::arrays {

struct Message {
    static constexpr const char* kComponent = "KORVEX:arrays";
};
/// Arguments: the class that is needed ("numeric" for any of numbers, logical values and
/// characters), the class that is there.
struct wrongClass : Message {
    static constexpr const char* kKey = "wrongClass";
};
/// Arguments: the position, from 1, and the number of elements.
struct indexOutOfRange : Message {
    static constexpr const char* kKey = "indexOutOfRange";
};
/// Argument: the name of the field.
struct noSuchField : Message {
    static constexpr const char* kKey = "noSuchField";
};
/// Argument: the name of the field.
struct repeatedField : Message {
    static constexpr const char* kKey = "repeatedField";
};
/// Argument: the dimensions, as "2 by 3".
struct tooManyElements : Message {
    static constexpr const char* kKey = "tooManyElements";
};
/// An object array needs an object.
struct noObject : Message {
    static constexpr const char* kKey = "noObject";
};
/// An array was to be put into a cell or field of its own.
struct arrayWithinItself : Message {
    static constexpr const char* kKey = "arrayWithinItself";
};

}  // namespace KORVEX::arrays
