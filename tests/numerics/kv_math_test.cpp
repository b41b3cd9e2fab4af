#include <gtest/gtest.h>
#include <kvbase/numerics/kv_math.h>
#include <kvbase/runtime/kv_exception.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "eigen_peer.h"
#include "random_matrix.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string failure(KV_ErrorId id, const std::function<void()> &call) {
    try {
        call();
    } catch (const KV_Exception &e) {
        KV_String text;
        EXPECT_EQ(e.GetErrorId(), id);
        return e.ToString(text).Ptr();
    }
    return "none";
}

std::vector<double> solve(const Matrix &a, const std::vector<double> &b, int m, int n) {
    std::vector<double> x(static_cast<std::size_t>(n), kNaN);
    Least_Squares(a.data(), b.data(), m, n, x.data());
    return x;
}

double distance(const std::vector<double> &x, const std::vector<double> &y) {
    std::vector<double> d(x.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        d[i] = x[i] - y[i];
    return norm(d);
}

// The largest by the smallest singular value that counts.
double condition(const Matrix &a, int m, int n) {
    const std::vector<double> w = peer::singularValues(a, m, n);
    double smallest = w[0];
    for (const double value : w)
        if (value > 1e-10 * w[0]) smallest = value;
    return w[0] > 0 ? w[0] / smallest : 1;
}

TEST(LeastSquares, IsTheShortestBestSolutionOfHardSystems) {
    std::mt19937 random(11);
    for (int round = 0; round < 4000; ++round) {
        const int n = 1 + static_cast<int>(random() % 8), m = n + static_cast<int>(random() % 12);
        const Matrix a = hardMatrix(random, m, n);
        const std::vector<double> b = randomMatrix(random, m, 1);
        const std::vector<double> expected = peer::leastSquares(a, b, m, n);
        // Both are off by rounding, times the condition squared at worst where there is a residual.
        const double k = condition(a, m, n);
        const double w = peer::singularValues(a, m, n)[0];
        const double scale = norm(expected) + (w > 0 ? norm(b) * k / w : 0);
        EXPECT_LE(distance(solve(a, b, m, n), expected), 1e-14 * (k + 10) * scale)
            << "round " << round << ", " << m << " by " << n << ", condition " << k;
    }
}

// A vanished singular value in front of a block of two.
TEST(LeastSquares, AColumnOfZerosLeavesTheOthersRight) {
    const std::vector<double> x = solve({0, 1, 2, 0, 3, 1, 0, 1, 1, 0, 2, 5}, {1, 2, 3, 4}, 4, 3);
    EXPECT_EQ(x[0], 0);
    EXPECT_NEAR(x[1], 126.0 / 209, 1e-15);  // of the two columns that are left, by the normal equations
    EXPECT_NEAR(x[2], 117.0 / 209, 1e-15);
}

TEST(LeastSquares, RefusesFewerRowsThanColumns) {
    double x = 7;
    const double b[2] = {};
    const std::string expected = failure(KV_ERR_BAD_INPUT, [&] { Least_Squares(b, b, 1, 2, &x); });
    EXPECT_NE(expected.find("ATTENTION: Not enough data points for meaningful fit."), std::string::npos);
    EXPECT_EQ(failure(KV_ERR_BAD_INPUT, [&] { Constrained_Least_Squares(b, b, 1, 2, &x, b, b, 1); }),
              expected);
    EXPECT_EQ(x, 7);
    EXPECT_NO_THROW(Least_Squares(nullptr, nullptr, 0, 0, nullptr));
}

TEST(LeastSquares, BadNumbersDoNotComeOutAsGoodOnes) {
    std::mt19937 random(5);
    for (int round = 0; round < 1000; ++round) {
        const int n = 1 + static_cast<int>(random() % 5), m = n + static_cast<int>(random() % 4);
        const auto size = static_cast<std::size_t>(n);
        Matrix a = hardMatrix(random, m, n), b = randomMatrix(random, m, 1), x(size, kNaN);
        const double bad[] = {kNaN, kInfinity, -kInfinity};
        a[random() % (size * size)] = bad[round % 3];
        Matrix vectors(size * size);
        const std::function<void()> calls[] = {
            [&] { Least_Squares(a.data(), b.data(), m, n, x.data()); },
            [&] { Constrained_Least_Squares(a.data(), b.data(), m, n, x.data(), b.data(), b.data(), 0); },
            [&] {
                Constrained_Least_Squares(vectors.data(), b.data(), n, n, x.data(), a.data(), b.data(), n);
            },
            [&] { Eigen(a.data(), n, n, x.data(), vectors.data()); },
        };
        for (const auto &call : calls) {
            const std::string text = failure(KV_ERR_NO_CONVERGENCE, call);
            if (text == "none")
                EXPECT_TRUE(&call == &calls[2] ||  // whose conditions divide by what is infinite
                            std::any_of(x.begin(), x.end(), [](double e) { return !std::isfinite(e); }))
                    << "round " << round << ", call " << &call - calls;
            else
                EXPECT_NE(text.find("No convergence in 30 SVDCMP iterations"), std::string::npos) << text;
            std::fill(x.begin(), x.end(), kNaN);
        }
        double *z = nullptr;
        std::int32_t k = 0;
        failure(KV_ERR_NO_CONVERGENCE, [&] { Null_Space(a.data(), n, n, &z, &k); });
        const std::unique_ptr<double[]> owner(z);
        EXPECT_LE(k, n);
    }
}

// Whole coefficients of polynomials are found from whole abscissas 0 to 2 * degree. The powers of these are
// ever more alike, so each degree multiplies the condition of the system by 10 to 50, and so much of the 16
// digits is lost: of a coefficient of 1 as many stay as the error's exponent tells. From degree 8 on the
// condition is beyond the cut at 1e10: the smallest singular value counts as 0, the coefficients are those of
// the shortest solution, and only the curve's values are still right.
TEST(LeastSquares, FindsTheCoefficientsOfPolynomials) {
    const double errors[] = {0, 1e-14, 1e-13, 1e-12, 1e-10, 1e-8, 1e-7, 1e-5};
    for (int degree = 1; degree <= 10; ++degree) {
        const int m = 2 * degree + 1;
        Matrix a;
        std::vector<double> coefficients;
        for (int j = 0; j <= degree; ++j)
            coefficients.push_back(j % 3 - 1 + j);
        for (int x = 0; x < m; ++x)
            for (int j = 0; j <= degree; ++j)
                a.push_back(std::pow(x, j));
        const std::vector<double> b = product(a, coefficients, m, degree + 1, 1);
        const std::vector<double> c = solve(a, b, m, degree + 1);
        if (degree < 8) {
            EXPECT_LE(distance(c, coefficients), errors[degree]) << "degree " << degree;
        } else {
            EXPECT_GT(condition(a, m, degree + 1) * 100, 1e10) << "degree " << degree;
        }
        EXPECT_LE(distance(product(a, c, m, degree + 1, 1), b), 1e-9 * norm(b)) << "degree " << degree;
    }
}

struct Constraint {
    const char *name;
    int p, n;
    Matrix c;
};
const Constraint kConstraints[] = {
    {"none", 0, 3, {}},
    {"one", 1, 3, {1, 1, 1}},
    {"one with zeros", 1, 3, {0, 0, 2}},
    {"two", 2, 4, {1, 2, 0, 1, 3, 1, 1, -1}},
    {"two, whose first columns are singular", 2, 4, {1, 2, 0, 1, 2, 4, 1, -1}},
    {"two that say the same", 2, 3, {1, 2, 3, 2, 4, 6}},
    {"as many as unknowns", 3, 3, {2, 0, 1, 0, 1, 0, 1, 0, 2}},
    {"more than unknowns", 3, 2, {1, 0, 0, 1, 1, 1}},
};

TEST(ConstrainedLeastSquares, KeepsTheConditionsAndIsBestAmongThose) {
    std::mt19937 random(17);
    for (const Constraint &k : kConstraints) {
        const int m = k.n + 5;
        const Matrix a = randomMatrix(random, m, k.n);
        const std::vector<double> b = randomMatrix(random, m, 1), meets = randomMatrix(random, k.n, 1);
        const std::vector<double> d = product(k.c, meets, k.p, k.n, 1);  // so that they can be kept
        std::vector<double> x(meets.size(), kNaN);
        Constrained_Least_Squares(a.data(), b.data(), m, k.n, x.data(), k.c.data(), d.data(), k.p);
        EXPECT_LE(distance(product(k.c, x, k.p, k.n, 1), d), 1e-13) << k.name;
        if (std::string(k.name) == "one with zeros") {
            EXPECT_EQ(x[0], 0) << "its columns of the null space are zero or of the second component";
            continue;
        }
        // The residual's gradient has no part along the solutions of c x = 0.
        std::vector<double> residual = product(a, x, m, k.n, 1);
        for (std::size_t i = 0; i < b.size(); ++i)
            residual[i] -= b[i];
        const std::vector<double> gradient = product(transposed(a, m, k.n), residual, k.n, m, 1);
        std::vector<double> lagrange;
        if (k.p > 0) lagrange = peer::leastSquares(transposed(k.c, k.p, k.n), gradient, k.n, k.p);
        if (k.p > 0) {
            EXPECT_LE(distance(product(transposed(k.c, k.p, k.n), lagrange, k.n, k.p, 1), gradient), 1e-13)
                << k.name;
        } else {
            EXPECT_LE(norm(gradient), 1e-13) << k.name;
        }
    }
}

// Which element a particular solution rests on shows where the null space holds nothing in its place.
TEST(ConstrainedLeastSquares, RestsOnTheFirstElementThatIsNotTooSmall) {
    for (const auto &[element, first, last] : {std::array{0.9e-10, 0.0, 2.0}, {1.1e-10, 2.0, 0.0}}) {
        const double c[] = {element, 0, 2}, d[] = {first == 0 ? 4 : 2 * element};
        const Matrix a = {1, 2, 3, 4, 5, 7, 8, 1, 2};
        double x[3];
        Constrained_Least_Squares(a.data(), a.data(), 3, 3, x, c, d, 1);
        EXPECT_DOUBLE_EQ(x[0], first);
        EXPECT_DOUBLE_EQ(x[2], last);
    }
}

TEST(NullSpace, HoldsWhatTheConditionsTakeToZero) {
    std::mt19937 random(23);
    for (int round = 0; round < 1000; ++round) {
        const int p = 1 + static_cast<int>(random() % 5), n = 1 + static_cast<int>(random() % 6);
        const Matrix c = hardMatrix(random, p, n);
        double *z = nullptr;
        std::int32_t k = -1;
        Null_Space(c.data(), p, n, &z, &k);
        const std::unique_ptr<double[]> owner(z);
        const std::vector<double> w = peer::singularValues(c, p, n);
        const int rank = static_cast<int>(std::count_if(
            w.begin(), w.end(), [&](double value) { return value >= 1e-10 * w[0] && value > 0; }));
        ASSERT_EQ(k, p == 1 ? n - 1 : rank == 0 ? 0 : n - rank) << "round " << round;
        const Matrix basis(z, z + static_cast<std::ptrdiff_t>(n) * k);
        EXPECT_LE(norm(product(c, basis, p, n, k)), (p == 1 ? 1e-15 * w[0] : 1e-13) * w[0])
            << "round " << round;
        if (p == 1) continue;
        Matrix gram = product(transposed(basis, n, k), basis, k, n, k);
        for (int i = 0; i < k; ++i)
            gram[static_cast<std::size_t>(i * (k + 1))] -= 1;
        EXPECT_LE(norm(gram), 1e-13) << "orthonormal, round " << round;
    }
    double *z = nullptr;
    std::int32_t k = 0;
    const double c[] = {0, 0, 2};
    Null_Space(c, 1, 3, &z, &k);
    const std::unique_ptr<double[]> owner(z);
    EXPECT_EQ(Matrix(z, z + 6), (Matrix{0, 0, 0, 2, 0, 0}));
}

TEST(EigenDecomposition, SolvesSymmetricProblemsAndLeavesEqualValuesToTheLast) {
    std::mt19937 random(29);
    for (int m = 1; m <= 8; ++m) {
        const auto size = static_cast<std::size_t>(m);
        const Matrix half = randomMatrix(random, m, m);
        Matrix a = product(transposed(half, m, m), half, m, m, m), values(size), vectors(a.size());
        for (double &x : a)
            x *= m % 2 == 0 ? 1e160 : 1e-160;
        Eigen(a.data(), m, m, values.data(), vectors.data());
        Matrix scaled = vectors, square = product(transposed(vectors, m, m), vectors, m, m, m);
        for (std::size_t i = 0; i < scaled.size(); ++i) {
            scaled[i] *= values[i % size];
            EXPECT_NEAR(square[i], i % (size + 1) == 0 ? 1 : 0, 1e-13) << m;
        }
        const Matrix known = peer::singularValues(a, m, m);
        EXPECT_LE(distance(product(a, vectors, m, m, m), scaled), 1e-14 * m * m * known[0]) << m;
        std::sort(values.rbegin(), values.rend());
        EXPECT_LE(distance(values, known), 1e-14 * m * known[0]) << m;
    }
    const Matrix twice = {2, 0, 0, 0, 5, 0, 0, 0, 2};
    Matrix values(3, -1), vectors(9, -1);
    Eigen(twice.data(), 3, 3, values.data(), vectors.data());
    EXPECT_EQ(values, (Matrix{-1, 5, 2}));
    for (std::size_t row = 0; row < 9; row += 3)
        EXPECT_EQ(vectors[row], -1) << "the first of the two equal ones";
    EXPECT_EQ(std::fabs(vectors[4]), 1);
    EXPECT_EQ(std::fabs(vectors[8]), 1);
}

TEST(MatrixInverses, GiveOneBack) {
    std::mt19937 random(31);
    for (int n = 1; n <= 40; ++n) {
        Matrix a = randomMatrix(random, n, n);
        if (n > 1) a[0] = 0;
        Matrix inverse(a.size());
        ASSERT_EQ(Matrix_Inverse(a.data(), n, inverse.data()), 1) << n;
        Matrix one = product(inverse, a, n, n, n);
        for (int i = 0; i < n; ++i)
            one[static_cast<std::size_t>(i * (n + 1))] -= 1;
        EXPECT_LE(norm(one), 1e-15 * n * condition(a, n, n)) << n;
        ASSERT_EQ(Matrix_Inverse(a.data(), n, a.data()), 1);
        EXPECT_EQ(a, inverse) << "in place";
        if (n != 3) continue;
        const std::vector<float> f(inverse.begin(), inverse.end());
        float back[9];
        MatrixInverse(f.data(), back);
        Matrix again(9);
        ASSERT_EQ(Matrix_Inverse(Matrix(f.begin(), f.end()).data(), 3, again.data()), 1);
        for (int i = 0; i < 9; ++i)
            EXPECT_NEAR(static_cast<double>(back[i]), again[static_cast<std::size_t>(i)], 1e-5);
    }
}

TEST(MatrixInverses, TellOfASingularMatrix) {
    Matrix inverse(9);
    EXPECT_EQ(Matrix_Inverse(Matrix{1, 2, 3, 2, 4, 6, 1, 1, 1}.data(), 3, inverse.data()), 0);
    EXPECT_EQ(Matrix_Inverse(Matrix{0}.data(), 1, inverse.data()), 0);
    EXPECT_EQ(Matrix_Inverse(nullptr, 0, nullptr), 1);
    // A not-a-number stays out of the way of the row that is right.
    EXPECT_EQ(Matrix_Inverse(Matrix{kNaN, 1, 0, 1}.data(), 2, inverse.data()), 0) << "0 is the pivot";
    float untouched[9] = {7};
    float flat[9] = {9e-5F, 0, 0, 0, 1e-3F, 0, 0, 0, 1e-3F};  // determinant 9e-11
    MatrixInverse(flat, untouched);
    EXPECT_EQ(untouched[0], 7);
    flat[0] = 1.1e-4F;
    MatrixInverse(flat, untouched);
    EXPECT_FLOAT_EQ(untouched[8], 1000);
}

}  // namespace
