#pragma once
// Session is what host programs are written with: it loads libraries, makes objects of their
// classes and calls them.
//
//     korvex::Session session;
//     session.loadLibrary("./libshapes.so");
//     korvex::Object circle = session.construct("korvex.shapes.Circle", korvex::text(u"red"));
//     std::vector<korvex::Array> area = circle.call("area", 1);
//     kxGetNumber(area[0].get(), 0);
//
// All errors are korvex::Error; where there is no memory even for that, std::bad_alloc. Inputs and
// outputs of methods and values of properties are converted to their declared types; what cannot be
// converted is an error that names method, argument and type. A call with a wrong number of inputs
// or outputs goes to the method as it is, which refuses it before it looks at anything.
//
// Threads: a session and its objects belong to one thread at a time.

#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"
#include "host/runtime/Arrays.hpp"
#include "host/runtime/Error.hpp"
#include "host/runtime/Object.hpp"

namespace korvex {

class KORVEX_API Session {
public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    /// Runs KVTerminate_NAME of each library, the last one first; they must not throw. The
    /// libraries stay in memory with their classes.
    ~Session();

    /// Loads a library and runs its KVInitialize_NAME, NAME being the file name up to its first
    /// dot. Whatever goes wrong, its initialization included, is a cannotLoadLibrary.
    void loadLibrary(const std::string& path);

    /// A new object, filled by the constructor method.
    template <class... Arrays>
    Object construct(std::string_view className, const Arrays&... inputs) {
        return constructWith(className, Inputs{inputs.get()...});
    }
    Object constructWith(std::string_view className, const Inputs& inputs);

    /// A new object, filled from what was stored of another. An array that is moved in is not
    /// copied.
    Object load(std::string_view className, const Array& saved);
    Object load(std::string_view className, Array&& saved);

private:
    std::vector<void (*)()> terminators_;
};

}  // namespace korvex
