#include <gtest/gtest.h>
#include <kvbase/color/kv_color_space_info.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using Floats = std::vector<float>;

struct Bounds {
    std::int32_t start, end, step, count;
    bool operator==(const Bounds &o) const {
        return start == o.start && end == o.end && step == o.step && count == o.count;
    }
};

Bounds boundsOf(const KV_ColorSpaceInfo &info) {
    Bounds bounds{};
    info.GetSpectralBounds(bounds.start, bounds.end, bounds.step, bounds.count);
    return bounds;
}

TEST(ColorSpaceInfo, Defaults) {
    const KV_ColorSpaceInfo info;
    EXPECT_EQ(info.GetColorSpace(), KV_CS_LAB);
    EXPECT_EQ(info.GetColorSpaceDimension(), 3U);
    EXPECT_EQ(boundsOf(info), (Bounds{380, 730, 10, 36}));
    ASSERT_EQ(info.GetWavelengths().size(), 36U);
    EXPECT_EQ(info.GetWavelengths()[35], 730);
    EXPECT_EQ(info.GetIlluminant()->GetIlluminantType(), KV_IT_D50);
    EXPECT_EQ(info.GetIlluminantType(), KV_IT_D50);
    EXPECT_EQ(info.GetObserverType(), KV_Observer2Deg);
}

TEST(ColorSpaceInfo, SpacesAndGrids) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    struct Row {
        const char *name;
        KV_ColorSpace space;  // KV_CS_UNKNOWN: SetSpectralBounds
        std::int32_t start, end, step;
        Bounds bounds;
        std::uint32_t dimension;
        Floats wavelengths;
        bool isGridKept = false;
    };
    const Row rows[] = {
        {"inks leave the grid alone", KV_CS_CMYKOG, 1, 2, 1, {380, 730, 10, 36}, 6, {}, true},
        {"spectrum", KV_CS_SPEC, 400, 420, 10, {400, 420, 10, 3}, 3, {400, 410, 420}},
        {"spectrum from 0", KV_CS_SPEC, 0, 100, 10, {0, 100, 10, 11}, 11, {}},
        {"spectrum off the grid", KV_CS_SPEC, 400, 425, 10, {400, 425, 10, 3}, 0, {400, 410, 420}},
        {"spectrum of one sample", KV_CS_SPEC, 400, 400, 10, {400, 400, 10, 1}, 1, {}},
        {"spectrum of step 0", KV_CS_SPEC, 400, 420, 0, {400, 420, 0, 0}, 0, {}},
        {"spectrum downward", KV_CS_SPEC, 400, 420, -10, {400, 420, -10, 0}, 0, {}},
        {"bounds", KV_CS_UNKNOWN, 400, 440, 20, {400, 440, 20, 3}, 3, {400, 420, 440}},
        {"bounds off the grid", KV_CS_UNKNOWN, 400, 425, 10, {400, 425, 10, 4}, 4, {400, 410, 420, 430}},
        {"bounds of step 0", KV_CS_UNKNOWN, 400, 425, 0, {400, 425, 0, 0}, 0, {}},
        {"wide bounds",
         KV_CS_UNKNOWN,
         kMin,
         kMax,
         kMax,
         {kMin, kMax, kMax, 4},
         4,
         {-2147483648.0F, 0, 2147483648.0F, 4294967296.0F}},
    };
    for (const Row &row : rows) {
        KV_ColorSpaceInfo info;
        if (row.space == KV_CS_UNKNOWN)
            info.SetSpectralBounds(row.start, row.end, row.step);
        else
            info = KV_ColorSpaceInfo(row.space, row.start, row.end, row.step);
        EXPECT_EQ(info.GetColorSpace(), row.space == KV_CS_UNKNOWN ? KV_CS_LAB : row.space) << row.name;
        EXPECT_EQ(info.GetColorSpaceDimension(), row.dimension) << row.name;
        EXPECT_EQ(boundsOf(info), row.bounds) << row.name;
        EXPECT_EQ(info.GetWavelengths(),
                  row.isGridKept ? KV_ColorSpaceInfo().GetWavelengths() : row.wavelengths)
            << row.name;
    }
}

TEST(ColorSpaceInfo, WavelengthsAsAList) {
    struct Row {
        Floats wavelengths;
        Bounds bounds;
    };
    const Row rows[] = {
        {{550.4F}, {550, 550, 1, 1}},
        {{379.5F, 390.2F, 400, 729.5F}, {380, 730, 11, 4}},
        {{400, 400}, {400, 400, 0, 2}},
        {{1e20F, std::numeric_limits<float>::quiet_NaN()},
         {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::min(),
          std::numeric_limits<std::int32_t>::min(), 2}},
    };
    for (Row row : rows) {
        KV_ColorSpaceInfo info;
        info.SetColorSpaceSpectrum(row.wavelengths);
        EXPECT_EQ(info.GetColorSpace(), KV_CS_SPEC);
        EXPECT_EQ(info.GetColorSpaceDimension(), row.wavelengths.size());
        EXPECT_EQ(boundsOf(info), row.bounds) << row.wavelengths[0];
        Floats none;
        info.SetColorSpaceSpectrum(none);
        EXPECT_EQ(boundsOf(info), row.bounds);
    }
}

TEST(ColorSpaceInfo, LightsAndCopies) {
    KV_ColorSpaceInfo info;
    KV_Illuminant *light = info.GetIlluminant();
    info.SetIlluminantType(KV_IT_D50);
    EXPECT_EQ(info.GetIlluminant(), light) << "an equal kind changes nothing";
    info.SetObserverType(KV_Observer10Deg);
    EXPECT_NEAR(light->GetXYZ().Z, 81.36, 0.01) << "integrated";
    info.SetIlluminantType(KV_IT_F5);
    EXPECT_EQ(info.GetIlluminantType(), KV_IT_F5);
    EXPECT_EQ(info.GetIlluminant()->GetXYZ().Z, 81.36F) << "a new D50";

    XYZType white = {95, 100, 90};
    KV_Illuminant custom(&white, KV_Observer2Deg);
    info.SetIlluminant(&custom);
    info.SetIlluminant(info.GetIlluminant());
    EXPECT_EQ(info.GetIlluminantType(), KV_IT_Custom_XYZ);
    EXPECT_EQ(info.GetObserverType(), KV_Observer2Deg);

    KV_ColorSpaceInfo copy(info);
    info.SetIlluminant(nullptr);
    EXPECT_EQ(info.GetIlluminantType(), KV_IT_D50);
    EXPECT_EQ(copy.GetIlluminantType(), KV_IT_Custom_XYZ);
    EXPECT_EQ(copy.GetIlluminant()->GetXYZ().Z, 90);
    copy.SetSpectralBounds(400, 440, 20);
    KV_ColorSpaceInfo &self = copy;
    copy = self;
    info = copy;
    EXPECT_EQ(info.GetIlluminant()->GetXYZ().X, 95);
    EXPECT_EQ(info.GetWavelengths().size(), 3U);
    EXPECT_NE(info.GetIlluminant(), copy.GetIlluminant());
}

}  // namespace
