#include "kvbase/evaluation/format_utils.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include "kvbase/text/std_string_utils.h"

KV_IVarray::~KV_IVarray() = default;

namespace {

/// The numbers from 1 to count with their terminators, rounded up to a multiple of 4.
std::size_t bytesOfNumbers(std::size_t count) {
    std::size_t bytes = 0;
    for (std::size_t power = 1, digits = 1; power <= count; power *= 10, ++digits)
        bytes += (std::min(count, 10 * power - 1) - power + 1) * (digits + 1);
    return (bytes + 3) / 4 * 4;
}

/// PREFIX1, PREFIX2 and so on, one behind the other. count is 1 or more.
std::unique_ptr<char[]> numbered(std::string_view prefix, std::size_t count) {
    auto block = std::make_unique<char[]>(bytesOfNumbers(count) + prefix.size() * count);
    char *at = block.get();
    for (std::size_t i = 1; i <= count; ++i) {
        at = std::copy(prefix.begin(), prefix.end(), at);
        const std::string number = std::to_string(i);
        at = std::copy_n(number.c_str(), number.size() + 1, at);
    }
    return block;
}

/// Where the texts of a block begin.
std::unique_ptr<char *[]> beginnings(char *block, std::size_t count) {
    auto table = std::make_unique<char *[]>(count);
    for (std::size_t i = 0; i < count; ++i) {
        table[i] = block;
        block += std::strlen(block) + 1;
    }
    return table;
}

/// The table leads to the block, so that both have one owner.
char **handOut(std::unique_ptr<char *[]> table, std::unique_ptr<char[]> block) {
    table[0] = block.release();
    return table.release();
}

void layOut(std::uint16_t **places, int count, int columns) {
    for (int i = 0; i < count; ++i) {
        places[i][0] = static_cast<std::uint16_t>(i % columns);
        places[i][1] = static_cast<std::uint16_t>(i / columns);
        places[i][2] = 0;
    }
}

/// The weight of an extra ink, 0 for any other.
int weightOf(const std::string &ink) {
    static constexpr std::pair<std::string_view, int> kWeights[] = {{"ORANGE", 1}, {"GREEN", 2}, {"BLUE", 4}};
    const std::string name = StdStringUtils::ToUpperCase(ink);
    for (const auto &[known, weight] : kWeights)
        if (name == known) return weight;
    return 0;
}

}  // namespace

void FormatUtils::CreateSampleIDs(std::int32_t count, char **&ids) {
    if (count < 1) {
        ids = nullptr;
        return;
    }
    const auto samples = static_cast<std::size_t>(count);
    auto numbers = numbered("", samples);
    auto table = beginnings(numbers.get(), samples);
    ids = handOut(std::move(table), std::move(numbers));
}

void FormatUtils::CreateSampleIDs(char **&ids, char **&names, KV_IVarray *positions, int count, int columns) {
    if (count < 1) {
        ids = names = nullptr;
        return;
    }
    const auto samples = static_cast<std::size_t>(count);
    auto channels = numbered("CH", samples);
    auto table = beginnings(channels.get(), samples);
    std::uint16_t **const places = positions->PositionTable();
    CreateSampleIDs(count, ids);
    names = handOut(std::move(table), std::move(channels));
    layOut(places, count, columns < 1 ? count : columns);
}

// By value in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
int FormatUtils::GetQuorinCase(std::vector<std::string> inks, int *codes) {
    constexpr std::size_t kFewestInks = 5;
    constexpr int kBits = std::numeric_limits<int>::digits;
    if (inks.size() < kFewestInks) return 0;
    int sum = 0, bit = 4;
    for (const std::string &ink : inks) {
        const int weight = weightOf(ink);
        if (weight == 0 || bit >= kBits) continue;
        *codes++ = (1 << bit++) + weight;
        sum += weight;
    }
    static constexpr int kPairs[] = {48, 80, 96};
    const std::ptrdiff_t pairs = sum == 7 ? 3 : sum == 3 || sum == 5 || sum == 6 ? 1 : 0;
    std::copy_n(std::begin(kPairs), pairs, codes);
    return sum;
}
