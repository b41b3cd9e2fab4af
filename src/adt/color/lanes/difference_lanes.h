#pragma once

// The colour differences over lanes. The formulas are those of plain_difference.cpp without their angles:
// hues are unit vectors, their mean is the direction of the sum, and cosines of multiples come from products.

#include "adt/color/lanes/lanes_math.h"
#include "adt/color/plain_difference.h"

namespace kv::detail {
namespace {

/// The differences of the pairs of a block, and those that are left to the plain form.
struct Differences {
    Floats values;
    Ints leftOver;
};

struct ChromaPair {
    Floats C1, C2;
};

KV_INLINE ChromaPair chromas(const Colors &lab1, const Colors &lab2) {
    return {sqrt(square(lab1.y) + square(lab1.z)), sqrt(square(lab2.y) + square(lab2.z))};
}

// Where single precision is good for what is promised: the nominal range, and as much again for most colours.
KV_INLINE Ints isFarOff(const Colors &lab1, const Colors &lab2, const ChromaPair &chroma) {
    return ~(abs(lab1.x) + abs(lab2.x) + chroma.C1 + chroma.C2 <= 600.0F);
}

/// What two hues make: the hue difference dH, and the direction of the mean hue.
struct HuePair {
    Floats dH, cos, sin;
    /// Pairs whose hues are opposed to within rounding: which way round is shorter is for the plain form.
    Ints isOpposed;
};

// One of the vectors (a, b) of the chroma C to length 1; a neutral one has the hue of atan2 for zeros.
KV_INLINE void normalize(Floats &a, Floats &b, Floats C) {
    const Ints isNeutral = C == 0.0F;
    const Floats length = 1.0F / (isNeutral ? broadcast(1) : C);
    a = isNeutral ? copySign(broadcast(1), a) : a * length;
    b = b * length;
}

KV_INLINE HuePair hues(Floats a1, Floats b1, Floats C1, Floats a2, Floats b2, Floats C2) {
    const Ints isTiny =
        ((C1 < 1e-15F) & ((a1 != 0.0F) | (b1 != 0.0F))) | ((C2 < 1e-15F) & ((a2 != 0.0F) | (b2 != 0.0F)));
    normalize(a1, b1, C1);
    normalize(a2, b2, C2);
    const Floats dot = a1 * a2 + b1 * b2, cross = a1 * b2 - b1 * a2;
    const Floats da = a2 - a1, db = b2 - b1;
    const Ints isNear = dot >= 0.0F;
    // The sum is the better direction of near hues, the perpendicular of the difference that of far ones.
    const Floats x = isNear ? a1 + a2 : withSignOf(db, cross);
    const Floats y = isNear ? b1 + b2 : withSignOf(-da, cross);
    const Floats length = 1.0F / sqrt(x * x + y * y);
    const Floats dH = sqrt(C1 * C2 * (da * da + db * db));
    constexpr float kOpposed = 4e-6F;  // twice the rounding of float hues
    return {withSignOf(dH, cross), x * length, y * length, (~isNear & (abs(cross) < kOpposed)) | isTiny};
}

struct EabLanes {
    static constexpr auto plain = plainDeltaEab;
    KV_INLINE Differences of(const Colors &lab1, const Colors &lab2, const DifferenceWeights & /*weights*/) {
        return {sqrt(square(lab2.x - lab1.x) + square(lab2.y - lab1.y) + square(lab2.z - lab1.z)), Ints{}};
    }
};

struct E94Lanes {
    static constexpr auto plain = plainDeltaE94;
    // The hue difference squared is |C1 (a2, b2) - C2 (a1, b1)|^2 / (C1 C2). All quotients are one.
    KV_INLINE Differences of(const Colors &lab1, const Colors &lab2, const DifferenceWeights &weights) {
        const ChromaPair C = chromas(lab1, lab2);
        const Floats da = C.C1 * lab2.y - C.C2 * lab1.y, db = C.C1 * lab2.z - C.C2 * lab1.z;
        const Floats product = max(C.C1 * C.C2, broadcast(1e-20F));
        const Floats Cm = (C.C1 + C.C2) * 0.5F;
        const Floats SC = Cm * 0.045F + 1.0F, SH = Cm * 0.015F + 1.0F;
        const Floats dL = (lab2.x - lab1.x) * (1 / weights.kL);
        const Floats dC = (C.C2 - C.C1) * (1 / weights.kC) * SH;
        const Floats dH = SC * (1 / weights.kH);
        const Floats chromatic =
            (square(dC) * product + square(dH) * (square(da) + square(db))) / (square(SC * SH) * product);
        return {sqrt(square(dL) + chromatic), isFarOff(lab1, lab2, C)};
    }
};

struct ECmcLanes {
    static constexpr auto plain = plainDeltaECmc;

