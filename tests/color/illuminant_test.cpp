#include <gtest/gtest.h>
#include <kvbase/color/kv_illuminant.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

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

// By the usual definition, in which Y alone sets the scale: the sums of the functions, as the CIE publishes
// them, are brought back in.
void expectChromaticity(const KV_Illuminant &light, double x, double y, double tolerance) {
    const double X = light.GetXYZ().X * (106.865469489595 / 106.8569171011719);
    const double Z = light.GetXYZ().Z * (106.892251278636 / 106.8569171011719);
    EXPECT_NEAR(X / (X + 100 + Z), x, tolerance) << light.GetColorTemperature();
    EXPECT_NEAR(100 / (X + 100 + Z), y, tolerance) << light.GetColorTemperature();
}

TEST(Illuminant, StandardLights) {
    constexpr XYZType d50[] = {{96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}};
    struct Row {
        int type;
        KV_IlluminantType made;
        float temperature;
        float tolerance;  // 0 for a fixed white point; the others are from the formula in double precision
        XYZType white2, white10;
    };
    const Row rows[] = {
        {0, KV_IT_A, 2856, 0.001F, {109.835F, 100, 35.586F}, {111.150F, 100, 35.209F}},
        {1, KV_IT_B, 4874, 0, {99.07F, 100, 85.22F}, {98.15F, 100, 91.85F}},
        {2, KV_IT_C, 6774, 0, {98.04F, 100, 118.1F}, {97.28F, 100, 116.08F}},
        {3, KV_IT_D50, 5000, 0, d50[0], d50[1]},
        {4, KV_IT_D50, 5000, 0, d50[0], d50[1]},
        {5, KV_IT_D65, 6500, 0, {95.04F, 100, 108.8F}, {94.82F, 100, 107.25F}},
        {6, KV_IT_D93, 9300, 0, {95.32F, 100, 141.32F}, {94.3F, 100, 138.56F}},
        {7, KV_IT_E, 6000, 0, {100, 100, 100}, {100, 100, 100}},
        {8, KV_IT_BlackBody, 5000, 0.001F, {98.1415F, 100, 86.2291F}, {98.549F, 100, 85.902F}},
        {9, KV_IT_F1, 4800, 0.001F, {112.561F, 100, 29.448F}, {114.413F, 100, 28.848F}},
        {10, KV_IT_F2, 4800, 0.001F, {102.495F, 100, 52.009F}, {103.819F, 100, 50.972F}},
        {11, KV_IT_D50, 5000, 0, d50[0], d50[1]},
        {20, KV_IT_D50_Local, 5500, 0.001F, {98.874F, 100, 90.323F}, {98.732F, 100, 88.011F}},
        {22, KV_IT_D50, 5000, 0, d50[0], d50[1]},
        {-1, KV_IT_D50, 5000, 0, d50[0], d50[1]},
    };
    for (const Row &row : rows) {
        for (KV_ObserverType observer : {k2, k10}) {
            const KV_Illuminant light(static_cast<KV_IlluminantType>(row.type), observer);
            const std::string name = IlluminantTypeToString(row.made);
            EXPECT_EQ(light.GetIlluminantType(), row.made) << row.type;
            EXPECT_EQ(light.GetColorTemperature(), row.temperature) << name;
            EXPECT_EQ(light.GetIlluminantName(), name);
            EXPECT_EQ(light.GetStandardObserver(), observer);
            expectWhite(light, observer == k2 ? row.white2 : row.white10, row.tolerance, name);
        }
    }
}

// What the spectra of lights with fixed white points integrate to. The CIE's figures for A are those of
// 2855.5 K, and relative to the sum of y alone.
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
        {KV_IT_D93, {95.32F, 100, 141.32F}, {94.3F, 100, 138.56F}, 0.006F},
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
    light = KV_Illuminant(KV_IT_D50, KV_ObserverNone);
    EXPECT_EQ(light.GetStandardObserver(), KV_ObserverNone) << "a constructor takes it as it is";
    EXPECT_EQ(light.GetXYZ().Z, 82.49F);
}

