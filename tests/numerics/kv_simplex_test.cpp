#include <gtest/gtest.h>
#include <kvbase/numerics/kv_simplex.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "eigen_peer.h"
#include "random_matrix.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

Matrix pointOf(const Matrix &w, const Matrix &simplex, int D) {
    return product(w, simplex, 1, static_cast<int>(w.size()), D);
}

double distance(const Matrix &a, const Matrix &b) {
    Matrix d(a);
    for (std::size_t i = 0; i < d.size(); ++i)
        d[i] -= b[i];
    return norm(d);
}

// The weights of the orthogonal projection of p on the flat through some vertices, by least squares.
Matrix project(const Matrix &p, const Matrix &vertices, int count, int D) {
    Matrix w{1};
    if (count == 1) return w;
    Matrix edges(static_cast<std::size_t>(D * (count - 1))), from(static_cast<std::size_t>(D));
    for (int d = 0; d < D; ++d) {
        from[static_cast<std::size_t>(d)] =
            p[static_cast<std::size_t>(d)] - vertices[static_cast<std::size_t>(d)];
        for (int i = 1; i < count; ++i)
            edges[static_cast<std::size_t>(d * (count - 1) + i - 1)] =
                vertices[static_cast<std::size_t>(i * D + d)] - vertices[static_cast<std::size_t>(d)];
    }
    for (const double x : peer::leastSquares(edges, from, D, count - 1)) {
        w.push_back(x);
        w[0] -= x;
    }
    return w;
}

// The rule: the face of the positive weights, and on it the same again.
Matrix byFaces(const Matrix &p, const Matrix &simplex, const std::vector<int> &at, int D) {
    Matrix vertices;
    for (const int vertex : at)
        for (int d = 0; d < D; ++d)
            vertices.push_back(simplex[static_cast<std::size_t>(vertex * D + d)]);
    const Matrix own = project(p, vertices, static_cast<int>(at.size()), D);
    std::vector<int> positive;
    for (std::size_t i = 0; i < at.size(); ++i)
        if (own[i] > 0) positive.push_back(at[i]);
    if (positive.size() < at.size()) return byFaces(p, simplex, positive, D);
    Matrix w(simplex.size() / static_cast<std::size_t>(D));
    for (std::size_t i = 0; i < at.size(); ++i)
        w[static_cast<std::size_t>(at[i])] = own[i];
    return w;
}

// The nearest point of all faces.
double nearestDistance(const Matrix &p, const Matrix &simplex, int vertices, int D) {
    double best = std::numeric_limits<double>::max();
    for (unsigned set = 1; set < 1U << vertices; ++set) {
        Matrix face;
        int count = 0;
        for (int i = 0; i < vertices; ++i) {
            if ((set >> i & 1) == 0) continue;
            face.insert(face.end(), simplex.begin() + i * D, simplex.begin() + (i + 1) * D);
            ++count;
        }
        const Matrix w = project(p, face, count, D);
        if (std::all_of(w.begin(), w.end(), [](double x) { return x >= 0; }))
            best = std::min(best, distance(pointOf(w, face, D), p));
    }
    return best;
}

struct Mapping {
    const char *name;
    int vertices, D;
    void (*map)(const Matrix &p, const Matrix &t, Matrix &q, Matrix &w);
};

template <auto Function>
void single(const Matrix &p, const Matrix &t, Matrix &q, Matrix &w) {
    const std::vector<float> point(p.begin(), p.end());
    Function(point.data(), t.data(), q.data(), w.data());
}
template <auto Function>
void twofold(const Matrix &p, const Matrix &t, Matrix &q, Matrix &w) {
    Function(p.data(), t.data(), q.data(), w.data());
}
const Mapping kMappings[] = {
    {"MapOnLine2D", 2, 2, single<MapOnLine2D>},
    {"MapOnLine3D", 2, 3, single<MapOnLine3D>},
    {"MapOnLine4D", 2, 4, twofold<MapOnLine4D>},
    {"MapOnTriangle3D", 3, 3, single<MapOnTriangle3D>},
    {"MapOnTriangle4D", 3, 4, twofold<MapOnTriangle4D>},
    {"MapOnTetrahedron4D", 4, 4, twofold<MapOnTetrahedron4D>},
};

