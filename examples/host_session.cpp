#include <host/runtime/Session.hpp>
#include <iostream>

template <class... Arrays>
korvex::Array listOf(Arrays... elements) {
    std::vector<korvex::Array> list;
    (list.push_back(std::move(elements)), ...);
    return korvex::cell(std::move(list));
}

void print(const korvex::Array& names) {
    for (std::size_t i = 0; i < kxGetNumberOfElements(names.get()); ++i) {
        const std::u16string_view name = kxGetCharacters(kxGetCell(names.get(), i));
        std::cout << (i == 0 ? "" : " ") << std::string(name.begin(), name.end());
    }
    std::cout << '\n';
}

int main(int argc, char** argv) try {
    using korvex::text;
    const char* const kClass = "korvex.io.datastore.internal.fileset.HuffmanPaths";
    korvex::Session session;
    session.loadLibrary(argc > 1 ? argv[1] : "libzqcompressedpaths.so");

    const auto names = [] { return listOf(text(u"a.txt"), text(u"b.txt")); };
    korvex::Object set = session.construct(kClass, text(u"files"), listOf(text(u"/data"), names()));
    set.call("addPaths", 0, listOf(listOf(text(u"/"), text(u"data"))), listOf(names()));
    const double wanted[] = {2, 1};
    print(set.call("getPaths", 1, korvex::numbers(wanted), text(u"/")).front());

    const korvex::Array saved = set.save({"StringTree", "PathTree"});
    korvex::Object loaded = session.load(kClass, saved);
    loaded.call("reset", 0);
    while (kxGetNumber(loaded.call("hasNextPath", 1).front().get(), 0) != 0)
        print(loaded.call("getNextPath", 1).front());
} catch (const korvex::Error& error) {
    std::cerr << error.identifier() << ": " << error.what() << '\n';
    return 2;
}
