// A library as a host program loads it, with the classes Counter, Letter and Bare in korvex.tests.

#include <atomic>

#include "host/Export.hpp"
#include "host/foundation/Messages.hpp"
#include "host/kobj/COSClassInfo.hpp"
#include "host/kobj/COSNamespace.hpp"
#include "tests/host/runtime/CounterClass.hpp"
#include "tests/host/runtime/LetterClass.hpp"

namespace counters {
namespace {

std::atomic<int> terminated = 0;

/// A class that takes all that the host does by default, without constructor and instances.
class BareClassInfo : public kobj::COSClassInfo {
public:
    const char* getClassName() const override { return "Bare"; }
    void initializeClass(kobj::COSClass*, const kobj::COSClient*) override {}
    void* allocateInstance(kobj::COSInterface*) override { return nullptr; }
    void deallocateInstance(kobj::COSInterface*, void*) override {}
};

}  // namespace

int terminationCount() {
    return terminated;
}

}  // namespace counters

extern "C" KORVEX_API void KVInitialize_libcounters() {
    using KORVEX::tests::negativeTotal;
    foundation::core::messages::add(negativeTotal::kComponent, negativeTotal::kKey,
                                    "a total cannot be {1}");
    auto* tests = kobj::omGetInnerNamespace(kobj::omGetNamespace("korvex"), "tests");
    tests->addClass(new counters::CounterClassInfo, 0, 2);
    tests->addClass(new counters::LetterClassInfo, 0, 2);
    tests->addClass(new counters::BareClassInfo, 0, 2);
}

extern "C" KORVEX_API void KVTerminate_libcounters() {
    ++counters::terminated;
}
