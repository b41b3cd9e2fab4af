#include "kvbase/runtime/kv_number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <memory>
#include <random>

#include "runtime/plain_number_text.h"
#include "runtime/varied_doubles.h"

namespace {

std::string dtoaText(double value, int format, int precision) {
    char text[512];
    const int length = kv_dtoa(text, value, format, 7, precision);
    EXPECT_EQ(static_cast<int>(std::string(text).size()), length);
    return text;
}

struct FormatCase {
    const char *name;
    double value;
    int format, precision;
    const char *expected;
};
const FormatCase kFormats[] = {
    {"tie goes up", 0.125, 'f', 2, "0.13"},
    {"negative tie keeps its sign", -0.125, 'f', 2, "-0.13"},
    {"sign goes with the digits", -0.001, 'f', 2, "0."},
    {"minus zero", -0.0, 'f', 2, "0"},
    {"zeros of rounding stay", 9.999, 'f', 2, "10.00"},
    {"last kept 0, goes up", 1.00006, 'f', 4, "1.0001"},
    {"last kept 0, goes down", 1.00004, 'f', 4, "1."},
    {"run of zeros cut behind a digit", 1.500001, 'f', 4, "1.5"},
    {"precision 0 is 6", 2.5, 'f', 0, "2.5"},
    {"negative precision is 6", 1 / 3., 'f', -3, "0.333333"},
    {"precision 40 is 39", 0x1p-45, 'f', 40, "0.000000000000028421709430404007434844971"},
    {"whole", 100.0, 'f', 4, "100"},
    {"carry into a zero", -0.99999, 'f', 4, "-1.0000"},
    {"2^50 - 0.25, true digits", 0x1p50 - 0.25, 'f', 4, "1125899906842623.75"},
    {"450359962737049.4 falls to .375", 0x1p52 - 1.5, 'f', 4, "4503599627370493.5"},
    {"e", 1.5, 'e', 3, "1.500e+00"},
    {"E, carry makes a digit", -9.9996, 'E', 3, "-1.000E+01"},
    {"e of zero", 0.0, 'e', 2, "0.00e+00"},
    {"e, rounds by an integer digit", 123456.0, 'e', 2, "1.23e+05"},
    {"e, rounds by the first fraction digit", 129.5, 'e', 2, "1.30e+02"},
    {"e, small", 0.00125, 'e', 1, "1.3e-03"},
    {"e, three exponent digits", 1e100, 'e', 1, "1.0e+100"},
    {"g, no point left", 1e10, 'g', 0, "1e+10"},
    {"G, all nines", 9999996.0, 'G', 6, "1E+07"},
    {"g, e form of one digit", -12.3, 'g', 1, "-1e+01"},
    {"g, small", 0.000012345, 'g', 3, "1.23e-05"},
    {"g, smallest without exponent", 0.000123456789, 'g', 4, "0.0001235"},
    {"g, fraction used up", 12.5, 'g', 6, "12.5"},
    {"g, whole", 1200.0, 'g', 6, "1200"},
    {"g of zero", 0.0, 'g', 6, "0"},
    {"g, fraction goes on", 1.0000001, 'g', 6, "1.00000"},
    {"g, bare point", 12.3, 'g', 2, "12."},
    {"g, carry", 999999.7, 'g', 6, "1000000."},
    {"other format", 1.5, 'F', 3, ""},
    {"other format, not a number", NAN, 0, 3, ""},
    {"not a number", -NAN, 'g', 3, "NaN"},
    {"infinity", HUGE_VAL, 'f', 3, "Infinity"},
    {"minus infinity", -HUGE_VAL, 'E', 3, "-Infinity"},
};

TEST(NumberText, WritesEachForm) {
    for (const FormatCase &c : kFormats) {
        EXPECT_EQ(dtoaText(c.value, c.format, c.precision), c.expected) << c.name;
    }
}

TEST(NumberText, LongestTextFitsTheStatedLength) {
    const auto text = std::make_unique<char[]>(311);
    EXPECT_EQ(kv_dtoa(text.get(), -DBL_MAX, 'f', 0, 39), 310);
    EXPECT_EQ(text[310], '\0');
    EXPECT_EQ(kv_dtostr(-DBL_MAX, 39).substr(0, 14), "-1797693134862");
    EXPECT_EQ(kv_dtostr(9.999, 2), "10.00");
    EXPECT_EQ(dtoaText(-DBL_MIN, 'e', 39).size(), 47U);
}

TEST(NumberText, WritesAsThePlainForm) {
    VariedDoubles values(4711);
    std::mt19937 random(11);
    for (int i = 0; i < 400000; ++i) {
        const double value = values.next();
        const char format = "feEgG"[random() % 5];
        const int precision = 1 + static_cast<int>(random() % (i % 8 == 0 ? 39 : 8));
        ASSERT_EQ(dtoaText(value, format, precision), plain::dtoa(value, format, precision))
            << std::hexfloat << value << ' ' << format << precision;
    }
}

struct ReadCase {
    const char *text;
    double expected;
    std::ptrdiff_t used;
};
const ReadCase kReads[] = {{"-12.5e1", -125.0, 7},   {".5", 0.5, 2},
                           {"e5", 0.0, 0},           {"1.5e", 1.5, 4},
                           {"1.5e+x", 1.5, 5},       {" \t+2 ", 2.0, 4},
                           {"1,5", 1.0, 1},          {"", 0.0, 0},
                           {"  -", 0.0, 3},          {"-.e1", 0.0, 2},
                           {"-0", -0.0, 2},          {"5.", 5.0, 2},
                           {"--1", 0.0, 1},          {"\n1", 0.0, 0},
                           {"1e-1", 1 * 0.1, 4},     {".25", 2 * 0.1 + 5 * (0.1 * 0.1), 3},
                           {"1.2.3", 1.2, 3},        {"7e00002", 700.0, 7},
                           {"0x10", 0.0, 1},         {"1e99999999999999999999", HUGE_VAL, 22},
                           {"-1e400", -HUGE_VAL, 6}, {"-3e-999999999", -0.0, 13},
                           {"0e2147483648", 0.0, 12}};

TEST(NumberText, ReadsStepByStep) {
    for (const ReadCase &c : kReads) {
        const char *end = nullptr;
        const double value = kv_strtod(c.text, &end);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(c.expected)) << c.text;
        EXPECT_EQ(end - c.text, c.used) << c.text;
    }
}

