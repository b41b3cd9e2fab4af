#include <gtest/gtest.h>
#include <kvbase/color/kv_illuminant.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "runtime/trace_capture.h"

namespace {

constexpr KV_ObserverType k2 = KV_Observer2Deg;
constexpr KV_ObserverType k10 = KV_Observer10Deg;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

void expectWhite(const KV_Illuminant &light, const XYZType &white, float tolerance, const std::string &name) {
    EXPECT_NEAR(light.GetXYZ().X, white.X, tolerance) << name;
    EXPECT_NEAR(light.GetXYZ().Y, white.Y, tolerance) << name;
    EXPECT_NEAR(light.GetXYZ().Z, white.Z, tolerance) << name;
}

struct Chromaticity {
    double x, y;
};

// By the usual definition, in which Y alone sets the scale: the sums of the functions (as the CIE publishes
// them, 2 degrees) are brought back in.
Chromaticity chromaticity2Deg(const KV_Illuminant &light) {
    const double X = light.GetXYZ().X * (106.865469489595 / 106.8569171011719);
    const double Z = light.GetXYZ().Z * (106.892251278636 / 106.8569171011719);
    return {X / (X + 100 + Z), 100 / (X + 100 + Z)};
}

TEST(Illuminant, StandardLights) {
    struct Row {
        int type;
        KV_IlluminantType made;
        float temperature2, temperature10;
        const char *name;
        bool isFixed;  // white2 and white10 are exact
        XYZType white2, white10;
    };
    // The integrated white points: A from the formula in double precision.
    const Row rows[] = {
        {0, KV_IT_A, 2856, 2856, "A", false, {109.835F, 100, 35.586F}, {111.150F, 100, 35.209F}},
        {1, KV_IT_B, 4874, 4874, "B", true, {99.07F, 100, 85.22F}, {98.15F, 100, 91.85F}},
        {2, KV_IT_C, 6774, 6774, "C", true, {98.04F, 100, 118.1F}, {97.28F, 100, 116.08F}},
        {3, KV_IT_D50, 5000, 5000, "D50", true, {96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}},
        {4, KV_IT_D50, 5000, 5000, "D50", true, {96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}},
        {5, KV_IT_D65, 6500, 6500, "D65", true, {95.04F, 100, 108.8F}, {94.82F, 100, 107.25F}},
        {6, KV_IT_D93, 9300, 9300, "D93", true, {95.32F, 100, 141.32F}, {94.3F, 100, 138.56F}},
        {7, KV_IT_E, 6000, 6000, "E", true, {100, 100, 100}, {100, 100, 100}},
        {8,
         KV_IT_BlackBody,
         5000,
         5000,
         "BlackBody",
         false,
         {98.1415F, 100, 86.2291F},
         {98.549F, 100, 85.902F}},
        {13, KV_IT_D50, 5000, 5000, "D50", true, {96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}},
        {22, KV_IT_D50, 5000, 5000, "D50", true, {96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}},
        {-1, KV_IT_D50, 5000, 5000, "D50", true, {96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}},
    };
    for (const Row &row : rows) {
        for (KV_ObserverType observer : {k2, k10}) {
            const KV_Illuminant light(static_cast<KV_IlluminantType>(row.type), observer);
            const std::string name = row.name + std::to_string(observer);
            EXPECT_EQ(light.GetIlluminantType(), row.made) << name;
            EXPECT_EQ(light.GetColorTemperature(), observer == k2 ? row.temperature2 : row.temperature10)
                << name;
            EXPECT_STREQ(light.GetIlluminantName(), row.name);
            EXPECT_EQ(light.GetStandardObserver(), observer);
            expectWhite(light, observer == k2 ? row.white2 : row.white10, row.isFixed ? 0 : 0.001F, name);
            ASSERT_NE(light.GetStandardSpectrum(), nullptr) << name;
            EXPECT_EQ(light.GetStandardSpectrum()->count, 471) << name;
        }
    }
}

// F1, F2 and D50_Local have no published white; E and these follow the observer's table of daylight.
TEST(Illuminant, OwnLightsFollowTheirWhitePoint) {
    for (KV_IlluminantType type : {KV_IT_F1, KV_IT_F2, KV_IT_D50_Local}) {
        KV_Illuminant light(type, k10);
        EXPECT_EQ(light.GetIlluminantType(), type);
        EXPECT_STREQ(light.GetIlluminantName(), IlluminantTypeToString(type));
        const XYZType white = light.GetXYZ();
        light.SetStandardObserver(k2);
        light.SetStandardObserver(k10);
        expectWhite(light, white, 0, "there and back");
        XYZType same = white;
        EXPECT_EQ(KV_Illuminant(&same, k10).GetColorTemperature(), light.GetColorTemperature());
    }
}

// What the spectra of lights with fixed white points integrate to. The CIE's figures for A are those of
// 2855.5 K, and relative to the sum of y alone: 109.850 and 35.585 (CIE 015:2018 gives 109.85 and 35.58).
TEST(Illuminant, IntegratedWhitePoints) {
    struct Row {
        KV_IlluminantType type;
        XYZType white2, white10;
        float tolerance;
    };
    const Row rows[] = {
        {KV_IT_A, {109.850F, 100, 35.585F}, {111.144F, 100, 35.200F}, 0.015F},
        {KV_IT_B, {99.083F, 100, 85.264F}, {99.202F, 100, 84.322F}, 0.001F},
        {KV_IT_C, {98.054F, 100, 118.136F}, {97.286F, 100, 116.076F}, 0.001F},
        {KV_IT_E, {100, 100, 100}, {100, 100, 100}, 1e-4F},
        {KV_IT_D65, {95.04F, 100, 108.8F}, {94.82F, 100, 107.25F}, 0.005F},  // as they are fixed
        {KV_IT_D93, {95.32F, 100, 141.32F}, {94.3F, 100, 138.56F}, 0.005F},
    };
    for (const Row &row : rows) {
        KV_Illuminant light(row.type, k2);
        const float temperature = light.GetColorTemperature();
        light.SetStandardObserver(k10);
        expectWhite(light, row.white10, row.tolerance, IlluminantTypeToString(row.type));
        light.SetStandardObserver(k2);
        expectWhite(light, row.white2, row.tolerance, IlluminantTypeToString(row.type));
        EXPECT_EQ(light.GetColorTemperature(), temperature);
    }
    KV_Illuminant light(KV_IT_D50, k10);
    light.SetStandardObserver(k10);
    expectWhite(light, {96.74F, 100, 81.36F}, 0, "the same observer changes nothing");
    light.SetStandardObserver(static_cast<KV_ObserverType>(7));
    EXPECT_EQ(light.GetStandardObserver(), k2);
}

TEST(Illuminant, DaylightOfAnyTemperature) {
    struct Row {
        float temperature;
        Chromaticity published;  // CIE 15:2004, table T.3, where the temperatures are said to 1 K
    };
    const Row rows[] = {{5003, {0.34567, 0.35851}},
                        {5503, {0.33243, 0.34744}},
                        {6504, {0.31272, 0.32903}},
                        {7504, {0.29903, 0.31488}}};
    for (const Row &row : rows) {
        const KV_Illuminant light(KV_IT_D, row.temperature, k2);
        const Chromaticity seen = chromaticity2Deg(light);
        EXPECT_NEAR(seen.x, row.published.x, 5e-5) << row.temperature;
        EXPECT_NEAR(seen.y, row.published.y, 5e-5) << row.temperature;
        EXPECT_EQ(light.GetColorTemperature(), row.temperature);
        EXPECT_EQ(light.GetIlluminantType(), KV_IT_D);
        EXPECT_STREQ(light.GetIlluminantName(), "D");
    }
    // On both sides of 7000 K the daylight locus of CIE 15 goes on, with another formula.
    const Chromaticity below = chromaticity2Deg(KV_Illuminant(KV_IT_D, 7000, k2));
    const Chromaticity above = chromaticity2Deg(KV_Illuminant(KV_IT_D, 7001, k2));
    EXPECT_NEAR(below.x, above.x, 1e-4);
    EXPECT_NEAR(below.y, above.y, 1e-4);
    // D65 as the CIE tabulates it, from weights rounded to three decimals.
    const KV_Illuminant d65(KV_IT_D, 6504, k2);
    const float published[][2] = {
        {400, 82.7549F}, {405, 87.1204F}, {460, 117.812F}, {560, 100}, {700, 71.6091F}};
    for (const auto &row : published) {
        EXPECT_NEAR(d65.GetSpectrum()->GetSpectralValueAtWavelength(static_cast<std::int32_t>(row[0])),
                    row[1], 0.05F)
            << row[0];
    }
}

TEST(Illuminant, DaylightTemperaturesAtTheirLimits) {
    struct Row {
        float temperature;
        KV_IlluminantType type;
        float kept, asSpectrum;
    };
    const Row rows[] = {
        {5000.4F, KV_IT_D50, 5000, 5000.4F},  {4999.5F, KV_IT_D50, 5000, 4999.5F},
        {4999.4F, KV_IT_D, 4999.4F, 4999.4F}, {6500.5F, KV_IT_D, 6500.5F, 6500.5F},
        {9299.5F, KV_IT_D93, 9300, 9299.5F},  {3000, KV_IT_D, 3000, 4000},
        {30000, KV_IT_D, 30000, 25000},
    };
    for (const Row &row : rows) {
        KV_Illuminant light(KV_IT_E, k2);
        light.SetIlluminantD(row.temperature, KV_ObserverNone);
        EXPECT_EQ(light.GetIlluminantType(), row.type) << row.temperature;
        EXPECT_EQ(light.GetColorTemperature(), row.kept) << row.temperature;
        const KV_Illuminant same(KV_IT_D, row.asSpectrum, k2);
        for (std::int32_t w : {360, 455, 830}) {
            EXPECT_EQ(light.GetSpectrum()->GetSpectralValueAtWavelength(w),
                      same.GetSpectrum()->GetSpectralValueAtWavelength(w))
                << row.temperature;
        }
    }
}

TEST(Illuminant, BlackBodyOfAnyTemperature) {
    struct Row {
        float temperature;
        Chromaticity published;  // Wyszecki and Stiles 1982, table 1(3.11), c2 = 14388: four decimals
    };
    const Row rows[] = {
        {2856, {0.4475, 0.4074}}, {4000, {0.3804, 0.3767}},  {5000, {0.3451, 0.3516}},
        {6500, {0.3135, 0.3236}}, {10000, {0.2806, 0.2883}}, {20000, {0.2565, 0.2576}},
    };
    KV_Illuminant light(KV_IT_E, k10);
    for (const Row &row : rows) {
        light.SetIlluminantBlackBody(row.temperature, k2);
        const Chromaticity seen = chromaticity2Deg(light);
        EXPECT_NEAR(seen.x, row.published.x, 1e-4) << row.temperature;
        EXPECT_NEAR(seen.y, row.published.y, 1e-4) << row.temperature;
        EXPECT_EQ(light.GetColorTemperature(), row.temperature);
        EXPECT_EQ(light.GetIlluminantType(), KV_IT_BlackBody);
    }
    // The maximum lies where Wien's law has it: 2897.8 um K.
    light.SetIlluminantBlackBody(5000, k2);
    const KV_Spectrum &spectrum = *light.GetSpectrum();
    EXPECT_GT(spectrum.GetSpectralValueAtWavelength(580), spectrum.GetSpectralValueAtWavelength(565));
    EXPECT_GT(spectrum.GetSpectralValueAtWavelength(580), spectrum.GetSpectralValueAtWavelength(595));
}

TEST(Illuminant, CustomSpectrum) {
    KV_Spectrum grey(300, 900, 100);
    for (std::int32_t i = 0; i < grey.count; ++i)
        grey.data[i] = 3;
    KV_Illuminant light(&grey, k10);
    grey.data[3] = 0;
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_Custom_Spectral);
    EXPECT_STREQ(light.GetIlluminantName(), "CustomSpectral");
    EXPECT_EQ(light.GetColorTemperature(), 6000);
    expectWhite(light, {100, 100, 100}, 2e-4F, "equal energy");
    // 683 lm/W times the area of the function, which is the published sum, relative to its value at 555 nm.
    EXPECT_NEAR(light.GetLuminance(), 3 * 683 * 116.661877102312 / 0.999110, 0.05);
    EXPECT_EQ(light.GetSpectrum()->step, 100);
    EXPECT_EQ(light.GetStandardSpectrum()->step, 1);

