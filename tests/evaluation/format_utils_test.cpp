#include <gtest/gtest.h>
#include <kvbase/evaluation/format_utils.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace {

class Places : public KV_IVarray {
public:
    explicit Places(std::size_t count) : records(count, {9, 9, 9}) {
        for (auto &record : records)
            m_table.push_back(record.data());
    }
    std::uint16_t **PositionTable() override { return m_table.data(); }

    std::vector<std::array<std::uint16_t, 3>> records;

private:
    std::vector<std::uint16_t *> m_table;
};

// Takes a table over; the texts have to fill one block without a gap.
std::vector<std::string> taken(char **table, std::size_t count) {
    const std::unique_ptr<char[]> block(table[0]);
    const std::unique_ptr<char *[]> entries(table);
    std::vector<std::string> texts;
    const char *at = table[0];
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(table[i], at);
        texts.emplace_back(table[i]);
        at += texts.back().size() + 1;
    }
    return texts;
}

TEST(SampleIds, RunFromOneRowByRow) {
    for (const int count : {1, 9, 10, 12, 99, 101, 12345}) {
        const int columns = count == 12 ? 5 : 7;
        const auto size = static_cast<std::size_t>(count);
        Places places(size);
        char **ids = nullptr, **names = nullptr;
        FormatUtils::CreateSampleIDs(ids, names, &places, count, columns);
        const std::vector<std::string> numbers = taken(ids, size), channels = taken(names, size);
        FormatUtils::CreateSampleIDs(count, ids);
        EXPECT_EQ(taken(ids, size), numbers);
        for (int i = 0; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const std::string number = std::to_string(i + 1);
            ASSERT_EQ(numbers[at], number);
            ASSERT_EQ(channels[at], "CH" + number);
            const auto &[column, row, layer] = places.records[at];
            ASSERT_TRUE(column < columns && row * columns + column == i && layer == 0) << i;
        }
    }
}

TEST(SampleIds, OfNothingAreNothing) {
    char some = 0, *entry = &some, **ids = &entry, **names = &entry;
    FormatUtils::CreateSampleIDs(ids, names, nullptr, 0, 0);
    EXPECT_TRUE(ids == nullptr && names == nullptr);
    ids = &entry;
    FormatUtils::CreateSampleIDs(-1, ids);
    EXPECT_EQ(ids, nullptr);
}

struct InkCase {
    const char *name;
    std::vector<std::string> extra;  // behind the process inks
    int sum;
    std::vector<int> codes;
};
const InkCase kInks[] = {
    {"one", {"Orange"}, 1, {17}},
    {"any case", {"gReEn"}, 2, {18}},
    {"two", {"Orange", "Green"}, 3, {17, 34, 48}},
    {"another two", {"Blue", "Varnish", "Orange"}, 5, {20, 33, 48}},
    {"green and blue", {"Green", "Blue"}, 6, {18, 36, 48}},
    {"three", {"Orange", "Green", "Blue"}, 7, {17, 34, 68, 48, 80, 96}},
    {"orange twice", {"Orange", "Orange"}, 2, {17, 33}},
    {"none of them", {"Violet", "Oranges"}, 0, {}},
};

TEST(QuorinCase, ListsTheCodesOfTheExtraInks) {
    for (const InkCase &c : kInks) {
        std::vector<std::string> inks = {"Cyan", "Magenta", "Yellow", "Black"};
        inks.insert(inks.end(), c.extra.begin(), c.extra.end());
        std::vector<int> codes(c.codes.size() + 1, -1), expected = c.codes;
        expected.push_back(-1);  // not written
        EXPECT_EQ(FormatUtils::GetQuorinCase(inks, codes.data()), c.sum) << c.name;
        EXPECT_EQ(codes, expected) << c.name;
    }
    std::vector<int> codes(28, -1);
    EXPECT_EQ(FormatUtils::GetQuorinCase(std::vector<std::string>(30, "Orange"), codes.data()), 27);
    EXPECT_TRUE(codes[26] == (1 << 30) + 1 && codes[27] == -1);  // no bit is left
    EXPECT_EQ(FormatUtils::GetQuorinCase({"Orange", "Green", "Blue", "Black"}, nullptr), 0);
}

}  // namespace
