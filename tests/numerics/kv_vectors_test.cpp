#include <gtest/gtest.h>
#include <kvbase/numerics/kv_vectors.h>

#include <cmath>
#include <cstdint>

#include "random_matrix.h"

namespace {

// By whole numbers, so that all identities hold exactly.
class Vectors : public ::testing::Test {
protected:
    Matrix draw(int count) {
        Matrix v(static_cast<std::size_t>(count));
        for (double &x : v)
            x = static_cast<double>(m_random() % 41) - 20;
        return v;
    }
    std::mt19937 m_random{7};
};

Matrix minus(const Matrix &a, const Matrix &b) {
    Matrix d(a);
    for (std::size_t i = 0; i < d.size(); ++i)
        d[i] -= b[i];
    return d;
}

double determinantByPermutations(const Matrix &m, int n) {
    if (n == 1) return m[0];
    double sum = 0;
    for (int c = 0; c < n; ++c) {
        Matrix rest;
        for (int r = 1; r < n; ++r)
            for (int k = 0; k < n; ++k)
                if (k != c) rest.push_back(m[static_cast<std::size_t>(r * n + k)]);
        sum +=
            (c % 2 == 0 ? 1 : -1) * m[static_cast<std::size_t>(c)] * determinantByPermutations(rest, n - 1);
    }
    return sum;
}

TEST_F(Vectors, ProductsOfTwoAndThreeDimensions) {
    for (int round = 0; round < 50; ++round) {
        const Matrix a = draw(3), b = draw(3), c = draw(3), m = draw(9);
        double cross[3], points[3], sameName[3], area = 0;
        Cross3v(a.data(), b.data(), cross);
        EXPECT_EQ(Dot3v(a.data(), cross), 0);
        EXPECT_EQ(Dot3v(b.data(), cross), 0);
        EXPECT_EQ(Dot3v(cross, cross) + std::pow(Dot3v(a.data(), b.data()), 2),
                  Dot3v(a.data(), a.data()) * Dot3v(b.data(), b.data()));
        Matrix rows = a;
        rows.insert(rows.end(), b.begin(), b.end());
        rows.insert(rows.end(), c.begin(), c.end());
        EXPECT_EQ(Dot3v(cross, c.data()), determinantByPermutations(rows, 3)) << "a right-handed triple";
        EXPECT_EQ(Determinant(m.data()), determinantByPermutations(m, 3));

        BiVec3(a.data(), b.data(), c.data(), points);
        Cross3p(a.data(), b.data(), c.data(), sameName);
        Cross3v(minus(a, c).data(), minus(b, c).data(), cross);
        EXPECT_EQ(Matrix(points, points + 3), Matrix(cross, cross + 3));
        EXPECT_EQ(Matrix(points, points + 3), Matrix(sameName, sameName + 3));
        EXPECT_EQ(Dot3p(a.data(), b.data(), c.data()), Dot3v(minus(a, c).data(), minus(b, c).data()));
        Cross2p(a.data(), b.data(), c.data(), &area);
        EXPECT_EQ(area, cross[2]) << "of the first two components";
        EXPECT_EQ(BiVec2(a.data(), b.data()), a[0] * b[1] - a[1] * b[0]);
        EXPECT_EQ(Dot2(a.data(), b.data(), c.data()) + minus(a, c)[2] * minus(b, c)[2],
                  Dot3p(a.data(), b.data(), c.data()));
    }
}

TEST_F(Vectors, ProductsOfFourDimensions) {
    for (int round = 0; round < 50; ++round) {
        const Matrix a = draw(4), b = draw(4), c = draw(4), d = draw(4), v = draw(4);
        const Matrix r = minus(a, d), s = minus(b, d), t = minus(c, d);
        double T[4], B[6], vB[4], vT[6], BT[4];
        TriVec4(a.data(), b.data(), c.data(), d.data(), T);
        EXPECT_EQ(Dot4p(a.data(), b.data(), d.data()), Dot4v(r.data(), s.data()));
        Matrix rows = v;
        for (const Matrix *row : {&r, &s, &t}) {
            EXPECT_EQ(Dot4v(row->data(), T), 0) << "normal to all three";
            rows.insert(rows.end(), row->begin(), row->end());
        }
        EXPECT_EQ(Dot4v(v.data(), T), determinantByPermutations(rows, 4));

        // v . (r ^ s) = (v.r) s - (v.s) r, but for the sign of the convention
        BiVec4(a.data(), b.data(), d.data(), B);
        EXPECT_EQ(Dot4B(B, B), Dot4v(r.data(), r.data()) * Dot4v(s.data(), s.data()) -
                                   std::pow(Dot4v(r.data(), s.data()), 2));
        vDotB4(v.data(), B, vB);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(vB[i], Dot4v(v.data(), r.data()) * s[i] - Dot4v(v.data(), s.data()) * r[i]);

        // (v . T) . T is |T|^2 times the part of v along the normal, with the minors without their signs.
        const double minors[4] = {T[0], -T[1], T[2], -T[3]};
        vDotT4(v.data(), minors, vT);
        BDotT4(vT, minors, BT);
        const double along = Dot4v(v.data(), T), square = Dot4v(T, T);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(-BT[i], square * v[i] - along * T[i]) << "the part within the hyperplane";
    }
}

TEST_F(Vectors, QuaternionsMultiplyAndTurn) {
    const double i[4] = {0, 1, 0, 0}, j[4] = {0, 0, 1, 0};
    double k[4];
    QProd(j, i, k);
    EXPECT_EQ(Matrix(k, k + 4), (Matrix{0, 0, 0, 1})) << "i j = k: the second argument is the left factor";
    for (int round = 0; round < 50; ++round) {
        const Matrix q = draw(4), e = draw(3);
        const double pure[4] = {0, e[0], e[1], e[2]}, conjugate[4] = {q[0], -q[1], -q[2], -q[3]};
        double left[4], both[4], turned[3];
        QProd(pure, q.data(), left);
        QProd(conjugate, left, both);
        QRotate(q.data(), e.data(), turned);
        EXPECT_EQ(both[0], 0);
        EXPECT_EQ(Matrix(turned, turned + 3), Matrix(both + 1, both + 4));
    }
}

TEST(IntegerDeterminant, IsTakenInSixtyFourBits) {
    const std::int32_t wide[9] = {2000000000, 0, 0, 0, 2000000000, 0, 0, 0, 2};
    EXPECT_EQ(det(wide), 8000000000000000000);
    const std::int32_t mixed[9] = {3, -7, 2, 11, 5, -13, -1, 4, 6};
    EXPECT_EQ(det(mixed), 3 * (5 * 6 + 13 * 4) + 7 * (11 * 6 - 13) + 2 * (11 * 4 + 5));
    constexpr std::int32_t least = -2147483647 - 1;
    const std::int32_t beyond[9] = {least, 0, 0, 0, least, 0, 0, 0, 4};
    EXPECT_EQ(det(beyond), 0) << "2^64 begins again";
}

}  // namespace
