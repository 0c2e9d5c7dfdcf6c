#include "tools/zqpaths-mpi/paths/PathRecords.hpp"

namespace zqpaths::program::mpi {

void takePaths(const ResultPart& part,
               const std::function<void(std::uint64_t number, std::string_view path)>& take) {
    MessageReader reader(part.bytes);
    while (!reader.isAtEnd()) {
        const std::uint64_t number = reader.number();
        take(number, reader.text());
    }
}

}  // namespace zqpaths::program::mpi
