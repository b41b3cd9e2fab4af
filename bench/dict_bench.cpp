// Looking a number up in a tree of 20,000 entries by a path of three keys, prepared or as text.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kvbase/univval/kv_uval_dict.h"
#include "value_tree.h"

#ifdef KVBASE_BENCH_PEERS
#    include <rapidjson/document.h>
#    include <rapidjson/pointer.h>
#endif

namespace {

KV_UValDict &tree() {
    static const std::unique_ptr<KV_UValDict> dict = kvbench::makeValueTree();
    return *dict;
}

/// The paths of all scalar numbers in the third level, in random order, with the marks round each key.
std::vector<std::string> paths(const std::string &before, const std::string &behind) {
    std::vector<std::string> all;
    const auto inner = [](KV_UVal *value) -> KV_UValDict::Map & {
        return *static_cast<KV_UValDict *>(value)->GetValuePtr();
    };
    for (const auto &[section, groups] : *tree().GetValuePtr())
        for (const auto &[group, leaves] : inner(groups))
            for (const auto &[leaf, value] : inner(leaves))
                if (value->GetFamily() == KV_UVAL_FAMILY_NUMBER && value->GetDimension() == 0) {
                    std::string &path = all.emplace_back();
                    for (const std::string *key : {&section, &group, &leaf})
                        ((path += before) += *key) += behind;
                }
    std::shuffle(all.begin(), all.end(), std::mt19937(7));
    return all;
}

/// Runs look over the paths, one path an iteration, after it has met the tree's own sum once.
template <class Path, class Look>
void lookUp(benchmark::State &state, const std::vector<Path> &all, Look look) {
    double sum = 0, expected = 0;
    for (const Path &path : all)
        sum += look(path);
    for (const std::string &path : paths("", ":"))
        expected += tree().GetValue(path.c_str(), 0.0, 0);
    if (sum != expected || all.size() < 500) state.SkipWithError("wrong values");
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(look(all[next]));
        if (++next == all.size()) next = 0;
    }
}

void BM_KvbasePrepared(benchmark::State &state) {
    std::vector<KV_DictPath> all;
    for (const std::string &path : paths("", ":"))
        all.emplace_back(path.c_str());
    lookUp(state, all, [](const KV_DictPath &path) { return tree().GetValue(path, 0.0, 0); });
}
BENCHMARK(BM_KvbasePrepared);

void BM_KvbaseText(benchmark::State &state) {
    lookUp(state, paths("", ":"),
           [](const std::string &path) { return tree().GetValue(path.c_str(), 0.0, 0); });
}
BENCHMARK(BM_KvbaseText);

#ifdef KVBASE_BENCH_PEERS
const nlohmann::json &json() {
    static const nlohmann::json tree = kvbench::toJson(::tree());
    return tree;
}

void BM_NlohmannPrepared(benchmark::State &state) {
    std::vector<nlohmann::json::json_pointer> all;
    for (const std::string &path : paths("/", ""))
        all.emplace_back(path);
    lookUp(state, all, [](const auto &path) { return json()[path].template get<double>(); });
}
BENCHMARK(BM_NlohmannPrepared);

void BM_NlohmannText(benchmark::State &state) {
    lookUp(state, paths("/", ""),
           [](const std::string &path) { return json()[nlohmann::json::json_pointer(path)].get<double>(); });
}
BENCHMARK(BM_NlohmannText);

const rapidjson::Document &document() {
    static const auto tree = [] {
        auto parsed = std::make_unique<rapidjson::Document>();
        parsed->Parse<rapidjson::kParseFullPrecisionFlag>(json().dump().c_str());
        return parsed;
    }();
    return *tree;
}

void BM_RapidjsonPrepared(benchmark::State &state) {
    std::vector<rapidjson::Pointer> all;
    for (const std::string &path : paths("/", ""))
        all.emplace_back(path.c_str(), path.size());
    lookUp(state, all, [](const rapidjson::Pointer &path) { return path.Get(document())->GetDouble(); });
}
BENCHMARK(BM_RapidjsonPrepared);

void BM_RapidjsonText(benchmark::State &state) {
    lookUp(state, paths("/", ""), [](const std::string &path) {
        return rapidjson::Pointer(path.c_str(), path.size()).Get(document())->GetDouble();
    });
}
BENCHMARK(BM_RapidjsonText);
#endif

}  // namespace
