#include <gtest/gtest.h>
#include <kvbase/numerics/kv_poly.h>
#include <kvbase/runtime/kv_exception.h>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace {

using Curve = std::function<double(double)>;

struct Fit {
    Fit(const std::vector<float> &x, const Curve &curve, bool constrained, std::int32_t wanted)
        : order(wanted) {
        for (const float at : x)
            y.push_back(static_cast<float>(curve(static_cast<double>(at))));
        double *fitted = nullptr;
        EXPECT_TRUE(
            FitPoly(x.data(), y.data(), static_cast<std::uint16_t>(x.size()), constrained, &order, &fitted));
        coefficients.reset(fitted);
        first = x.front();
        last = x.back();
    }
    double at(double x) const {
        double value = 0;
        UsePolyd(x, &value, order, coefficients.get(), static_cast<double>(first), static_cast<double>(last),
                 static_cast<double>(y.front()));
        float single = 0;
        UsePoly(static_cast<float>(x), &single, order, coefficients.get(), first, last, y.front());
        EXPECT_NEAR(static_cast<double>(single), value, 1e-5 * (1 + std::fabs(value)));
        return value;
    }
    std::vector<float> y;
    std::int32_t order;
    std::unique_ptr<double[]> coefficients;
    float first = 0, last = 0;
};

std::vector<float> ramp(int count, float first, float step) {
    std::vector<float> x(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = first + static_cast<float>(i) * step;
    return x;
}

// A derivative (t - r1)(t - r2)..., integrated from 0, in the variable of the fit.
Curve withExtremaAt(const std::vector<double> &roots, float first, float last) {
    std::vector<double> c{1};
    for (const double root : roots) {
        std::vector<double> next(c.size() + 1);
        for (std::size_t i = 0; i < c.size(); ++i) {
            next[i + 1] += c[i];
            next[i] -= root * c[i];
        }
        c = next;
    }
    return [=](double x) {
        const double t = (x - static_cast<double>(first)) / static_cast<double>(last - first);
        double y = 0;
        for (std::size_t i = 0; i < c.size(); ++i)
            y += 100 * c[i] * std::pow(t, static_cast<double>(i + 1)) / static_cast<double>(i + 1);
        return y;
    };
}

TEST(FitPoly, ChoosesItsOrderFromThePoints) {
    struct {
        int count;
        std::int32_t wanted, order;
    } const cases[] = {{2, 0, 1}, {3, 0, 1},  {4, 0, 2},  {5, 0, 2},  {5, 7, 2},  {6, -1, 3}, {7, 0, 3},
                       {8, 0, 4}, {20, 5, 4}, {20, 1, 1}, {20, 2, 2}, {20, 3, 3}, {5, 4, 4}};
    for (const auto &c : cases) {
        const Fit fit(
            ramp(c.count, 0, 5), [](double x) { return std::exp(x / 100); }, false, c.wanted);
        EXPECT_EQ(fit.order, c.order) << c.count << " points, asked for " << c.wanted;
    }
}

TEST(FitPoly, FindsTheCurveAndMeetsItsEnds) {
    const std::vector<float> x = ramp(12, 10, 7);
    const auto cubic = [](double at) { return 3 + at + at * at / 50 + at * at * at / 9000; };
    for (const bool constrained : {false, true}) {
        const Fit fit(x, cubic, constrained, 3);
        for (const float at : x)
            EXPECT_NEAR(fit.at(static_cast<double>(at)), cubic(static_cast<double>(at)), 2e-4);
    }
    // What no such curve can follow: both ends are met all the same, the last one only when it is asked for.
    const auto bent = [](double at) { return at < 50 ? at : 50 + (at - 50) / 10; };
    const Fit free(x, bent, false, 2), held(x, bent, true, 2);
    EXPECT_EQ(free.at(10), 10);
    EXPECT_EQ(held.at(10), 10);
    EXPECT_GT(std::fabs(free.at(87) - bent(87)), 0.5);
    EXPECT_NEAR(held.at(87), bent(87), 1e-5);
}

TEST(FitPoly, PlacesPointsInSinglePrecision) {
    const Fit fit(
        {0, 1, 3}, [](double x) { return x == 1 ? 1 : 0; }, false, 1);
    const double t = 1.0F / 3.0F;
    EXPECT_NEAR(fit.coefficients[0], t / (t * t + 1), 1e-15) << "the slope through 0 by its definition";
}

TEST(FitPoly, LowersTheOrderOfCurvesThatTurnTwice) {
    struct {
        const char *name;
        std::vector<double> extrema;  // within 0 to 1
        std::int32_t order, constrainedOrder;
        float first, last;  // abscissas
    } const cases[] = {
        {"cubic, none", {-1, -2}, 3, 3, 0, 1},
        {"cubic, one", {0.5, 2}, 3, 3, 0, 1},
        {"cubic, both", {0.3, 0.6}, 2, 2, 0, 1},
        {"cubic, one at the end", {0.5, 1.01}, 3, 3, 0, 1},
        {"quartic, one", {0.5, 2, 3}, 4, 4, 0, 1},
        {"quartic, two", {0.4, 0.7, 3}, 2, 2, 0, 1},
        {"quartic, three", {0.2, 0.5, 0.9}, 2, 2, 0, 1},
        // Looked for between the abscissas, though they are in units of their range.
        {"cubic, both, far abscissas", {0.3, 0.6}, 3, 2, 10, 20},
        {"cubic, none, wide abscissas", {2, 3}, 2, 3, 0, 100},
    };
    for (const auto &c : cases) {
        const std::vector<float> x = ramp(21, c.first, (c.last - c.first) / 20);
        const auto order = static_cast<std::int32_t>(c.extrema.size()) + 1;
        EXPECT_EQ(Fit(x, withExtremaAt(c.extrema, c.first, c.last), false, order).order, c.order) << c.name;
        EXPECT_EQ(Fit(x, withExtremaAt(c.extrema, c.first, c.last), true, order).order, c.constrainedOrder)
            << c.name << ", constrained";
    }
}

TEST(FitPoly, RefusesTooLittleData) {
    const float x[] = {1, 2, 3, 1}, y[] = {0, 1, 2, 3};
    for (const auto &[count, wanted] : {std::pair{0, 0}, {1, 1}, {3, 3}, {4, 1}}) {  // the last: no range
        std::int32_t order = wanted;
        double *coefficients = nullptr;
        try {
            FitPoly(x, y, static_cast<std::uint16_t>(count), false, &order, &coefficients);
            ADD_FAILURE() << count;
        } catch (const KV_Exception &e) {
            EXPECT_EQ(e.GetErrorId(), KV_ERR_BAD_INPUT);
        }
        EXPECT_EQ(order, wanted);
        EXPECT_EQ(coefficients, nullptr);
    }
    float value = 0;
    UsePoly(3, &value, 0, nullptr, 0, 1, 5);
    EXPECT_EQ(value, 5);
}

}  // namespace
