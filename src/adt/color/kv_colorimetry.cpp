#include "kvbase/color/kv_colorimetry.h"

#include <cmath>
#include <initializer_list>

#include "adt/color/tables/cie_curve.h"

namespace {

using kv::detail::kCurveHalfRise;
using kv::detail::kCurveOffset;
using kv::detail::kCurveStart;
using kv::detail::kMirrorOffset;

constexpr double kThird = 0.3333333333333333;

template <class Number>
void labToNonLinear(const Number *lab, Number *xyz, int count) {
    for (; count > 0; --count, lab += 3, xyz += 3) {
        xyz[1] = lab[0];
        xyz[0] = lab[1] / 5 + lab[0];
        xyz[2] = lab[0] - lab[2] * Number{0.5};
    }
}

template <class Number>
void nonLinearToLab(const Number *xyz, Number *lab, int count) {
    for (; count > 0; --count, xyz += 3, lab += 3) {
        lab[0] = xyz[1];
        lab[1] = (xyz[0] - xyz[1]) * 5;
        lab[2] = (xyz[1] - xyz[2]) * 2;
    }
}

// The constants of angles in each precision.
template <class Number>
struct Angle;
template <>
struct Angle<float> {
    static constexpr float kQuarter = 1.5707964F, kHalf = 3.1415927F, kFull = 6.2831855F,
                           kDegrees = 57.29578F;
};
template <>
struct Angle<double> {
    static constexpr double kQuarter = 1.5707963267948966, kHalf = 3.141592653589793,
                            kFull = 6.283185307179586, kDegrees = 57.29577951308232;
};

template <class Number>
void toPolar(Number a, Number b, Number &c, Number &h) {
    using Turn = Angle<Number>;
    Number hue;
    if (a != 0)
        hue = std::atan(b / a);
    else
        hue = b > 0 ? Turn::kQuarter : -Turn::kQuarter;
    if (a < 0)
        hue += Turn::kHalf;
    else if (!(a >= 0 && b > 0))
        hue += Turn::kFull;
    c = std::sqrt(a * a + b * b);
    h = hue;
}

}  // namespace

double CieF(double t) {
    if (std::abs(t) <= kCurveStart) return t * 841 / 108 + kCurveOffset;
    const double root = std::pow(std::abs(t), kThird);
    return t < 0 ? kMirrorOffset - root : root;
}

double CieG(double v) {
    const double d = v - kCurveOffset;
    if (std::abs(d) <= kCurveHalfRise) return std::copysign(std::abs(d) * 108 / 841, d);
    const double w = v < kCurveHalfRise ? v - kMirrorOffset : v;
    return w * w * w;
}

void FLab2NonLinearXYZ(float *lab, float *xyz, int count) { labToNonLinear(lab, xyz, count); }
void DLab2NonLinearXYZ(double *lab, double *xyz, int count) { labToNonLinear(lab, xyz, count); }
void FNonLinearXYZ2Lab(float *xyz, float *lab, int count) { nonLinearToLab(xyz, lab, count); }
void DNonLinearXYZ2Lab(double *xyz, double *lab, int count) { nonLinearToLab(xyz, lab, count); }

void ColorTransXYZ2Yxy(float *xyz, float *yxy, int count) {
    for (; count > 0; --count, xyz += 3, yxy += 3) {
        const double x = xyz[0], y = xyz[1];
        const double sum = x + y + static_cast<double>(xyz[2]);
        const bool hasChroma = sum > 0.000001;
        yxy[0] = hasChroma ? xyz[1] : 0;
        yxy[1] = hasChroma ? static_cast<float>(x / sum) : 0;
        yxy[2] = hasChroma ? static_cast<float>(y / sum) : 0;
    }
}

void ab2chRad(float a, float b, float &c, float &h) { toPolar(a, b, c, h); }
void ab2chRad_double(double a, double b, double &c, double &h) { toPolar(a, b, c, h); }

void ab2chDeg(float a, float b, float &c, float &h) {
    toPolar(a, b, c, h);
    h *= Angle<float>::kDegrees;
}

void ab2chDeg_double(double a, double b, double &c, double &h) {
    toPolar(a, b, c, h);
    h *= Angle<double>::kDegrees;
}

void ch2abRad(float c, float h, float &a, float &b) {
    const float cosine = std::cos(h), sine = std::sin(h);
    a = cosine * c;
    b = sine * c;
}

void ch2abDeg(float c, float h, float &a, float &b) { ch2abRad(c, h * 0.017453292F, a, b); }

void ab2TanHue(float a, float b, float &tanHue) {
    if (a == 0)
        tanHue = b > 0 ? 1e10F : -1e10F;
    else
        tanHue = b / a;
}

float HueDiff(float h1, float h2) {
    const float d = h1 - h2;
    if (d < -180) return d + 360;
    return d > 180 ? d - 360 : d;
}

float HueValueInterpol(float hue, float *hues, float *values, int count) {
    for (int i = 0; i < count; ++i) {
        const int j = (i + 1) % count;
        const float p = hues[i];
        const float q = hues[j] > p ? hues[j] : hues[j] + 360;
        for (const float h : {hue, hue + 360})
            if (h >= p && h <= q) return (values[j] - values[i]) / (q - p) * (h - p) + values[i];
    }
    return 0;
}

float Lightness2Luminance(float lightness) {
    const float magnitude = std::abs(lightness);
    if (magnitude < 8) return lightness / 903.3F * 100;
    return std::copysign(std::pow((magnitude + 16) / 116, 3.0F) * 100, lightness);
}

float Luminance2Lightness(float luminance) {
    const float magnitude = std::abs(luminance);
    if (magnitude < 0.8856F) return luminance * 903.3F / 100;
    return std::copysign(std::pow(magnitude / 100, 0.3333333F) * 116 - 16, luminance);
}