    light.SetCustomSpectrum(light.GetStandardSpectrum(), k2);
    EXPECT_EQ(light.GetSpectrum()->count, 471) << "its own spectrum";
    expectWhite(light, {100, 100, 100}, 2e-4F, "equal energy, 2 degrees");

    light.SetCustomSpectrum(nullptr, KV_ObserverNone);
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_D50);
}

TEST(Illuminant, LightsWithoutAWhitePoint) {
    KV_Spectrum none;
    KV_Spectrum infrared(831, 900, 1);
    KV_Spectrum huge(360, 830, 470);
    KV_Spectrum notANumber(360, 830, 470);
    for (int i = 0; i < 2; ++i) {
        huge.data[i] = std::numeric_limits<float>::max();
        notANumber.data[i] = kNaN;
    }
    for (KV_Spectrum *spectrum : {&none, &infrared, &huge, &notANumber}) {
        KV_Illuminant light(spectrum, k2);
        expectWhite(light, {0, 0, 0}, 0, std::to_string(spectrum->start));
        EXPECT_EQ(light.GetLuminance(), 0);
        EXPECT_EQ(light.GetColorTemperature(), 4800);
    }
    for (float temperature : {0.0F, 50.0F, kNaN, std::numeric_limits<float>::infinity()}) {
        KV_Illuminant light(KV_IT_BlackBody, temperature, k2);
        expectWhite(light, {0, 0, 0}, 0, std::to_string(temperature));
    }
}

