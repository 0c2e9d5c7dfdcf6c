// The three entries of the library, as a host calls them.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstdlib>
#include <thread>

#include "host/kobj/COSClass.hpp"
#include "host/kobj/COSNamespace.hpp"
#include "host/kobj/ObjectSystem.hpp"
#include "tests/binding/BindingTest.hpp"

namespace binding_tests {
namespace {

/// The library, which stays in memory as the classes of it do.
class Entries {
public:
    Entries() : library_(dlopen(ZQ_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr) throw std::runtime_error(dlerror());
    }

    kobj::COSClass* initializeLibrary() const {
        return entry<kobj::COSClass* (*)()>("_Z17InitializeLibraryv")();
    }
    void kvInitialize() const { entry<void (*)()>("KVInitialize_libzqcompressedpaths")(); }
    void kvTerminate() const { entry<void (*)()>("KVTerminate_libzqcompressedpaths")(); }

private:
    template <class Function>
    Function entry(const char* name) const {
        void* const found = dlsym(library_, name);
        if (found == nullptr) throw std::runtime_error(dlerror());
        return reinterpret_cast<Function>(found);
    }

    void* library_;
};

kobj::COSClass* registeredClass() {
    return kobj::COSClass::getClass(kClassName);
}

/// Objects that describe one registered class.
void expectOneClass() {
    const foundation::core::LiveObjects live = foundation::core::liveObjects();
    EXPECT_EQ(live.classInfos, 1U);
    EXPECT_EQ(live.methodInfos, 7U);
    EXPECT_EQ(live.methodSignatures, 7U);
}

class Registration : public ::testing::Test {
public:
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() override { kobj::omSetKobjUsingUSM(false); }

protected:
    Registration() {
        // What happens once in a process is seen in one of its own.
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }

    const Entries entries;
};

/// Fails the test unless `steps` go without a failure in a process in which nothing was registered.
#define EXPECT_IN_A_NEW_PROCESS(steps)                                              \
    EXPECT_EXIT(                                                                    \
        {                                                                           \
            steps();                                                                \
            std::exit(::testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS); \
        },                                                                          \
        ::testing::ExitedWithCode(EXIT_SUCCESS), "")

TEST_F(Registration, givesTheClass) {
    kobj::COSClass* const given = entries.initializeLibrary();
    ASSERT_NE(given, nullptr);
    EXPECT_EQ(given->getFullName(), kClassName);
    EXPECT_EQ(given, registeredClass());
}

TEST_F(Registration, givesTheSameClassEachTime) {
    kobj::COSClass* const first = entries.initializeLibrary();
    EXPECT_EQ(entries.initializeLibrary(), first);
    expectOneClass();
}

TEST_F(Registration, resolvesTheNamespacesOfTheClass) {
    entries.initializeLibrary();
    kobj::COSNamespace* space = kobj::omGetNamespace("korvex");
    for (const char* name : {"io", "datastore", "internal", "fileset"})
        space = kobj::omGetInnerNamespace(space, name);
    EXPECT_EQ(space->getFullName() + ".HuffmanPaths", registeredClass()->getFullName());
}

TEST_F(Registration, isDoneByTheFirstInitialization) {
    EXPECT_IN_A_NEW_PROCESS([this] {
        EXPECT_EQ(registeredClass(), nullptr);
        entries.kvInitialize();
        ASSERT_NE(registeredClass(), nullptr);
        entries.kvInitialize();
        expectOneClass();
        EXPECT_EQ(entries.initializeLibrary(), registeredClass());
        expectOneClass();
    });
}

TEST_F(Registration, isDoneOnceInAProcess) {
    EXPECT_IN_A_NEW_PROCESS([this] {
        entries.kvInitialize();
        kobj::omReset();
        entries.kvInitialize();
        EXPECT_EQ(registeredClass(), nullptr);
    });
}

TEST_F(Registration, isLookedForEachTimeIfTheHostWantsThat) {
    EXPECT_IN_A_NEW_PROCESS([this] {
        kobj::omSetKobjUsingUSM(true);
        entries.kvInitialize();
        kobj::COSClass* const first = registeredClass();
        ASSERT_NE(first, nullptr);
        entries.kvInitialize();
        EXPECT_EQ(registeredClass(), first);
        expectOneClass();
        kobj::omReset();
        entries.kvInitialize();
        EXPECT_NE(registeredClass(), nullptr);
        expectOneClass();
        // The guard of the other way has not been touched meanwhile.
        kobj::omReset();
        kobj::omSetKobjUsingUSM(false);
        entries.kvInitialize();
        EXPECT_NE(registeredClass(), nullptr);
    });
}

TEST_F(Registration, isDoneOnceBySixteenThreads) {
    EXPECT_IN_A_NEW_PROCESS([this] {
        constexpr int kThreadCount = 16;
        std::barrier start(kThreadCount);
        std::atomic<int> seen = 0;
        {
            std::vector<std::jthread> threads(kThreadCount);
            for (std::jthread& thread : threads) {
                thread = std::jthread([&] {
                    start.arrive_and_wait();
                    entries.kvInitialize();
                    seen += registeredClass() != nullptr ? 1 : 0;
                });
            }
        }
        EXPECT_EQ(seen, kThreadCount);
        expectOneClass();
    });
}

TEST_F(Registration, outlivesTermination) {
    kobj::COSClass* const before = entries.initializeLibrary();
    entries.kvTerminate();
    entries.kvTerminate();
    EXPECT_EQ(registeredClass(), before);
    expectOneClass();
}

TEST_F(Registration, outlivesSessions) {
    entries.initializeLibrary();
    {
        korvex::Session session;
        session.loadLibrary(ZQ_LIBRARY);
    }
    korvex::Session other;
    korvex::Object object = other.construct(kClassName);
    EXPECT_EQ(nameIn(object.get("StringTree").get()), u"");
}

}  // namespace
}  // namespace binding_tests
