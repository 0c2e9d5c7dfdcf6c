// The errors that the class has of its own: each with its type, its arguments and its text.

#include <gtest/gtest.h>

#include "binding/HuffmanPathsErrors.hpp"
#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

namespace errors = KORVEX::datastoreio::huffmanpaths;
using foundation::core::except::Exception;
using Arguments = std::vector<std::string>;

class ErrorTable : public BindingTest {
protected:
    /// Fails the test unless `call` ends with just this type of error, which has a text of its own.
    template <class MessageId, class Call>
    static void expectRaised(const char* key, const Arguments& arguments, Call call) {
        try {
            call();
            ADD_FAILURE() << "no error " << key;
        } catch (const Exception<MessageId, std::exception, void>& error) {
            EXPECT_EQ(error.identifier(), std::string("KORVEX:datastoreio:huffmanpaths:") + key);
            EXPECT_EQ(error.arguments(), arguments);
            const std::string message = error.what();
            EXPECT_EQ(message.find(key), std::string::npos) << "no text for " << message;
            EXPECT_EQ(message.find('{'), std::string::npos) << message;
            for (const std::string& argument : arguments)
                EXPECT_NE(message.find(argument), std::string::npos) << message;
        }
    }

    template <class MessageId>
    static void expectConstructorRaises(const char* key, const Arguments& arguments,
                                        const std::vector<const kxArray*>& inputs) {
        MethodCall call("HuffmanPaths", 1);
        call.setOutput(0, kxCreateObject(newObject()));
        expectRaised<MessageId>(key, arguments, [&] { call.run(inputs); });
    }

    /// Adds to an object that could add them, were they right.
    template <class MessageId>
    void expectAddPathsRaises(const char* key, const Arguments& arguments, const Lists& folders,
                              const Lists& files) {
        const korvex::Array self = codingCharacters(u"abc").toArray();
        const korvex::Array folderCells = listsOf(folders);
        const korvex::Array fileCells = listsOf(files);
        MethodCall call("addPaths", 0);
        expectRaised<MessageId>(key, arguments, [&] {
            call.run({self.get(), folderCells.get(), fileCells.get()});
        });
    }

    void expectFolderElementEmpty(const std::string& argument, const Lists& folders,
                                  const Lists& files) {
        expectAddPathsRaises<errors::folderElementEmpty>("folderElementEmpty", {argument}, folders,
                                                         files);
    }
    void expectFileElementEmpty(const std::string& argument, const Lists& folders,
                                const Lists& files) {
        expectAddPathsRaises<errors::fileElementEmpty>("fileElementEmpty", {argument}, folders,
                                                       files);
    }
};

TEST_F(ErrorTable, fileListNotEvenHasNoArguments) {
    const korvex::Array form = text(u"files");
    const korvex::Array odd = listsOf({{u"a"}, {u"b"}, {u"c"}});
    const korvex::Array shapeless(kxCreateCell({}));
    for (const korvex::Array* lists : {&odd, &shapeless})
        expectConstructorRaises<errors::fileListNotEven>("fileListNotEven", {},
                                                         {form.get(), lists->get()});
}

TEST_F(ErrorTable, unequalNumFolderFileListHasNoArguments) {
    expectAddPathsRaises<errors::unequalNumFolderFileList>(
        "unequalNumFolderFileList", {}, {{u"a"}, {u"b"}}, {{u"a"}, {u"b"}, {u"c"}});
}

TEST_F(ErrorTable, folderElementEmptyNamesTheElement) {
    expectFolderElementEmpty("1", {{}}, {{u"a"}});
    expectFolderElementEmpty("2", {{u"a"}, {}, {}}, {{u"a"}, {u"b"}, {u"c"}});
}

TEST_F(ErrorTable, folderElementEmptyNamesTheComponent) {
    expectFolderElementEmpty("3, 1", {{u"a"}, {u"b"}, {u"", u"c"}}, {{u"a"}, {u"b"}, {u"c"}});
    expectFolderElementEmpty("1, 3", {{u"a", u"b", u""}, {}}, {{u"a"}, {u"b"}});
}

TEST_F(ErrorTable, fileElementEmptyNamesTheElement) {
    expectFileElementEmpty("1", {{u"a"}}, {{}});
    expectFileElementEmpty("12", Lists(12, {u"a"}), [] {
        Lists files(12, {u"a"});
        files.back().clear();
        return files;
    }());
}

TEST_F(ErrorTable, fileElementEmptyNamesTheFile) {
    expectFileElementEmpty("3, 2", {{u"a"}, {u"b"}, {u"c"}}, {{u"a"}, {u"b"}, {u"c", u""}});
    expectFileElementEmpty("1, 11", {{u"a"}}, {[] {
                               Names files(11, u"a");
                               files.back().clear();
                               return files;
                           }()});
}

TEST_F(ErrorTable, folderElementEmptyComesBeforeFileElementEmpty) {
    expectFolderElementEmpty("2", {{u"a"}, {}}, {{}, {u"b"}});
    expectFolderElementEmpty("2, 1", {{u"a"}, {u""}}, {{u""}, {}});
}

TEST_F(ErrorTable, frequenciesNotDoubleNamesTheClass) {
    const korvex::Array form = text(u"frequencies");
    const korvex::Array characters = text(u"ab");
    const korvex::Array integers(kxCreateNumeric(kxClass::kInt32, {2, 1}));
    const korvex::Array cells = namesOf({u"a", u"b"});
    expectConstructorRaises<errors::frequenciesNotDouble>(
        "frequenciesNotDouble", {"int32"}, {form.get(), characters.get(), integers.get()});
    expectConstructorRaises<errors::frequenciesNotDouble>(
        "frequenciesNotDouble", {"cell"}, {form.get(), characters.get(), cells.get()});
}

TEST_F(ErrorTable, tooFewFrequenciesNamesBothNumbers) {
    const korvex::Array form = text(u"frequencies");
    const korvex::Array characters = text(u"abc");
    const korvex::Array two = numbers({1, 2});
    const korvex::Array none = numbers({});
    expectConstructorRaises<errors::tooFewFrequencies>("tooFewFrequencies", {"3", "2"},
                                                       {form.get(), characters.get(), two.get()});
    expectConstructorRaises<errors::tooFewFrequencies>("tooFewFrequencies", {"3", "0"},
                                                       {form.get(), characters.get(), none.get()});
}

TEST_F(ErrorTable, reachesHostProgramsWithIdentifierAndText) {
    korvex::Object object = codingCharacters(u"ab");
    expectError("KORVEX:datastoreio:huffmanpaths:folderElementEmpty",
                Exception<errors::folderElementEmpty>("2, 1").what(), [&] {
                    add(object, {{{u"a"}, {u""}}, {{u"a"}, {u"b"}}});
                });
}

}  // namespace
}  // namespace binding_tests
