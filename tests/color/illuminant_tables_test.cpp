// The published tables, by what their publishers say of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>

#include "adt/color/illuminant_spectra.h"
#include "adt/color/tables/cie_1931_2deg.h"
#include "adt/color/tables/cie_1964_10deg.h"
#include "adt/color/tables/cie_daylight.h"

namespace {

using namespace kv::detail;

// The CIE publishes the sums of the columns of its data sets.
TEST(IlluminantTables, ObserversHaveThePublishedSums) {
    struct Row {
        const char *name;
        const double *table;
        double sum;
    };
    const Row rows[] = {
        {"1931 x", kCie1931X, 106.865469489595}, {"1931 y", kCie1931Y, 106.8569171011719},
        {"1931 z", kCie1931Z, 106.892251278636}, {"1964 x", kCie1964X, 116.648519508908},
        {"1964 y", kCie1964Y, 116.661877102312}, {"1964 z", kCie1964Z, 116.673980514647},
    };
    for (const Row &row : rows)
        EXPECT_NEAR(std::accumulate(row.table, row.table + 471, 0.0), row.sum, 1e-11) << row.name;
    EXPECT_EQ(std::max_element(kCie1931Y, std::end(kCie1931Y)) - kCie1931Y, 555 - 360);
    EXPECT_EQ(std::max_element(kCie1964Y, std::end(kCie1964Y)) - kCie1964Y, 557 - 360);
}

TEST(IlluminantTables, DaylightHasThePublishedSums) {
    EXPECT_NEAR(std::accumulate(std::begin(kDaylightS0), std::end(kDaylightS0), 0.0), 4163.20, 1e-3);
    EXPECT_NEAR(std::accumulate(std::begin(kDaylightS1), std::end(kDaylightS1), 0.0), 291.50, 1e-3);
    EXPECT_NEAR(std::accumulate(std::begin(kDaylightS2), std::end(kDaylightS2), 0.0), 160.10, 1e-3);
}

TEST(IlluminantTables, LightsHaveTheirPrintedValues) {
    struct Row {
        const char *name;
        Spectrum (*make)();
        std::int32_t wavelength;
        float value;
    };
    const Row rows[] = {
        {"B", illuminantBSpectrum, 515, 89.65F},
        {"B, 90.43 and two fifths of the way to 92.20", illuminantBSpectrum, 527, 91.14F},
        {"C, 12.90 and four fifths of the way to 17.20", illuminantCSpectrum, 364, 16.34F},
        {"C ends at 770", illuminantCSpectrum, 770, 58.2F},
        {"C has nothing at 771", illuminantCSpectrum, 771, 0},
        {"F1 is dark at 370", f1Spectrum, 370, 0},
        {"F1 half way to 5.4", f1Spectrum, 375, 2.7F},
        {"F1 half way from 0.2", f1Spectrum, 765, 0.1F},
        {"F2, 147.7 and a tenth of the way to 62.3", f2Spectrum, 661, 139.16F},
        {"F2 a tenth before its end", f2Spectrum, 789, 0.31F},
        {"F2 is dark from 790 on", f2Spectrum, 830, 0},
        {"D50_Local", d50LocalSpectrum, 780, 0.00021F},
    };
    for (const Row &row : rows)
        EXPECT_EQ(row.make()->GetSpectralValueAtWavelength(row.wavelength), row.value) << row.name;
    EXPECT_EQ(f1Spectrum()->start, 320);
}

}  // namespace
