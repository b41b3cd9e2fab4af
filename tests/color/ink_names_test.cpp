#include <gtest/gtest.h>
#include <kvbase/color/kv_ink_names.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

KV_WString wide(const std::string &text) { return {text.begin(), text.end()}; }

// "Cyan Black" as a list.
std::vector<KV_WString> wideWords(const std::string &text) {
    std::istringstream stream(text);
    std::vector<KV_WString> words;
    for (std::string word; stream >> word;)
        words.push_back(wide(word));
    return words;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

TEST(InkNames, ChannelsHaveNames) {
    struct Row {
        KV_ColorSpace space;
        std::int32_t first;
        std::vector<const char *> names;  // of the channels from first on
    };
    const Row rows[] = {
        {KV_CS_LAB, -1, {"", "CIE-L", "CIE-A", "CIE-B", "", "UndefinedStiName"}},
        {KV_CS_RGBK, 0, {"Red", "Green", "Blue", "Black", "", "UndefinedStiName"}},
        {KV_CS_GRAY, -1, {"Black", "Black", "Black", "Black"}},
        {KV_CS_CMY, -1, {"", "Cyan", "Magenta", "Yellow", "Black", "PC_5"}},
        {KV_CS_CMYK5, 7, {"PC_8", "PC_9", "", "UndefinedStiName"}},
        {KV_CS_CMYK1, 8, {"PC_9", "UndefinedStiName"}},
        {KV_CS_CLR1, 15, {"COLOR_16", "UndefinedStiName"}},
        {KV_CS_CLR16, 15, {"COLOR_16", "", "UndefinedStiName"}},
        {KV_CS_CMYKBV, 3, {"Black", "Blue", "Violet", "", "UndefinedStiName"}},
        {KV_CS_XYZ, -1, {"UndefineStiName", "UndefineStiName"}},
        {static_cast<KV_ColorSpace>(97), 1, {"UndefineStiName"}},
    };
    for (const Row &row : rows) {
        for (std::size_t i = 0; i < row.names.size(); ++i) {
            const std::int32_t index = row.first + static_cast<std::int32_t>(i);
            EXPECT_EQ(ColorSpaceStiName(row.space, index), row.names[i]) << row.space << ' ' << index;
        }
    }
}

TEST(InkNames, SpacesHaveLists) {
    const std::pair<KV_ColorSpace, const char *> rows[] = {
        {KV_CS_RGB, "Red Green Blue"},
        {KV_CS_GRAY_BIZ, "Black"},
        {KV_CS_CMY, "Cyan Magenta Yellow"},
        {KV_CS_CLR2, "COLOR_1 COLOR_2"},
        {KV_CS_LAB, ""},
        {KV_CS_RGBK, ""},
        {KV_CS_HSV, ""},
        {KV_CS_CMYK1, ""},
        {KV_CS_DIM2, ""},
    };
    for (auto [space, names] : rows)
        EXPECT_EQ(joined(ColorSpaceStiNames(space, {})), names) << space;
}

TEST(InkNames, NamesMakeUpSpaces) {
    for (int i = KV_CS_CMYKO; i <= KV_CS_CMYKOGBRV; ++i) {
        auto space = static_cast<KV_ColorSpace>(i);
        std::vector<KV_WString> names = wideWords(joined(ColorSpaceStiNames(space, {})));
        EXPECT_EQ(StiNamesColorSpace(names), space);
        std::reverse(names.begin(), names.end());
        EXPECT_EQ(StiNamesColorSpace(names), space) << "in any order";
    }
    const std::pair<const char *, KV_ColorSpace> rows[] = {
        {"", KV_CS_UNKNOWN},
        {"Black", KV_CS_GRAY},
        {"black", KV_CS_UNKNOWN},
        {"Cyan Black", KV_CS_UNKNOWN},
        {"Blue Red Green", KV_CS_RGB},
        {"Red Red Red", KV_CS_RGB},
        {"Cyan Magenta Yellow", KV_CS_UNKNOWN},
        {"Black Yellow Cyan Magenta", KV_CS_CMYK},
        {"Red Green Blue Black", KV_CS_UNKNOWN},
        {"Cyan Magenta Yellow Black Red", KV_CS_UNKNOWN},
        {"Cyan Magenta Yellow Black White", KV_CS_UNKNOWN},
        {"Cyan Cyan Yellow Black Orange", KV_CS_CMYKO},
        {"Cyan Magenta Yellow Black Orange White", KV_CS_UNKNOWN},
        {"Cyan Magenta Yellow Black Orange Orange", KV_CS_UNKNOWN},
        {"Cyan Magenta Yellow Black Black Orange", KV_CS_UNKNOWN},
        {"Cyan Magenta Yellow Black Orange Green Blue Red Violet Violet", KV_CS_UNKNOWN},
    };
    for (const auto &[names, space] : rows)
        EXPECT_EQ(StiNamesColorSpace(wideWords(names)), space) << names;
}

// Solids of hues in degrees; cyan, magenta, yellow first.
std::vector<float> solidsOf(const std::vector<double> &hues) {
    std::vector<float> solids;
    for (double hue : hues) {
        const double angle = hue * 3.14159265358979 / 180;
        const double lab[] = {50, 60 * std::cos(angle), 60 * std::sin(angle)};
        solids.insert(solids.end(), std::begin(lab), std::end(lab));
    }
    return solids;
}

TEST(InkNames, FurtherInksAreClassifiedByHue) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        const char *name;
        KV_ColorSpace space;
        std::vector<double> hues;
        KV_ColorSpace named;  // as before for none
        const char *further;
    };
    const Row rows[] = {
        {"orange", KV_CS_CMYK1, {235, 355, 95, 10, 60}, KV_CS_CMYKO, "Orange"},
        {"behind 0 degrees", KV_CS_CMYK1, {235, 355, 95, 0, 359}, KV_CS_CMYKO, "Orange"},
        {"green", KV_CS_CMYK1, {235, 355, 95, 0, 160}, KV_CS_CMYKG, "Green"},
        {"blue", KV_CS_CMYK1, {235, 355, 95, 0, 300}, KV_CS_CMYKB, "Blue"},
        {"as cyan", KV_CS_CMYK1, {235, 355, 95, 0, 235}, KV_CS_CMYKG, "Green"},
        {"as magenta", KV_CS_CMYK1, {235, 355, 95, 0, 355}, KV_CS_CMYKB, "Blue"},
        {"as yellow", KV_CS_CMYK1, {235, 355, 95, 0, 95}, KV_CS_CMYKO, "Orange"},
        {"no sector", KV_CS_CMYK1, {235, 355, 95, 0, kNaN}, KV_CS_CMYK1, ""},
        {"red, then orange", KV_CS_CMYK2, {235, 355, 95, 0, 5, 35}, KV_CS_CMYKOR, "Red Orange"},
        {"orange, then red", KV_CS_CMYK2, {235, 355, 95, 0, 35, 5}, KV_CS_CMYKOR, "Orange Red"},
        {"as far", KV_CS_CMYK2, {235, 355, 95, 0, 35, 35}, KV_CS_CMYKOR, "Orange Red"},
        {"red on the other side of 0", KV_CS_CMYK2, {235, 340, 95, 0, 3, 350}, KV_CS_CMYKOR, "Orange Red"},
        {"blue, then violet", KV_CS_CMYK2, {235, 355, 95, 0, 280, 320}, KV_CS_CMYKBV, "Blue Violet"},
        {"violet, as far", KV_CS_CMYK2, {235, 355, 95, 0, 280, 280}, KV_CS_CMYKBV, "Violet Blue"},
        {"not in the order of the letters",
         KV_CS_CMYK2,
         {235, 355, 95, 0, 300, 60},
         KV_CS_CMYKOB,
         "Blue Orange"},
        {"two greens", KV_CS_CMYK2, {235, 355, 95, 0, 150, 170}, KV_CS_CMYK2, ""},
        {"three", KV_CS_CMYK3, {235, 355, 95, 0, 150, 320, 280}, KV_CS_CMYKGBV, "Green Violet Blue"},
        {"three warm", KV_CS_CMYK3, {235, 355, 95, 0, 10, 20, 30}, KV_CS_CMYK3, ""},
        {"no space of these", KV_CS_CMYK4, {235, 355, 95, 0, 10, 20, 150, 150}, KV_CS_CMYK4, ""},
        {"five",
         KV_CS_CMYK5,
         {235, 355, 95, 0, 150, 320, 10, 280, 60},
         KV_CS_CMYKOGBRV,
         "Green Violet Red Blue Orange"},
        {"primaries in another order", KV_CS_CMYK1, {95, 355, 235, 0, 60}, KV_CS_CMYKO, "Orange"},
        {"the same with two inks", KV_CS_CMYK2, {95, 355, 235, 0, 60, 300}, KV_CS_CMYK2, ""},
    };
    for (const Row &row : rows) {
        KV_ColorSpace space = row.space;
        const std::string names = joined(ColorSpaceStiNames(space, solidsOf(row.hues)));
        EXPECT_EQ(space, row.named) << row.name;
        EXPECT_EQ(names, *row.further ? "Cyan Magenta Yellow Black " + std::string(row.further) : "")
            << row.name;
    }
    KV_ColorSpace space = KV_CS_CMYK1;
    std::vector<float> solids = solidsOf({235, 355, 95, 10, 60});
    solids.pop_back();
    EXPECT_TRUE(ColorSpaceStiNames(space, solids).empty()) << "a float is missing";
}

