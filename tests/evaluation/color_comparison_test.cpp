#include <gtest/gtest.h>
#include <kvbase/color/kv_gamut_color.h>
#include <kvbase/evaluation/kv_color_comparison.h>
#include <kvbase/evaluation/kv_gamut_comparison.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
using Limits = std::vector<float>;

struct GradeCase {
    const char *name;
    float dE, dH;
    Limits limitsE, limitsH;
    char grade;
};
const GradeCase kGrades[] = {
    {"no limits", 1e9F, 1e9F, {}, {}, 'A'},
    {"at the first", 1, 0, {1, 2, 3}, {}, 'A'},
    {"above it", 1.01F, 0, {1, 2, 3}, {}, 'B'},
    {"at the last", 3, 0, {1, 2, 3}, {}, 'C'},
    {"above the last", 3.01F, 0, {1, 2, 3}, {}, 'X'},
    {"one limit", 2, 0, {2}, {}, 'A'},
    {"the worse of two", 0, 2.5F, {1, 2, 3}, {1, 2, 3}, 'C'},
    {"a shorter list never gives A", 0, 0, {1, 2, 3}, {1}, 'C'},
    {"nor hides an X", 9, 0, {1, 2, 3}, {1}, 'X'},
    {"in any order", 1.5F, 0, {3, 1, 2}, {}, 'B'},
    {"not-a-number", kNaN, 0, {1, 2}, {}, 'X'},
    {"more limits than characters", 199.5F, 0, Limits(200, 200), {1}, '\x7f'},
};

TEST(ColorCheck, GradesByTheFewestThresholds) {
    for (const GradeCase &c : kGrades) {
        KV_ColorCheck check;
        check.dE.diff = c.dE, check.dE.tolerances = c.limitsE;
        check.dH.diff = c.dH, check.dH.tolerances = c.limitsH;
        EXPECT_EQ(check.CheckTols(), c.grade) << c.name;
        EXPECT_EQ(check.grade, c.grade) << c.name;
    }
}

TEST(ColorCheck, MaximaKeepNotANumbers) {
    KV_ColorCheck most, other;
    other.dL.diff = 2, other.db.diff = kNaN;
    most *= other;
    other.dL.diff = 1, other.db.diff = 5;
    most *= other;
    EXPECT_EQ(most.dL.diff, 2);
    EXPECT_TRUE(std::isnan(most.db.diff));
}

struct ClassCase {
    float stim[4];
    const char *name, *group;  // null: as it was
};
const ClassCase kClasses[] = {
    {{0, 0, 0, 0}, "Substrate", "Substrate"},
    {{0.01F, 0, 0, 0}, "Substrate", "Substrate"},
    {{100, 0, 0, 0}, "Solid Cyan", "Solid"},
    {{0, 99.995F, 0, 0}, "Solid Magenta", "Solid"},
    {{100, 100, 0, 0}, "Overprint Blue", "Solid"},
    {{0, 0, 100, 0}, "Solid Yellow", "Solid"},
    {{100, 0, 100, 0}, "Overprint Green", "Solid"},
    {{0, 100, 100, 0}, "Overprint Red", "Solid"},
    {{0, 0, 0, 100}, "Solid Black", "Black"},
    {{100, 100, 100, 0}, nullptr, nullptr},
    {{100, 0, 0, 100}, nullptr, nullptr},
    {{100, 100, 100, 100}, nullptr, nullptr},
    {{50, 50, 50, 0}, "Tertiary Color", "Tertiary Color"},
    {{100, 100, 99.98F, 0}, "Tertiary Color", "Tertiary Color"},
    {{0, 20, 20, 100}, "Tertiary Color", "Tertiary Color"},
    {{0, 0, 0, 0.02F}, "Black Tint", "Black"},
    {{50, 0, 0, 50}, "Mid Tone", "Mid Tone"},
    {{99, 0, 0, 0}, "Mid Tone", "Mid Tone"},
};

TEST(Classify, NamesWhatTheInksTell) {
    KV_ColorComparison comparison;
    for (const ClassCase &c : kClasses)
        for (const char *group : {"Unknown", "Greys"}) {
            KV_ColorPatch patch;
            patch.name = "A1", patch.group = group;
            std::copy(c.stim, c.stim + 4, patch.stim);
            comparison.Classify(&patch);
            const bool named = c.name && patch.group != "Greys";
            EXPECT_EQ(patch.name, named ? c.name : "A1") << c.stim[0] << ' ' << c.stim[1];
            EXPECT_EQ(patch.group, named ? c.group : group) << c.stim[2] << ' ' << c.stim[3];
        }
}

