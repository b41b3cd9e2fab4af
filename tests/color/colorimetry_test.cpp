#include <gtest/gtest.h>
#include <kvbase/color/kv_colorimetry.h>
#include <kvbase/color/kv_ct_cielab.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <random>

namespace {

TEST(Colorimetry, CurveMeetsItselfAndItsInverse) {
    const double start = std::pow(6.0 / 29, 3);
    const struct {
        const char *name;
        double t, f;
    } rows[] = {
        {"white", 1, 1},
        {"black", 0, 4.0 / 29},
        {"mirrored white", -1, 8.0 / 29 - 1},
        {"end of the line", start, 6.0 / 29},
        {"mirrored end of the line", -start, 2.0 / 29},
        {"cube", 0.125, 0.5},
        {"mirrored cube", -0.125, 8.0 / 29 - 0.5},
        {"a lamp", 27, 3},
    };
    for (const auto &row : rows) {
        EXPECT_NEAR(CieF(row.t), row.f, 1e-15 * (1 + std::abs(row.f))) << row.name;
        EXPECT_NEAR(CieG(row.f), row.t, 1e-14 * (1 + std::abs(row.t))) << row.name;
    }
    double previous = CieF(-2);
    for (int i = -20000; i <= 20000; ++i) {
        const double t = i / 10000.0, f = CieF(t);
        EXPECT_NEAR(CieG(f), t, 4e-15);
        EXPECT_GE(f, previous) << t;
        EXPECT_NEAR(CieF(-t) + f, 8.0 / 29, 1e-15) << "odd about its value at 0";
        previous = f;
    }
}

template <class Number>
void expectNonLinearRemix(void (*there)(Number *, Number *, int), void (*back)(Number *, Number *, int)) {
    Number lab[] = {50, 10, -20, 0, 127, -128, 100, -3, Number{0.25}};
    Number xyz[12] = {}, again[12] = {};
    xyz[9] = again[9] = 7;
    there(lab, xyz, 3);
    EXPECT_EQ(xyz[0], 52);
    EXPECT_EQ(xyz[1], 50);
    EXPECT_EQ(xyz[2], 60);
    back(xyz, again, 3);
    for (int i = 0; i < 9; ++i)  // X' and Z' are rounded at 128, and a* is their difference times 5
        EXPECT_NEAR(again[i], lab[i], 5 * 64 * std::numeric_limits<Number>::epsilon()) << i;
    there(lab, xyz, 0);
    back(xyz, again, -1);
    EXPECT_TRUE(xyz[9] == 7 && again[9] == 7);
}

TEST(Colorimetry, NonLinearXyzIsALinearRemix) {
    expectNonLinearRemix(FLab2NonLinearXYZ, FNonLinearXYZ2Lab);
    expectNonLinearRemix(DLab2NonLinearXYZ, DNonLinearXYZ2Lab);
}

TEST(Colorimetry, YxyInPlace) {
    float colors[] = {20, 30, 50, 0, 0, 0, -1, 1, 0.0000005F, 0.25F, 0.5F, 0.25F};
    const float expected[] = {30, 0.2F, 0.3F, 0, 0, 0, 0, 0, 0, 0.5F, 0.25F, 0.5F};
    ColorTransXYZ2Yxy(colors, colors, 4);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(colors[i], expected[i]) << i;
}

TEST(Colorimetry, HuesLieAboveZeroUpToAFullTurn) {
    const struct {
        const char *name;
        double a, b, c, degrees;
    } rows[] = {
        {"neutral", 0, 0, 0, 270},
        {"red axis", 1, 0, 1, 360},
        {"red axis from below", 1, -0.0, 1, 360},
        {"orange", 3, 3, std::sqrt(18.0), 45},
        {"yellow axis", 0, 2, 2, 90},
        {"yellow-green", -1, 1, std::sqrt(2.0), 135},
        {"green axis", -2, 0, 2, 180},
        {"cyan", -1, -1, std::sqrt(2.0), 225},
        {"blue axis", 0, -2, 2, 270},
        {"purple", 1, -1, std::sqrt(2.0), 315},
    };
    const double pi = std::acos(-1);
    for (const auto &row : rows) {
        float c = 0, h = 0, a = 0, b = 0;
        const auto rowA = static_cast<float>(row.a), rowB = static_cast<float>(row.b);
        ab2chDeg(rowA, rowB, c, h);
        EXPECT_FLOAT_EQ(h, static_cast<float>(row.degrees)) << row.name;
        EXPECT_FLOAT_EQ(c, static_cast<float>(row.c)) << row.name;
        ch2abDeg(c, h, a, b);
        EXPECT_NEAR(a, row.a, 2e-6) << row.name;  // 360 degrees are rounded to 3e-5
        EXPECT_NEAR(b, row.b, 2e-6) << row.name;
        ab2chRad(rowA, rowB, c, h);
        EXPECT_FLOAT_EQ(h, static_cast<float>(row.degrees * pi / 180)) << row.name;
        ch2abRad(c, h, a, b);
        EXPECT_NEAR(b, row.b, 2e-6) << row.name;
        double cc = 0, hh = 0;
        ab2chDeg_double(row.a, row.b, cc, hh);
        EXPECT_DOUBLE_EQ(hh, row.degrees) << row.name;
        EXPECT_DOUBLE_EQ(cc, row.c) << row.name;
        ab2chRad_double(row.a, row.b, cc, hh);
        EXPECT_DOUBLE_EQ(hh, row.degrees * pi / 180) << row.name;
    }
}

TEST(Colorimetry, TangentsAndDifferencesOfHues) {
    const float tangents[][3] = {{0, 0, -1e10F}, {0, 1, 1e10F}, {0, -1, -1e10F}, {-2, 1, -0.5F}};
    for (const auto &row : tangents) {
        float t = 0;
        ab2TanHue(row[0], row[1], t);
        EXPECT_EQ(t, row[2]);
    }
    const float differences[][3] = {
        {350, 10, -20}, {10, 350, 20}, {270, 90, 180}, {90, 270, -180}, {5, 5, 0}};
    for (const auto &row : differences)
        EXPECT_EQ(HueDiff(row[0], row[1]), row[2]);
}

TEST(Colorimetry, PolygonsOfHuesAreClosed) {
    float two[] = {90, 270}, values[] = {0, 1};
    const float expected[][2] = {{0, 0.5F},    {90, 0},     {135, 0.25F}, {270, 1},
                                 {315, 0.75F}, {360, 0.5F}, {460, 0}};
    for (const auto &row : expected)
        EXPECT_FLOAT_EQ(HueValueInterpol(row[0], two, values, 2), row[1]) << row[0];
    EXPECT_EQ(HueValueInterpol(200, two, values + 1, 1), 1) << "one corner holds all around";
    EXPECT_EQ(HueValueInterpol(200, two, values, 0), 0);
    float doubled[] = {10, 20, 20}, steps[] = {1, 2, 3};
    EXPECT_EQ(HueValueInterpol(20, doubled, steps, 3), 2) << "the first segment wins";
}

TEST(Colorimetry, LightnessScale) {
    const float published[][2] = {
        {100, 100}, {50, 18.4187F}, {10, 1.1260F}, {1, 0.11071F}};  // by hand from CIE 15
    for (const auto &row : published) {
        EXPECT_NEAR(Lightness2Luminance(row[0]), row[1], 1e-4);
        EXPECT_NEAR(Luminance2Lightness(row[1]), row[0], 3e-4);
    }
    EXPECT_NEAR(Luminance2Lightness(0.89F), 116 * std::cbrt(0.0089) - 16, 3e-5);  // the line has 1e-4 more
    for (float lightness = 0; lightness < 120; lightness += 0.5F) {
        const float luminance = Lightness2Luminance(lightness);
        EXPECT_EQ(Lightness2Luminance(-lightness), -luminance);
        EXPECT_EQ(Luminance2Lightness(-luminance), -Luminance2Lightness(luminance));
        // The branches miss each other by 1e-5, and the exponent by 3e-8.
        EXPECT_NEAR(Luminance2Lightness(luminance), lightness, 2e-4) << lightness;
    }
}

TEST(Cielab, WhiteGrayAndNegative) {
    KV_CTCielab cielab;
    float white[3] = {};
    cielab.GetWhitePoint(white);
    const float w[] = {96.42F, 100, 82.49F};
    const struct {
        const char *name;
        float xyz[3];
        double lab[3];
    } rows[] = {
        {"white", {w[0], w[1], w[2]}, {100, 0, 0}},
        {"black", {0, 0, 0}, {0, 0, 0}},
        {"an eighth of white", {w[0] / 8, w[1] / 8, w[2] / 8}, {42, 0, 0}},
        {"eight times white", {w[0] * 8, w[1] * 8, w[2] * 8}, {216, 0, 0}},
        {"X alone", {w[0], 0, 0}, {0, 500 * (1 - 4.0 / 29), 0}},
        {"negative Z", {w[0], w[1], -w[2]}, {100, 0, 200 * (2 - 8.0 / 29)}},
        {"on the line", {w[0] / 1000, w[1] / 1000, w[2] / 1000}, {0.903296296296, 0, 0}},
    };
    for (const auto &row : rows) {
        float colors[3] = {row.xyz[0], row.xyz[1], row.xyz[2]};
        cielab.XYZ2Lab(colors, colors, 1);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(colors[i], row.lab[i], 3e-5) << row.name;  // the ratio is a float: 6e-8 * 500 / 3
        cielab.Lab2XYZ(colors, colors, 1);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(colors[i], row.xyz[i], 3e-7 * (1 + std::abs(row.xyz[i]))) << row.name;
    }
    EXPECT_EQ(white[0], w[0]);
}

}  // namespace