TEST(MapOnSimplex, GivesThePointOfTheFaceThatTheSignsChoose) {
    std::mt19937 random(41);
    for (const Mapping &m : kMappings) {
        int nearest = 0, inside = 0;
        constexpr int kRounds = 2000;
        for (int round = 0; round < kRounds; ++round) {
            Matrix t = randomMatrix(random, m.vertices, m.D), p = randomMatrix(random, 1, m.D);
            for (double &x : p)
                x = static_cast<double>(static_cast<float>(x * 1.5));
            std::vector<int> all(static_cast<std::size_t>(m.vertices));
            std::iota(all.begin(), all.end(), 0);
            Matrix q(static_cast<std::size_t>(m.D)), w(all.size());
            m.map(p, t, q, w);
            const Matrix expected = byFaces(p, t, all, m.D);
            EXPECT_LE(distance(w, expected), 1e-9 * (1 + norm(project(p, t, m.vertices, m.D))) * 100)
                << m.name << ", round " << round;
            EXPECT_LE(distance(pointOf(w, t, m.D), q), 1e-9) << m.name;
            double sum = 0;
            for (const double x : w) {
                EXPECT_GE(x, 0) << m.name;
                sum += x;
            }
            EXPECT_NEAR(sum, 1, 1e-12) << m.name;
            const double best = nearestDistance(p, t, m.vertices, m.D);
            EXPECT_GE(distance(q, p), best - 1e-9) << m.name;
            nearest += distance(q, p) <= best + 1e-9 ? 1 : 0;
            inside += std::count(w.begin(), w.end(), 0.0) == 0 ? 1 : 0;
        }
        EXPECT_GE(nearest, m.vertices == 2 ? kRounds : kRounds * 8 / 10) << m.name;
        EXPECT_GE(inside, kRounds / 100) << m.name << ": both ways are taken";
    }
}

TEST(MapOnSimplex, MakesWeightsFeasible) {
    const Matrix triangle = {0, 0, 4, 0, 1, 3}, tetrahedron = {0, 0, 0, 4, 0, 0, 1, 3, 0, 1, 1, 2};
    const Matrix pentachor = {0, 0, 0, 0, 4, 0, 0, 0, 1, 3, 0, 0, 1, 1, 2, 0, 1, 1, 1, 3};
    const auto onTriangle = [&](double *w) { MapOnTriangle(w, triangle.data()); };
    const auto onTetrahedron = [&](double *w) { MapOnTetrahedron(w, tetrahedron.data()); };
    const Matrix flat = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 0, 1};
    const auto onFlat = [&](double *w) { MapOnTetrahedron(w, flat.data()); };
    const auto onPentachor = [&](double *w) { MapOnPentachor(w, pentachor.data()); };
    struct {
        const char *name;
        std::function<void(double *)> map;
        Matrix w, expected;
    } const cases[] = {
        {"line, one", MapOnLine, {-1, 2}, {0, 1}},
        {"line, none", MapOnLine, {-1, -2}, {0, 0}},
        {"line, both", MapOnLine, {2, 6}, {0.25, 0.75}},
        {"line, not a number", MapOnLine, {std::nan(""), 3}, {0, 1}},
        {"triangle, three", onTriangle, {0.2, 0.3, 0.1}, {1. / 3, 0.5, 1. / 6}},
        {"triangle, one", onTriangle, {-1, -1, 3}, {0, 0, 1}},
        {"triangle, none", onTriangle, {-1, 0, 0}, {0, 0, 0}},
        {"triangle, edge with its sum", onTriangle, {0.5, 0.5, -1}, {0.5, 0.5, 0}},
        {"triangle, edge: 2 of 4", onTriangle, {7, 0.5, -1}, {0.5, 0.5, 0}},
        {"triangle, edge: beyond its end", onTriangle, {1, 2, -1}, {0, 1, 0}},
        {"tetrahedron, four", onTetrahedron, {1, 2, 3, 2}, {0.125, 0.25, 0.375, 0.25}},
        {"tetrahedron, zeros are not positive", onTetrahedron, {0.5, 0.5, 0, 0}, {0.5, 0.5, 0, 0}},
        {"tetrahedron, face", onTetrahedron, {0.25, 0.25, 0.5, -3}, {0.25, 0.25, 0.5, 0}},
        {"tetrahedron, one", onTetrahedron, {0, -1, 0.1, -3}, {0, 0, 1, 0}},
        {"pentachor, five as they are", onPentachor, {1, 2, 3, 4, 5}, {1, 2, 3, 4, 5}},
        {"pentachor, none as they are", onPentachor, {-1, 0, -3, 0, 0}, {-1, 0, -3, 0, 0}},
        {"pentachor, one", onPentachor, {-1, 0, 3, 0, 0}, {0, 0, 1, 0, 0}},
        {"pentachor, cell", onPentachor, {0.25, 0.25, 0.25, 0.25, 0}, {0.25, 0.25, 0.25, 0.25, 0}},
        {"pentachor, face", onPentachor, {0, 0.25, 0.25, 0.5, 0}, {0, 0.25, 0.25, 0.5, 0}},
        {"pentachor, edge", onPentachor, {0, 0.25, 0, 0.75, 0}, {0, 0.25, 0, 0.75, 0}},
        {"tetrahedron, a face without area", onFlat, {0.3, 0.3, 0.4, -1}, {0, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        Matrix w = c.w;
        c.map(w.data());
        EXPECT_LE(distance(w, c.expected), 1e-15) << c.name;
    }
}

// The rule for weights: the point that they stand for goes onto the face of the positive ones, and from there
// on the products of its edges stand for the face. Only a pentachoron takes the negative ones along.
Matrix feasible(const Matrix &given, const Matrix &t, int D) {
    Matrix clipped = given, w(given.size()), face, products;
    std::vector<std::size_t> at;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (given[i] > 0)
            at.push_back(i);
        else if (given.size() < 5)
            clipped[i] = 0;
    }
    if (at.empty()) return clipped;
    if (at.size() == given.size()) {
        const double sum = given.size() < 5 ? std::accumulate(given.begin(), given.end(), 0.0) : 1;
        for (double &x : clipped)
            x /= sum;
        return clipped;
    }
    w[at[0]] = 1;
    if (at.size() == 1) return w;
    const auto vertex = [&](std::size_t i) { return t.begin() + static_cast<std::ptrdiff_t>(at[i]) * D; };
    const auto edge = [&](std::size_t i, int d) { return vertex(i)[d] - vertex(0)[d]; };
    for (std::size_t i = 0; i < at.size(); ++i) {
        face.insert(face.end(), vertex(i), vertex(i) + D);
        for (std::size_t j = 1; j < at.size(); ++j) {
            products.push_back(0);
            for (int d = 0; d < D; ++d)
                products.back() += edge(i, d) * edge(j, d);
        }
    }
    const int count = static_cast<int>(at.size());
    const Matrix inner = feasible(project(pointOf(clipped, t, D), face, count, D), products, count - 1);
    for (std::size_t i = 0; i < at.size(); ++i)
        w[at[i]] = inner[i];
    return w;
}