TEST(NumberText, ReadsAsThePlainForm) {
    std::mt19937 random(12);
    for (int i = 0; i < 300000; ++i) {
        std::string text;
        for (std::size_t n = random() % (i % 16 == 0 ? 400 : 14); n > 0; --n)
            text += "0123456789012345678901234567890123456789..-+eE ,"[random() % 48];
        const char *end = nullptr;
        std::size_t used = 0;
        const auto bits = std::bit_cast<std::uint64_t>(kv_strtod(text.c_str(), &end));
        ASSERT_EQ(bits, std::bit_cast<std::uint64_t>(plain::strtod(text, used))) << text;
        ASSERT_EQ(static_cast<std::size_t>(end - text.c_str()), used) << text;
    }
}

// Digits come from double arithmetic, so the last of 17 may differ; a dozen holds there and back.
TEST(NumberText, ReadsBackWhatItWrote) {
    VariedDoubles values(99);
    for (int i = 0; i < 100000; ++i) {
        const double value = values.next();
        if (!(std::fabs(value) > 1e-290 && std::fabs(value) < 1e300)) continue;
        EXPECT_NEAR(kv_strtod(dtoaText(value, 'e', 16).c_str(), nullptr) / value, 1.0, 1e-12) << value;
    }
}

}  // namespace
