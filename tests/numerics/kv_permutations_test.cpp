#include <gtest/gtest.h>
#include <kvbase/numerics/kv_permutations.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::string>;

Rows permutations(std::uint8_t n) {
    std::vector<std::vector<std::uint8_t>> rows(FactorValue(n), std::vector<std::uint8_t>(n));
    std::vector<std::uint8_t *> table(rows.size());
    std::transform(rows.begin(), rows.end(), table.begin(), [](auto &row) { return row.data(); });
    Permutations(n, table.data());
    Rows texts;
    for (const auto &row : rows) {
        std::string text;
        for (const std::uint8_t element : row)
            text += static_cast<char>('0' + element);
        texts.push_back(text);
    }
    return texts;
}

TEST(Permutations, AreAllThereInTheirOrder) {
    EXPECT_EQ(permutations(1), (Rows{"0"}));
    EXPECT_EQ(permutations(3), (Rows{"012", "102", "021", "201", "210", "120"}));
    for (const std::uint8_t n : {std::uint8_t{4}, std::uint8_t{8}}) {
        const Rows rows = permutations(n);
        EXPECT_EQ(std::set<std::string>(rows.begin(), rows.end()).size(), FactorValue(n)) << "all different";
        for (std::string row : rows) {
            std::sort(row.begin(), row.end());
            EXPECT_EQ(row, std::string("01234567").substr(0, n));
        }
    }
    std::uint8_t *none = nullptr;
    Permutations(0, &none);
    Permutations(9, &none);
}

TEST(Permutations, AreCountedInSixteenBits) {
    EXPECT_EQ(FactorValue(0), 1);
    EXPECT_EQ(FactorValue(1), 1);
    EXPECT_EQ(FactorValue(8), 40320);
    EXPECT_EQ(FactorValue(9), 362880 % 65536);
}

}  // namespace