TEST(MapOnSimplex, WeightsFollowTheRuleFaceByFace) {
    std::mt19937 random(43);
    constexpr void (*kMaps[])(double *, const double *) = {MapOnTriangle, MapOnTetrahedron, MapOnPentachor};
    for (int vertices = 3; vertices <= 5; ++vertices) {
        int far = 0;
        for (int round = 0; round < 2000; ++round) {
            const int D = vertices - 1;
            const Matrix t = randomMatrix(random, vertices, D);
            Matrix w = randomMatrix(random, 1, vertices);
            const Matrix expected = feasible(w, t, D);
            const auto positive = [](const Matrix &x) {
                return std::count_if(x.begin(), x.end(), [](double e) { return e > 0; });
            };
            far += positive(expected) < positive(w) ? 1 : 0;
            kMaps[vertices - 3](w.data(), t.data());
            EXPECT_LE(distance(w, expected), 1e-7) << vertices << " vertices, round " << round;
        }
        EXPECT_GE(far, 50) << vertices << " vertices: points outside their face";
    }
}

TEST(MapOnSimplex, DegenerateSimplicesHaveNoWeights) {
    const Matrix point = {1, 2, 3, 4}, segment = {1, 1, 1, 1, 1, 1, 1, 1};
    Matrix q(4, 7), w(2, 7);
    MapOnLine4D(point.data(), segment.data(), q.data(), w.data());
    EXPECT_EQ(w, (Matrix{0, 0}));
    EXPECT_EQ(q, Matrix(4, 7)) << "not written";
    const float p[] = {5, 0, 0};
    const Matrix exact = {0, 0, 0, 3, 0, 0};
    MapOnLine3D(p, exact.data(), q.data(), w.data());
    EXPECT_EQ(w, (Matrix{0, 1}));
    EXPECT_EQ(q[0], 3) << "the vertex itself";
    const Matrix line = {0, 0, 0, 1, 0, 0, 2, 0, 0};
    w = {7, 7, 7};
    MapOnTriangle3D(p, line.data(), q.data(), w.data());
    EXPECT_EQ(w, (Matrix{0, 0, 0}));
    EXPECT_EQ(q[0], 3) << "not written";
    // On the plane alone nothing is clipped.
    const Matrix triangle = {0, 0, 1, 2, 0, 1, 0, 2, 1};
    MapOnTrianglePlane3D(p, triangle.data(), q.data(), w.data());
    EXPECT_EQ(w, (Matrix{-1.5, 2.5, 0}));
    EXPECT_EQ(q, (Matrix{5, 0, 1, 7}));
}

