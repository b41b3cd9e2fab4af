// Small linear algebra as press models need it, over many systems; beside the Eigen library and LAPACK on
// OpenBLAS.

#include <benchmark/benchmark.h>
#include <kvbase/numerics/kv_math.h>
#include <kvbase/numerics/kv_simplex.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#ifdef KVBASE_BENCH_PEERS
#    include "numerics_peer.h"
#endif

namespace {

using Matrix = std::vector<double>;

constexpr std::size_t kSystems = 64;

Matrix randomMatrix(std::mt19937 &random, std::int64_t count) {
    Matrix a(static_cast<std::size_t>(count));
    for (double &x : a)
        x = static_cast<double>(random()) / 4294967296.0;
    return a;
}

using Solver = void (*)(const Matrix &a, const Matrix &b, int m, int n, Matrix &x);

void ours(const Matrix &a, const Matrix &b, int m, int n, Matrix &x) {
    Least_Squares(a.data(), b.data(), m, n, x.data());
}

void leastSquares(benchmark::State &state, Solver solver) {
    const auto m = static_cast<int>(state.range(0)), n = static_cast<int>(state.range(1));
    std::mt19937 random(1);
    std::vector<Matrix> a, b;
    Matrix x(static_cast<std::size_t>(n)), expected(x);
    for (std::size_t i = 0; i < kSystems; ++i) {
        a.push_back(randomMatrix(random, std::int64_t{m} * n));
        b.push_back(randomMatrix(random, m));
        solver(a[i], b[i], m, n, x);
        ours(a[i], b[i], m, n, expected);
        for (std::size_t j = 0; j < x.size(); ++j)
            if (std::fabs(x[j] - expected[j]) > 1e-6 * (1 + std::fabs(x[j])))
                state.SkipWithError("another solution");
    }
    std::size_t next = 0;
    for (auto _ : state) {
        solver(a[next % kSystems], b[next % kSystems], m, n, x);
        benchmark::DoNotOptimize(x.data());
        ++next;
    }
}

void sizes(benchmark::internal::Benchmark *bench) {
    for (const auto &[m, n] : {std::pair{3, 3}, {4, 4}, {8, 4}, {20, 5}, {50, 10}, {200, 20}})
        bench->Args({m, n});
}

using Inverter = void (*)(const Matrix &a, int n, Matrix &result);

void ourInverse(const Matrix &a, int n, Matrix &result) {
    if (Matrix_Inverse(a.data(), n, result.data()) == 0) std::abort();
}

void inverse(benchmark::State &state, Inverter inverter) {
    const auto n = static_cast<int>(state.range(0));
    std::mt19937 random(2);
    std::vector<Matrix> a;
    for (std::size_t i = 0; i < kSystems; ++i)
        a.push_back(randomMatrix(random, std::int64_t{n} * n));
    Matrix result(a[0].size());
    std::size_t next = 0;
    for (auto _ : state) {
        inverter(a[next++ % kSystems], n, result);
        benchmark::DoNotOptimize(result.data());
    }
}

BENCHMARK_CAPTURE(leastSquares, kvbase, ours)->Apply(sizes);
BENCHMARK_CAPTURE(inverse, kvbase, ourInverse)->Arg(3)->Arg(4)->Arg(8)->Arg(16);
#ifdef KVBASE_BENCH_PEERS
BENCHMARK_CAPTURE(leastSquares, JacobiSVD, peer::jacobiSvd)->Apply(sizes);
BENCHMARK_CAPTURE(leastSquares, BDCSVD, peer::bdcSvd)->Apply(sizes);
BENCHMARK_CAPTURE(leastSquares, dgelss, peer::dgelss)->Apply(sizes);
BENCHMARK_CAPTURE(leastSquares, dgelsd, peer::dgelsd)->Apply(sizes);
BENCHMARK_CAPTURE(inverse, Eigen, peer::inverse)->Arg(3)->Arg(4)->Arg(8)->Arg(16);
#endif

// Points about a simplex, so that all faces are taken.
template <auto Map, int Vertices>
void mapOn(benchmark::State &state) {
    std::mt19937 random(3);
    const Matrix t = randomMatrix(random, Vertices * 3), points = randomMatrix(random, 3 * kSystems);
    const std::vector<float> p(points.begin(), points.end());
    double q[3], w[Vertices];
    std::size_t next = 0;
    for (auto _ : state) {
        Map(p.data() + 3 * (next++ % kSystems), t.data(), q, w);
        benchmark::DoNotOptimize(w);
        benchmark::DoNotOptimize(q);
    }
}

// Weights of all signs.
void BM_MapOnTetrahedron(benchmark::State &state) {
    std::mt19937 random(3);
    const Matrix t = randomMatrix(random, 4 * 3), weights = randomMatrix(random, 4 * kSystems);
    double w[4];
    std::size_t next = 0;
    for (auto _ : state) {
        std::copy_n(weights.data() + 4 * (next++ % kSystems), 4, w);
        MapOnTetrahedron(w, t.data());
        benchmark::DoNotOptimize(w);
    }
}
BENCHMARK(BM_MapOnTetrahedron)->Name("MapOnTetrahedron");
BENCHMARK(mapOn<MapOnLine3D, 2>)->Name("MapOnLine3D");
BENCHMARK(mapOn<MapOnTriangle3D, 3>)->Name("MapOnTriangle3D");
BENCHMARK(mapOn<MapOnTrianglePlane3D, 3>)->Name("MapOnTrianglePlane3D");

void BM_TetrahedronInvert(benchmark::State &state) {
    std::mt19937 random(4);
    const Matrix numbers = randomMatrix(random, 12 + 16 + 3 * kSystems);
    const std::vector<float> f(numbers.begin(), numbers.end());
    float mapped[3], result[4];
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TetrahedronInvert(
            f.data(), f.data() + 12, f.data() + 28 + 3 * (next++ % kSystems), mapped, result, 1));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_TetrahedronInvert);

}  // namespace