TEST(Illuminant, CustomWhitePointHasTheNearestDaylight) {
    struct Row {
        float Z, at2Deg, at10Deg;
    };
    // The middles of rows are 80.428 and 79.344, 153.6905 and 150.1395.
    const Row rows[] = {
        {-5, 4800, 4800},     {79.34F, 4800, 4800},   {79.35F, 4800, 5000},   {80.42F, 4800, 5000},
        {80.43F, 5000, 5000}, {150.1F, 10000, 10000}, {150.2F, 10000, 12000}, {153.7F, 12000, 12000},
        {200, 12000, 12000},  {kNaN, 12000, 12000},
    };
    for (const Row &row : rows) {
        XYZType white = {90, 100, row.Z};
        KV_Illuminant light(&white, k2);
        EXPECT_EQ(light.GetSpectrum(), nullptr);
        EXPECT_EQ(light.GetStandardSpectrum(), nullptr);
        EXPECT_STREQ(light.GetIlluminantName(), "CustomXYZ");
        EXPECT_EQ(light.GetColorTemperature(), row.at2Deg) << row.Z;
        light.SetStandardObserver(k10);
        EXPECT_EQ(light.GetColorTemperature(), row.at10Deg) << row.Z;
        EXPECT_EQ(light.GetXYZ().X, 90) << "no spectrum could give it again";
    }
    KV_Illuminant light(KV_IT_A, k2);
    light.SetCustomXYZ(nullptr, k10);
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_D50);
}