struct Inversion {
    const char *name;
    float target[3];
    bool found;
    float weights[2];
    float limit = 1;
};

TEST(Inversion, OfATriangleSeesComponentsOneAndTwo) {
    const float corners[] = {50, 0, 0, 60, 10, 0, 80, 0, 20};
    const float values[] = {0, 1, 2, 3, 10, 1, 2, 3, 0, 11, 2, 3};
    const Inversion cases[] = {
        {"inside", {0, 2, 5}, true, {0.2F, 0.25F}},
        {"corner 0", {0, 0, 0}, true, {0, 0}},
        {"beyond the far edge", {0, 10, 20}, true, {0.5F, 0.5F}},
        {"beyond a limit", {0, 10, 20}, true, {0.25F, 0.25F}, 0.5F},
        {"behind corner 0", {0, -1, 1}, false, {}},
        {"beside an edge", {0, 3, -0.01F}, false, {}},
        {"not a number", {0, kNaN, 1}, false, {}},
    };
    for (const Inversion &c : cases) {
        float mapped[3] = {-1, -1, -1}, result[4] = {-1, -1, -1, -1};
        ASSERT_EQ(TriangleInvert(corners, values, c.target, mapped, result, c.limit), c.found) << c.name;
        if (!c.found) {
            EXPECT_EQ(mapped[0] + result[3], -2) << c.name << ": nothing is written";
            continue;
        }
        const float u = c.weights[0], v = c.weights[1];
        const float expected[] = {50 + 10 * u + 30 * v, 10 * u, 20 * v, 10 * u, 1 + 10 * v, 2, 3};
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(mapped[i], expected[i], 1e-5) << c.name;
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(result[i], expected[3 + i], 1e-5) << c.name;
    }
    for (const float area : {0.9e-5F, 1.1e-5F}) {
        const float flat[] = {50, 0, 0, 60, 1, 0, 80, 0, area};
        float mapped[3], result[4];
        EXPECT_EQ(TriangleInvert(flat, values, corners, mapped, result, 1), area > 1e-5F);
    }
}

TEST(Inversion, OfATetrahedronInterpolatesItsCorners) {
    std::mt19937 random(47);
    for (int round = 0; round < 500; ++round) {
        const Matrix vertices = randomMatrix(random, 4, 3), at = randomMatrix(random, 4, 4);
        const std::vector<float> corners(vertices.begin(), vertices.end()), values(at.begin(), at.end());
        Matrix w = randomMatrix(random, 1, 3);
        const bool isInside = std::all_of(w.begin(), w.end(), [](double x) { return x >= 0; });
        const double sum = w[0] + w[1] + w[2];
        Matrix all = {1 - sum, w[0], w[1], w[2]};
        const Matrix point = pointOf(all, vertices, 3);
        const std::vector<float> target(point.begin(), point.end());
        float mapped[3] = {-9, -9, -9}, result[4] = {-9, -9, -9, -9};
        const double volume = std::fabs(VolT(&vertices[0], &vertices[3], &vertices[6], &vertices[9]));
        if (volume < 0.05) continue;
        const float limit = round % 2 == 0 ? 1 : 0.5F;
        ASSERT_EQ(TetrahedronInvert(corners.data(), values.data(), target.data(), mapped, result, limit),
                  isInside);
        if (!isInside) {
            EXPECT_EQ(mapped[2] + result[0], -18);
            continue;
        }
        const double k = limit / sum;
        if (k < 1) all = {1 - static_cast<double>(limit), w[0] * k, w[1] * k, w[2] * k};
        const Matrix expected = pointOf(all, at, 4), where = pointOf(all, vertices, 3);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(static_cast<double>(result[i]), expected[i], 2e-5 / volume);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(static_cast<double>(mapped[i]), where[i], 2e-5 / volume);
    }
    const float flat[12] = {}, values[16] = {}, nowhere[3] = {kNaN, 0, 0};
    const float corners[12] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    float mapped[3], result[4];
    EXPECT_FALSE(TetrahedronInvert(flat, values, flat, mapped, result, 1)) << "no edges";
    EXPECT_FALSE(TetrahedronInvert(corners, values, nowhere, mapped, result, 1));
}