TEST(Illuminant, DaylightOfAnyTemperature) {
    // CIE 15:2004, table T.3, where the temperatures are said to 1 K.
    const double published[][3] = {{5003, 0.34567, 0.35851},
                                   {5503, 0.33243, 0.34744},
                                   {6504, 0.31272, 0.32903},
                                   {7504, 0.29903, 0.31488}};
    for (const auto &[temperature, x, y] : published)
        expectChromaticity({KV_IT_D, static_cast<float>(temperature), k2}, x, y, 5e-5);
    // D65 as the CIE tabulates it, from weights rounded to three decimals.
    const KV_Illuminant d65(KV_IT_D, 6504, k2);
    const std::pair<std::int32_t, double> table[] = {
        {400, 82.7549}, {405, 87.1204}, {560, 100}, {700, 71.6091}};
    for (const auto &[w, power] : table)
        EXPECT_NEAR(d65.GetSpectrum()->GetSpectralValueAtWavelength(w), power, 0.05) << w;

    struct Row {
        float temperature;
        KV_IlluminantType type;
        float kept, ofSpectrum;
    };
    const Row rows[] = {
        {5000.4F, KV_IT_D50, 5000, 5000.4F},
        {4999.5F, KV_IT_D50, 5000, 4999.5F},
        {4999.498F, KV_IT_D, 4999.498F, 4999.498F},
        {9299.5F, KV_IT_D93, 9300, 9299.5F},
        {3000, KV_IT_D, 3000, 4000},
        {30000, KV_IT_D, 30000, 25000},
    };
    for (const Row &row : rows) {
        KV_Illuminant light(KV_IT_E, k2);
        light.SetIlluminantD(row.temperature, KV_ObserverNone);
        EXPECT_EQ(light.GetIlluminantType(), row.type) << row.temperature;
        EXPECT_EQ(light.GetColorTemperature(), row.kept) << row.temperature;
        const KV_Illuminant same(KV_IT_D, row.ofSpectrum, k2);
        EXPECT_EQ(light.GetSpectrum()->data[95], same.GetSpectrum()->data[95]) << row.temperature;
    }
}

TEST(Illuminant, BlackBodyOfAnyTemperature) {
    // Wyszecki and Stiles 1982, table 1(3.11), c2 = 14388, four decimals.
    const double published[][3] = {{2856, 0.4475, 0.4074}, {4000, 0.3804, 0.3767},  {5000, 0.3451, 0.3516},
                                   {6500, 0.3135, 0.3236}, {10000, 0.2806, 0.2883}, {20000, 0.2565, 0.2576}};
    KV_Illuminant light(KV_IT_E, k10);
    for (const auto &[temperature, x, y] : published) {
        light.SetIlluminantBlackBody(static_cast<float>(temperature), k2);
        expectChromaticity(light, x, y, 1e-4);
        EXPECT_EQ(light.GetIlluminantType(), KV_IT_BlackBody);
    }
    // Planck's density of energy, 8 pi h c / w^5 / (exp(h c / (w k T)) - 1), in units of 1e5 J / m^4.
    light.SetIlluminantBlackBody(2856, k2);
    const double w = 560e-9, hc = 6.62607e-34 * 2.997925e8;
    const double density =
        8 * 3.14159265 * hc / std::pow(w, 5) / (std::exp(hc / (w * 1.380649e-23 * 2856)) - 1);
    EXPECT_NEAR(light.GetSpectrum()->data[200], density * 1e-5, density * 1e-8);
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
    // 683 times the published sum of y, relative to its value at 555 nm.
    EXPECT_NEAR(light.GetLuminance(), 3 * 683 * 116.661877102312 / 0.99911, 0.05);
    light.SetCustomSpectrum(light.GetStandardSpectrum(), k2);
    EXPECT_EQ(light.GetSpectrum()->count, 471) << "its own spectrum";
    light.SetCustomSpectrum(nullptr, KV_ObserverNone);
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_D50);
}

TEST(Illuminant, LightsWithoutAWhitePoint) {
    KV_Spectrum none;
    KV_Spectrum infrared(831, 900, 1);
    KV_Spectrum huge(360, 830, 470);
    huge.data[0] = huge.data[1] = std::numeric_limits<float>::max();
    for (KV_Spectrum *spectrum : {&none, &infrared, &huge}) {
        const KV_Illuminant light(spectrum, k2);
        expectWhite(light, {0, 0, 0}, 0, std::to_string(spectrum->start));
        EXPECT_EQ(light.GetLuminance(), 0);
        EXPECT_EQ(light.GetColorTemperature(), 4800);
    }
    for (float temperature : {0.0F, 50.0F, kNaN, std::numeric_limits<float>::infinity()})
        expectWhite({KV_IT_BlackBody, temperature, k2}, {0, 0, 0}, 0, std::to_string(temperature));
}

KV_Illuminant byWhite(XYZType white, KV_ObserverType observer = k2) { return {&white, observer}; }