// Whatever the hues: the names that come out are those of the space that comes out.
TEST(InkNames, ClassificationAgreesWithTheNames) {
    std::mt19937 random(1931);
    std::uniform_real_distribution<double> hue(0, 360);
    const KV_ColorSpace generic[] = {KV_CS_CMYK1, KV_CS_CMYK2, KV_CS_CMYK3, KV_CS_CMYK4, KV_CS_CMYK5};
    int found = 0;
    for (int run = 0; run < 5000; ++run) {
        const auto further = static_cast<std::size_t>(run % 5) + 1;
        std::vector<double> hues = {235, 355, 95};
        if (run % 2 == 0) hues = {hue(random), hue(random), hue(random)};
        while (hues.size() < 4 + further)
            hues.push_back(hue(random));
        KV_ColorSpace space = generic[further - 1];
        const std::vector<std::string> names = ColorSpaceStiNames(space, solidsOf(hues));
        EXPECT_EQ(names.empty(), space == generic[further - 1]);
        if (names.empty()) continue;
        EXPECT_EQ(StiNamesColorSpace(wideWords(joined(names))), space) << joined(names);
        ++found;
    }
    EXPECT_GT(found, 1000);
}

TEST(InkNames, SubModels) {
    const std::pair<KV_ColorSpace, const char *> rows[] = {
        // C, M, Y, K, and numbers for further channels
        {KV_CS_CMYK, "CMYK"},
        {KV_CS_CMYKO, "CMYK 4MYK"},
        {KV_CS_CMYKG, "CMYK C4YK"},
        {KV_CS_CMYKB, "CMYK CM4K"},
        {KV_CS_CMYKOR, "CMYK 4M5K 45YK"},
        {KV_CS_CMYKBV, "CMYK CM4K 5M4K"},
        {KV_CS_CMYKGBV, "CMYK C4YK CM5K 6M5K"},
        {KV_CS_CMYKOBRV, "CMYK 4MYK CM5K 4M6K 7M5K"},
        {KV_CS_CMYKOGBRV, "CMYK 4MYK C5YK CM6K 4M7K 8M6K"},
        {KV_CS_CMYK1, ""},
        {KV_CS_RGBK, ""},
        {KV_CS_CMY, ""},
    };
    for (const auto &[space, expected] : rows) {
        std::vector<std::vector<std::int32_t>> models = {{7}};
        ColorSpaceModelInfo(space, models);
        std::vector<std::string> texts;
        for (const auto &model : models) {
            std::string &text = texts.emplace_back();
            for (std::int32_t channel : model)
                text += "CMYK45678"[channel];
        }
        EXPECT_EQ(joined(texts), expected) << space;
    }
}

