#include "tests/host/kobj/ScriptedClass.hpp"

#include <cstdlib>
#include <new>

#include "host/foundation/Memory.hpp"

namespace kobj {

// Not inline: where compilers see calloc meet an operator delete, they warn of it.
void* ScriptedClassInfo::operator new(std::size_t size) {
    void* memory = std::calloc(1, size);
    if (memory == nullptr) throw std::bad_alloc();
    ++aliveInOwnMemory;
    return memory;
}

void ScriptedClassInfo::operator delete(void* memory) {
    --aliveInOwnMemory;
    utFree(memory);
}

}  // namespace kobj
