#pragma once

// The appearance model over lanes, in the order of operations of icc_cam_model.cpp. Where that widens, so
// does this: differences of the compressed responses magnify the rounding of each.

#include "adt/color/lanes/color_blocks.h"
#include "adt/color/lanes/lanes_math.h"
#include "kvbase/color/kv_ct_icc_cam.h"

namespace kv::detail {
namespace {

KV_INLINE Colors multiply(const Colors &v, const float (&m)[3][3]) {
    return {v.x * m[0][0] + v.y * m[0][1] + v.z * m[0][2], v.x * m[1][0] + v.y * m[1][1] + v.z * m[1][2],
            v.x * m[2][0] + v.y * m[2][1] + v.z * m[2][2]};
}

KV_INLINE Floats scaled(Floats v, double factor) {
    const Wide wide = widen(v);
    return narrow({wide.low * factor, wide.high * factor});
}
KV_INLINE Floats divided(Floats v, double divisor) {
    const Wide wide = widen(v);
    return narrow({wide.low / divisor, wide.high / divisor});
}

/// x^exponent of x from 0 up; a power of 0 is 0.
KV_INLINE Wide powOrZero(Floats x, double exponent) {
    const Wide power = pow(widen(x == 0.0F ? broadcast(1) : x), exponent);
    const Wide factor = widen(x == 0.0F ? broadcast(0) : broadcast(1));
    return {power.low * factor.low, power.high * factor.high};
}

KV_INLINE Doubles compress(Doubles power) { return 400.0 * power / (power + 27.13); }

/// Hyperbolic of x from 0 up.
KV_INLINE Floats compressed(const IccCamModel &model, Floats x) {
    const Wide power = pow(widen(max(x, broadcast(model.x0))), static_cast<double>(IccCamModel::e));
    const Floats h = narrow({compress(power.low), compress(power.high)});
    const Wide ratio = widen(h * (IccCamModel::a + 1) / model.HofFL);
    const double a = IccCamModel::a, scale = model.FofFL;
    const Floats curve = narrow({(ratio.low - a) * scale, (ratio.high - a) * scale});
    return x <= model.x0 ? x * model.slope : curve;
}

/// HyperbolicInv.
KV_INLINE Floats decompressed(const IccCamModel &model, Floats y) {
    const float end = model.slope * model.x0;
    const Floats magnitude = max(abs(y), broadcast(end));
    const Wide v = widen((magnitude / model.FofFL + IccCamModel::a) / (IccCamModel::a + 1) * model.HofFL);
    const double exponent = 1 / static_cast<double>(IccCamModel::e);
    const Floats curve = narrow(
        {pow(v.low * 27.13 / (400.0 - v.low), exponent), pow(v.high * 27.13 / (400.0 - v.high), exponent)});
    return abs(y) <= end ? y / model.slope : copySign(curve, y);
}

// Beyond any real color. A unit in the last place of a hue moves a color of more chroma too far.
inline constexpr float kMostChroma = 150;

struct Hue {
    Floats degrees;  ///< above 0 up to 360, as of ab2chDeg
    Floats radians;  ///< with the model's rounded pi
    SinCos direction;
    Floats eccentricity;
};

KV_INLINE Hue hueOf(Floats a, Floats b) {
    const Ints isNeutral = (a == 0.0F) & (b == 0.0F);
    const Floats first = firstQuadrantAngle(abs(a), isNeutral ? broadcast(1) : abs(b));
    const Floats arc = b > 0.0F ? first : -first;  // atan(|b| / |a|) with the sign of b
    const Floats left = 3.1415927F - arc, right = arc + (b > 0.0F ? broadcast(0) : broadcast(6.2831855F));
    Hue hue;
    hue.degrees = (a < 0.0F ? left : right) * 57.29578F;
    hue.radians = hue.degrees * 3.141592F / 180.0F;
    hue.direction = sinCos(hue.radians);
    constexpr float kCos2 = -0.41614684F, kSin2 = 0.90929743F;
    hue.eccentricity = (hue.direction.cos * kCos2 - hue.direction.sin * kSin2 + 3.8F) * 0.25F;
    return hue;
}

struct XyzToJabLanes {
    static void plain(const IccCamModel &model, const float *xyz, float *jab) { model.XyzToJab(xyz, jab); }

    KV_INLINE Floats response(const IccCamModel &model, Floats cone, int which) {
        const Floats adapted = scaled(max(cone, Floats{}), model.adaptation[which]);
        return compressed(model, adapted * model.FL / 100.0F) + 0.1F;
    }

