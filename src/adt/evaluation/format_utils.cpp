#include "kvbase/evaluation/format_utils.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include "kvbase/text/std_string_utils.h"

KV_IVarray::~KV_IVarray() = default;

namespace {

/// A table of texts that lie in one block, which stays its owner's until it is handed out.
struct TextTable {
    std::unique_ptr<char *[]> entries;
    std::unique_ptr<char[]> block;

    char **release() {
        block.release();  // entries[0] leads to it. NOLINT(bugprone-unused-return-value)
        return entries.release();
    }
};

/// The numbers from 1 to count with their terminators, rounded up to a multiple of 4.
std::size_t bytesOfNumbers(std::size_t count) {
    std::size_t bytes = 0;
    for (std::size_t power = 1, digits = 1; power <= count; power *= 10, ++digits)
        bytes += (std::min(count, 10 * power - 1) - power + 1) * (digits + 1);
    return (bytes + 3) / 4 * 4;
}

/// PREFIX1, PREFIX2 and so on. count is 1 or more.
TextTable numbered(std::string_view prefix, std::size_t count) {
    const std::size_t size = bytesOfNumbers(count) + prefix.size() * count;
    TextTable table{std::make_unique<char *[]>(count), std::make_unique<char[]>(size)};
    char *at = table.block.get();
    for (std::size_t i = 0; i < count; ++i) {
        table.entries[i] = at;
        at = std::copy(prefix.begin(), prefix.end(), at);
        const std::string number = std::to_string(i + 1);
        at = std::copy_n(number.c_str(), number.size() + 1, at);
    }
    return table;
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
    ids = count < 1 ? nullptr : numbered("", static_cast<std::size_t>(count)).release();
}

void FormatUtils::CreateSampleIDs(char **&ids, char **&names, KV_IVarray *positions, int count, int columns) {
    if (count < 1) {
        ids = names = nullptr;
        return;
    }
    const auto samples = static_cast<std::size_t>(count);
    TextTable numbers = numbered("", samples), channels = numbered("CH", samples);
    layOut(positions->PositionTable(), count, columns < 1 ? count : columns);
    ids = numbers.release();
    names = channels.release();
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
