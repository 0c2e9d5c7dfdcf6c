// Who includes whom. Each folder of sources may know some of the others and none else; what a
// source may include besides its folder's share is named beside the reason.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/walls/Sources.hpp"

namespace walls {
namespace {

using Folders = std::vector<std::string>;
using testing::ElementsAre;

bool isOfOneOf(const Include& include, const Folders& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::string& folder) { return include.isOf(folder); });
}

/// True for sources of this repository, in whatever marks; the others are libraries.
bool isOurs(const Include& include) {
    static const Folders top{"compressedpaths/", "binding/",  "host/",  "tools/", "zqpaths/",
                             "python/",          "examples/", "tests/", "bench/", "fuzz/"};
    return include.isQuoted || isOfOneOf(include, top);
}

void expectOnly(const std::vector<Include>& includes, const Folders& allowed) {
    for (const Include& include : includes) {
        if (!isOurs(include)) continue;
        EXPECT_TRUE(isOfOneOf(include, allowed))
            << include.source << " includes " << include.target;
    }
}

/// The sources that include a file of a library.
std::set<std::string> whoIncludes(const Folders& folders, const Folders& libraryFiles) {
    std::set<std::string> sources;
    for (const std::string& folder : folders)
        for (const Include& include : includesIn(folder))
            if (isOfOneOf(include, libraryFiles)) sources.insert(include.source);
    return sources;
}

TEST(IncludeDirections, theCoreKnowsItselfAlone) {
    expectOnly(includesIn("compressedpaths"), {"compressedpaths/"});
}

TEST(IncludeDirections, sixpacksKnowsBytesOnly) {
    expectOnly(includesIn("compressedpaths/sixpacks"), {"compressedpaths/sixpacks/"});
}

TEST(IncludeDirections, theStoreKnowsNothingOfCodesAndNumbers) {
    expectOnly(includesIn("compressedpaths/store"),
               {"compressedpaths/store/", "compressedpaths/sixpacks/",
                "compressedpaths/SavedForm.hpp", "compressedpaths/BPathTreeExceptions.hpp"});
}

TEST(IncludeDirections, theHostKnowsNothingOfPaths) {
    expectOnly(includesIn("host"), {"host/"});
}

TEST(IncludeDirections, theLayersOfTheHostKnowThoseBelow) {
    Folders below{"host/Export.hpp"};
    for (const char* layer : {"foundation", "arrays", "kobj", "matrix", "runtime"}) {
        const std::string folder = std::string("host/") + layer;
        below.push_back(folder + "/");
        for (const Include& include : includesIn(folder)) {
            Folders allowed = below;
            // The texts of all layers' errors stand in one table.
            if (include.source == "host/foundation/HostTexts.cpp")
                allowed.insert(allowed.end(),
                               {"host/arrays/ArrayErrors.hpp", "host/kobj/ObjectErrors.hpp",
                                "host/matrix/MatrixErrors.hpp", "host/runtime/Error.hpp"});
            expectOnly({include}, allowed);
        }
    }
}

TEST(IncludeDirections, theBindingKnowsCoreAndHost) {
    expectOnly(includesIn("binding"), {"binding/", "compressedpaths/", "host/"});
}

TEST(IncludeDirections, theLibraryKnowsItselfAndTheCore) {
    expectOnly(includesIn("zqpaths"), {"zqpaths/", "compressedpaths/"});
}

TEST(IncludeDirections, theDoorsOfTheLibraryLeadNowhereElse) {
    const Folders doors{"zqpaths/Error.hpp",
                        "zqpaths/Export.hpp",
                        "zqpaths/PathSet.hpp",
                        "zqpaths/PathSetWriter.hpp",
                        "zqpaths/PathVisitor.hpp",
                        "zqpaths/Pattern.hpp",
                        "zqpaths/WorkWatcher.hpp",
                        "zqpaths/choosing/PathParts.hpp",
                        "zqpaths/choosing/Permutation.hpp",
                        "zqpaths/choosing/Share.hpp",
                        "zqpaths/manifest/SetManifestWriter.hpp"};
    for (const std::string& door : doors) expectOnly(includesOf(door), doors);
}

