// Number text beside the C library's, over varied values such as reports and value files hold.

#include <benchmark/benchmark.h>
#include <kvbase/runtime/kv_number_text.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kCount = 4096;

// Lab and XYZ values, percent, wavelengths, reflectances, fitted coefficients, a few whole and large ones.
const std::vector<double> &values() {
    static const std::vector<double> all = [] {
        std::mt19937_64 random(2);
        const auto uniform = [&random](double low, double high) {
            return std::uniform_real_distribution<double>(low, high)(random);
        };
        std::vector<double> made;
        while (made.size() < kCount) {
            made.push_back(uniform(0, 100));
            made.push_back(uniform(-128, 127));
            made.push_back(std::round(uniform(0, 10000)) / 100);
            made.push_back(std::round(uniform(380, 780)));
            made.push_back(static_cast<double>(static_cast<float>(uniform(0, 1))));
            made.push_back(uniform(-1, 1) * std::pow(10, uniform(-6, 0)));
            made.push_back(uniform(-1, 1) * std::pow(10, uniform(0, 9)));
            made.push_back(uniform(0, 255));
        }
        return made;
    }();
    return all;
}

// The values as text, as kv_strtod meets them: up to 4 decimals mostly, every eighth with all digits.
const std::vector<std::string> &words() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> made;
        for (std::size_t i = 0; i < values().size(); ++i) {
            char text[400];
            std::snprintf(text, sizeof text, i % 8 == 6 ? "%.17g" : i % 8 < 3 ? "%.2f" : "%.6f", values()[i]);
            made.emplace_back(text);
        }
        return made;
    }();
    return all;
}

template <class Operation>
void overValues(benchmark::State &state, Operation operation) {
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(operation(values()[i++ % kCount]));
    state.SetItemsProcessed(state.iterations());
}

template <class Operation>
void overWords(benchmark::State &state, Operation operation) {
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(operation(words()[i++ % kCount]));
    state.SetItemsProcessed(state.iterations());
}

void Dtostr4(benchmark::State &state) {
    overValues(state, [](double value) { return kv_dtostr(value, 4); });
}
void Dtoa4(benchmark::State &state) {
    overValues(state, [](double value) {
        char text[512];
        const int length = kv_dtoa(text, value, 'f', 0, 4);
        benchmark::DoNotOptimize(text);
        return length;
    });
}
void Snprintf4(benchmark::State &state) {
    overValues(state, [](double value) {
        char text[512];
        const int length = std::snprintf(text, sizeof text, "%.4f", value);
        benchmark::DoNotOptimize(text);
        return length;
    });
}

void KvStrtod(benchmark::State &state) {
    overWords(state, [](const std::string &word) { return kv_strtod(word.c_str(), nullptr); });
}
void Strtod(benchmark::State &state) {
    overWords(state, [](const std::string &word) { return std::strtod(word.c_str(), nullptr); });
}

BENCHMARK(Dtostr4);
BENCHMARK(Dtoa4);
BENCHMARK(Snprintf4);
BENCHMARK(KvStrtod);
BENCHMARK(Strtod);

}  // namespace
