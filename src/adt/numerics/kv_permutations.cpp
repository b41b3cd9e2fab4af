#include "kvbase/numerics/kv_permutations.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr std::uint8_t kMost = 8;

// Permutes the first n positions over a block of n! equal rows: each of the n parts of the block gets another
// element at position n - 1.
void permuteBlock(std::uint8_t n, std::uint8_t **rows) {
    if (n < 2) return;
    const auto last = static_cast<std::uint8_t>(n - 1);
    const std::size_t part = FactorValue(last);
    for (std::uint8_t i = 0; i < n; ++i, rows += part) {
        for (std::size_t row = 0; row < part; ++row)
            SwapValues(static_cast<std::uint8_t>(last - i), last, rows[row]);
        permuteBlock(last, rows);
    }
}

}  // namespace

std::uint16_t FactorValue(std::uint8_t n) {
    std::uint32_t product = 1;
    for (std::uint32_t i = 2; i <= n; ++i)
        product = product * i & 0xFFFF;
    return static_cast<std::uint16_t>(product);
}

void SwapValues(std::uint8_t i, std::uint8_t j, std::uint8_t *row) { std::swap(row[i], row[j]); }

void Permutations(std::uint8_t n, std::uint8_t **rows) {
    if (n == 0 || n > kMost) return;
    std::for_each_n(rows, FactorValue(n),
                    [n](std::uint8_t *row) { std::iota(row, row + n, std::uint8_t{0}); });
    permuteBlock(n, rows);
}
