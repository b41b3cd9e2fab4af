#include <gtest/gtest.h>
#include <kvbase/numerics/kv_optimizer.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

// A function of n variables that notes where it is asked. The sequence of trial steps follows from that.
struct Problem {
    std::function<double(const double *)> function;
    std::function<void(const double *, double *)> slope;
    std::vector<double> x;
    std::vector<std::vector<double>> asked{};
    std::vector<std::size_t> gradients{};  // how often the function had been asked before each
    int throwsAt = -1;

    KV_Optimizer optimizer() {
        return {static_cast<std::int32_t>(x.size()), x.data(), this,
                [](void *user, double *at) { return static_cast<Problem *>(user)->value(at); },
                [](void *user, double *at, double *gradient) {
                    auto &problem = *static_cast<Problem *>(user);
                    problem.gradients.push_back(problem.asked.size());
                    problem.slope(at, gradient);
                }};
    }
    double value(const double *at) {
        asked.emplace_back(at, at + x.size());
        if (static_cast<int>(asked.size()) == throwsAt) throw 42;
        return function(at);
    }
};

Problem parabola(double start, double curvature) {
    return {[=](const double *x) { return curvature * x[0] * x[0]; },
            [=](const double *x, double *g) { g[0] = 2 * curvature * x[0]; },
            {start}};
}

