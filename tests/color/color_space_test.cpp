#include <gtest/gtest.h>
#include <kvbase/color/kv_color_space.h>
#include <kvbase/text/kv_string.h>

#include <cstring>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr std::int32_t kLast = KV_CS_DIM16;
constexpr float kUntouched = -77;

KV_ColorSpace space(std::int32_t number) { return static_cast<KV_ColorSpace>(number); }

std::vector<std::string> fields(KV_ColorSpace which) {
    KV_String text;
    std::int32_t count = 0;
    DataFormatColorSpace(which, text, count, 0, 0, 1);
    std::istringstream in{text.Ptr()};
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    EXPECT_EQ(words.size(), static_cast<std::size_t>(count)) << which;
    return words;
}

TEST(ColorSpace, NamesAndNumbersInvertEachOther) {
    std::set<std::string> seen;
    for (std::int32_t number = 1; number <= kLast; ++number) {
        const std::string name = ColorSpaceToString(space(number));
        if (name == "UNKNOWN") continue;
        EXPECT_EQ(StringToColorSpace(name.c_str()), number);
        EXPECT_TRUE(seen.insert(name).second) << name;
    }
    EXPECT_EQ(seen.size(), 59U);
    for (const char *name : {"UNKNOWN", "", "LABX", "DENSITY", "POS0", "SUBTR8", "DIM2"})
        EXPECT_EQ(StringToColorSpace(name), KV_CS_UNKNOWN) << name;
    EXPECT_EQ(StringToColorSpace(nullptr), KV_CS_UNKNOWN);
    EXPECT_EQ(StringToColorSpace("cmykogb"), 86);
    EXPECT_STREQ(ColorSpaceToString(StringToColorSpace("duo")), "CLR2");
    EXPECT_EQ(StringToColorSpace("Tri"), 49);
    EXPECT_EQ(StringToColorSpace("HEXA"), 52);
}

TEST(ColorSpace, UnknownNumbersGiveNeutralResults) {
    std::vector<std::int32_t> numbers = {0, 14, 16, 17, 18, 19, 21, 23, 24, 25, 97, 67, 68, kLast + 1, -1};
    for (std::int32_t number = 27; number <= 46; ++number)
        if (number != KV_CS_CMYK1 && number != KV_CS_CMYK3) numbers.push_back(number);
    numbers.push_back(std::numeric_limits<std::int32_t>::max());
    numbers.push_back(std::numeric_limits<std::int32_t>::min());
    for (const std::int32_t number : numbers) {
        float low[2] = {kUntouched, kUntouched}, high[2] = {kUntouched, kUntouched};
        EXPECT_STREQ(ColorSpaceToString(space(number)), "UNKNOWN") << number;
        EXPECT_EQ(ColorSpaceDimension(space(number), 380, 730, 10), 0) << number;
        EXPECT_EQ(ColorSpaceWhitePoint(space(number), low), 1) << number;
        EXPECT_EQ(ColorSpaceBlackPoint(space(number), low), 1) << number;
        EXPECT_EQ(low[0], kUntouched) << number;
        EXPECT_EQ(ColorSpaceExtrema(space(number), low, high), 0) << number;
        EXPECT_TRUE(low[0] == 1 && high[0] == 0 && low[1] == kUntouched && high[1] == kUntouched) << number;
        EXPECT_EQ(ColorSpacePolarity(space(number)), KV_PolarityNone) << number;
        EXPECT_FALSE(CheckColorSpaceQuorin(space(number))) << number;
        EXPECT_TRUE(fields(space(number)).empty()) << number;
    }
}

// Arrays of exactly the channels' size, so that the address sanitizer sees any other.
TEST(ColorSpace, ChannelsLieWithinWhatIsKnownOfThem) {
    for (std::int32_t number = 1; number <= kLast; ++number) {
        const auto channels = static_cast<std::size_t>(ColorSpaceDimension(space(number), 0, 0, 1));
        const std::size_t room = std::max<std::size_t>(channels, 1);
        std::vector<float> low(room), high(room), white(room, kUntouched), black(room, kUntouched);
        EXPECT_EQ(ColorSpaceExtrema(space(number), low.data(), high.data()), channels);
        const bool hasPoints = ColorSpaceWhitePoint(space(number), white.data()) == 0;
        EXPECT_EQ(ColorSpaceBlackPoint(space(number), black.data()) == 0, hasPoints) << number;
        if (low[0] > high[0]) {
            EXPECT_EQ(hasPoints, number == KV_CS_LUV);
            continue;
        }
        const bool isNegative = ColorSpacePolarity(space(number)) == KV_PolarityNegative;
        for (std::size_t i = 0; i < channels; ++i) {
            const bool isInk = isNegative || (number == KV_CS_RGBK && i == 3);
            const bool isOpponent = number == KV_CS_LAB && i > 0;
            EXPECT_EQ(black[i], isOpponent ? 0 : isInk ? 100 : 0) << number;
            EXPECT_EQ(white[i], isOpponent ? 0 : isInk ? 0 : high[i]) << number;
            EXPECT_EQ(low[i], isOpponent ? -128 : 0) << number;
        }
    }
}

