#include "adt/color/plain_difference.h"

#include <cmath>

// Names as in Sharma, Wu, Dalal, Color Res. Appl. 30 (2005) 21-30: C chroma, h hue in radians, dL, dC, dH the
// differences, hm and Cm the means.

namespace kv::detail {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr float kPiF = 3.1415927F;
constexpr float kTwoPiF = 6.2831855F;

float square(float x) { return x * x; }

float chroma(float a, float b) { return std::sqrt(a * a + b * b); }

// From 0 below 2 pi.
float hueAngle(float a, float b) {
    const float h = std::atan2(b, a);
    return h < 0 ? h + kTwoPiF : h;
}

// Within -pi and pi. Compared as double: the float nearest to pi lies above pi.
float hueStep(float h1, float h2) {
    const float dh = h2 - h1;
    if (static_cast<double>(dh) > kPi) return dh - kTwoPiF;
    return static_cast<double>(dh) < -kPi ? dh + kTwoPiF : dh;
}

float hueDifference(float C1, float C2, float h1, float h2) {
    return 2 * std::sqrt(C1 * C2) * std::sin(hueStep(h1, h2) * 0.5F);
}

// Along the shorter way round; compared as double, as above.
float meanHue(float h1, float h2) {
    float hm = (h1 + h2) * 0.5F;
    if (static_cast<double>(std::abs(h2 - h1)) > kPi) {
        hm -= kPiF;
        if (hm < 0) hm += kTwoPiF;
    }
    return hm;
}

// CMC's T. Double, but for the constants that are floats.
float hueFactor(float hm) {
    constexpr double k345Degrees = 6.021385919380437, k164Degrees = 2.8623399732707;
    const double h = hm;
    const double T = h > k345Degrees || h < k164Degrees
                         ? std::abs(0.4 * std::cos(h + 0.6108652381980153)) + static_cast<double>(0.36F)
                         : std::abs(static_cast<double>(0.2F) * std::cos(h + 2.9321531433504737)) +
                               static_cast<double>(0.56F);
    return static_cast<float>(T);
}

// C^7 / (C^7 + 25^7) under the root.
float seventhPowerRatio(float C) {
    constexpr float P = 6103515625.0F;
    const float C7 = std::pow(C, 7.0F);
    return std::sqrt(C7 / (C7 + P));
}

// The rotation angle of CIEDE2000, largest in the blue at 275 degrees.
float rotationAngle(float hm) {
    const double x = (static_cast<double>(hm) * 180 / kPi - 275) / 25;
    return static_cast<float>(30 * std::exp(-x * x) * kPi / 180);
}

}  // namespace

float plainDeltaEab(const float *lab1, const float *lab2, const DifferenceWeights & /*weights*/) {
    return std::sqrt(square(lab2[0] - lab1[0]) + square(lab2[1] - lab1[1]) + square(lab2[2] - lab1[2]));
}

float plainDeltaE94(const float *lab1, const float *lab2, const DifferenceWeights &weights) {
    const float C1 = chroma(lab1[1], lab1[2]), C2 = chroma(lab2[1], lab2[2]);
    const float h1 = hueAngle(lab1[1], lab1[2]), h2 = hueAngle(lab2[1], lab2[2]);
    const float dL = lab2[0] - lab1[0];
    const float dC = C2 - C1;
    const float dH = hueDifference(C1, C2, h1, h2);
    const float Cm = (C1 + C2) * 0.5F;
    const float SC = 1 + 0.045F * Cm;
    const float SH = 1 + 0.015F * Cm;
    return std::sqrt(square(dL / weights.kL) + square(dC / (SC * weights.kC)) +
                     square(dH / (SH * weights.kH)));
}

float plainDeltaECmc(const float *lab1, const float *lab2, const DifferenceWeights &weights) {
    const float C1 = chroma(lab1[1], lab1[2]), C2 = chroma(lab2[1], lab2[2]);
    const float h1 = hueAngle(lab1[1], lab1[2]), h2 = hueAngle(lab2[1], lab2[2]);
    const float dL = lab2[0] - lab1[0];
    const float dC = C2 - C1;
    const float dH = hueDifference(C1, C2, h1, h2);
    const float Lm = (lab1[0] + lab2[0]) * 0.5F;
    const float Cm = (C1 + C2) * 0.5F;
    const float SL = Lm >= 16 ? 0.040975F * Lm / (1 + 0.01765F * Lm) : 0.511F;
    const float SC = 0.0638F * Cm / (1 + 0.0131F * Cm) + 0.638F;
    const float C4 = std::pow(Cm, 4.0F);
    const float F = std::sqrt(C4 / (C4 + 1900));
    const float SH = (F * hueFactor(meanHue(h1, h2)) + 1 - F) * SC;
    return std::sqrt(square(dL / (weights.kL * SL)) + square(dC / (weights.kC * SC)) + square(dH / SH));
}

float plainDeltaE2000(const float *lab1, const float *lab2, const DifferenceWeights &weights) {
    const float Lm = (lab1[0] + lab2[0]) * 0.5F;
    const float plainCm = (chroma(lab1[1], lab1[2]) + chroma(lab2[1], lab2[2])) * 0.5F;
    const float g = (1 - seventhPowerRatio(plainCm)) * 0.5F + 1;
    const float a1 = g * lab1[1], a2 = g * lab2[1];
    const float C1 = chroma(a1, lab1[2]), C2 = chroma(a2, lab2[2]);
    const float h1 = hueAngle(a1, lab1[2]), h2 = hueAngle(a2, lab2[2]);

    const float dL = lab2[0] - lab1[0];
    const float dC = C2 - C1;
    const float dH = hueDifference(C1, C2, h1, h2);
    const float hm = meanHue(h1, h2);
    const float Cm = (C1 + C2) * 0.5F;

    const float T = 1 - 0.17F * std::cos(hm - 0.5235988F) + 0.24F * std::cos(2 * hm) +
                    0.32F * std::cos(3 * hm + 0.10471976F) - 0.2F * std::cos(4 * hm - 1.0995574F);
    const float fromMiddle = square(Lm - 50);
    const float SL = (1 + 0.015F * fromMiddle / std::sqrt(20 + fromMiddle)) * weights.kL;
    const float SC = (1 + 0.045F * Cm) * weights.kC;
    const float SH = (1 + T * 0.015F * Cm) * weights.kH;
    const float RT = -2 * seventhPowerRatio(Cm) * std::sin(2 * rotationAngle(hm));

    const float u = dL / SL, v = dC / SC, w = dH / SH;
    return std::sqrt(square(u) + square(v) + square(w) + RT * v * w);
}

}  // namespace kv::detail
