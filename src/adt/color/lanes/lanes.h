#pragma once

// Several numbers side by side, as many as a register holds of the processor that the including source is
// compiled for. Lanes never meet but where colours are taken apart and put together, and there is no fused
// multiplication, so each lane gives the same bits whatever the width.
//
// Each source that includes this has types and functions of its own (they stand in an unnamed namespace), and
// no function of the standard library: the linker could take its body for a wider processor into programs
// that run on others.

#include <cstddef>
#include <cstdint>
#include <utility>
#if defined(__x86_64__)
#    include <immintrin.h>
#endif

#define KV_INLINE [[gnu::always_inline]] static inline

namespace kv::detail {
namespace {

#if defined(__AVX512F__)
inline constexpr std::size_t kRegister = 64;
#elif defined(__AVX2__)
inline constexpr std::size_t kRegister = 32;
#else
inline constexpr std::size_t kRegister = 16;
#endif
inline constexpr std::size_t kLanes = kRegister / sizeof(float);

using Floats [[gnu::vector_size(kRegister)]] = float;
using Ints [[gnu::vector_size(kRegister)]] = std::int32_t;  // what comparing gives: -1 where it holds, else 0
using Doubles [[gnu::vector_size(kRegister)]] = double;
using Longs [[gnu::vector_size(kRegister)]] = std::uint64_t;

KV_INLINE Floats broadcast(float x) { return Floats{} + x; }

KV_INLINE Floats load(const float *from) {
    Floats v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}
KV_INLINE void store(Floats v, float *to) { __builtin_memcpy(to, &v, sizeof v); }

/// The lanes of a Floats as doubles.
struct Wide {
    Doubles low, high;
};

// What the compiler does not make of vectors by itself, or not well: roots, conversions, and tests of all
// lanes.
#if defined(__AVX512F__)
// The forms with a mask: the plain ones begin with a register that the compiler finds undefined.
KV_INLINE Floats sqrt(Floats v) { return _mm512_maskz_sqrt_ps(0xFFFF, v); }
KV_INLINE bool any(Ints mask) {
    const auto all = __builtin_bit_cast(__m512i, mask);
    return _mm512_test_epi32_mask(all, all) != 0;
}
KV_INLINE Wide widen(Floats v) {
    const __m256 low = __builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7);
    const __m256 high = __builtin_shufflevector(v, v, 8, 9, 10, 11, 12, 13, 14, 15);
    return {_mm512_maskz_cvtps_pd(0xFF, low), _mm512_maskz_cvtps_pd(0xFF, high)};
}
KV_INLINE Floats narrow(Wide v) {
    const __m256 low = _mm512_maskz_cvtpd_ps(0xFF, v.low), high = _mm512_maskz_cvtpd_ps(0xFF, v.high);
    return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}
#elif defined(__AVX2__)
KV_INLINE Floats sqrt(Floats v) { return _mm256_sqrt_ps(v); }
KV_INLINE bool any(Ints mask) { return _mm256_movemask_epi8(__builtin_bit_cast(__m256i, mask)) != 0; }
KV_INLINE Wide widen(Floats v) {
    return {_mm256_cvtps_pd(_mm256_castps256_ps128(v)), _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1))};
}
KV_INLINE Floats narrow(Wide v) { return _mm256_set_m128(_mm256_cvtpd_ps(v.high), _mm256_cvtpd_ps(v.low)); }
#elif defined(__x86_64__)
KV_INLINE Floats sqrt(Floats v) { return _mm_sqrt_ps(v); }
KV_INLINE bool any(Ints mask) { return _mm_movemask_epi8(__builtin_bit_cast(__m128i, mask)) != 0; }
KV_INLINE Wide widen(Floats v) { return {_mm_cvtps_pd(v), _mm_cvtps_pd(_mm_movehl_ps(v, v))}; }
KV_INLINE Floats narrow(Wide v) { return _mm_movelh_ps(_mm_cvtpd_ps(v.low), _mm_cvtpd_ps(v.high)); }
#else
KV_INLINE Floats sqrt(Floats v) {
    for (std::size_t i = 0; i < kLanes; ++i)
        v[i] = __builtin_sqrtf(v[i]);
    return v;
}
KV_INLINE bool any(Ints mask) {
    std::int32_t all = 0;
    for (std::size_t i = 0; i < kLanes; ++i)
        all |= mask[i];
    return all != 0;
}
KV_INLINE Wide widen(Floats v) {
    constexpr std::size_t half = kLanes / 2;
    Wide wide;
    for (std::size_t i = 0; i < half; ++i) {
        wide.low[i] = static_cast<double>(v[i]);
        wide.high[i] = static_cast<double>(v[half + i]);
    }
    return wide;
}
KV_INLINE Floats narrow(Wide v) {
    constexpr std::size_t half = kLanes / 2;
    Floats narrowed;
    for (std::size_t i = 0; i < half; ++i) {
        narrowed[i] = static_cast<float>(v.low[i]);
        narrowed[half + i] = static_cast<float>(v.high[i]);
    }
    return narrowed;
}
#endif