TEST(Tetrahedron, FindsThePointWithinTheOthers) {
    std::int32_t index = -1;
    const float inside[] = {0, 0, 0, 4, 0, 0, 0, 4, 0, 1, 1, 1, 0, 0, 4};
    EXPECT_EQ(CheckPointInTetrahedron(inside, &index), 1);
    EXPECT_EQ(index, 3);
    const float onFace[] = {0, 0, 0, 4, 0, 0, 0, 4, 0, 1, 1, 0, 0, 0, 4};
    EXPECT_EQ(CheckPointInTetrahedron(onFace, &index), 1);
    EXPECT_EQ(index, 3);
    const float convex[] = {0, 0, 0, 4, 0, 0, 0, 4, 0, 4, 4, 4, 0, 0, 4};
    EXPECT_EQ(CheckPointInTetrahedron(convex, &index), 0);
    EXPECT_EQ(index, 5);
    const double a[] = {1, 0, 0}, b[] = {0, 2, 0}, c[] = {0, 0, 3}, o[] = {0, 0, 0};
    EXPECT_EQ(Vol3(a, b, c), 6);
    EXPECT_EQ(VolT(o, a, b, c), 6);
    EXPECT_EQ(VolT(a, o, b, c), -6);
}

TEST(Samples, AreThinnedWhereTheyStandClosest) {
    struct {
        std::vector<float> in;
        std::int32_t wanted;
        std::vector<float> expected;
    } const cases[] = {
        {{0, 10, 20, 30, 40}, 4, {0, 20, 30, 40}},
        {{0, 10, 20, 30, 40}, 3, {0, 20, 40}},
        {{0, 1, 50, 51, 100}, 3, {0, 50, 100}},
        {{0, 10, 20, 30, 40}, 5, {0, 10, 20, 30, 40}},
        {{0, 10, 20, 30, 40}, 2, {0, 100}},
        {{0, 3e5F, 6e5F, 7e5F}, 3, {0, 3e5F, 7e5F}},
        {{7, 8}, 2, {7, 8}},
        {{7, 8, 9}, 5, {7, 8, 9}},
        {{0, 3e6F, 6e6F, 9e6F}, 3, {3e6F, 6e6F, 9e6F}},  // no gap below the bound: the first goes
    };
    for (const auto &c : cases) {
        std::vector<float> out(c.expected.size());
        ChooseBestSamples(static_cast<std::int32_t>(c.in.size()), c.in.data(), c.wanted, out.data());
        EXPECT_EQ(out, c.expected);
    }
}

TEST(Samples, SectorsAndTablesKeepTheirEnds) {
    for (const double angle : {350.0, 355.0, 0.0, 5.0, 10.0})
        EXPECT_TRUE(InSector(350, 10, angle)) << angle;
    EXPECT_TRUE(InSector(10, 20, 10) && InSector(10, 20, 20));
    EXPECT_FALSE(InSector(350, 10, 349.9) || InSector(350, 10, 10.1) || InSector(10, 20, 21) ||
                 InSector(10, 20, std::nan("")));
    const KV_LabTable table = {{10, {1, 2, 3}}, {20, {3, 2, 1}}, {40, {5, 0, 1}}};
    struct {
        float x, expected[3];
    } const cases[] = {{5, {1, 2, 3}},  {10, {1, 2, 3}},       {15, {2, 2, 2}},
                       {20, {3, 2, 1}}, {35, {4.5F, 0.5F, 1}}, {99, {5, 0, 1}}};
    for (const auto &c : cases) {
        float result[3];
        InterpolateLab(c.x, table, result);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(result[i], c.expected[i]) << c.x;
    }
    float result[3] = {7, 7, 7};
    InterpolateLab(1, {}, result);
    EXPECT_EQ(result[0], 7);
    InterpolateLab(kNaN, table, result);
    EXPECT_TRUE(std::isnan(result[0]));
}

}  // namespace
