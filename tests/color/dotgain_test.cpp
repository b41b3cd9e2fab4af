// Dot gain curves: beside the plain search, on made-up ramps, and on the ramps of real press tables.
#include <gtest/gtest.h>
#include <kvbase/color/kv_dotgain.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>

#include "plain_dotgain.h"
#include "press_tables.h"

namespace {

struct Ramp {
    std::vector<float> tones, xyz;
    int channel = 0;
    float limit = 1000;
    std::int32_t count() const { return static_cast<std::int32_t>(tones.size()); }
};

struct Fit {
    double c[4] = {9, 9, 9, 9};
    float s[3] = {9, 9, 9};

    double gain(double a) const { return ((c[0] * a + c[1]) * a + c[2]) * a * a + c[3] * a; }
    bool operator==(const Fit &other) const {
        return std::memcmp(c, other.c, sizeof c) == 0 && std::memcmp(s, other.s, sizeof s) == 0;
    }
};

Fit fitted(Ramp ramp) {
    Fit fit;
    float limits[2] = {std::numeric_limits<float>::quiet_NaN(), ramp.limit};
    FitDotgainFromXYZ(ramp.tones.data(), ramp.xyz.data(), ramp.count(), ramp.channel, fit.c, fit.s, limits);
    return fit;
}

Fit plainFit(const Ramp &ramp) {
    Fit fit;
    const float limits[2] = {0, ramp.limit};
    plain::fitDotgain(ramp.tones.data(), ramp.xyz.data(), ramp.count(), ramp.channel, fit.c, fit.s, limits);
    return fit;
}

// Tints whose effective areas in X, Y and Z are a and that many times the curve.
template <class Curve>
Ramp rampOf(std::vector<float> tones, Curve curve, std::array<float, 3> scales, int channel = 0) {
    constexpr float paper[] = {85, 88, 72}, solid[] = {16, 24, 53};
    Ramp ramp{std::move(tones), {}, channel};
    for (const float a : ramp.tones)
        for (std::size_t k = 0; k < 3; ++k)
            ramp.xyz.push_back(paper[k] + (a + scales[k] * curve(a)) * (solid[k] - paper[k]));
    return ramp;
}

const std::vector<float> kEleven{0, .1F, .2F, .3F, .4F, .5F, .6F, .7F, .8F, .9F, 1};
float hump(float a) { return 0.6F * a * (1 - a) * (1.2F - 0.5F * a); }
float dip(float a) { return -hump(a); }

// The ramp of one ink, as it stands in a press table: each tone once.
Ramp rampOf(const Patches &patches, std::size_t ink) {
    std::map<float, std::array<float, 3>> tints;
    for (std::size_t i = 0; i < patches.names.size(); ++i) {
        const float *const inks = &patches.inks[4 * i];
        if (std::count(inks, inks + 4, 0.0F) < (inks[ink] == 0 ? 4 : 3)) continue;
        const float *const xyz = &patches.xyz[3 * i];
        tints.try_emplace(inks[ink] / 100, std::array<float, 3>{xyz[0], xyz[1], xyz[2]});
    }
    constexpr int kMain[] = {0, 1, 2, 1};  // in which cyan, magenta, yellow and black absorb
    Ramp ramp;
    ramp.channel = kMain[ink];
    for (const auto &[tone, xyz] : tints) {
        ramp.tones.push_back(tone);
        ramp.xyz.insert(ramp.xyz.end(), xyz.begin(), xyz.end());
    }
    return ramp;
}

TEST(Dotgain, HasTheBitsOfThePlainSearch) {
    Ramp limited = rampOf(kEleven, hump, {1, 0.9F, -3});
    limited.limit = 0.7F;
    std::vector<float> many(70);
    for (std::size_t i = 0; i < many.size(); ++i)
        many[i] = static_cast<float>(i) / 69;
    const Ramp ramps[] = {
        rampOf(many, hump, {1, 0.8F, 1.3F}),
        rampOf(kEleven, hump, {1, 0.8F, 1.3F}),
        rampOf(kEleven, dip, {0.5F, 1, -4}, 1),
        rampOf({0, 0.3F, 1}, hump, {1, 1, 1}),
        rampOf({0, 0.05F, 0.15F, 1}, [](float a) { return 0.5F * std::exp(-30 * a) * a; }, {1, 1, 1}),
        limited,
        rampOf(readPatches("TR003"), 3),
    };
    for (const Ramp &ramp : ramps)
        EXPECT_TRUE(fitted(ramp) == plainFit(ramp))
            << ramp.tones.size() << " tints, channel " << ramp.channel;
}

TEST(Dotgain, FindsTheCurveThatWasThere) {
    const Fit fit = fitted(rampOf(kEleven, hump, {1, 0.8F, 1.3F}));
    for (const float a : kEleven)
        EXPECT_NEAR(fit.gain(a), hump(a), 0.0005) << a;
    EXPECT_EQ(fit.s[0], 1);
    EXPECT_NEAR(fit.s[1], 0.8F, 0.002F);
    EXPECT_NEAR(fit.s[2], 1.3F, 0.002F);
    for (const std::vector<float> &tones : {std::vector<float>{0, 1}, kEleven}) {
        const Fit none = fitted(rampOf(tones, [](float) { return 0.0F; }, {1, 1, 1}));
        EXPECT_EQ(none.gain(0.5), 0) << tones.size();
        EXPECT_EQ(none.s[0] + none.s[1] + none.s[2], 3) << tones.size();
    }
}

// The smallest root mean square that a quartic without constant term leaves, by the normal equations.
double bestQuartic(const std::vector<double> &a, const std::vector<double> &gains) {
    long double m[4][5] = {};
    const auto power = [](double x, std::size_t n) { return std::pow(static_cast<long double>(x), n + 1); };
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t r = 0; r < 4; ++r) {
            for (std::size_t c = 0; c < 4; ++c)
                m[r][c] += power(a[i], r) * power(a[i], c);
            m[r][4] += power(a[i], r) * gains[i];
        }
    for (std::size_t k = 0; k < 4; ++k)
        for (std::size_t r = 0; r < 4; ++r) {
            const long double f = m[r][k] / m[k][k];
            for (std::size_t c = k; c < 5 && r != k; ++c)
                m[r][c] -= f * m[k][c];
        }
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        long double g = -gains[i];
        for (std::size_t r = 0; r < 4; ++r)
            g += m[r][4] / m[r][r] * power(a[i], r);
        sum += static_cast<double>(g * g);
    }
    return std::sqrt(sum / static_cast<double>(a.size()));
}

