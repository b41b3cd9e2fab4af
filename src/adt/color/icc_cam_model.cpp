#include <algorithm>
#include <cmath>

#include "kvbase/color/kv_colorimetry.h"
#include "kvbase/color/kv_ct_icc_cam.h"

// Names as in CIE 159:2004. Powers are taken in double and rounded to float; where all of an expression is
// double, its operands are widened.

namespace kv::detail {
namespace {

float powF(float x, double exponent) {
    return static_cast<float>(std::pow(static_cast<double>(x), exponent));
}

// 400 x^p / (x^p + 27.13)
float compress(float x, double exponent) {
    const double power = std::pow(static_cast<double>(x), exponent);
    return static_cast<float>(400 * power / (power + 27.13));
}

// Pi with six decimals is meant as it stands.
float radians(float degrees) { return degrees * 3.141592F / 180; }

float eccentricity(float hr) {
    return static_cast<float>((std::cos(static_cast<double>(hr) + 2) + 3.8) * 0.25);
}

}  // namespace

void IccCamModel::CalcCoefficients() {
    D = static_cast<float>((1 - std::pow(2.7182818, static_cast<double>(-(La + 42) / 92)) / 3.6) *
                           static_cast<double>(F));
    const float k = 1 / (5 * La + 1);
    const double k4 = std::pow(static_cast<double>(k), 4.0);
    const float L5 = 5 * La;
    FL = static_cast<float>(std::pow(static_cast<double>(L5), 0.333333) * ((1 - k4) * 0.1 * (1 - k4)) +
                            k4 * 0.2 * static_cast<double>(L5));
    n = Yb / whitePoint[1];
    tFactor = static_cast<float>(std::pow(1.64 - std::pow(0.29, static_cast<double>(n)), 0.73));
    Nbb = static_cast<float>(0.725 / std::pow(static_cast<double>(n), 0.2));
    z = static_cast<float>(std::sqrt(static_cast<double>(n)) + 1.48);

    float cones[3];
    Multiply_vect_by_mx(whitePoint, cones, M);
    Rw = cones[0];
    Gw = cones[1];
    Bw = cones[2];
    for (int i = 0; i < 3; ++i)
        adaptation[i] = static_cast<double>(D * whitePoint[1] / cones[i]) + 1 - static_cast<double>(D);

    HofFL = H_Function(FL);
    FofFL = F_Function(FL);
    x0 = FL * 4 / 255;
    const float ratio = H_Function(x0) * (a + 1) / HofFL;
    slope = static_cast<float>((static_cast<double>(ratio) - static_cast<double>(a)) *
                               static_cast<double>(FofFL) / static_cast<double>(x0));

    float adapted[3];
    ReferenceConditions(cones, adapted);
    const float Ra = response(adapted[0]), Ga = response(adapted[1]), Ba = response(adapted[2]);
    Aw = (2 * Ra + Ga + Ba / 20 - 0.305F) * Nbb;
}

float IccCamModel::Hyperbolic(float x) const {
    const float magnitude = std::abs(x);
    if (magnitude <= x0) return x * slope;
    const float ratio = H_Function(magnitude) * (a + 1) / HofFL;
    return std::copysign(static_cast<float>((static_cast<double>(ratio) - static_cast<double>(a)) *
                                            static_cast<double>(FofFL)),
                         x);
}

float IccCamModel::HyperbolicInv(float y) const {
    const float magnitude = std::abs(y);
    if (magnitude <= slope * x0) return y / slope;
    const float u = (magnitude / FofFL + a) / (a + 1);
    return std::copysign(H_FunctionInv(u * HofFL), y);
}

float IccCamModel::F_Function(float x) { return compress(x, 0.42); }
float IccCamModel::H_Function(float x) { return compress(x, static_cast<double>(e)); }

float IccCamModel::H_FunctionInv(float y) {
    const double v = y;
    return static_cast<float>(std::pow(v * 27.13 / (400 - v), 1 / static_cast<double>(e)));
}

void IccCamModel::ReferenceConditions(const float *in, float *out) const {
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(adaptation[i] * static_cast<double>(in[i]));
}

void IccCamModel::ReferenceConditionsInv(const float *in, float *out) const {
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(static_cast<double>(in[i]) / adaptation[i]);
}

void IccCamModel::Multiply_vect_by_mx(const float *in, float *out, const float (*matrix)[3]) {
    for (int i = 0; i < 3; ++i)
        out[i] = matrix[i][0] * in[0] + matrix[i][1] * in[1] + matrix[i][2] * in[2];
}

float IccCamModel::IccCam_e(float hue) {
    // Red, yellow, green, blue, and red again.
    constexpr float hues[] = {20.14F, 90, 164.25F, 237.53F, 380.14F};
    constexpr float values[] = {0.8F, 0.7F, 1, 1.2F, 0.8F};
    if (hue < hues[0]) hue += 360;
    int i = 0;
    while (i < 3 && hue > hues[i + 1])
        ++i;
    return values[i] + (hue - hues[i]) / (hues[i + 1] - hues[i]) * (values[i + 1] - values[i]);
}

float IccCamModel::response(float cone) const { return Hyperbolic(cone * FL / 100) + 0.1F; }

void IccCamModel::XyzToJab(const float *xyz, float *jab) const {
    float cones[3], adapted[3];
    Multiply_vect_by_mx(xyz, cones, M);
    for (float &cone : cones)
        if (cone < 0) cone = 0;
    ReferenceConditions(cones, adapted);
    const float Ra = response(adapted[0]), Ga = response(adapted[1]), Ba = response(adapted[2]);

    const float redGreen = Ra - Ga * 12 / 11 + Ba / 11;
    const float yellowBlue = (Ra + Ga - 2 * Ba) / 9;
    float m = 0, h = 0;
    ab2chDeg(redGreen, yellowBlue, m, h);
    const float hr = radians(h);

    const float A = (2 * Ra + Ga + Ba / 20 - 0.305F) * Nbb;
    const float J = std::pow(A / Aw, z * C) * 100;
    const float et = eccentricity(hr);
    const float sum = Ba * 1.05F + Ra + Ga;
    const auto t =
        static_cast<float>(static_cast<double>(m) * 50 * 100 * static_cast<double>(et) * 10 / 13 *
                           static_cast<double>(Nc) * static_cast<double>(Nbb) / static_cast<double>(sum));
    const auto Cc =
        static_cast<float>(std::pow(static_cast<double>(t), 0.9) * std::sqrt(static_cast<double>(J) / 100) *
                           static_cast<double>(tFactor));
    jab[0] = J;
    jab[1] = std::cos(hr) * Cc;
    jab[2] = std::sin(hr) * Cc;
}

void IccCamModel::JabToXyz(const float *jab, float *xyz) const {
    const float J = jab[0], p = jab[1], q = jab[2];
    float compressed[3] = {0.1F, 0.1F, 0.1F};  // of black
    if (!(J < 0.00001F)) {
        const float jn = J / 100;
        float Cc = 0, h = 0;
        ab2chDeg(p, q, Cc, h);
        const float t = powF(Cc / (std::sqrt(jn) * tFactor), 1.1111111111111112);
        const float A = powF(jn, static_cast<double>(1 / (z * C))) * Aw / Nbb + 0.305F;
        const float g = A * 460 / 1403;
        float redGreen = 0, yellowBlue = 0;
        if (!(t < 0.00001F)) opponents(h, t, g, redGreen, yellowBlue);
        compressed[0] = (redGreen * 451 + yellowBlue * 288) / 1403 + g;
        compressed[1] = (redGreen * -891 - yellowBlue * 261) / 1403 + g;
        compressed[2] = (redGreen * -220 - yellowBlue * 6300) / 1403 + g;
    }
    float adapted[3], cones[3];
    for (int i = 0; i < 3; ++i) {
        if (compressed[i] < 0) compressed[i] = 0;
        adapted[i] = HyperbolicInv(compressed[i] - 0.1F) * 100 / FL;
    }
    ReferenceConditionsInv(adapted, cones);
    Multiply_vect_by_mx(cones, xyz, Minv);
}

// The axes redGreen and yellowBlue of a hue h in degrees, from the equations for t and A. The tangent is
// taken of the angle to the nearer axis, so that it stays small.
void IccCamModel::opponents(float h, float t, float g, float &redGreen, float &yellowBlue) const {
    const float hr = radians(h);
    const float p1 = eccentricity(hr) * (Nc * 3846.1538F * Nbb) / t;
    const bool isSteep = (h > 45 && h <= 135) || (h >= 225 && h < 315);
    if (isSteep) {
        const bool isVertical = std::abs(h - 90) <= 0.00001F || std::abs(h - 270) <= 0.00001F;
        const float ct = isVertical ? 0 : 1 / std::tan(hr);
        float s = std::sqrt(ct * ct + 1);
        if (h > 180) s = -s;
        yellowBlue = g * 3.05F / (s * p1 + ct * 0.47826084F - 0.019244475F + 4.7148967F);
        redGreen = ct * yellowBlue;
    } else {
        const float tn = std::tan(hr);
        float s = std::sqrt(tn * tn + 1);
        if (h > 90 && h < 270) s = -s;
        redGreen = g * 3.05F / (s * p1 + 0.47826084F + tn * 4.695652F);
        yellowBlue = redGreen * tn;
    }
}

}  // namespace kv::detail
