// Real measurements: the press characterization tables of Debian's package icc-profiles-free, patches of CMYK
// with the XYZ that was measured and the Lab that others worked out from it.

#include <gtest/gtest.h>
#include <kvbase/color/kv_ct_cielab.h>

#include <string>
#include <vector>

#include "press_tables.h"

namespace {

// Both are printed with two decimals.
constexpr float kRounding = 0.005F;
// Of single precision: a ratio of 1 is rounded by 6e-8, and a* is 500 / 3 times as much.
constexpr float kSlack = 3e-5F;

// Two roundings of D50 are in use: that of ICC profiles and that of ASTM E308.
constexpr float kIcc[] = {96.42F, 100, 82.49F}, kAstm[] = {96.422F, 100, 82.521F};

struct Table {
    const char *name;
    std::size_t patches;
    const float *white;
};
const Table kTables[] = {
    {"FOGRA28L", 1485, kIcc}, {"FOGRA29L", 1485, kIcc}, {"FOGRA30L", 1485, kIcc},
    {"FOGRA39L", 1617, kIcc}, {"FOGRA40L", 1617, kIcc}, {"TR002", 928, kAstm},
    {"TR003", 1617, kAstm},   {"TR005", 1617, kAstm},   {"TR006", 1617, kIcc},
};

std::vector<float> toLab(const Table &table, std::vector<float> xyz, float dx, float dy, float dz) {
    float white[] = {table.white[0], table.white[1], table.white[2]};
    for (std::size_t i = 0; i < xyz.size(); i += 3) {
        xyz[i] += dx;
        xyz[i + 1] += dy;
        xyz[i + 2] += dz;
    }
    KV_CTCielab(white).XYZ2Lab(xyz.data(), xyz.data(), static_cast<std::int32_t>(xyz.size() / 3));
    return xyz;
}

// L* rises with Y, a* with X - Y and b* with Y - Z, so the printed values lie between those of two corners of
// what the rounding of XYZ leaves open.
TEST(PressTables, LabComesFromXyzPatchByPatch) {
    for (const Table &table : kTables) {
        const Patches patches = readPatches(table.name);
        EXPECT_EQ(patches.names.size(), table.patches) << table.name;
        const std::vector<float> low[] = {toLab(table, patches.xyz, 0, -kRounding, 0),
                                          toLab(table, patches.xyz, -kRounding, kRounding, 0),
                                          toLab(table, patches.xyz, 0, -kRounding, kRounding)};
        const std::vector<float> high[] = {toLab(table, patches.xyz, 0, kRounding, 0),
                                           toLab(table, patches.xyz, kRounding, -kRounding, 0),
                                           toLab(table, patches.xyz, 0, kRounding, -kRounding)};
        for (std::size_t i = 0; i < patches.lab.size(); ++i) {
            EXPECT_GE(patches.lab[i], low[i % 3][i] - kRounding - kSlack)
                << table.name << ' ' << patches.names[i / 3];
            EXPECT_LE(patches.lab[i], high[i % 3][i] + kRounding + kSlack)
                << table.name << ' ' << patches.names[i / 3];
        }
    }
}

// And XYZ from the XYZ that was made Lab, to the rounding of a float.
TEST(PressTables, XyzComesBack) {
    for (const Table &table : kTables) {
        const Patches patches = readPatches(table.name);
        float white[] = {table.white[0], table.white[1], table.white[2]};
        std::vector<float> back = toLab(table, patches.xyz, 0, 0, 0);
        KV_CTCielab(white).Lab2XYZ(back.data(), back.data(), static_cast<std::int32_t>(patches.names.size()));
        for (std::size_t i = 0; i < back.size(); ++i)
            EXPECT_NEAR(back[i], patches.xyz[i], 5e-7F * (10 + patches.xyz[i]))
                << table.name << ' ' << patches.names[i / 3];
    }
}

}  // namespace
