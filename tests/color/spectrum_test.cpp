#include <gtest/gtest.h>
#include <kvbase/color/kv_spectrum.h>

#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "runtime/trace_capture.h"

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(Spectrum, GridGivesTheNumberOfSamples) {
    struct Row {
        std::int32_t start, end, step, count;
    };
    const Row rows[] = {
        {380, 730, 10, 36}, {400, 705, 20, 17},  {400, 400, 7, 1}, {-20, 20, 10, 5},
        {780, 380, 10, 0},  {780, 380, -10, 41}, {380, 730, 0, 0}, {kMin, kMin + 6, 3, 3},
    };
    for (const Row &row : rows) {
        const KV_Spectrum spectrum(row.start, row.end, row.step);
        EXPECT_EQ(spectrum.count, row.count) << row.start << ' ' << row.end << ' ' << row.step;
        EXPECT_EQ(spectrum.end, row.end) << "also where the last sample lies behind it";
        EXPECT_EQ(spectrum.data == nullptr, row.count == 0);
    }
    EXPECT_THROW(KV_Spectrum(kMin, kMax, 1), std::bad_alloc);
}

TEST(Spectrum, ValuesBetweenSamplesAreLinear) {
    float samples[] = {1, 2, 4, 8};
    struct Row {
        const char *name;
        std::int32_t start, end, step, count, wavelength;
        float value;
    };
    const Row rows[] = {
        {"below", 380, 386, 2, 4, 379, 0},
        {"first", 380, 386, 2, 4, 380, 1},
        {"middle", 380, 386, 2, 4, 383, 3},
        {"last", 380, 386, 2, 4, 386, 8},
        {"above", 380, 386, 2, 4, 387, 0},
        {"a quarter", 400, 460, 20, 4, 425, 2.5F},
        {"to the sample behind the end", 400, 450, 20, 4, 450, 6},
        {"behind the end, before the last sample", 400, 450, 20, 4, 451, 0},
        {"a sample that is missing", 380, 390, 2, 4, 388, 0},
        {"half of it missing", 380, 390, 2, 4, 387, 0},
        {"step 0", 380, 386, 0, 4, 380, 0},
        {"step below 0", 380, 386, -2, 4, 386, 0},
        {"a count below 0", 380, 386, 2, -4, 380, 0},
        {"the widest grid", kMin, kMax, 1, 4, kMin + 3, 8},
        {"far behind the samples", kMin, kMax, 1, 4, kMax, 0},
        {"the widest step", kMin, kMax, kMax, 4, kMax - 1, 4},
    };
    for (const Row &row : rows) {
        KV_Spectrum spectrum;
        spectrum.SetSpectrum(row.start, row.end, row.step, row.count, samples);
        EXPECT_EQ(spectrum.GetSpectralValueAtWavelength(row.wavelength), row.value) << row.name;
    }
    EXPECT_EQ(KV_Spectrum().GetSpectralValueAtWavelength(0), 0);
}

std::vector<float> samplesOf(const KV_Spectrum &spectrum) {
    return spectrum.data == nullptr ? std::vector<float>()
                                    : std::vector<float>(spectrum.data, spectrum.data + spectrum.count);
}

TEST(Spectrum, SamplesAreCopiedInFull) {
    std::vector<float> values = {1, 2, 3};
    KV_Spectrum source;
    source.SetSpectrum(400, 420, 10, 3, values);
    KV_Spectrum copy(source);
    source.data[0] = 7;
    EXPECT_EQ(samplesOf(copy), values);

    copy.SetSpectrum(401, 402, 1, 2, copy.data + 1);
    EXPECT_EQ(samplesOf(copy), (std::vector<float>{2, 3})) << "its own samples";
    copy.SetSpectrum(400, 440, 10, 5, values);
    EXPECT_EQ(samplesOf(copy), (std::vector<float>{1, 2, 3, 0, 0})) << "too few floats";

    KV_Spectrum &self = copy;
    copy = self;
    EXPECT_EQ(copy.count, 5);
    copy.MakeCopyOf(nullptr);
    EXPECT_EQ(copy.count, 5);
    copy.MakeCopyOf(&source);
    EXPECT_EQ(samplesOf(copy), (std::vector<float>{7, 2, 3}));

    KV_Spectrum moved(std::move(copy));
    EXPECT_EQ(samplesOf(moved), (std::vector<float>{7, 2, 3}));
    moved = std::move(source);
    EXPECT_EQ(samplesOf(moved), (std::vector<float>{7, 2, 3}));

    std::vector<float> none;
    moved.SetSpectrum(400, 420, 10, 3, none);
    EXPECT_EQ(moved.data, nullptr);
    EXPECT_EQ(moved.count, 3);
    copy = moved;
    EXPECT_EQ(copy.data, nullptr);
}

TEST(Spectrum, ConstructionIsTraced) {
    TraceCapture trace(0x100);
    const KV_Spectrum spectrum(380, 730, 10);
    EXPECT_EQ(trace.Take(), "module KvBaseTrac : Constructing KV_Spectrum()\n");
}

}  // namespace
