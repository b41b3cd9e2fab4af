#pragma once

#include <cstddef>

// What a thread takes by operator new, for programs that link counted_memory.cpp. Link the library's objects,
// too: not every system lets a program replace operator new for a shared library.
struct Heap {
    long allocated = 0, live = 0;     // blocks ever taken, and of them those not released
    std::size_t taken = 0;            // bytes ever taken
    std::size_t bytes = 0, peak = 0;  // bytes not released, and the most of them
    long allowed = -1;                // blocks until the next failure; -1 for ever
};
extern thread_local Heap heap;