struct TolCase {
    const char *name;
    Limits patch, group, all, expected;
    float step;
};
const TolCase kTols[] = {
    {"the tighter by place", {1, 2, 3}, {2, 1, 4}, {}, {1, 1, 3}, 0.5F},
    {"none of its own", {}, {2, 4}, {3, 3}, {2, 3}, 0.25F},
    {"only those of all", {}, {}, {3, 3}, {3, 3}, 0.25F},
    {"a longer list stays, and its step", {1, 2, 3}, {0.5F, 0.5F}, {}, {1, 2, 3}, 0.1F},
    {"a shorter one goes on", {9}, {2, 3}, {}, {2}, 0.5F},
    {"no limits at all", {}, {}, {}, {}, 0.1F},
};

TEST(SetTols, LetsTheTighterLimitWin) {
    for (const TolCase &c : kTols) {
        KV_ColorComparison comparison;
        comparison.stats.resize(3);
        const char *const names[] = {"Solid", "CtrlStrip", "Black"};
        const Limits lists[] = {c.group, c.all, {0}};
        for (std::size_t i = 0; i < 3; ++i) {
            comparison.stats[i].name = names[i];
            comparison.stats[i].max.dH.tolerances = lists[i];
            comparison.stats[i].max.dH.step = i == 0 ? 0.5F : 0.25F;
        }
        KV_ColorPatch patch;
        patch.group = "Solid";
        patch.check.dH.tolerances = c.patch;
        comparison.SetTols(&patch);
        EXPECT_EQ(patch.check.dH.tolerances, c.expected) << c.name;
        EXPECT_EQ(patch.check.dH.step, c.step) << c.name;
    }
}

// One stat of all patches, without limits.
KV_ColorComparison withStat(const char *name) {
    KV_ColorComparison comparison;
    comparison.stats.resize(1);
    comparison.stats[0].name = name;
    return comparison;
}

struct PercentileCase {
    const char *name;
    std::uint32_t count;
    Limits list;
    float expected;
};
const PercentileCase kPercentiles[] = {
    {"one value", 1, {3}, 3},
    {"between two", 2, {2, 1}, 2},  // 1.95
    {"twenty-one: the twentieth",
     21,
     {21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1},
     20},
    {"of a longer list the smallest", 2, {9, 1, 2, 7}, 2},
    {"of a shorter list all", 100, {4, 2}, 3.9F},
    {"of none", 5, {}, 0},
    {"not-a-numbers come last", 3, {kNaN, 1, 2, 5}, 4.7F},
};

TEST(CalcStats, TakesThe95thPercentile) {
    for (const PercentileCase &c : kPercentiles) {
        KV_ColorComparison comparison = withStat("CtrlStrip");
        comparison.stats[0].count = c.count;
        Limits list = c.list;
        comparison.CalcStats(list);
        EXPECT_NEAR(comparison.stats[0].p95.dE.diff, c.expected, 1e-5) << c.name;
    }
}

struct Measured {
    std::string name, group;
    float stim[8], ref[3], meas[3];
};

void add(KV_ColorComparison &comparison, Measured m, Limits &list) {
    comparison.AddPatch(m.name, m.group, m.stim, m.ref, m.meas, list);
}

TEST(AddPatch, MeetsThePatchOfTheSameValuesAgain) {
    KV_ColorComparison comparison = withStat("CtrlStrip");
    Limits list;
    add(comparison, {"first", "Greys", {10, 20, 30, 0}, {50, 0, 0}, {50, 3, 4}}, list);
    add(comparison, {"second", "Other", {10, 20, 30, -0.0F}, {50, 0, 0}, {53, 0, 4}}, list);
    ASSERT_EQ(comparison.patches.size(), 1U);
    EXPECT_EQ(comparison.patches[0].name, "first");
    EXPECT_EQ(comparison.patches[0].group, "Greys");
    EXPECT_EQ(comparison.patches[0].check.dL.diff, 3);
    EXPECT_EQ(comparison.stats[0].count, 2U);
    EXPECT_EQ(list, (Limits{5, 5}));
    comparison.CalcStats(list);
    EXPECT_EQ(comparison.stats[0].av.dC.diff, 4.5F);
    EXPECT_EQ(comparison.stats[0].max.dC.diff, 5);

    // A second round with the same template; a not-a-number equals nothing, also itself.
    comparison.ClearDiffs();
    EXPECT_EQ(comparison.stats[0].count, 0U);
    EXPECT_EQ(comparison.stats[0].max.dC.diff + comparison.patches[0].check.dE.diff, 0);
    for (int i = 0; i < 2; ++i)
        add(comparison, {"NaN", "Greys", {kNaN, 0, 0, 0}, {}, {}}, list);
    EXPECT_EQ(comparison.patches.size(), 3U);
}