    // T, and whether the mean hue lies so close to 164 or 345 degrees that the plain form has to choose.
    struct HueFactor {
        Floats T;
        Ints isBetween;
    };
    KV_INLINE HueFactor hueFactor(const HuePair &hue) {
        constexpr float kCos35 = 0.81915204F, kSin35 = 0.57357644F;
        constexpr float kCos168 = -0.97814760F, kSin168 = 0.20791169F;
        constexpr float kCos164 = -0.96126170F, kSin164 = 0.27563736F;
        constexpr float kCos345 = 0.96592583F, kSin345 = -0.25881905F;
        constexpr float kRounding = 4e-6F;
        const Floats before164 = hue.cos * kSin164 - hue.sin * kCos164;
        const Floats behind345 = hue.sin * kCos345 - hue.cos * kSin345;
        const Ints isWarm = (before164 > 0.0F) & (behind345 > 0.0F);
        const Floats warm = abs(hue.cos * kCos35 - hue.sin * kSin35) * 0.4F + 0.36F;
        const Floats cool = abs(hue.cos * kCos168 - hue.sin * kSin168) * 0.2F + 0.56F;
        return {isWarm ? warm : cool, (abs(before164) < kRounding) | (abs(behind345) < kRounding)};
    }

    KV_INLINE Differences of(const Colors &lab1, const Colors &lab2, const DifferenceWeights &weights) {
        const ChromaPair C = chromas(lab1, lab2);
        const HuePair hue = hues(lab1.y, lab1.z, C.C1, lab2.y, lab2.z, C.C2);
        const HueFactor factor = hueFactor(hue);
        const Floats Lm = (lab1.x + lab2.x) * 0.5F;
        const Floats Cm = (C.C1 + C.C2) * 0.5F;
        const Floats SL = Lm >= 16.0F ? Lm * 0.040975F / (Lm * 0.01765F + 1.0F) : broadcast(0.511F);
        const Floats SC = Cm * 0.0638F / (Cm * 0.0131F + 1.0F) + 0.638F;
        const Floats C4 = square(square(Cm));
        const Floats F = sqrt(C4 / (C4 + 1900.0F));
        const Floats SH = (F * factor.T + 1.0F - F) * SC;
        const Floats u = (lab2.x - lab1.x) / (SL * weights.kL), v = (C.C2 - C.C1) / (SC * weights.kC),
                     w = hue.dH / SH;
        return {sqrt(square(u) + square(v) + square(w)),
                isFarOff(lab1, lab2, C) | hue.isOpposed | factor.isBetween};
    }
};

struct E2000Lanes {
    static constexpr auto plain = plainDeltaE2000;

    // C^7 / (C^7 + 25^7) under the root.
    KV_INLINE Floats seventhPowerRatio(Floats C) {
        const Floats C7 = square(square(C) * C) * C;
        return sqrt(C7 / (C7 + 6103515625.0F));
    }

    // T, the cosines of the multiples by products.
    KV_INLINE Floats hueFactor(const HuePair &hue) {
        const Floats c1 = hue.cos, s1 = hue.sin;
        const Floats c2 = c1 * c1 - s1 * s1, s2 = 2.0F * c1 * s1;
        const Floats c3 = c1 * c2 - s1 * s2, s3 = s1 * c2 + c1 * s2;
        const Floats c4 = c2 * c2 - s2 * s2, s4 = 2.0F * c2 * s2;
        constexpr float kCos30 = 0.86602540F, kSin30 = 0.5F, kCos6 = 0.99452190F, kSin6 = 0.10452846F,
                        kCos63 = 0.45399050F, kSin63 = 0.89100652F;
        return 1.0F - (c1 * (0.17F * kCos30) + s1 * (0.17F * kSin30)) + c2 * 0.24F +
               (c3 * (0.32F * kCos6) - s3 * (0.32F * kSin6)) - (c4 * (0.2F * kCos63) + s4 * (0.2F * kSin63));
    }

