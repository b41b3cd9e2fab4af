// Whole comparisons beside what an independent calculation makes of them (scripts/make_evaluation_cases).

#include <gtest/gtest.h>
#include <kvbase/evaluation/kv_color_comparison.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr KV_ColorTol KV_ColorCheck::*kQuantities[] = {&KV_ColorCheck::dE, &KV_ColorCheck::dC,
                                                       &KV_ColorCheck::dH, &KV_ColorCheck::dL,
                                                       &KV_ColorCheck::da, &KV_ColorCheck::db};

// One line of the file: its kind, and its fields one by one.
class Fields {
public:
    explicit Fields(const std::string &line) : m_stream(line) {}
    bool text(std::string &out) { return static_cast<bool>(std::getline(m_stream, out, '\t')); }
    std::string text() {
        std::string field;
        text(field);
        return field;
    }
    float number() { return std::stof(text()); }

private:
    std::istringstream m_stream;
};

KV_ColorCheck &checkOf(KV_ColorStat &stat, const std::string &name) {
    return name == "av" ? stat.av : name == "max" ? stat.max : name == "gam" ? stat.gam : stat.p95;
}

class Cases {
public:
    int run() {
        std::ifstream file(KVBASE_TEST_DATA "/evaluation/comparisons.tsv");
        for (std::string line; std::getline(file, line); ++m_line) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            const testing::ScopedTrace trace(__FILE__, m_line, line);
            Fields fields(line);
            take(fields.text(), fields);
        }
        return m_graded;
    }

private:
    void take(const std::string &kind, Fields &fields) {
        if (kind == "comparison") start(fields);
        if (kind == "stat") m_comparison.stats.emplace_back().name = fields.text();
        if (kind == "limits") limit(fields);
        if (kind == "patch") addPatch(fields);
        if (kind == "result") expectResult(fields);
        if (kind == "grade") {
            EXPECT_EQ(m_comparison.grade, fields.text()[0]);
            ++m_graded;
        }
    }
    void start(Fields &fields) {
        m_comparison = KV_ColorComparison();
        m_differences.clear();
        m_calculated = false;
        m_comparison.formula.formula = std::stoi(fields.text());
        for (float *weight : {&m_comparison.formula.kL, &m_comparison.formula.kC, &m_comparison.formula.kH})
            *weight = fields.number();
    }
    void limit(Fields &fields) {
        KV_ColorCheck &check = checkOf(m_comparison.stats.back(), fields.text());
        const std::string name = fields.text();
        static const std::string kNames[] = {"dE", "dC", "dH", "dL", "da", "db"};
        std::size_t i = 0;
        while (kNames[i] != name)
            ++i;
        KV_ColorTol &quantity = check.*kQuantities[i];
        quantity.step = fields.number();
        for (std::string limit; fields.text(limit);)
            quantity.tolerances.push_back(std::stof(limit));
    }
    void addPatch(Fields &fields) {
        float stim[8] = {}, ref[3], meas[3];
        for (int i = 0; i < 4; ++i)
            stim[i] = fields.number();
        for (float *lab : {ref, meas})
            for (int i = 0; i < 3; ++i)
                lab[i] = fields.number();
        m_comparison.AddPatch("P", "Unknown", stim, ref, meas, m_differences);
        const KV_ColorPatch *const patch = m_comparison.FindPatch(stim);
        ASSERT_NE(patch, nullptr);
        EXPECT_EQ(patch->name, fields.text());
        EXPECT_EQ(patch->group, fields.text());
        expectCheck(patch->check, fields);
        EXPECT_EQ(m_differences.back(), patch->check.dE.diff);
    }
    void expectResult(Fields &fields) {
        if (!m_calculated) m_comparison.CalcStats(m_differences);
        m_calculated = true;
        KV_ColorStat stat;
        ASSERT_TRUE(m_comparison.GetStat(fields.text(), stat));
        EXPECT_EQ(stat.count, std::stoul(fields.text()));
        EXPECT_EQ(stat.gamutCount, std::stoul(fields.text()));
        for (const char *check : {"av", "max", "gam", "p95"})
            expectCheck(checkOf(stat, check), fields);
    }
    static void expectCheck(const KV_ColorCheck &check, Fields &fields) {
        EXPECT_EQ(check.grade, fields.text()[0]);
        for (const auto quantity : kQuantities)
            EXPECT_NEAR((check.*quantity).diff, fields.number(), 1e-4);  // 6 digits are printed
    }

    KV_ColorComparison m_comparison;
    std::vector<float> m_differences;
    bool m_calculated = false;
    int m_line = 1;
    int m_graded = 0;
};

TEST(ComparisonCases, MeetTheIndependentCalculation) { EXPECT_EQ(Cases().run(), 8); }

}  // namespace
