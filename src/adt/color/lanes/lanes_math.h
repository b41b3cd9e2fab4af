#pragma once

// Functions of lanes. Polynomials are series of Taylor, whose remainder lies below the rounding of the
// result; arguments outside of the range that is told give any number.

#include "adt/color/lanes/lanes.h"

namespace kv::detail {
namespace {

/// The polynomial with these coefficients, that of x^0 first.
template <std::size_t size>
KV_INLINE Floats polynomial(Floats x, const float (&coefficients)[size]) {
    Floats sum = broadcast(coefficients[size - 1]);
    for (std::size_t i = size - 1; i-- > 0;)
        sum = sum * x + coefficients[i];
    return sum;
}

KV_INLINE Doubles spread(double x) { return Doubles{} + x; }
KV_INLINE Doubles spread(Doubles x) { return x; }

/// The same in pairs of terms and pairs of pairs, since these series are long, and each multiplication of a
/// chain waits for the one before. High powers of x come about, which underflow soon in single precision, and
/// then take long.
template <class Coefficient, std::size_t size>
KV_INLINE Doubles polynomial(Doubles x, const Coefficient (&coefficients)[size]) {
    constexpr std::size_t half = (size + 1) / 2;
    Doubles pairs[half];
#pragma GCC unroll 8
    for (std::size_t i = 0; i < size / 2; ++i)
        pairs[i] = x * coefficients[2 * i + 1] + coefficients[2 * i];
    if constexpr (size % 2 == 1) pairs[half - 1] = spread(coefficients[size - 1]);
    if constexpr (half == 1)
        return pairs[0];
    else
        return polynomial(x * x, pairs);
}

/// 2^x for x from -125 to 125, to 2e-7 of it. x is a whole number and a fraction within 0.5.
KV_INLINE Floats exp2(Floats x) {
    constexpr float kMagic = 0x1.8p23F;  // puts the whole number into the last bits
    constexpr float kSeries[] = {1,
                                 0.69314718F,
                                 0.24022651F,
                                 0.055504109F,
                                 0.0096181291F,
                                 0.0013333558F,
                                 0.00015403530F,
                                 0.000015252734F};  // ln(2)^k / k!
    const Floats whole = x + kMagic;
    const Floats power = polynomial(x - (whole - kMagic), kSeries);
    return fromBits(bits(power) + (bits(whole) << 23));
}

/// x^exponent for x from 1e-300 to 1e300, and results within the same, to 1e-14 of it.
KV_INLINE Doubles pow(Doubles x, double exponent) {
    // log2 by way of artanh((m - 1) / (m + 1)), m from sqrt(1/2) to sqrt(2): 2 / ln(2) / (2 k + 1).
    constexpr double kLog[] = {2.8853900817779268,  0.96179669392597561, 0.57707801635558536,
                               0.41219858311113240, 0.32059889797532520, 0.26230818925253880,
                               0.22195308321368668, 0.19235933878519512, 0.16972882833987805};
    constexpr double kExp[] = {1,
                               0.69314718055994531,
                               0.24022650695910071,
                               0.055504108664821580,
                               0.0096181291076284772,
                               0.0013333558146428443,
                               0.00015403530393381610,
                               0.000015252733804059840,
                               1.3215486790144309e-6,
                               1.0178086009239700e-7,
                               7.0549116208011234e-9,
                               4.4455382718708115e-10};      // ln(2)^k / k!
    constexpr std::uint64_t kHalfRoot = 0x3FE6A09E667F3BCD;  // sqrt(1/2)
    constexpr std::uint64_t kFraction = (std::uint64_t{1} << 52) - 1;
    constexpr double kMagic = 0x1.8p52;

    const Longs fromHalfRoot = bits(x) - kHalfRoot;
    const Doubles m = fromBits((fromHalfRoot & kFraction) + kHalfRoot);
    // The exponent as a double: biased, so that it isn't negative, in the last bits of a large number.
    constexpr std::uint64_t kBias = 1024;
    const Longs biased = (fromHalfRoot + (kBias << 52)) >> 52;
    const Doubles e = fromBits(biased | bits(Doubles{} + 0x1p52)) - (0x1p52 + kBias);
    const Doubles s = (m - 1) / (m + 1);
    const Doubles log = polynomial(s * s, kLog) * s + e;

    const Doubles y = log * exponent;
    const Doubles whole = y + kMagic;
    const Doubles power = polynomial(y - (whole - kMagic), kExp);
    return fromBits(bits(power) + (bits(whole) << 52));
}

KV_INLINE Wide pow(Wide x, double exponent) { return {pow(x.low, exponent), pow(x.high, exponent)}; }

/// The angle of (x, y) from the axis of x, both from 0 up and one of them above, to the rounding of a float.
KV_INLINE Floats firstQuadrantAngle(Floats x, Floats y) {
    constexpr float kSeries[] = {1,          -1.0F / 3, 1.0F / 5,   -1.0F / 7, 1.0F / 9,
                                 -1.0F / 11, 1.0F / 13, -1.0F / 15, 1.0F / 17};
    constexpr float kEighth = 0.41421356F;  // tan(pi / 8)
    const Floats small = min(x, y), large = max(x, y);
    const Floats ratio = small / large;
    // Beyond 22.5 degrees, by the difference to 45.
    const Ints isFar = ratio > kEighth;
    const Floats t = isFar ? (small - large) / (small + large) : ratio;
    const Floats series = polynomial(t * t, kSeries) * t;
    const Floats angle = isFar ? series + 0.78539816F : series;
    return y > x ? 1.5707963F - angle : angle;
}

struct SinCos {
    Floats sin, cos;
};

/// Of an angle in radians, from -100 to 100, to 1e-7.
KV_INLINE SinCos sinCos(Floats angle) {
    constexpr float kSin[] = {1, -1.0F / 6, 1.0F / 120, -1.0F / 5040, 1.0F / 362880};
    constexpr float kCos[] = {1, -1.0F / 2, 1.0F / 24, -1.0F / 720, 1.0F / 40320};
    constexpr float kMagic = 0x1.8p23F;
    const Floats whole = angle * 0.63661977F + kMagic;
    const Floats quarters = whole - kMagic;
    // A quarter turn in two parts, the first of few bits, so that its multiples are exact.
    const Floats x = (angle - quarters * 0x1.92p0F) - quarters * 4.8382673e-4F;
    const Floats sin = polynomial(x * x, kSin) * x, cos = polynomial(x * x, kCos);
    const Ints quadrant = bits(whole);
    const Ints isOdd = (quadrant & 1) != 0;
    return {withSignOf(isOdd ? cos : sin, fromBits(quadrant << 30)),
            withSignOf(isOdd ? sin : cos, fromBits((quadrant + 1) << 30))};
}

}  // namespace
}  // namespace kv::detail