KV_Illuminant custom(const std::vector<float> &samples, float scale = 1) {
    KV_Spectrum spectrum(360, 830, 47);
    for (std::int32_t i = 0; i < spectrum.count; ++i)
        spectrum.data[i] = samples[static_cast<std::size_t>(i)] * scale;
    return {&spectrum, k2};
}

KV_Illuminant byWhite(XYZType white, KV_ObserverType observer = k2) { return {&white, observer}; }

TEST(Illuminant, Comparison) {
    const std::vector<float> flat(11, 1.0F);
    std::vector<float> within = flat, beyond = flat;
    within[10] = 0.981F;
    beyond[10] = 0.979F;  // at 830 nm, where it hardly counts for the white point
    struct Row {
        const char *name;
        KV_Illuminant a, b;
        bool isEqual;
    };
    const Row rows[] = {
        {"same kind", {KV_IT_A, k2}, {KV_IT_A, k2}, true},
        {"other kind", {KV_IT_D50, k2}, {KV_IT_D65, k2}, false},
        {"other observer", {KV_IT_D50, k2}, {KV_IT_D50, k10}, false},
        {"D 0.5 apart", {KV_IT_D, 5501, k2}, {KV_IT_D, 5501.5F, k2}, true},
        {"D 0.6 apart", {KV_IT_D, 5501, k2}, {KV_IT_D, 5501.6F, k2}, false},
        {"D, other observer", {KV_IT_D, 5501, k2}, {KV_IT_D, 5501, k10}, false},
        {"black bodies 0.5 apart", {KV_IT_BlackBody, 3000, k2}, {KV_IT_BlackBody, 3000.5F, k2}, true},
        {"black bodies 0.6 apart", {KV_IT_BlackBody, 3000, k2}, {KV_IT_BlackBody, 3000.6F, k2}, false},
        {"white points 0.5 apart", byWhite({95, 100, 90}), byWhite({95.5F, 99.5F, 90.5F}), true},
        {"X", byWhite({95, 100, 90}), byWhite({95.6F, 100, 90}), false},
        {"Y", byWhite({95, 100, 90}), byWhite({95, 100.6F, 90}), false},
        {"Z", byWhite({95, 100, 90}), byWhite({95, 100, 89.4F}), false},
        {"white points, other observer", byWhite({95, 100, 90}), byWhite({95, 100, 90}, k10), false},
        {"no number", byWhite({kNaN, 100, 90}), byWhite({kNaN, 100, 90}), false},
        {"spectra but for a factor", custom(flat), custom(flat, 7), true},
        {"spectra below 0.02 apart", custom(flat), custom(within, 3), true},
        {"spectra above 0.02 apart", custom(flat), custom(beyond), false},
        {"dark spectra", custom(flat, 0), custom(flat, 0), true},
    };
    for (const Row &row : rows) {
        KV_Illuminant a(row.a);
        KV_Illuminant b(row.b);
        EXPECT_EQ(a == b, row.isEqual) << row.name;
        EXPECT_EQ(b == a, row.isEqual) << row.name;
    }
}

