#include <gtest/gtest.h>
#include <kvbase/color/kv_illuminant.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/univval/kv_uval_dict.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

#include "comma.h"
#include "temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr KV_ObserverType k2 = KV_Observer2Deg;
constexpr KV_ObserverType k10 = KV_Observer10Deg;

KV_Illuminant byWhite(XYZType white, KV_ObserverType observer) { return {&white, observer}; }

void put(KV_UValDict &dictionary, const char *key, std::int32_t value) {
    dictionary.DefineUVal(key, KV_UVAL_LONG, 0, nullptr);
    dictionary.SetValue(key, value, 0);
}

TEST(IlluminantStorage, DictionaryHasTypedEntries) {
    KV_Spectrum spectrum(-10, 20, 10);
    spectrum.data[3] = 0.25F;
    KV_Illuminant light(&spectrum, k10);
    KV_UValDict dictionary(0);
    light.IlluminantDataToDict(&dictionary);
    std::ostringstream text;
    dictionary.PrintDict(text, "");
    EXPECT_EQ(text.str(),
              "    |- ccTemperature => (Float)4800\n"
              "    |- illuminance => (Float)500\n"
              "    |- illuminantName => (String)CustomSpectral\n"
              "    |- illuminantType => (Long)21\n"
              "    |- observerType => (Long)2\n"
              "    |- spectrumData => (Float#4) {0,0,0,0.25,}\n"
              "    |- spectrumEnd => (ULong)20\n"
              "    |- spectrumNbr => (ULong)4\n"
              "    |- spectrumStart => (ULong)4294967286\n"
              "    |- spectrumStep => (ULong)10\n"
              "    |- xyzIlluminant => (Float#3) {0,0,0,}\n");

    light = byWhite({95, 100, 90}, k2);
    light = KV_Illuminant(&dictionary);
    EXPECT_EQ(light.GetSpectrum()->start, -10);
    EXPECT_EQ(light.GetSpectrum()->data[3], 0.25F);

    KV_Illuminant white = byWhite({95, 100, 90}, k2);
    white.SetIlluminantName(nullptr);
    white.IlluminantDataToDict(&dictionary);
    for (const auto &[key, value] :
         {std::pair{"spectrumStart", 0L}, {"spectrumEnd", 0L}, {"spectrumStep", 0L}, {"spectrumNbr", 1L}})
        EXPECT_EQ(dictionary.GetValue(key, 9L, 0), value) << key;
    EXPECT_EQ(dictionary.GetUValDimension("spectrumData"), 1);
    EXPECT_EQ(dictionary.GetUVal("illuminantName"), nullptr) << "of the light before";
    const KV_Illuminant back(&dictionary);
    EXPECT_EQ(back.GetIlluminantType(), KV_IT_Custom_XYZ);
    EXPECT_EQ(back.GetXYZ().Z, 90);
    EXPECT_EQ(back.GetSpectrum(), nullptr);
    EXPECT_STREQ(back.GetIlluminantName(), "unknown");

    try {
        light.IlluminantDataToDict(nullptr);
        FAIL();
    } catch (const KV_Exception &e) {
        KV_String message;
        EXPECT_EQ(e.GetErrorId(), KV_ERR_BAD_INPUT);
        EXPECT_STREQ(e.ToString(message), "Illuminant::IlluminantDataToDict: The dictionary is NULL.");
    }
}