KV_INLINE Ints bits(Floats v) { return __builtin_bit_cast(Ints, v); }
KV_INLINE Floats fromBits(Ints v) { return __builtin_bit_cast(Floats, v); }
KV_INLINE Longs bits(Doubles v) { return __builtin_bit_cast(Longs, v); }
KV_INLINE Doubles fromBits(Longs v) { return __builtin_bit_cast(Doubles, v); }

inline constexpr std::int32_t kSign = INT32_MIN;

KV_INLINE Floats abs(Floats v) { return fromBits(bits(v) & ~kSign); }
KV_INLINE Floats copySign(Floats magnitude, Floats sign) {
    return fromBits((bits(magnitude) & ~kSign) | (bits(sign) & kSign));
}
/// a, or -a where sign is negative.
KV_INLINE Floats withSignOf(Floats a, Floats sign) { return fromBits(bits(a) ^ (bits(sign) & kSign)); }
KV_INLINE Floats min(Floats a, Floats b) { return a < b ? a : b; }
KV_INLINE Floats max(Floats a, Floats b) { return a > b ? a : b; }
KV_INLINE Floats square(Floats v) { return v * v; }

KV_INLINE Doubles abs(Doubles v) { return fromBits(bits(v) & INT64_MAX); }
KV_INLINE Doubles withSignOf(Doubles a, Doubles sign) {
    return fromBits(bits(a) ^ (bits(sign) & (std::uint64_t{1} << 63)));
}

/// The three coordinates of colours, one a lane.
struct Colors {
    Floats x, y, z;
};

// Coordinate k of colour i is the number 3 * i + k of three registers in a row.
template <std::size_t k, std::size_t... i>
KV_INLINE Floats pick(Floats a, Floats b, Floats c, std::index_sequence<i...>) {
    constexpr std::size_t end = 2 * kLanes;  // of what a and b hold
    const Floats ab = __builtin_shufflevector(a, b, static_cast<int>(3 * i + k < end ? 3 * i + k : 0)...);
    return __builtin_shufflevector(ab, c, static_cast<int>(3 * i + k < end ? i : 3 * i + k - kLanes)...);
}

KV_INLINE Colors loadColors(const float *from) {
    constexpr auto all = std::make_index_sequence<kLanes>();
    const Floats a = load(from), b = load(from + kLanes), c = load(from + 2 * kLanes);
    return {pick<0>(a, b, c, all), pick<1>(a, b, c, all), pick<2>(a, b, c, all)};
}

template <std::size_t n, std::size_t... i>
KV_INLINE Floats gather(Colors colors, std::index_sequence<i...>) {
    constexpr auto color = [](std::size_t lane) { return (n * kLanes + lane) / 3; };
    constexpr auto coordinate = [](std::size_t lane) { return (n * kLanes + lane) % 3; };
    const Floats xy = __builtin_shufflevector(
        colors.x, colors.y, static_cast<int>(coordinate(i) == 1 ? kLanes + color(i) : color(i))...);
    return __builtin_shufflevector(xy, colors.z,
                                   static_cast<int>(coordinate(i) == 2 ? kLanes + color(i) : i)...);
}

KV_INLINE void storeColors(Colors colors, float *to) {
    constexpr auto all = std::make_index_sequence<kLanes>();
    store(gather<0>(colors, all), to);
    store(gather<1>(colors, all), to + kLanes);
    store(gather<2>(colors, all), to + 2 * kLanes);
}

}  // namespace
}  // namespace kv::detail
