#pragma once

#include <cstddef>

// How many bytes the program has ever taken by operator new, released or not. For programs that link
// counted_memory.cpp and work on one thread; what a shared library takes counts where the system lets a
// program replace operator new for it, so link the library's objects.
std::size_t memoryTaken();
