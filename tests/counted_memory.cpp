#include "counted_memory.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t g_taken = 0;
}

std::size_t memoryTaken() { return g_taken; }

// In a file of their own, so that no compiler looks through them and complains of malloc and delete.
void *operator new(std::size_t size) {
    g_taken += size;
    void *block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }
