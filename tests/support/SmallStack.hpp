#pragma once
// Runs code where recursion shows itself: a walk that recurses into each of 100,000 levels does not
// fit this stack, whatever the stack of the program.

#include <pthread.h>

#include <cstddef>
#include <stdexcept>

template <class Act>
void onSmallStack(Act act) {
    constexpr std::size_t kStackSize = std::size_t{512} << 10U;  // bytes; 5 for each level
    pthread_attr_t attributes;
    pthread_t thread{};
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStackSize);
    const auto run = [](void* given) -> void* {
        (*static_cast<Act*>(given))();
        return nullptr;
    };
    const int error = pthread_create(&thread, &attributes, run, &act);
    pthread_attr_destroy(&attributes);
    if (error != 0) throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
}