TEST(IlluminantStorage, DictionaryGivesKinds) {
    struct Row {
        std::int32_t type;
        float temperature;  // that stands there; none for 0
        KV_IlluminantType made;
        float madeTemperature;
    };
    const Row rows[] = {
        {0, 3000, KV_IT_BlackBody, 2856}, {1, 3000, KV_IT_B, 4874},
        {3, 0, KV_IT_D50, 5000},          {3, 7777, KV_IT_D, 7777},
        {4, 7777, KV_IT_D50, 5000},       {6, 0, KV_IT_D93, 9300},
        {7, 3000, KV_IT_E, 6000},         {8, 0, KV_IT_BlackBody, 5000},
        {8, 3000, KV_IT_BlackBody, 3000}, {15, 0, KV_IT_D50, 5000},
        {20, 0, KV_IT_D50_Local, 5500},   {21, 0, KV_IT_Custom_Spectral, 5000},
        {22, 0, KV_IT_Custom_XYZ, 5000},  {-1, 0, KV_IT_D50, 5000},
    };
    for (const Row &row : rows) {
        KV_UValDict dictionary(0);
        put(dictionary, "illuminantType", row.type);
        if (row.temperature != 0)
            put(dictionary, "ccTemperature", static_cast<std::int32_t>(row.temperature));
        KV_Illuminant light(KV_IT_A, k10);
        light.SetDictionary(&dictionary);
        EXPECT_EQ(light.GetIlluminantType(), row.made) << row.type;
        EXPECT_EQ(light.GetColorTemperature(), row.madeTemperature) << row.type;
        EXPECT_EQ(light.GetStandardObserver(), k2) << row.type;
    }
}

TEST(IlluminantStorage, DictionaryDefaults) {
    KV_UValDict dictionary(0);
    KV_Illuminant light(&dictionary);
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_D50);
    EXPECT_EQ(light.GetXYZ().X, 96.42F);
    put(dictionary, "observerType", 2);
    put(dictionary, "illuminantType", 5);
    light.SetDictionary(&dictionary);
    light.SetDictionary(nullptr);
    EXPECT_EQ(light.GetXYZ().Z, 107.25F);
    EXPECT_EQ(KV_Illuminant(static_cast<KV_UValDict *>(nullptr)).GetXYZ().Z, 82.49F);

    // A custom spectrum of which only the grid is there has the samples of D50, as far as they go.
    put(dictionary, "illuminantType", 21);
    put(dictionary, "spectrumStep", 100);
    put(dictionary, "spectrumNbr", 3);
    light.SetDictionary(&dictionary);
    const float d50[] = {KV_Illuminant().GetSpectrum()->data[0], KV_Illuminant().GetSpectrum()->data[2]};
    ASSERT_EQ(light.GetSpectrum()->count, 6);
    EXPECT_EQ(light.GetSpectrum()->data[0], d50[0]);
    EXPECT_EQ(light.GetSpectrum()->data[2], d50[1]);
    EXPECT_EQ(light.GetSpectrum()->data[3], 0);

    put(dictionary, "illuminantType", 22);
    light.SetDictionary(&dictionary);
    EXPECT_TRUE(light.GetXYZ().X == 96.42F && light.GetXYZ().Y == 100 && light.GetXYZ().Z == 82.49F);
    EXPECT_NE(light.GetSpectrum(), nullptr) << "stays";

    KV_UValDict bare(0);
    put(bare, "illuminantType", 21);
    put(bare, "illuminance", 700);
    light.SetDictionary(&bare);
    light.IlluminantDataToDict(&bare);
    EXPECT_EQ(bare.GetValue("illuminance", 0L, 0), 500) << "whatever stood there";
    EXPECT_TRUE(light.GetSpectrum()->start == 360 && light.GetSpectrum()->end == 830 &&
                light.GetSpectrum()->count == 471);
}