TEST(ColorSpace, FieldsAreTheChannels) {
    std::set<std::int32_t> withFields;
    for (std::int32_t number = 1; number <= kLast; ++number) {
        const std::vector<std::string> names = fields(space(number));
        if (names.empty() || number == KV_CS_SPEC) continue;
        withFields.insert(number);
        EXPECT_EQ(names.size(), ColorSpaceDimension(space(number), 0, 0, 1)) << number;
        EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size()) << number;
    }
    EXPECT_EQ(withFields.size(), 5U + 1 + 3 + 7 + 1 + 2 + 17);
}

TEST(ColorSpace, NamedInksAreTheLettersOfTheName) {
    for (std::int32_t number = KV_CS_CMYKO; number <= KV_CS_CMYKOGBRV; ++number) {
        const std::string name = ColorSpaceToString(space(number));
        std::string letters;
        for (const std::string &field : fields(space(number))) {
            EXPECT_EQ(field.substr(0, field.size() - 1), name + '_');
            letters += field.back();
        }
        EXPECT_EQ(letters, name);
    }
    std::set<std::int32_t> further = {KV_CS_CMYK1, KV_CS_CMYK2, KV_CS_CMYK3};
    for (std::int32_t number = 78; number <= 96; ++number)
        further.insert(number);
    for (std::int32_t number = 0; number <= kLast; ++number)
        EXPECT_EQ(CheckColorSpaceQuorin(space(number)), further.count(number) == 1) << number;
}

TEST(ColorSpace, Anchors) {
    const struct {
        KV_ColorSpace which;
        std::int32_t number, channels;
        KV_ImagePolarity polarity;
        std::vector<float> low, high, white;  // empty: none
    } rows[] = {
        {KV_CS_XYZ, 1, 3, KV_PolarityPositive, {0, 0, 0}, {96.42F, 100, 82.49F}, {96.42F, 100, 82.49F}},
        {KV_CS_LAB, 2, 3, KV_PolarityPositive, {0, -128, -128}, {100, 127, 127}, {100, 0, 0}},
        {KV_CS_LUV, 3, 3, KV_PolarityPositive, {}, {}, {100, 0, 0}},
        {KV_CS_GRAY, 7, 1, KV_PolarityPositive, {0}, {1}, {1}},
        {KV_CS_RGBA, 15, 4, KV_PolarityPositive, {}, {}, {}},
        {KV_CS_DENSITY, 22, 4, KV_PolarityNone, {}, {}, {}},
        {KV_CS_CMYK2, 26, 6, KV_PolarityNegative, {0, 0}, {100, 100}, {0, 0}},
        {KV_CS_CLR16, 62, 16, KV_PolarityNegative, {0, 0}, {100, 100}, {0, 0}},
        {KV_CS_GRAY_BIZ, 64, 1, KV_PolarityPositive, {0}, {255}, {255}},
        {KV_CS_GRAY_WIZ, 65, 1, KV_PolarityNegative, {0}, {100}, {0}},
        {KV_CS_SUBTR64, 72, 64, KV_PolarityNegative, {0, 0}, {100, 100}, {0, 0}},
        {KV_CS_POS0, 76, 0, KV_PolarityPositive, {}, {}, {}},
        {KV_CS_RGBK, 77, 4, KV_PolarityPositive, {0, 0, 0, 0}, {255, 255, 255, 100}, {255, 255, 255, 0}},
        {KV_CS_CMYKOGBRV, 94, 9, KV_PolarityNegative, {0, 0}, {100, 100}, {0, 0}},
        {KV_CS_CMYK5, 96, 9, KV_PolarityNegative, {0, 0}, {100, 100}, {0, 0}},
        {KV_CS_DIM16, 101, 16, KV_PolarityNone, {}, {}, {}},
    };
    for (const auto &row : rows) {
        std::vector<float> low(64, kUntouched), high = low, white = low;
        EXPECT_EQ(row.which, row.number);
        EXPECT_EQ(ColorSpaceExtrema(row.which, low.data(), high.data()), row.channels) << row.number;
        EXPECT_EQ(ColorSpacePolarity(row.which), row.polarity) << row.number;
        EXPECT_EQ(ColorSpaceWhitePoint(row.which, white.data()), row.white.empty() ? 1 : 0) << row.number;
        for (std::size_t i = 0; i < row.white.size(); ++i)
            EXPECT_EQ(white[i], row.white[i]) << row.number;
        for (std::size_t i = 0; i < row.low.size(); ++i)
            EXPECT_TRUE(low[i] == row.low[i] && high[i] == row.high[i]) << row.number;
        if (row.low.empty()) {
            EXPECT_TRUE(low[0] == 1 && high[0] == 0 && low[1] == kUntouched) << row.number;
        }
    }
    for (std::int32_t inks = -1; inks < 20; ++inks)
        EXPECT_EQ(Dimension2SpotColorSpace(inks), inks >= 1 && inks <= 16 ? 46 + inks : 0);
}

