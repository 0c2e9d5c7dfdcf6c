#pragma once
// BindingTest is the fixture of all tests of the loaded library: a session with the library, ways
// to make objects and to read them, and, at the end of each test, the check that everything which
// the test made through the host has been freed.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "host/foundation/LiveObjects.hpp"
#include "host/runtime/Session.hpp"
#include "tests/binding/HostLists.hpp"

namespace binding_tests {

using host_lists::dimensionsOf;
using host_lists::Lists;
using host_lists::listsIn;
using host_lists::listsOf;
using host_lists::nameIn;
using host_lists::Names;
using host_lists::namesIn;
using host_lists::namesOf;

inline constexpr const char* kClassName = "korvex.io.datastore.internal.fileset.HuffmanPaths";

using korvex::text;

inline korvex::Array numbers(const std::vector<double>& values) {
    return korvex::numbers(values);
}

inline std::vector<double> numbersIn(const kxArray* array) {
    const auto values = kxGetData<double>(array);
    return {values.begin(), values.end()};
}

inline std::vector<std::uint8_t> bytesIn(const kxArray* array) {
    const auto bytes = kxGetData<std::uint8_t>(array);
    return {bytes.begin(), bytes.end()};
}

/// Folders with their files, as addPaths takes them.
struct Listing {
    Lists folders;
    Lists files;
};

/// Three paths: /data/a.txt, /data/b.txt and /logs/x.
inline const Listing& smallListing() {
    static const Listing listing{{{u"/", u"data"}, {u"/", u"logs"}},
                                 {{u"a.txt", u"b.txt"}, {u"x"}}};
    return listing;
}
inline const Names& smallPaths() {
    static const Names paths{u"/data/a.txt", u"/data/b.txt", u"/logs/x"};
    return paths;
}

/// Fails the test unless `call` ends with this error of the host program.
template <class Call>
void expectError(const std::string& identifier, const std::string& message, Call call) {
    try {
        call();
        ADD_FAILURE() << "no error " << identifier;
    } catch (const korvex::Error& error) {
        EXPECT_EQ(error.identifier(), identifier);
        EXPECT_EQ(error.what(), message);
    }
}

/// The same, where the text is the host's own.
template <class Call>
void expectError(const std::string& identifier, Call call) {
    try {
        call();
        ADD_FAILURE() << "no error " << identifier;
    } catch (const korvex::Error& error) {
        EXPECT_EQ(error.identifier(), identifier) << error.what();
    }
}

inline constexpr const char* kNativeException = "KORVEX:runtime:nativeException";
inline constexpr const char* kAlphabetTooSmall = "An alphabet needs at least two characters.";
inline constexpr const char* kCodeNotFound = "Code for the character not found.";
inline constexpr const char* kInvalidPathNumber =
    "The path number is not a whole number from 1 to the number of paths.";
inline constexpr const char* kNoMorePath = "No more paths to provide.";

class BindingTest : public ::testing::Test {
public:
    BindingTest(const BindingTest&) = delete;
    BindingTest& operator=(const BindingTest&) = delete;
    /// Runs after the destructors of a test's own fixture, which frees what that holds.
    ~BindingTest() override {
        const foundation::core::LiveObjects after = foundation::core::liveObjects();
        EXPECT_EQ(after.arrays, before_.arrays);
        EXPECT_EQ(after.interfaces, before_.interfaces);
        EXPECT_EQ(after.instances, before_.instances);
        EXPECT_EQ(after.classInfos, before_.classInfos);
        EXPECT_EQ(after.methodInfos, before_.methodInfos);
        EXPECT_EQ(after.methodSignatures, before_.methodSignatures);
    }

protected:
    BindingTest() {
        session.loadLibrary(ZQ_LIBRARY);
        before_ = foundation::core::liveObjects();
    }

    template <class... Arrays>
    korvex::Object construct(const Arrays&... inputs) {
        return session.construct(kClassName, inputs...);
    }

    /// An object that can code what is listed, and holds nothing.
    korvex::Object coding(const Listing& listing) {
        Lists all = listing.folders;
        all.insert(all.end(), listing.files.begin(), listing.files.end());
        return construct(text(u"files"), listsOf(all));
    }

    /// An object that can code these characters.
    korvex::Object codingCharacters(std::u16string_view characters) {
        return construct(text(u"frequencies"), text(characters),
                         numbers(std::vector<double>(characters.size(), 1)));
    }

    static void add(korvex::Object& object, const Listing& listing) {
        object.call("addPaths", 0, listsOf(listing.folders), listsOf(listing.files));
    }

    /// An object that holds what is listed.
    korvex::Object holding(const Listing& listing) {
        korvex::Object object = coding(listing);
        add(object, listing);
        return object;
    }

    /// The paths with these numbers, joined.
    static Names joined(korvex::Object& object, const std::vector<double>& pathNumbers,
                        std::u16string_view separator = u"/") {
        const auto outputs = object.call("getPaths", 1, numbers(pathNumbers), text(separator));
        return namesIn(outputs.at(0).get());
    }

    /// The first paths, joined.
    static Names firstPaths(korvex::Object& object, std::size_t count) {
        std::vector<double> pathNumbers(count);
        std::iota(pathNumbers.begin(), pathNumbers.end(), 1.0);
        return joined(object, pathNumbers);
    }

    /// Fails the test unless the object holds just these paths.
    static void expectHolds(korvex::Object& object, const Names& paths) {
        EXPECT_EQ(firstPaths(object, paths.size()), paths);
        expectError(kNativeException, kInvalidPathNumber,
                    [&] { joined(object, {static_cast<double>(paths.size() + 1)}); });
    }

    /// Fails the test unless the object is as one that was made without inputs.
    static void expectIsEmpty(korvex::Object& object) {
        EXPECT_EQ(nameIn(object.get("StringTree").get()), u"");
        EXPECT_EQ(numbersIn(object.get("Frequencies").get()), std::vector<double>());
        expectHolds(object, {});
    }

    static bool hasNext(korvex::Object& object) {
        return kxGetNumber(object.call("hasNextPath", 1).at(0).get(), 0) != 0;
    }
    static Names next(korvex::Object& object) {
        return namesIn(object.call("getNextPath", 1).at(0).get());
    }

    /// All paths of the walk from its start, as components.
    static Lists walked(korvex::Object& object) {
        Lists paths;
        object.call("reset", 0);
        while (hasNext(object)) paths.push_back(next(object));
        return paths;
    }

    static std::vector<std::uint8_t> savedBytes(korvex::Object& object) {
        return bytesIn(object.call("serialize", 2).at(1).get());
    }

    korvex::Session session;

private:
    foundation::core::LiveObjects before_;
};

}  // namespace binding_tests
