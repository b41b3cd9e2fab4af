#pragma once

// CIELAB over lanes. The curve is computed in double, as in the plain form.

#include "adt/color/lanes/color_blocks.h"
#include "adt/color/lanes/lanes_math.h"
#include "adt/color/plain_cielab.h"
#include "adt/color/tables/cie_curve.h"

namespace kv::detail {
namespace {

/// x^(-1/3) of x from 1e-30 to 1e30, to 3e-7: a guess by the exponent, and two steps of third order.
KV_INLINE Floats inverseCubeRoot(Floats x) {
    const Floats third = __builtin_convertvector(bits(x), Floats) * (1.0F / 3);
    Floats r = fromBits(0x54A23230 - __builtin_convertvector(third, Ints));
    for (int step = 0; step < 2; ++step) {
        const Floats h = 1.0F - x * r * r * r;
        r = r + r * h * (h * (2.0F / 9) + 1.0F / 3);
    }
    return r;
}

// Both curves are odd about the value at 0, 4 / 29, which goes out of the equations of L*, a* and b*.

/// CieF of t less 4 / 29; t lies within 1e6 of 0, and guess is the inverse cube root of |t|.
KV_INLINE Doubles rise(Doubles t, Doubles guess) {
    const Doubles x = abs(t);
    const Doubles h = 1.0 - x * guess * guess * guess;
    const Doubles r = guess + guess * h * (h * (2.0 / 9) + 1.0 / 3);
    return withSignOf(x <= kCurveStart ? x * (841.0 / 108) : x * r * r - kCurveOffset, t);
}

KV_INLINE Wide rise(Floats t) {
    const Wide wide = widen(t), guess = widen(inverseCubeRoot(abs(t)));
    return {rise(wide.low, guess.low), rise(wide.high, guess.high)};
}

/// CieG of d and 4 / 29.
KV_INLINE Doubles fall(Doubles d) {
    const Doubles x = abs(d), v = x + kCurveOffset;
    return withSignOf(x <= kCurveHalfRise ? x * (108.0 / 841) : v * v * v, d);
}

KV_INLINE Floats scaledFall(Doubles low, Doubles high, float white) {
    const double scale = white;
    return narrow({fall(low) * scale, fall(high) * scale});
}

KV_INLINE Floats scaledDifference(const Wide &a, const Wide &b, double scale) {
    return narrow({(a.low - b.low) * scale, (a.high - b.high) * scale});
}

struct XyzToLabLanes {
    static constexpr auto plain = plainXyzToLab;
    KV_INLINE BlockResult of(const Colors &xyz, const float (&white)[3]) {
        const Floats x = xyz.x / white[0], y = xyz.y / white[1], z = xyz.z / white[2];
        const Wide fx = rise(x), fy = rise(y), fz = rise(z);
        const Ints isOrdinary = (abs(x) <= 1e6F) & (abs(y) <= 1e6F) & (abs(z) <= 1e6F);
        return {{narrow({fy.low * 116.0, fy.high * 116.0}), scaledDifference(fx, fy, 500),
                 scaledDifference(fy, fz, 200)},
                ~isOrdinary};
    }
};

struct LabToXyzLanes {
    static constexpr auto plain = plainLabToXyz;
    KV_INLINE BlockResult of(const Colors &lab, const float (&white)[3]) {
        const Wide L = widen(lab.x), a = widen(lab.y), b = widen(lab.z);
        const Doubles fyLow = L.low * (1.0 / 116), fyHigh = L.high * (1.0 / 116);
        return {{scaledFall(a.low * (1.0 / 500) + fyLow, a.high * (1.0 / 500) + fyHigh, white[0]),
                 scaledFall(fyLow, fyHigh, white[1]),
                 scaledFall(fyLow - b.low * (1.0 / 200), fyHigh - b.high * (1.0 / 200), white[2])},
                Ints{}};
    }
};

}  // namespace
}  // namespace kv::detail