    // sin(2 dTheta), dTheta = 30 degrees * exp(-((hm - 275) / 25)^2). The square of the angle to 275 degrees
    // is a series of the squared chord.
    KV_INLINE Floats rotation(const HuePair &hue) {
        constexpr float kCos275 = 0.087155743F, kSin275 = -0.99619470F;
        constexpr float kSeries[] = {
            0,          1,           1.0F / 12,    1.0F / 90,
            1.0F / 560, 1.0F / 3150, 1.0F / 16632, 1.0F / 84084};  // 2 / (n^2 (2n over n))
        constexpr float kScale = -7.5777415F;                      // (180 / pi / 25)^2 / ln(2)
        constexpr float kFarthest = 2.6F;                          // 107 degrees, where nothing is left of it
        constexpr float kSin[] = {1, -1.0F / 6, 1.0F / 120, -1.0F / 5040, 1.0F / 362880};
        const Floats chord = square(hue.cos - kCos275) + square(hue.sin - kSin275);
        // Hues from 0 to 90 are 185 to 275 degrees off, not 85 to 175.
        const Ints isOff = (hue.sin >= 0.0F) & (hue.cos > 0.0F);
        const Floats near = isOff ? broadcast(kFarthest) : min(chord, broadcast(kFarthest));
        const Floats angle = exp2(polynomial(near, kSeries) * kScale) * 1.0471976F;
        return polynomial(angle * angle, kSin) * angle;
    }

    KV_INLINE Differences of(const Colors &lab1, const Colors &lab2, const DifferenceWeights &weights) {
        const ChromaPair plainC = chromas(lab1, lab2);
        const Floats g = (1.0F - seventhPowerRatio((plainC.C1 + plainC.C2) * 0.5F)) * 0.5F + 1.0F;
        const Colors primed1 = {lab1.x, lab1.y * g, lab1.z}, primed2 = {lab2.x, lab2.y * g, lab2.z};
        const ChromaPair C = chromas(primed1, primed2);
        const HuePair hue = hues(primed1.y, primed1.z, C.C1, primed2.y, primed2.z, C.C2);

        const Floats Lm = (lab1.x + lab2.x) * 0.5F;
        const Floats Cm = (C.C1 + C.C2) * 0.5F;
        const Floats fromMiddle = square(Lm - 50.0F);
        const Floats SL = fromMiddle * 0.015F / sqrt(fromMiddle + 20.0F) + 1.0F;
        const Floats SC = Cm * 0.045F + 1.0F;
        const Floats SH = hueFactor(hue) * 0.015F * Cm + 1.0F;
        const Floats RT = -2.0F * seventhPowerRatio(Cm) * rotation(hue);
        const Floats u = (lab2.x - lab1.x) / (SL * weights.kL), v = (C.C2 - C.C1) / (SC * weights.kC),
                     w = hue.dH / (SH * weights.kH);
        return {sqrt(square(u) + square(v) + square(w) + RT * v * w),
                isFarOff(lab1, lab2, plainC) | hue.isOpposed};
    }
};

/// A block of kLanes pairs.
template <class Formula>
KV_INLINE void overBlock(const float *lab1, const float *lab2, float *out, const DifferenceWeights &weights) {
    const Differences differences = Formula::of(loadColors(lab1), loadColors(lab2), weights);
    store(differences.values, out);
    if (!any(differences.leftOver)) return;
    for (std::size_t i = 0; i < kLanes; ++i)
        if (differences.leftOver[i] != 0) out[i] = Formula::plain(lab1 + 3 * i, lab2 + 3 * i, weights);
}

template <class Formula>
void overPairs(const float *lab1, const float *lab2, std::size_t count, float *out,
               const DifferenceWeights &weights) {
    for (; count >= kLanes; count -= kLanes, lab1 += 3 * kLanes, lab2 += 3 * kLanes, out += kLanes)
        overBlock<Formula>(lab1, lab2, out, weights);
    if (count == 0) return;
    // The last block is filled up with black.
    float first[3 * kLanes] = {}, second[3 * kLanes] = {}, last[kLanes];
    __builtin_memcpy(first, lab1, 3 * count * sizeof(float));
    __builtin_memcpy(second, lab2, 3 * count * sizeof(float));
    overBlock<Formula>(first, second, last, weights);
    __builtin_memcpy(out, last, count * sizeof(float));
}

}  // namespace
}  // namespace kv::detail
