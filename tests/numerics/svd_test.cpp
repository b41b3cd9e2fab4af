#include "adt/numerics/svd.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "plain_svd.h"
#include "random_matrix.h"

namespace {

struct Svd {
    Svd(const Matrix &a, int m, int n)
        : u(static_cast<std::size_t>(std::max(m, n) * n)),
          w(static_cast<std::size_t>(n) + 1),
          v(static_cast<std::size_t>(n * n)) {
        std::copy(a.begin(), a.end(), u.begin());
    }
    Matrix u, w, v;
};

bool sameBits(const Matrix &a, const Matrix &b, std::size_t from, std::size_t count) {
    return std::memcmp(a.data() + from, b.data() + from, count * sizeof(double)) == 0;
}

// The largest element of |U W V^T - A|, of |V^T V - 1|, and of |U^T U - 1| where singular values count, in
// units of the largest singular value and of 1.
double defect(const Svd &svd, const Matrix &a, int m, int n) {
    const double largest = *std::max_element(svd.w.begin() + 1, svd.w.end());
    if (largest == 0) return 0;
    Matrix scaled = svd.u;
    scaled.resize(static_cast<std::size_t>(m * n));
    for (std::size_t i = 0; i < scaled.size(); ++i)
        scaled[i] *= svd.w[1 + i % static_cast<std::size_t>(n)] / largest;
    const Matrix vt = transposed(svd.v, n, n), back = product(scaled, vt, m, n, n);
    const Matrix one = product(vt, svd.v, n, n, n);
    double worst = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        worst = std::max(worst, std::fabs(back[i] - a[i] / largest));
    for (std::size_t i = 0; i < one.size(); ++i)
        worst = std::max(worst, std::fabs(one[i] - (i % static_cast<std::size_t>(n + 1) == 0 ? 1 : 0)));
    Matrix u = svd.u;
    u.resize(a.size());
    const Matrix ones = product(transposed(u, m, n), u, n, m, n);
    const auto counts = [&](std::size_t column) { return svd.w[1 + column] > 1e-3 * largest; };
    for (std::size_t i = 0; i < ones.size(); ++i) {
        const std::size_t row = i / static_cast<std::size_t>(n), column = i % static_cast<std::size_t>(n);
        if (counts(row) && counts(column))
            worst = std::max(worst, std::fabs(ones[i] - (row == column ? 1 : 0)));
    }
    return worst;
}

TEST(Svd, HasTheBitsOfThePublishedStepsAndGivesTheMatrixBack) {
    std::mt19937 random(3);
    for (int round = 0; round < 4000; ++round) {
        const int m = 1 + static_cast<int>(random() % 12), n = 1 + static_cast<int>(random() % 9);
        const Matrix a = hardMatrix(random, m, n, {1, 1e-70, 1e70});
        Svd plain(a, m, n), ours(a, m, n);
        Matrix scratch(ours.w.size());
        ASSERT_TRUE(plainSvd(plain.u.data(), m, n, plain.w.data(), plain.v.data()));
        kv::detail::Svd_Decompose(ours.u.data(), m, n, ours.w.data(), ours.v.data(), scratch.data());
        const bool same = sameBits(ours.u, plain.u, 0, a.size()) &&
                          sameBits(ours.w, plain.w, 1, static_cast<std::size_t>(n)) &&
                          sameBits(ours.v, plain.v, 0, ours.v.size());
        EXPECT_TRUE(same) << "round " << round << ", " << m << " by " << n;
        EXPECT_LT(defect(ours, a, m, n), 3e-14) << "round " << round << ", " << m << " by " << n;
    }
}

TEST(Svd, LengthsDoNotOverflow) {
    EXPECT_DOUBLE_EQ(kv::detail::Safe_Hypot(3e200, -4e200), 5e200);
    EXPECT_EQ(kv::detail::Safe_Hypot(0, 0), 0);
    EXPECT_EQ(kv::detail::Safe_Hypot(-2, 0), 2);
}

TEST(Svd, NotANumberNeitherWinsNorHidesTheLargestValue) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double w[] = {9e9, nan, 4, 3e-10, nan, 5e-10};
    EXPECT_EQ(kv::detail::cutSingularValues(w, 5), 4e-10);
    EXPECT_TRUE(std::isnan(w[1]) && std::isnan(w[4]));
    EXPECT_EQ(w[3], 0);
    EXPECT_EQ(w[5], 5e-10);
}

}  // namespace