TEST(IncludeDirections, theDoorForCLeadsToItsStandardHeadersAlone) {
    for (const Include& include : includesOf("zqpaths/zqpaths.h"))
        EXPECT_THAT(include.target, testing::AnyOf("stddef.h", "stdint.h"));
    EXPECT_THAT(whoIncludes({"zqpaths"}, {"zqpaths/zqpaths.h"}),
                testing::Each(testing::StartsWith("zqpaths/cinterface/")));
}

TEST(IncludeDirections, toolsKnowTheLibraryAlone) {
    expectOnly(includesIn("tools"), {"tools/", "zqpaths/"});
}

TEST(IncludeDirections, theProgramForOneProcessKnowsNothingOfThatForMany) {
    expectOnly(includesIn("tools/zqpaths"), {"tools/zqpaths/", "zqpaths/"});
}

TEST(IncludeDirections, pythonKnowsTheLibraryAlone) {
    expectOnly(includesIn("python"), {"python/", "zqpaths/"});
}

TEST(IncludeDirections, theExampleOfAProgramKnowsTheDoorsOfTheLibraryAlone) {
    expectOnly(includesOf("examples/library_session.cpp"),
               {"zqpaths/PathSet.hpp", "zqpaths/PathSetWriter.hpp"});
}

TEST(IncludeDirections, theExampleOfAProgramInCKnowsTheDoorForCAlone) {
    for (const Include& include : includesOf("examples/c_session.c"))
        EXPECT_TRUE(include.target == "zqpaths.h" || !isOurs(include)) << include.target;
}

TEST(IncludeDirections, theExampleOfAHostProgramKnowsTheHostAlone) {
    expectOnly(includesOf("examples/host_session.cpp"), {"host/"});
}

TEST(IncludeDirections, whatIsShippedIncludesNoTests) {
    for (const char* folder :
         {"compressedpaths", "binding", "host", "zqpaths", "tools", "python", "examples"})
        for (const Include& include : includesIn(folder))
            EXPECT_FALSE(isOfOneOf(include, {"tests/", "bench/", "fuzz/"})) << include.source;
}

TEST(IncludeDirections, aLibraryThatCanBeReplacedIsKnownToOneSource) {
    const Folders libraries{"compressedpaths", "binding", "host", "zqpaths"};
    EXPECT_THAT(whoIncludes(libraries, {"zlib.h"}),
                ElementsAre("compressedpaths/sixpacks/CompressedBlocks.cpp"));
    EXPECT_THAT(whoIncludes(libraries, {"oneapi/", "tbb/"}),
                ElementsAre("compressedpaths/coding/ParallelLoop.cpp"));
    EXPECT_THAT(whoIncludes(libraries, {"xxhash.h"}),
                ElementsAre("compressedpaths/store/Hashing.cpp"));
    EXPECT_THAT(whoIncludes(libraries, {"rapidjson/"}),
                ElementsAre("zqpaths/manifest/SetManifest.cpp"));
    EXPECT_THAT(whoIncludes({"tools"}, {"CLI/"}),
                ElementsAre("tools/zqpaths/arguments/GivenOptions.cpp"));
    EXPECT_THAT(whoIncludes({"tools"}, {"archive.h", "archive_entry.h"}),
                ElementsAre("tools/zqpaths/sources/archives/ArchiveSource.cpp"));
    EXPECT_THAT(whoIncludes({"tools"}, {"mpi.h"}),
                ElementsAre("tools/zqpaths-mpi/communication/Mailbox.cpp"));
}

TEST(IncludeDirections, areReadFromAnyFormOfTheDirective) {
    EXPECT_EQ(includedBy("#include \"host/Export.hpp\""), "host/Export.hpp");
    EXPECT_EQ(includedBy("  #  include <zlib.h>  // once"), "zlib.h");
    EXPECT_EQ(includedBy("#define include <zlib.h>"), "");
    EXPECT_EQ(includedBy("// #include <zlib.h>"), "");
    EXPECT_EQ(includedBy(""), "");
}

}  // namespace
}  // namespace walls