TEST(Optimizer, TakesItsStepsByTheGoldenSection) {
    // f = x^2 from 1: the first trial, at step 0.618, improves. Then the section halves 0 to 1.
    Problem problem = parabola(1, 1);
    KV_Optimizer optimizer = problem.optimizer();
    const double result = optimizer.OptimizationGold();
    std::vector<double> steps;
    for (std::size_t i = 1; i < 8; ++i)
        steps.push_back((1 - problem.asked[i][0]) / 2);
    const double expected[] = {0.618033989, 0.381966011, 0.618033989, 0.618033989,
                               0.763932022, 0.527864045, 0.618033989};
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_NEAR(steps[i], expected[i], 1e-9) << i;
    EXPECT_EQ(result, problem.x[0] * problem.x[0]);
    EXPECT_LE(result, 1e-10);
    // The constructor's call; then a trial that improves and 11 rounds of two calls.
    EXPECT_EQ(problem.gradients[0], 1U);
    EXPECT_EQ(problem.gradients[1], 1U + 1 + 22);
    // The second round starts from the better one of the last two, with a bracket twice as wide.
    const double start = std::min(problem.asked[22][0], problem.asked[23][0],
                                  [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    EXPECT_NEAR(problem.asked[24][0], start * (1 - 2 * 2 * 0.618033989), 1e-15);
}

TEST(Optimizer, NarrowsTheBracketUntilATrialImproves) {
    // f = 50 x^2: only steps below 0.02 improve.
    Problem problem = parabola(1, 50);
    KV_Optimizer optimizer = problem.optimizer();
    optimizer.OptimizationGold();
    double before = 1, step = 0.618033989;
    for (std::size_t i = 1;; ++i) {
        ASSERT_NEAR((1 - problem.asked[i][0]) / 100, step, 1e-9) << i;
        if (step < 0.02) break;
        const double next = 0.381966011 * before;
        before = step;
        step = next;
    }
    EXPECT_LE(problem.x[0] * problem.x[0] * 50, 1e-10);
}

TEST(Optimizer, CountsItsWork) {
    Problem done = parabola(0, 1);
    KV_Optimizer nothing = done.optimizer();
    EXPECT_EQ(nothing.OptimizationGold(), 0);
    EXPECT_EQ(done.asked.size(), 1U) << "the constructor's";
    EXPECT_TRUE(done.gradients.empty());

    // 25 trials for nothing narrow the bracket to 9.7e-6 of its width: the first of the 11 rounds halves it
    // 11 times, all others, whose brackets are below 1e-10, once. Then there is no bracket left to try in.
    Problem flat{[](const double *) { return 5.0; }, [](const double *, double *g) { g[0] = 1; }, {3}};
    KV_Optimizer search = flat.optimizer(), copy = flat.optimizer();
    EXPECT_EQ(search.OptimizationGold(), 5);
    EXPECT_EQ(flat.gradients.size(), 11U);
    EXPECT_EQ(flat.asked.size(), 2U + (25 + 22) + 10 * (25 + 2));
    EXPECT_NEAR(flat.x[0], 3 - std::pow(0.381966011, 12), 1e-7) << "equal values: the far step is taken";
    copy = search;
    for (const std::size_t calls : {11U * (25 + 2), 0U, 0U, 0U, 0U, 0U, 11U * (1 + 2)}) {
        flat.asked.clear();
        copy.OptimizationGold();
        EXPECT_TRUE(calls == 0 || flat.asked.size() == calls) << flat.asked.size();
    }

    // A value at the goal ends the work after a round.
    for (const double value : {1e-10, 1.0001e-10}) {
        Problem found{[&](const double *x) { return x[0] == 3 ? 5 : value; },
                      [](const double *, double *g) { g[0] = 1; },
                      {3}};
        KV_Optimizer once = found.optimizer();
        EXPECT_EQ(once.OptimizationGold(), value);
        EXPECT_EQ(found.gradients.size(), value > 1e-10 ? 11U : 1U);
    }

    // In the second round the 17th trial improves: a bracket of 9.7e-6 times 4.5e-4 is halved 8 times.
    int calls = 0;
    Problem late{[&](const double *) { return ++calls == 1 + (25 + 22) + 17 ? 4.0 : 5.0; },
                 [](const double *, double *g) { g[0] = 1; },
                 {3}};
    late.optimizer().OptimizationGold();
    EXPECT_EQ(calls, 1 + (25 + 22) + (17 + 16) + 9 * (25 + 2));
}

TEST(Optimizer, FindsValleysAndGoesOn) {
    // Rosenbrock's valley with a gentle bend, and a sum of squares in five dimensions.
    Problem valley{
        [](const double *x) { return std::pow(1 - x[0], 2) + 4 * std::pow(x[1] - x[0] * x[0], 2); },
        [](const double *x, double *g) {
            g[0] = -2 * (1 - x[0]) - 16 * x[0] * (x[1] - x[0] * x[0]);
            g[1] = 8 * (x[1] - x[0] * x[0]);
        },
        {-1, 1}};
    KV_Optimizer optimizer = valley.optimizer();
    const double first = optimizer.OptimizationGold();
    double last = first;
    for (int i = 0; i < 60; ++i)
        last = optimizer.OptimizationGold();
    EXPECT_LT(first, 4);
    EXPECT_LT(last, 1e-6);
    EXPECT_NEAR(valley.x[0], 1, 2e-3);
    Problem bowl{[](const double *x) {
                     double sum = 0;
                     for (int i = 0; i < 5; ++i)
                         sum += (i + 1) * (x[i] - i) * (x[i] - i);
                     return sum;
                 },
                 [](const double *x, double *g) {
                     for (int i = 0; i < 5; ++i)
                         g[i] = 2 * (i + 1) * (x[i] - i);
                 },
                 {9, 9, 9, 9, 9}};
    KV_Optimizer search = bowl.optimizer();
    EXPECT_LT(search.OptimizationGold(), 0.1) << "from 625";
}

TEST(Optimizer, LetsExceptionsThroughAndKeepsTheLastStep) {
    Problem problem = parabola(1, 1);
    problem.throwsAt = 1 + 23 + 5;  // in the second round
    KV_Optimizer optimizer = problem.optimizer();
    EXPECT_THROW(optimizer.OptimizationGold(), int);
    EXPECT_LT(std::fabs(problem.x[0]), 0.01) << "what the first round found";
    EXPECT_LE(optimizer.OptimizationGold(), 1e-10) << "and goes on";

    Problem other = parabola(7, 1);
    KV_Optimizer copy = other.optimizer();
    copy = optimizer;
    const double result = copy.OptimizationGold();
    EXPECT_EQ(result, problem.x[0] * problem.x[0]);
    EXPECT_EQ(other.x[0], 7);
}

}  // namespace
