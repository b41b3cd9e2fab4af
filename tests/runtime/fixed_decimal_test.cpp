#include "runtime/fixed_decimal.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "runtime/varied_doubles.h"

namespace {

std::string fixed6(double value) {
    char text[kv::detail::kLongestFixed6];
    return {text, kv::detail::appendFixed6(text, value)};
}

std::string printed(double value) {
    char text[400];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.6f", value))};
}

TEST(FixedDecimal, Fixed6IsPrintedText) {
    const double limits[] = {0,      0.5e-6,    1.5e-6,  0x1p-21,      0x1.fffffffffffffp-22,
                             0x3p-7, 0.9999995, 0x1p52,  0x1p53,       0x1.fffffffffffffp63,
                             0x1p64, 1e22,      DBL_MAX, DBL_TRUE_MIN, HUGE_VAL};
    for (const double value : limits) {
        EXPECT_EQ(fixed6(value), printed(value));
        EXPECT_EQ(fixed6(-value), printed(-value));
    }
    // The sign of what is no number is shown; not every printf does so.
    EXPECT_EQ(fixed6(NAN), "nan");
    EXPECT_EQ(fixed6(-NAN), "-nan");
    VariedDoubles values(42);
    for (int i = 0; i < 2000000; ++i) {
        const double value = values.next();
        if (std::isnan(value)) continue;
        ASSERT_EQ(fixed6(value), printed(value)) << std::hexfloat << value;
    }
}

TEST(FixedDecimal, LongestTextsFit) {
    EXPECT_EQ(fixed6(-DBL_MAX).size(), kv::detail::kLongestFixed6);
    for (const std::int32_t value : {0, 9, -10, INT32_MAX, INT32_MIN}) {
        char text[kv::detail::kLongestInteger];
        EXPECT_EQ(std::string(text, kv::detail::appendInteger(text, value)), std::to_string(value));
    }
}

void expectReadsAsStream(const std::string &word) {
    double value = 7;
    const bool good = kv::detail::readDouble(word.data(), word.data() + word.size(), value);
    std::istringstream stream(word);
    stream.imbue(std::locale::classic());
    double expected = 0;
    stream >> expected;
    ASSERT_EQ(good, !stream.fail()) << word;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << word;
}

TEST(FixedDecimal, ReadsWhatAStreamExtracts) {
    std::istringstream words(
        "1e 1.5.2 .5 - 1-2. 0x10 1e+ --1. +-1 5. . -.e1 e5 -0 +.5E-1x inf nan 1e400 -1e400 1e-400 -1e-400 "
        "1e-320 "
        "0e999999999999 1e999999999999 -1e-999999999999 2.4703282292062328e-324 1.7976931348623159e308 "
        "9007199254740993 1e5e5 1e5.5 1,5");
    for (std::string word; words >> word;)
        expectReadsAsStream(word);
    for (const char *word : {"", "  ", " \v1.5 "})
        expectReadsAsStream(word);
    expectReadsAsStream(std::string(400, '9'));
    expectReadsAsStream("0." + std::string(400, '0') + "1");
    expectReadsAsStream("0." + std::string(400, '0') + "1e800");
    expectReadsAsStream(std::string(400, '7') + "e-800");
    std::mt19937 random(5);
    for (int i = 0; i < 200000; ++i) {
        std::string word;
        for (std::size_t n = random() % 18; n > 0; --n)
            word += "0123456789+-.eExX01234567890123456789"[random() % (i % 2 == 0 ? 37 : 17)];
        expectReadsAsStream(word);
    }
}

}  // namespace