TEST(ColorSpace, GridsOfSpectra) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    const struct {
        const char *name;
        std::int32_t start, end, step, samples;
        const char *text;
        std::int32_t count;
    } rows[] = {
        {"whole", 380, 400, 10, 3, "SPECTRAL_380 SPECTRAL_390 SPECTRAL_400", 3},
        {"end is no step", 380, 405, 10, 0, "SPECTRAL_380 SPECTRAL_390 SPECTRAL_400", 3},
        {"no grid", 0, 0, 1, 1, "SPECTRAL_0", 1},
        {"step 0", 380, 730, 0, 0, "", 0},
        {"downward", 400, 380, -20, 2, "SPECTRAL_400 SPECTRAL_380", 2},
        {"one wide step", -kMost, kMost, 2 * (kMost / 2), 0,
         "SPECTRAL_-2147483647 SPECTRAL_-1 SPECTRAL_2147483645", 3},
        {"too many steps", -kMost - 1, kMost, 1, 0, "", 0},
    };
    for (const auto &row : rows) {
        KV_String text;
        std::int32_t count = 0;
        DataFormatColorSpace(KV_CS_SPEC, text, count, row.start, row.end, row.step);
        EXPECT_STREQ(text.Ptr(), row.text) << row.name;
        EXPECT_EQ(count, row.count) << row.name;
        EXPECT_EQ(ColorSpaceDimension(KV_CS_SPEC, row.start, row.end, row.step), row.samples) << row.name;
    }
    EXPECT_EQ(ColorSpaceDimension(KV_CS_SPEC, 380, 730, 10), 36);
    EXPECT_EQ(ColorSpaceDimension(KV_CS_SPEC, 0, kMost, 1), 0) << "one sample more than can be counted";
}

TEST(ColorSpace, FieldsGoBehindOthers) {
    const struct {
        KV_ColorSpace which;
        const char *text;
        std::int32_t count;
    } rows[] = {
        {KV_CS_GRAY, "A B C ", 3},
        {KV_CS_UNKNOWN, "A B C ", 3},
        {KV_CS_CIECAM, "A B C  JAB_J JAB_A JAB_B", 6},
        {KV_CS_XYZ, "A B C XYZ_X XYZ_Y XYZ_Z", 6},
        {KV_CS_DENSITY, "A B C D_RED D_GREEN D_BLUE D_VIS", 7},
        {KV_CS_CMYK1, "A B C CMYKI4_C CMYKI4_M CMYKI4_Y CMYKI4_K CMYKI4_I4", 8},
        {KV_CS_CLR3, "A B C PC3_1 PC3_2 PC3_3", 6},
        {KV_CS_GRAY_WIZ, "A B C GRAY_WIZ_K", 4},
        {KV_CS_CMYKO, "A B C CMYKO_C CMYKO_M CMYKO_Y CMYKO_K CMYKO_O", 8},
    };
    for (const auto &row : rows) {
        KV_String text("A B C");
        std::int32_t count = 3;
        DataFormatColorSpace(row.which, text, count, 0, 0, 1);
        EXPECT_STREQ(text.Ptr(), row.text);
        EXPECT_EQ(count, row.count) << row.text;
    }
}

TEST(MeasurementPractice, TextsAndNumbers) {
    const char *const densities[] = {"UNKNOWN", "A", "T", "I", "E", "M", "VIS", "XYZ", "SCTV"};
    for (std::int32_t i = 0; i < 9; ++i) {
        EXPECT_STREQ(DensityTypeToString(static_cast<KV_DensityStandardType>(i)), densities[i]);
        EXPECT_EQ(StringToDensityType(densities[i]), i);
    }
    EXPECT_STREQ(DensityTypeToString(static_cast<KV_DensityStandardType>(9)), "UNKNOWN");
    EXPECT_STREQ(DensityTypeToString(static_cast<KV_DensityStandardType>(-1)), "UNKNOWN");
    for (const char *name : {"vis", "", "AT"})
        EXPECT_EQ(StringToDensityType(name), KV_DENSITY_UNKNOWN) << name;

    const char *const conditions[] = {"M0", "M1", "M2", "M3", "UNKNOWN"};
    for (std::int32_t i = 0; i < 5; ++i) {
        EXPECT_STREQ(MeasurementConditionToString(static_cast<KV_MeasurementConditionType>(i)),
                     conditions[i]);
        EXPECT_EQ(StringToMeasurementCondition(conditions[i]), i);
    }
    EXPECT_STREQ(MeasurementConditionToString(static_cast<KV_MeasurementConditionType>(-1)), "UNKNOWN");
    EXPECT_EQ(StringToMeasurementCondition("m2"), KV_MEASUREMENT_M2);
    for (const char *name : {"M4", "", static_cast<const char *>(nullptr)})
        EXPECT_EQ(StringToMeasurementCondition(name), KV_MEASUREMENT_UNKNOWN);
}

}  // namespace
