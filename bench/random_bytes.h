#pragma once

#include <cstddef>
#include <random>
#include <vector>

namespace kvbench {

// The same bytes each time, without a pattern.
inline std::vector<unsigned char> randomBytes(std::size_t size) {
    std::mt19937 random(9);
    std::vector<unsigned char> bytes(size);
    for (unsigned char &byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

}  // namespace kvbench
