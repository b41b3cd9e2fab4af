#include "counted_memory.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {
constexpr std::size_t kHeader = alignof(std::max_align_t);  // holds the size of a block
}

thread_local Heap heap;

// In a file of their own, so that no compiler looks through them and complains of malloc and delete.
void *operator new(std::size_t size) {
    void *block = heap.allowed == 0 ? nullptr : std::malloc(kHeader + size);
    if (block == nullptr) throw std::bad_alloc();
    if (heap.allowed > 0) --heap.allowed;
    ++heap.allocated;
    ++heap.live;
    heap.taken += size;
    heap.bytes += size;
    heap.peak = std::max(heap.peak, heap.bytes);
    *static_cast<std::size_t *>(block) = size;
    return static_cast<char *>(block) + kHeader;
}
void operator delete(void *block) noexcept {
    if (block == nullptr) return;
    void *begin = static_cast<char *>(block) - kHeader;
    heap.bytes -= *static_cast<std::size_t *>(begin);
    --heap.live;
    std::free(begin);
}
void operator delete(void *block, std::size_t) noexcept { operator delete(block); }