TEST(Illuminant, CopiesAreFullAndAssignmentKeepsWhatTheSourceLacks) {
    KV_Illuminant spectral(KV_IT_F1, k10);
    char name[] = "press room";
    spectral.SetIlluminantName(name);
    KV_Illuminant copy(spectral);
    spectral.GetSpectrum()->data[200] = -1;
    EXPECT_STREQ(copy.GetIlluminantName(), "press room");
    EXPECT_EQ(copy.GetLuminance(), spectral.GetLuminance());
    EXPECT_GE(copy.GetSpectrum()->data[200], 0);
    copy.SetStandardObserver(k2);
    copy.SetStandardObserver(k10);
    expectWhite(copy, spectral.GetXYZ(), 0, "the observer's tables");

    KV_Illuminant target(KV_IT_A, k2);
    const double luminance = target.GetLuminance();
    KV_Illuminant white = byWhite({95, 100, 90}, k10);
    target.MakeCopyOf(nullptr);
    EXPECT_EQ(target.GetIlluminantType(), KV_IT_A);
    target.MakeCopyOf(&white);
    EXPECT_EQ(target.GetIlluminantType(), KV_IT_Custom_XYZ);
    EXPECT_EQ(target.GetStandardObserver(), k10);
    ASSERT_NE(target.GetSpectrum(), nullptr);
    EXPECT_EQ(target.GetLuminance(), luminance);
    KV_Illuminant &self = target;
    target = self;
    target = spectral;
    EXPECT_EQ(target.GetSpectrum()->data[200], -1);
    target.SetIlluminantName(nullptr);
    EXPECT_STREQ(target.GetIlluminantName(), "");
}

TEST(Illuminant, KindsHaveTexts) {
    for (int i = -1; i <= 24; ++i) {
        const auto type = static_cast<KV_IlluminantType>(i);
        std::string text = IlluminantTypeToString(type);
        EXPECT_EQ(StringToIlluminantType(text.data()), i >= 0 && i < 23 ? type : KV_IT_Unknown) << text;
        EXPECT_EQ(KV_Illuminant().IlluminantTypeToString(type), KV_String(text.c_str()));
    }
    EXPECT_EQ(StringToIlluminantType(nullptr), KV_IT_Unknown);
    char lower[] = "d50";
    EXPECT_EQ(StringToIlluminantType(lower), KV_IT_Unknown);

    struct Row {
        const char *name;
        KV_IlluminantType type;
        const char *after;
    };
    const Row rows[] = {
        {"D50_Local", KV_IT_D50_Local, "D50_Local"},
        {"Custom_XYZ", KV_IT_Custom_XYZ, "Custom_XYZ"},
        {"F11", KV_IT_F11, "F11"},
        {"d50_local", KV_IT_D50_Local, "D50_LOCAL"},
        {"my local light, d 50", KV_IT_D50_Local, "MY LOCAL LIGHT, D 50"},
        {"local d65", KV_IT_D65, "LOCAL D65"},
        {"CIE d 65 lamp", KV_IT_D65, "CIE D 65 LAMP"},
        {"D_93 and D_65", KV_IT_D65, "D_93 AND D_65"},
        {"d_93", KV_IT_D93, "D_93"},
        {"a", KV_IT_Unknown, "A"},
        {"", KV_IT_Unknown, ""},
    };
    for (const Row &row : rows) {
        KV_String name(row.name);
        EXPECT_EQ(KV_Illuminant().StringToIlluminantType(name), row.type) << row.name;
        EXPECT_STREQ(name.Ptr(), row.after);
    }
}

TEST(Illuminant, ObserversInConstructorsStandAsGiven) {
    KV_Illuminant light(KV_IT_D50, KV_ObserverNone);
    EXPECT_EQ(light.GetStandardObserver(), KV_ObserverNone);
    EXPECT_EQ(light.GetXYZ().X, 96.42F);
    light.SetStandardIlluminant(KV_IT_D65, k10);
    light.SetStandardIlluminant(KV_IT_C, KV_ObserverNone);
    EXPECT_EQ(light.GetStandardObserver(), k10);
    TraceCapture trace(0x100);
    const KV_Illuminant traced;
    EXPECT_EQ(trace.Take().rfind("module KvBaseTrac : Constructing KV_Spectrum()\n", 0), 0);
}

}  // namespace
