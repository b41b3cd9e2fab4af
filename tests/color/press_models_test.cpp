// Overlaps of inks, the hue correction, and the small questions about inks.
#include <gtest/gtest.h>
#include <kvbase/color/kv_colorimetry.h>
#include <kvbase/color/kv_hue_correction.h>
#include <kvbase/color/kv_press_inks.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <string>

namespace {

// The sums of each ink's figures, plain and multiplied by their places, worked out elsewhere: a figure that
// is wrong or out of its place shows.
TEST(PressInks, SpectraAddUp) {
    const struct {
        const char *name;
        double sum, moment;
    } rows[] = {{"White", 30.886270, 598.765420},   {"Cyan", 9.959000, 117.662660},
                {"Magenta", 13.546440, 352.817760}, {"Yellow", 20.255760, 499.146840},
                {"Black", 0.779160, 14.818340},     {"Orange", 13.825360, 391.886580},
                {"Green", 6.085457, 88.814769},     {"Blue", 3.203849, 31.696585},
                {"Red", 13.930261, 384.491536},     {"Violet", 6.664567, 150.934725}};
    for (const auto &row : rows) {
        const float *const values = GetDefaultSpectrum(row.name);
        ASSERT_NE(values, nullptr) << row.name;
        double sum = 0, moment = 0;
        for (int i = 0; i < 36; ++i) {
            sum += values[i];
            moment += (i + 1) * static_cast<double>(values[i]);
        }
        EXPECT_NEAR(sum, row.sum, 3e-6) << row.name;
        EXPECT_NEAR(moment, row.moment, 5e-5) << row.name;
        EXPECT_EQ(IsProcessColor(KV_WString(row.name, row.name + std::char_traits<char>::length(row.name))),
                  row.name != std::string("White"));
    }
    for (const char *none : {"PC_5", "cyan", "Cyan ", ""})
        EXPECT_EQ(GetDefaultSpectrum(none), nullptr) << none;
    EXPECT_FALSE(IsProcessColor(KV_W("black")));
    EXPECT_FALSE(IsProcessColor(KV_W("")));
}

// By the definition: what an ink has in a set is the smallest that it has in any pair of the set with it, and
// all paths from pairs to a set weigh the same.
TEST(PressInks, OverlapsComeFromPairs) {
    constexpr std::int32_t kInks = 8;
    std::mt19937 random(3);
    std::uniform_real_distribution<float> draw(0, 1);
    std::vector<std::vector<float>> overlaps(1U << kInks, std::vector<float>(kInks, -1));
    std::vector<float> weights(1U << kInks, -1);
    for (std::uint32_t set = 0; set < overlaps.size(); ++set)
        for (std::size_t i = 0; i < kInks && std::popcount(set) <= 2; ++i) {
            overlaps[set][i] = draw(random);
            weights[set] = set >= 32 ? 9e-6F : draw(random);
        }
    const auto given = overlaps;
    const auto givenWeights = weights;
    CalculateFurtherOverlaps(kInks, overlaps, weights);
    for (std::uint32_t set = 0; set < overlaps.size(); ++set) {
        const int size = std::popcount(set);
        double sum = 0;
        for (std::size_t i = 0; i < kInks; ++i) {
            float smallest = 2;
            for (std::size_t j = 0; j < kInks; ++j)
                if (i != j && (set >> i & 1) != 0 && (set >> j & 1) != 0) {
                    smallest = std::min(smallest, given[1U << i | 1U << j][i]);
                    sum += givenWeights[1U << i | 1U << j];
                }
            const bool isDerived = size >= 3 && size <= 7 && (set >> i & 1) != 0;
            EXPECT_EQ(overlaps[set][i], isDerived ? smallest : given[set][i]) << set << ' ' << i;
        }
        if (size < 3 || size > 7)
            EXPECT_EQ(weights[set], givenWeights[set]) << set;
        else if (std::countr_zero(set) >= 5)
            EXPECT_EQ(weights[set], 0) << "too small to count";
        else
            EXPECT_NEAR(weights[set], sum / (size * (size - 1)), 1e-4) << set;
    }
    std::vector<std::vector<float>> few(8, std::vector<float>(3, 5));
    std::vector<float> fewWeights(7);
    CalculateFurtherOverlaps(3, few, fewWeights);  // one weight is missing
    CalculateFurtherOverlaps(2, few, fewWeights);
    EXPECT_EQ(few[7][0], 5);
    fewWeights.assign(8, 1.1e-5F);
    CalculateFurtherOverlaps(3, few, fewWeights);
    EXPECT_FLOAT_EQ(fewWeights[7], 1.1e-5F) << "large enough to count";
}

TEST(HueCorrection, StandardTableGoesThroughItsRows) {
    const KV_HueCorrection &standard = KV_StandardHueCorrection();
    ASSERT_EQ(standard.GetTable().size(), 720U);
    const auto evenly = [](float first, float step, std::size_t count) {
        std::vector<float> nodes(count);
        for (std::size_t i = 0; i < count; ++i)
            nodes[i] = first + static_cast<float>(i) * step;
        return nodes;
    };
    EXPECT_EQ(standard.GetLightnessNodes(), evenly(10, 10, 9));
    EXPECT_EQ(standard.GetChromaNodes(), evenly(10, 10, 10));
    EXPECT_EQ(standard.GetHueNodes(), evenly(-153, 45, 8));
    const float rows[2][8] = {{-181.49F, -129.97F, -80.61F, -37.55F, -10.23F, 32.09F, 86.81F, 142.68F},
                              {-184.79F, -141.19F, -83.56F, -34.91F, 10.42F, 54.19F, 90.77F, 128.97F}};
    for (std::size_t h = 0; h < 8; ++h) {
        EXPECT_EQ(standard.GetTable()[h], rows[0][h]);
        EXPECT_EQ(standard.GetTable()[(4 * 10 + 4) * 8 + h], rows[1][h]);
        // Halfway between them on the one axis, and on the other.
        EXPECT_NEAR(standard.GetTable()[4 * 8 + h], (rows[0][h] + rows[1][h]) / 2, 1e-4);
        EXPECT_NEAR(standard.GetTable()[4 * 10 * 8 + h], (rows[0][h] + rows[1][h]) / 2, 1e-4);
    }
    const auto [least, most] = std::minmax_element(standard.GetTable().begin(), standard.GetTable().end());
    EXPECT_GE(*least, -190.25F);
    EXPECT_LE(*most, 174.35F);
    EXPECT_TRUE(&standard == &KV_StandardHueCorrection());
}

// A table that turns all hues by an angle turns every colour by it, wherever it lies.
TEST(HueCorrection, TurnsColoursAsItsTableSays) {
    float lightness[] = {20, 50, 80}, chroma[] = {10, 40}, hue[] = {0, 90, 180, 270}, table[24];
    for (const float angle : {0.0F, 30.0F, -100.0F, 200.0F}) {
        for (std::size_t i = 0; i < 24; ++i)
            table[i] = hue[i % 4] + angle;
        const KV_HueCorrection made(3, lightness, 2, chroma, 4, hue, table);
        KV_HueCorrection correction;
        correction = made;
        for (float h = 1; h < 360; h += 7)
            for (float l = 5; l < 100; l += 15) {
                float lab[3] = {l, 0, 0}, c = 0, turned = 0;
                ch2abDeg(l / 2, h, lab[1], lab[2]);
                correction.ForwardEval(lab, lab, 1);
                ab2chDeg(lab[1], lab[2], c, turned);
                EXPECT_EQ(lab[0], l);
                EXPECT_NEAR(c, l / 2, 1e-4F);
                EXPECT_NEAR(std::remainder(turned - h - angle, 360.0F), 0, 1e-3F)
                    << angle << ' ' << h << ' ' << l;
            }
    }
}

// Between nodes the value lies on the line between them; across the circle's end on the shorter way round.
TEST(HueCorrection, InterpolatesBetweenNodes) {
    float lightness[] = {20, 40}, chroma[] = {10, 30}, hue[] = {90, 180};
    float table[] = {90, 180, 100, 190, 350, 350, 30, 30};
    const KV_HueCorrection correction(2, lightness, 2, chroma, 2, hue, table);
    struct {
        float l, c, h, corrected;
    } const rows[] = {
        {20, 10, 135, 135}, {5, 2, 135, 135}, {20, 20, 90, 95},   {20, 15, 180, 182.5F}, {20, 99, 135, 145},
        {40, 20, 120, 10},  {90, 15, 120, 0}, {40, 10, 100, 350}, {20, 10, 315, 315},
    };
    for (const auto &row : rows) {
        float lab[3] = {row.l, 0, 0}, c = 0, h = 0;
        ch2abDeg(row.c, row.h, lab[1], lab[2]);
        float out[3];
        correction.ForwardEval(lab, out, 1);
        ab2chDeg(out[1], out[2], c, h);
        EXPECT_NEAR(std::remainder(h - row.corrected, 360.0F), 0, 0.01F)
            << row.l << ' ' << row.c << ' ' << row.h;
    }
    // Half a turn apart decides which way round; a single node holds everywhere.
    for (const auto &[far, corrected] : {std::pair{185.0F, 97.5F}, {195.0F, 282.5F}}) {
        float values[] = {10, far}, one[] = {0};
        const KV_HueCorrection pair(1, one, 2, chroma, 1, one, values);
        float lab[3] = {50, -20, 0}, c = 0, h = 0;
        pair.ForwardEval(lab, lab, 1);
        ab2chDeg(lab[1], lab[2], c, h);
        EXPECT_NEAR(h, corrected, 0.01F);
    }
    float lab[6] = {50, 20, 30, 60, -5, 7}, out[6] = {};
    KV_HueCorrection().ForwardEval(lab, out, 2);
    EXPECT_TRUE(std::equal(lab, lab + 6, out)) << "an empty table moves nothing";
    KV_StandardHueCorrection().ForwardEval(lab, out, 0);
    EXPECT_TRUE(std::equal(lab, lab + 6, out));
}

}  // namespace