TEST(Illuminant, CustomWhitePointHasTheNearestDaylight) {
    // Z, and the temperatures under 2 and 10 degrees. The middles of the outer rows are 80.428 and 79.344,
    // 153.6905 and 150.1395.
    const float rows[][3] = {
        {-5, 4800, 4800},       {79.34F, 4800, 4800},   {79.35F, 4800, 5000},
        {80.42F, 4800, 5000},   {80.43F, 5000, 5000},   {150.1F, 10000, 10000},
        {150.2F, 10000, 12000}, {153.7F, 12000, 12000}, {kNaN, 12000, 12000},
    };
    for (const auto &[z, at2Deg, at10Deg] : rows) {
        KV_Illuminant light = byWhite({90, 100, z});
        EXPECT_EQ(light.GetSpectrum(), nullptr);
        EXPECT_EQ(light.GetStandardSpectrum(), nullptr);
        EXPECT_STREQ(light.GetIlluminantName(), "CustomXYZ");
        EXPECT_EQ(light.GetColorTemperature(), at2Deg) << z;
        light.SetStandardObserver(k10);
        EXPECT_EQ(light.GetColorTemperature(), at10Deg) << z;
        EXPECT_EQ(light.GetXYZ().X, 90) << "no spectrum could give it again";
    }
    EXPECT_EQ(KV_Illuminant(static_cast<XYZType *>(nullptr), k10).GetIlluminantType(), KV_IT_D50);
}

// 1 at every nm but the last, which hardly counts for the white point.
KV_Illuminant flatBut(float last, float scale = 1) {
    KV_Spectrum spectrum(360, 830, 1);
    for (std::int32_t i = 0; i < spectrum.count; ++i)
        spectrum.data[i] = (i + 1 < spectrum.count ? 1 : last) * scale;
    return {&spectrum, k2};
}

TEST(Illuminant, Comparison) {
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
        {"D above 0.5 apart", {KV_IT_D, 5501, k2}, {KV_IT_D, 5501.502F, k2}, false},
        {"D, other observer", {KV_IT_D, 5501, k2}, {KV_IT_D, 5501, k10}, false},
        {"black bodies 0.6 apart", {KV_IT_BlackBody, 3000, k2}, {KV_IT_BlackBody, 3000.6F, k2}, false},
        {"white points 0.5 apart", byWhite({95, 100, 90}), byWhite({95.5F, 99.5F, 90.5F}), true},
        {"X", byWhite({95, 100, 90}), byWhite({95.6F, 100, 90}), false},
        {"Y", byWhite({95, 100, 90}), byWhite({95, 100.6F, 90}), false},
        {"Z", byWhite({95, 100, 90}), byWhite({95, 100, 89.4F}), false},
        {"white points, other observer", byWhite({95, 100, 90}), byWhite({95, 100, 90}, k10), false},
        {"no number", byWhite({kNaN, 100, 90}), byWhite({kNaN, 100, 90}), false},
        {"spectra but for a factor", flatBut(1), flatBut(1, 7), true},
        {"spectra below 0.02 apart", flatBut(1), flatBut(0.981F, 3), true},
        {"spectra above 0.02 apart", flatBut(1), flatBut(0.979F), false},
        {"dark spectra", flatBut(1, 0), flatBut(1, 0), true},
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

    KV_Illuminant target(KV_IT_A, k2);
    const double luminance = target.GetLuminance();
    KV_Illuminant white = byWhite({95, 100, 90}, k10);
    target.MakeCopyOf(nullptr);
    target.MakeCopyOf(&white);
    EXPECT_EQ(target.GetIlluminantType(), KV_IT_Custom_XYZ);
    EXPECT_EQ(target.GetStandardObserver(), k10);
    EXPECT_EQ(target.GetLuminance(), luminance);
    ASSERT_NE(target.GetSpectrum(), nullptr);
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
    }
    EXPECT_EQ(StringToIlluminantType(nullptr), KV_IT_Unknown);
    struct Row {
        const char *name;
        KV_IlluminantType type;
        const char *after;
    };
    const Row rows[] = {
        {"D50_Local", KV_IT_D50_Local, "D50_Local"}, {"Custom_XYZ", KV_IT_Custom_XYZ, "Custom_XYZ"},
        {"d50_local", KV_IT_D50_Local, "D50_LOCAL"}, {"local, d 50", KV_IT_D50_Local, "LOCAL, D 50"},
        {"local d65", KV_IT_D65, "LOCAL D65"},       {"D_93, D_65", KV_IT_D65, "D_93, D_65"},
        {"my d_93", KV_IT_D93, "MY D_93"},           {"a", KV_IT_Unknown, "A"},
    };
    for (const Row &row : rows) {
        KV_String name(row.name);
        EXPECT_EQ(KV_Illuminant().StringToIlluminantType(name), row.type) << row.name;
        EXPECT_STREQ(name.Ptr(), row.after);
    }
}

TEST(Illuminant, ConstructionIsTraced) {
    TraceCapture trace(0x100);
    const KV_Illuminant light;
    EXPECT_EQ(trace.Take().rfind("module KvBaseTrac : Constructing KV_Spectrum()\n", 0), 0U);
}

}  // namespace
