#include "compressedpaths/store/FlatArray.hpp"

namespace compressedpaths {

void* growBlock(void* block, std::size_t byteSize) {
    while (true) {
        void* const grown = std::realloc(block, byteSize);
        if (grown != nullptr) return grown;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

}  // namespace compressedpaths
