#pragma once

// Small helpers for ranges of bytes, used by the strings.

#include <cstddef>
#include <cstring>
#include <functional>

namespace kv::detail {

/// Copies n bytes that may overlap. The pointers may be null when n is 0.
inline void moveBytes(char *to, const char *from, std::size_t n) noexcept {
    if (n != 0) std::memmove(to, from, n);
}

/// The bytes before the first 0 of s, at most n.
inline std::size_t boundedLength(const char *s, std::size_t n) noexcept {
    if (n == 0) return 0;
    const void *zero = std::memchr(s, 0, n);
    return zero == nullptr ? n : static_cast<std::size_t>(static_cast<const char *>(zero) - s);
}

/// Turns every byte with the top bit set into "#".
inline void replaceHighBytes(char *s, std::size_t n) noexcept {
    for (char *end = s + n; s != end; ++s) {
        if (static_cast<unsigned char>(*s) >= 0x80) *s = '#';
    }
}

/// Whether p points to one of the bytes first[0] to first[last]. p may come from anywhere.
inline bool liesIn(const char *p, const char *first, std::size_t last) noexcept {
    return !std::less<>()(p, first) && !std::less<>()(first + last, p);
}

}  // namespace kv::detail
