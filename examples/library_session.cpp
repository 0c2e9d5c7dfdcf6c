// Holds the paths that are its arguments in a set file, reads them back and looks for a text in
// them:  library_session SET TEXT PATH...

#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>

#include <zqpaths/PathSet.hpp>
#include <zqpaths/PathSetWriter.hpp>

int main(int argumentCount, char** arguments) try {
    constexpr int kFirstPath = 3;
    if (argumentCount <= kFirstPath) {
        std::cerr << "usage: library_session SET TEXT PATH...\n";
        return 2;
    }
    const std::string file = arguments[1];

    zqpaths::PathSetWriter writer(file);  // refuses a file that is there
    for (int i = kFirstPath; i < argumentCount; ++i) writer.add(arguments[i]);
    writer.commit();  // now the file is there, whole

    const zqpaths::PathSet set = zqpaths::PathSet::open(file);
    std::cout << set.size() << " paths, the last one is " << set.path(set.size()) << '\n';
    const auto print = [](std::uint64_t number, std::string_view path) {
        std::cout << number << '\t' << path << '\n';
    };
    set.find(zqpaths::Pattern::text(arguments[2]), print);
} catch (const zqpaths::Error& error) {
    std::cerr << error.what() << '\n';
    return 2;
}