TEST(AddPatch, TakesColorsOfItsOwnList) {
    KV_ColorComparison comparison;
    Limits list;
    add(comparison, {"a", "g", {1, 2, 3, 4}, {50, 0, 0}, {60, 3, 4}}, list);
    comparison.patches.shrink_to_fit();
    KV_ColorPatch *patch = &comparison.patches[0];
    comparison.AddPatch("a", "g", patch->stim, patch->meas, patch->ref, list);  // exchanged
    EXPECT_TRUE(patch->ref[0] == 60 && patch->meas[0] == 50);
    comparison.AddPatch("b", "g", patch->stim + 1, patch->ref, patch->meas,
                        list);  // a new one moves the list
    EXPECT_TRUE(comparison.patches[1].stim[0] == 2 && comparison.patches[1].ref[0] == 60);
}

TEST(AddPatch, NeverWritesBehindTheEightValues) {
    for (const KV_ColorSpace space : {KV_CS_CLR8, KV_CS_CLR16, KV_CS_CMYKOGBRV}) {
        KV_ColorComparison comparison;
        comparison.stispace = space;
        std::vector<float> stim(16, 0), list;
        float lab[] = {50, 0, 0};
        for (int i = 0; i < 2; ++i) {
            stim[8] = static_cast<float>(50 * i);  // they differ in the ninth channel alone
            comparison.AddPatch("n", "Unknown", stim.data(), lab, lab, list);
        }
        const bool whole = space == KV_CS_CLR8;
        ASSERT_EQ(comparison.patches.size(), whole ? 1U : 2U);
        EXPECT_EQ(comparison.patches[0].group, whole ? "Substrate" : "Unknown");
        EXPECT_EQ(comparison.patches[0].ref[0], 50);
        EXPECT_EQ(comparison.FindPatch(stim.data()) != nullptr, whole);
        comparison.AddPatches(1, &comparison.patches[0].name, &comparison.patches[0].group, stim.data(), lab,
                              lab, list);
        EXPECT_EQ(comparison.patches.size(), whole ? 1U : 3U);
    }
}

TEST(AddSpotColorPatch, CountsInItsOwnGroupAlone) {
    KV_ColorComparison comparison = withStat("CtrlStrip");
    comparison.stats.push_back(comparison.stats[0]);
    comparison.stats[1].name = "Spot";
    comparison.stats[1].max.dE.tolerances = {1};
    Limits list;
    float stim[] = {100, 77}, ref[] = {50, 0, 0}, meas[] = {53, 0, 4};
    comparison.AddSpotColorPatch("S", "Spot", stim, ref, meas, false, list);
    EXPECT_TRUE(comparison.grade == 'A' && comparison.patches[0].check.grade == 'A');
    comparison.AddSpotColorPatch("S", "Spot", stim, ref, meas, true, list);
    EXPECT_TRUE(comparison.grade == 'X' && comparison.patches[1].check.grade == 'X');
    EXPECT_EQ(comparison.patches[1].stim[1], 0);
    EXPECT_EQ(comparison.stats[0].count, 0U);
    EXPECT_EQ(comparison.stats[1].count, 2U);
    EXPECT_EQ(comparison.stats[1].gamutCount, 0U);
    EXPECT_EQ(comparison.stats[1].av.dL.diff, 6);
    EXPECT_EQ(list, (Limits{5, 5}));
}

bool samePatch(const KV_ColorPatch &a, const KV_ColorPatch &b) {
    return a.name == b.name && a.group == b.group && std::memcmp(a.stim, b.stim, sizeof a.stim) == 0 &&
           std::memcmp(a.meas, b.meas, sizeof a.meas) == 0 && a.check.dE.diff == b.check.dE.diff;
}