TEST(Dotgain, FitsTheRampsOfRealPresses) {
    int ramps = 0;
    for (const char *table :
         {"FOGRA28L", "FOGRA29L", "FOGRA30L", "FOGRA39L", "FOGRA40L", "TR002", "TR003", "TR005", "TR006"}) {
        const Patches patches = readPatches(table);
        for (std::size_t ink = 0; ink < 4; ++ink) {
            const Ramp ramp = rampOf(patches, ink);
            ASSERT_GE(ramp.tones.size(), 5U) << table << ' ' << ink;
            const Fit fit = fitted(ramp);
            std::vector<double> areas, gains;
            double sum = 0;
            const auto k = static_cast<std::size_t>(ramp.channel);
            for (std::size_t i = 0; i < ramp.tones.size(); ++i) {
                const double paper = ramp.xyz[k], solid = ramp.xyz[ramp.xyz.size() - 3 + k];
                areas.push_back(ramp.tones[i]);
                gains.push_back((paper - ramp.xyz[3 * i + k]) / (paper - solid) - ramp.tones[i]);
                sum += std::pow(gains[i] - fit.s[k] * fit.gain(areas[i]), 2);
            }
            const double error = std::sqrt(sum / static_cast<double>(areas.size()));
            EXPECT_TRUE(error <= 0.005 || error <= 1.2 * bestQuartic(areas, gains))
                << table << ' ' << ink << ": " << error << " beside " << bestQuartic(areas, gains);
            for (std::size_t c = 0; c < 3; ++c)
                for (double a = 0.01; a <= 1; a += 0.01)
                    ASSERT_GE(a + fit.s[c] * fit.gain(a), a - 0.01 + fit.s[c] * fit.gain(a - 0.01) - 1e-6)
                        << table << ' ' << ink << ", channel " << c << " at " << a;
            ++ramps;
        }
    }
    EXPECT_EQ(ramps, 36);
}

}  // namespace