    KV_INLINE BlockResult of(const Colors &xyz, const IccCamModel &model) {
        const Colors cones = multiply(xyz, IccCamModel::M);
        const Floats Ra = response(model, cones.x, 0), Ga = response(model, cones.y, 1),
                     Ba = response(model, cones.z, 2);
        const Floats a = Ra - Ga * 12.0F / 11.0F + Ba / 11.0F;
        const Floats b = (Ra + Ga - 2.0F * Ba) / 9.0F;
        const Floats m = sqrt(a * a + b * b);
        const Hue hue = hueOf(a, b);

        const Floats A = (2.0F * Ra + Ga + Ba / 20.0F - 0.305F) * model.Nbb;
        const Floats J = narrow(powOrZero(A / model.Aw, static_cast<double>(model.z * model.C))) * 100.0F;
        const float scale = 50 * 100 * 10.0F / 13 * model.Nc * model.Nbb;
        const Floats t = m * scale * hue.eccentricity / (Ba * 1.05F + Ra + Ga);
        const Floats Cc = narrow(powOrZero(t, 0.9)) * sqrt(J / 100.0F) * model.tFactor;
        // Cones and conditions that the powers are good for.
        constexpr float kMost = 1e5F;
        const Ints isOrdinary = (abs(cones.x) <= kMost) & (abs(cones.y) <= kMost) & (abs(cones.z) <= kMost) &
                                (A >= 0.0F) & (A / model.Aw <= kMost) & (t >= 0.0F) & (Cc <= kMostChroma);
        return {{J, hue.direction.cos * Cc, hue.direction.sin * Cc}, ~isOrdinary};
    }
};

struct JabToXyzLanes {
    static void plain(const IccCamModel &model, const float *jab, float *xyz) { model.JabToXyz(jab, xyz); }

    struct Opponents {
        Floats a, b;
        Ints isDelicate;  ///< the denominator is the small difference of larger numbers
    };

    // From the equations for t and A; the tangent is taken of the angle to the nearer axis.
    KV_INLINE Opponents opponents(const IccCamModel &model, const Hue &hue, Floats t, Floats g) {
        const Floats h = hue.degrees;
        const Ints isSteep = ((h > 45.0F) & (h <= 135.0F)) | ((h >= 225.0F) & (h < 315.0F));
        const Ints isVertical = (abs(h - 90.0F) <= 0.00001F) | (abs(h - 270.0F) <= 0.00001F);
        const SinCos d = hue.direction;
        const Floats tangent = (isSteep ? d.cos : d.sin) / (isSteep ? d.sin : d.cos);
        const Floats tn = isVertical ? Floats{} : tangent;
        const Floats s = sqrt(tn * tn + 1.0F);
        const Ints isNegative = isSteep ? h > 180.0F : (h > 90.0F) & (h < 270.0F);
        const Floats p1 = hue.eccentricity * (model.Nc * 3846.1538F * model.Nbb) / t;
        const Floats first = (isNegative ? -s : s) * p1;
        const Floats second =
            isSteep ? tn * 0.47826084F - 0.019244475F + 4.7148967F : tn * 4.695652F + 0.47826084F;
        const Floats divisor = first + second;
        const Floats main = g * 3.05F / divisor;
        return {isSteep ? tn * main : main, isSteep ? main : tn * main,
                abs(divisor) < 0.2F * (abs(first) + abs(second))};
    }

    KV_INLINE BlockResult of(const Colors &jab, const IccCamModel &model) {
        const Floats J = jab.x;
        const Ints isBlack = J < 0.00001F;
        const Floats jn = (isBlack ? broadcast(1) : J) / 100.0F;
        const Hue hue = hueOf(jab.y, jab.z);
        const Floats Cc = sqrt(jab.y * jab.y + jab.z * jab.z);
        const Floats t = narrow(powOrZero(Cc / (sqrt(jn) * model.tFactor), 1.1111111111111112));
        const Ints isNeutral = t < 0.00001F;
        const Floats A =
            narrow(pow(widen(jn), static_cast<double>(1 / (model.z * model.C)))) * model.Aw / model.Nbb +
            0.305F;
        const Floats g = A * 460.0F / 1403.0F;
        const Opponents o = opponents(model, hue, isNeutral ? broadcast(1) : t, g);
        const Floats a = isNeutral ? Floats{} : o.a, b = isNeutral ? Floats{} : o.b;

        const Colors sums = {(a * 451.0F + b * 288.0F) / 1403.0F + g,
                             (a * -891.0F - b * 261.0F) / 1403.0F + g,
                             (a * -220.0F - b * 6300.0F) / 1403.0F + g};
        const auto cone = [&](Floats sum, int which) {
            const Floats response = isBlack ? broadcast(0.1F) : max(sum, Floats{});
            return divided(decompressed(model, response - 0.1F) * 100.0F / model.FL, model.adaptation[which]);
        };
        const Colors xyz = multiply({cone(sums.x, 0), cone(sums.y, 1), cone(sums.z, 2)}, IccCamModel::Minv);
        // Beyond this the inverse of the compression comes near its pole, and so does the other one.
        const float most = model.FofFL * 6;
        const Ints isOrdinary = (J <= 1000.0F) & (Cc <= kMostChroma) & (t <= 500.0F) & (sums.x <= most) &
                                (sums.y <= most) & (sums.z <= most) & ~o.isDelicate;
        return {xyz, ~isOrdinary & ~isBlack};
    }
};

}  // namespace
}  // namespace kv::detail