// Few different values, so that most patches are met again, and lists that were edited in between.
TEST(AddPatches, GivesWhatSingleCallsGive) {
    std::mt19937 random(4);
    const float values[] = {0, -0.0F, 50, 100, kNaN};
    std::discrete_distribution<int> pick({10, 3, 10, 10, 0.2});
    KV_ColorComparison one = withStat("CtrlStrip");
    Limits oneList, allList;
    for (int round = 0; round < 20; ++round) {
        std::vector<std::string> names, groups(40, "Unknown");
        Limits stim, ref, meas;
        for (int i = 0; i < 40; ++i) {
            names.push_back(std::to_string(round) + '-' + std::to_string(i));
            for (int c = 0; c < 4; ++c)
                stim.push_back(values[pick(random)]);
            for (int c = 0; c < 3; ++c) {
                ref.push_back(static_cast<float>(random() % 100));
                meas.push_back(static_cast<float>(random() % 100));
            }
        }
        KV_ColorComparison all = one;
        for (std::size_t i = 0; i < 40; ++i)
            one.AddPatch(names[i], groups[i], &stim[4 * i], &ref[3 * i], &meas[3 * i], oneList);
        all.AddPatches(40, names.data(), groups.data(), stim.data(), ref.data(), meas.data(), allList);
        ASSERT_EQ(all.patches.size(), one.patches.size());
        for (std::size_t i = 0; i < one.patches.size(); ++i)
            ASSERT_TRUE(samePatch(all.patches[i], one.patches[i])) << round << ' ' << i;
        ASSERT_EQ(allList, oneList);
        ASSERT_EQ(all.stats[0].count, one.stats[0].count);
        one.patches[random() % one.patches.size()].stim[0] = 50;
        one.patches.erase(one.patches.begin() + static_cast<std::ptrdiff_t>(random() % one.patches.size()));
    }
}

TEST(ColorComparison, FindsByTheFirstOfAName) {
    KV_ColorComparison comparison;
    comparison.patches.resize(3);
    comparison.patches[1].name = comparison.patches[2].name = "twice";
    comparison.patches[1].group = "first";
    KV_ColorPatch patch;
    EXPECT_FALSE(comparison.GetPatch("none", patch) || comparison.SetPatch("none", patch));
    EXPECT_TRUE(comparison.GetPatch("twice", patch));
    EXPECT_EQ(patch.group, "first");
    patch.name = "renamed";
    EXPECT_TRUE(comparison.SetPatch("twice", patch));
    EXPECT_EQ(comparison.patches[1].name, "renamed");
    EXPECT_EQ(comparison.patches[2].name, "twice");
    KV_ColorStat stat;
    stat.name = "group";
    EXPECT_FALSE(comparison.SetStat("group", stat) || comparison.GetStat("group", stat));
    comparison.stats.push_back(stat);
    stat.count = 3;
    EXPECT_TRUE(comparison.SetStat("group", stat));
    stat.count = 0;
    EXPECT_TRUE(comparison.GetStat("group", stat) && stat.count == 3);

    float stim[8] = {};
    EXPECT_EQ(comparison.FindPatch(stim), comparison.patches.data());
    comparison.patches.clear();
    EXPECT_EQ(comparison.FindPatch(stim), nullptr);
}

TEST(GamutComparison, ChangesItsSizes) {
    KV_GamutComparison comparison;
    EXPECT_EQ(comparison.kind, 4);
    comparison.colors[3].first = {7, 8, 9};
    comparison.colors[3].number = 5;
    comparison.SetSizes(2, 4);
    EXPECT_EQ(comparison.colors[3].first, (Limits{7, 8}));
    EXPECT_EQ(comparison.colors[3].second, Limits(4));
    EXPECT_EQ(comparison.colors[3].number, 0U);
    comparison.tables[0] = {{1, {2}}, {1.000005F, {3}}, {1.00003F, {4}}};
    EXPECT_EQ(comparison.tables[0].size(), 2U);

    const KV_DynamicRange range;
    float numbers[102];
    std::memcpy(numbers, &range, sizeof numbers);
    for (int i = 0; i < 102; ++i)
        EXPECT_EQ(numbers[i], i == 21 || i == 82 ? 100 : 0) << i;
}

struct HullCase {
    float cmyk[4];
    bool expected;
};
const HullCase kHull[] = {
    {{100, 0, 0, 0}, true},         {{50, 50, 50, 0}, false},       {{100, 100, 50, 100}, true},
    {{50, 50, 50, 100}, false},     {{0, 0, 0, 50}, false},         {{50, 50, 0.00009F, 0.00009F}, true},
    {{50, 50, 0.0002F, 0}, false},  {{50, 50, 0, 0.0002F}, false},  {{99.99995F, 5, 5, 99.99995F}, true},
    {{99.9998F, 5, 5, 100}, false}, {{100, 0, 0, 99.9998F}, false}, {{0, 100, 0, kNaN}, false},
};

TEST(GamutColor, LiesOnTheHullOfTheCube) {
    for (HullCase c : kHull)
        EXPECT_EQ(IsGamutColor(c.cmyk), c.expected) << c.cmyk[0] << ' ' << c.cmyk[2] << ' ' << c.cmyk[3];
}

}  // namespace
