#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace kv::detail {

/// Truncates toward zero. What lies outside the range, and a NaN, gives the indefinite integer 0x80000000.
inline std::int32_t truncateTo32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/// The same in 64 bits: 0x8000000000000000.
inline std::int64_t truncateTo64(double value) {
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

/// The conversion between the element types of values. A char counts as signed on every processor. Integers
/// keep their low bits; floating values go through a signed integer of 64 bits to unsigned 32 bits, of 32
/// bits to all else.
template <class To, class From>
To castNumber(From value) {
    static_assert(std::numeric_limits<float>::is_iec559,
                  "a double beyond the range of float becomes infinite");
    if constexpr (std::is_same_v<From, char>) {
        return static_cast<To>(static_cast<signed char>(value));
    } else if constexpr (std::is_floating_point_v<To> || std::is_integral_v<From>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_same_v<To, std::uint32_t>) {
        return static_cast<To>(truncateTo64(static_cast<double>(value)));
    } else {
        return static_cast<To>(truncateTo32(static_cast<double>(value)));
    }
}

/// The decimal number at the beginning of a text as signed 32 bits, saturated; 0 when there is none.
inline std::int32_t parseInt32(const char *text) {
    const long long number = std::strtoll(text, nullptr, 10);
    if (number > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
    if (number < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(number);
}

}  // namespace kv::detail