TEST(IlluminantStorage, DictionaryOfASpectrumThatHasNoPlace) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    struct Row {
        const char *name;
        std::int32_t start, end, step, count;
        bool isGood;
    };
    const Row rows[] = {
        {"all of the grid", 380, 730, 10, 36, true},
        {"beyond the grid", 380, 730, 10, 37, false},
        {"one behind the end", 400, 705, 20, 17, true},
        {"two behind the end", 400, 705, 20, 18, false},
        {"fewer than the grid", 380, 730, 10, 2, true},
        {"below 0", 380, 730, 10, -1, false},
        {"more than the defaults", 300, 830, 1, 531, true},
        {"step 0", 380, 730, 0, 36, false},
        {"step below 0", 730, 380, -10, 36, false},
        {"ends before it starts", 730, 380, 10, 0, false},
        {"a million samples", 0, 999999, 1, 1, true},
        {"one more", 0, 1000000, 1, 1, false},
        {"the widest", kMin, kMax, 1, 1, false},
        {"no spectrum", 0, 0, 0, 1, true},
    };
    for (const Row &row : rows) {
        KV_UValDict dictionary(0);
        put(dictionary, "illuminantType", 21);
        put(dictionary, "observerType", 2);
        put(dictionary, "spectrumStart", row.start);
        put(dictionary, "spectrumEnd", row.end);
        put(dictionary, "spectrumStep", row.step);
        put(dictionary, "spectrumNbr", row.count);
        KV_Illuminant light(KV_IT_C, k2);
        try {
            light.SetDictionary(&dictionary);
            EXPECT_TRUE(row.isGood) << row.name;
        } catch (const KV_Exception &e) {
            EXPECT_FALSE(row.isGood) << row.name;
            EXPECT_EQ(e.GetErrorId(), KV_ERR_BAD_INPUT);
        }
        EXPECT_EQ(light.GetIlluminantType(), row.isGood ? KV_IT_Custom_Spectral : KV_IT_C) << row.name;
        EXPECT_EQ(light.GetStandardObserver(), row.isGood ? k10 : k2) << row.name;
    }
}