TEST(InkNames, CharactersAreReplaced) {
    const char *rows[][4] = {// text, from, to, after; null for a refusal
                             {"CMYK", "CK", "KC", "KMYC"},
                             {"abba", "aa", "xy", "xbbx"},
                             {"abc", "", "", "abc"},
                             {"abc", "a", "", nullptr}};
    for (const auto &[before, from, to, after] : rows) {
        std::string text = before;
        KV_WString wideText = wide(text);
        EXPECT_EQ(ReplaceShortNames(text, from, to), after != nullptr) << before;
        EXPECT_EQ(text, after != nullptr ? after : before);
        EXPECT_EQ(ReplaceShortWNames(wideText, wide(from), wide(to)), after != nullptr) << before;
        EXPECT_EQ(wideText, wide(text));
    }
}

TEST(InkNames, Filters) {
    const char *inks[] = {"Cyan Green", "Magenta Blue Violet", "Yellow Orange Red", "Black"};
    for (std::int32_t filter = 0; filter < 4; ++filter) {
        std::istringstream stream(inks[filter]);
        for (std::string ink; stream >> ink;)
            EXPECT_EQ(Ink2Filter(KV_CS_UNKNOWN, 0, ink), filter) << ink;
    }
    std::string name = "cyan";
    EXPECT_EQ(Ink2Filter(KV_CS_CMYK, 0, name), -1);
    name.clear();
    EXPECT_EQ(Ink2Filter(KV_CS_CMYKO, 4, name), 2);
    EXPECT_EQ(name, "Orange");
}

}  // namespace
