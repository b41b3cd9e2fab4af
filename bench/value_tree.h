#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kvbase/univval/kv_uval_dict.h"

#ifdef KVBASE_BENCH_PEERS
#    include <nlohmann/json.hpp>

#    include "kvbase/univval/kv_uval_leaf.h"
#endif

// The data of the value benchmarks: a tree of about 20,000 entries in four levels, as the settings of a large
// colour server are, with integers, doubles, strings and arrays.

namespace kvbench {

inline std::string makeKey(std::mt19937 &random, int number) {
    static const char *const kWords[] = {"gamma",       "profile",   "renderingIntent", "patch",
                                         "blackPoint",  "ink",       "whitePoint",      "curve",
                                         "measurement", "tolerance", "paper",           "limit"};
    return kWords[random() % 12] + std::to_string(number);
}

inline KV_String makeText(std::mt19937 &random) {
    static const char *const kTexts[] = {"", "D50", "coated paper, 115 g/m2",
                                         "C:\\Profiles\\Press 4\\sheet fed.icc",
                                         "Relative colorimetric (with black point compensation)"};
    return kTexts[random() % 5];
}

/// Out of ten leaves four are integers, two doubles, two strings, one an array of doubles and one of
/// integers.
inline void addLeaf(KV_UValDict &dict, const std::string &key, std::mt19937 &random) {
    const std::uint32_t kind = static_cast<std::uint32_t>(random() % 10);
    const KV_DictPath path(key.c_str());
    const auto dimension = static_cast<std::int32_t>(kind < 8 ? 0 : 3 + random() % 30);
    if (kind < 4 || kind == 8) {
        KV_UVal *value = dict.DefineUVal(path, KV_UVAL_LONG, dimension, nullptr);
        for (std::int32_t i = 0; i == 0 || i < dimension; ++i)
            value->SetLongValue(static_cast<std::int32_t>(random() % 2000000) - 1000000, i);
    } else if (kind < 6 || kind == 9) {
        KV_UVal *value = dict.DefineUVal(path, KV_UVAL_DOUBLE, dimension, nullptr);
        for (std::int32_t i = 0; i == 0 || i < dimension; ++i)
            value->SetDoubleValue(static_cast<double>(random() % 200000000) / 1000000.0 - 100.0, i);
    } else {
        dict.DefineUVal(path, KV_UVAL_STRING, 0, nullptr)->SetStrValue(makeText(random), 0);
    }
}

/// 12 sections of 12 groups; a group has 10 leaves and 10 dictionaries of 12 leaves: 20,316 entries, always
/// the same.
inline std::unique_ptr<KV_UValDict> makeValueTree() {
    std::mt19937 random(20231);
    auto tree = std::make_unique<KV_UValDict>(16384U);
    for (int section = 0; section < 12; ++section) {
        const KV_DictPath sectionPath(makeKey(random, section).c_str());
        for (int group = 0; group < 12; ++group) {
            KV_UValDict *level3 = tree->DefineUValDict(sectionPath + makeKey(random, group).c_str());
            for (int i = 0; i < 10; ++i)
                addLeaf(*level3, makeKey(random, i), random);
            for (int i = 10; i < 20; ++i) {
                KV_UValDict *level4 = level3->DefineUValDict(makeKey(random, i).c_str());
                for (int leaf = 0; leaf < 12; ++leaf)
                    addLeaf(*level4, makeKey(random, leaf), random);
            }
        }
    }
    return tree;
}

#ifdef KVBASE_BENCH_PEERS
/// The same entries with the same keys.
inline nlohmann::json toJson(KV_UVal &value) {
    nlohmann::json json;
    const std::int32_t dimension = value.GetDimension();
    switch (value.GetType()) {
    case KV_UVAL_DICT:
        json = nlohmann::json::object();
        for (const auto &[key, entry] : *static_cast<KV_UValDict &>(value).GetValuePtr())
            json[key] = toJson(*entry);
        break;
    case KV_UVAL_LONG:
        if (dimension < 1) json = value.GetLongValue(0);
        for (std::int32_t i = 0; i < dimension; ++i)
            json.push_back(value.GetLongValue(i));
        break;
    case KV_UVAL_DOUBLE:
        if (dimension < 1) json = value.GetDoubleValue(0);
        for (std::int32_t i = 0; i < dimension; ++i)
            json.push_back(value.GetDoubleValue(i));
        break;
    default:
        json = value.GetCStringValue(0);
    }
    return json;
}
#endif

}  // namespace kvbench