class IlluminantFile : public testing::Test {
protected:
    KV_FileSpec spec(const char *name) const {
        return KV_FileSpecFromNative(KV_String((folder.native() + "/" + name).c_str()));
    }
    void write(const char *name, const std::string &text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    static std::string contents(const fs::path &file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::string contents(const char *name) const { return contents(folder / name); }

    // The text of a file's failure, "none" without one.
    template <class Action>
    static std::string failure(const Action &action) {
        try {
            action();
        } catch (const KV_FileException &e) {
            KV_String text;
            return e.ToString(text).Ptr();
        }
        return "none";
    }

    TempFolder folder;
};

const char *const kNotValid = "File exception: InvalidFile;   Detail: Read failed because file is NOT valid";

// The file stands beside the tests, made by hand: 0.5 from 360 to 830 nm.
TEST_F(IlluminantFile, GoldenFile) {
    const fs::path golden = fs::path(KVBASE_TEST_DATA) / "illuminants" / "equal_energy.txt";
    fs::copy_file(golden, folder / "equal.energy.txt");
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    KV_Illuminant light(KV_IT_A, k10);
    light.Read(spec("equal.energy.txt"));
    light.Write(spec("written"));
    std::locale::global(before);
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_Custom_Spectral);
    EXPECT_STREQ(light.GetIlluminantName(), "equal.energy");
    EXPECT_EQ(light.GetStandardObserver(), k10);
    EXPECT_NEAR(light.GetXYZ().X, 100, 1e-4);
    EXPECT_EQ(light.GetSpectrum()->data[20], 1.23457e6F);
    EXPECT_EQ(contents("written"), contents(golden));
    light.Read(spec("written"));
    EXPECT_STREQ(light.GetIlluminantName(), "written");
}

TEST_F(IlluminantFile, OtherTexts) {
    constexpr float kNotValidAt = -1;
    const std::pair<const char *, float> rows[] = {
        // what stands behind the first word, and the second of three samples
        {"0 400 420 10 3 BEGIN 1 2 3 END", 2},
        {"0 400 420 10 3 BEGIN_DATA_OF_21_CHAR 1 2 3 END_DATA_OF_21_CHARS_", 2},
        {"0 400 420 10 3 BEGIN_DATA_OF_22_CHARS 1 2 3 END", kNotValidAt},
        {"0 400 420 10 3 B 1 2 3 END_DATA_OF_22_CHARACT", kNotValidAt},
        {"", kNotValidAt},
        {"0 400 420 10 3 BEGIN 1", 0},
        {"0 400 420 10 3 BEGIN 1 x 3 END", 0},
        {"0 400 420 10 3 BEGIN 1 1e39 3 END", 0},
        {"x 400 420 10 3 BEGIN 1 2 3 END", kNotValidAt},
        {"0 400 420 10 2147483648 BEGIN 1 2 3 END", kNotValidAt},
        {"0 400 420 10 1000001 BEGIN 1 2 3 END", kNotValidAt},
        {"0 400 420 10 -3 BEGIN 1 2 3 END", kNotValidAt},
        {"0 400 420 10 0 BEGIN END", kNotValidAt},
        {"0 400 420 0 3 BEGIN 1 2 3 END", kNotValidAt},
        {"0 400 420 -10 3 BEGIN 1 2 3 END", kNotValidAt},
        {"0 420 400 10 3 BEGIN 1 2 3 END", kNotValidAt},
        {"0 -2147483648 2147483647 1 3 BEGIN 1 2 3 END", 2},
    };
    for (const auto &[text, second] : rows) {
        write("light.txt", std::string("CMS_ILLUMINANT_CUSTOM ") + text);
        KV_Illuminant light(KV_IT_C, k10);
        const std::string seen = failure([&] { light.Read(spec("light.txt")); });
        if (second != kNotValidAt) {
            EXPECT_EQ(seen, "none") << text;
            ASSERT_EQ(light.GetSpectrum()->count, 3) << text;
            EXPECT_EQ(light.GetSpectrum()->data[1], second) << text;
        } else {
            EXPECT_EQ(seen, kNotValid) << text;
            EXPECT_STREQ(light.GetIlluminantName(), "C") << text;
            EXPECT_EQ(light.GetXYZ().Z, 116.08F) << text;
        }
    }
    for (const char *word : {"", "cms_illuminant_custom", "CMS_ILLUMINANT_CUSTOMS", "CMS_ILLUMINANT"}) {
        write("light.txt", std::string(word) + " 0 400 420 10 3 BEGIN 1 2 3 END");
        EXPECT_EQ(failure([&] { KV_Illuminant().Read(spec("light.txt")); }), kNotValid) << word;
    }
}

TEST_F(IlluminantFile, FilesThatCannotBeHad) {
    KV_Illuminant light(KV_IT_C, k2);
    EXPECT_EQ(failure([&] { light.Read(spec("none.txt")); }),
              "File exception: OpenRdError;   Detail: Read failed because file is NOT open");
    EXPECT_EQ(failure([&] { light.Write(spec("no folder/light.txt")); }),
              "File exception: OpenWrError;   Detail: Write failed because file is NOT open");
    EXPECT_EQ(light.GetIlluminantType(), KV_IT_C);
}

TEST_F(IlluminantFile, WhatAFileCannotHoldIsNotWritten) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    KV_Spectrum none, infinite(400, 420, 10), noStep(400, 420, 10), tooMany(0, 1000000, 1);
    infinite.data[1] = kInfinity;
    noStep.step = 0;
    const KV_Illuminant lights[] = {
        byWhite({95, 100, 90}, k2), {&none, k2}, {&infinite, k2}, {&noStep, k2}, {&tooMany, k2},
        {KV_IT_D, kInfinity, k2}};
    write("kept.txt", "kept");
    for (KV_Illuminant light : lights) {
        for (const char *name : {"new.txt", "kept.txt"}) {
            EXPECT_EQ(
                failure([&] { light.Write(spec(name)); }),
                "File exception: WriteError;   Detail: Write failed because the illuminant has no spectrum "
                "that a file can hold");
        }
    }
    EXPECT_FALSE(fs::exists(folder / "new.txt"));
    EXPECT_EQ(contents("kept.txt"), "kept");
}

#if !defined(_WIN32)  // which has no such file
TEST_F(IlluminantFile, AFullDiskIsReported) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    KV_Illuminant light(KV_IT_C, k2);
    EXPECT_EQ(failure([&] { light.Write(KV_FileSpecFromNative("/dev/full")); }),
              "File exception: WriteError;   Detail: Write failed because file could not be written");
}
#endif

}  // namespace
