// Runs a fuzz target on each file of the folders given, without a fuzzing engine:
//
//     fuzz_decode fuzz/corpus/decode
//
// A broken law or a crash ends the process; no file at all is a failure too.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// What targets that change their inputs ask the engine for; a replay changes none.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* /*data*/, std::size_t size,
                                        std::size_t /*maxSize*/) {
    return size;
}

namespace {

void replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    std::cout << file.filename().string() << ' ' << input.size() << " bytes" << std::endl;
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::size_t replayed = 0;
    for (int i = 1; i < argumentCount; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            if (!entry.is_regular_file()) continue;
            replay(entry.path());
            ++replayed;
        }
    }
    std::cout << replayed << " inputs replayed" << std::endl;
    return replayed == 0 ? 1 : 0;
}
