#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kv::detail {

/// The mode in which a file is opened, zero-terminated: the first 5 characters of mode, and behind them a 'b'
/// where neither text is wanted nor a 'b' is there and it fits.
inline void composeMode(const char *mode, bool text, char (&composed)[6]) {
    constexpr std::size_t kLongest = sizeof composed - 1;
    const std::size_t length = std::min(std::strlen(mode), kLongest);
    std::memset(composed, 0, sizeof composed);
    std::memcpy(composed, mode, length);
    if (!text && std::strchr(composed, 'b') == nullptr && length < kLongest) composed[length] = 'b';
}

}  // namespace kv::detail
