#include "kvbase/numerics/kv_poly.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "kvbase/numerics/kv_math.h"
#include "kvbase/runtime/kv_exception.h"

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr std::int32_t kHighestOrder = 4;

// The rows t, t^2, ... of the points behind the first one, and how far they lie above it.
struct System {
    std::int32_t rows;
    std::vector<double> matrix, right;
};

std::int32_t usualOrder(std::uint16_t count) { return count <= 3 ? 1 : count <= 5 ? 2 : count <= 7 ? 3 : 4; }

System Poly_Design_Matrix(const float *x, const float *y, std::uint16_t count, std::int32_t order) {
    const std::size_t rows = count - 1U, columns = static_cast<std::size_t>(order);
    System system{static_cast<std::int32_t>(rows), std::vector<double>(rows * columns),
                  std::vector<double>(rows)};
    for (std::size_t i = 0; i < rows; ++i) {
        const float t = (x[i + 1] - x[0]) / (x[rows] - x[0]);
        double power = 1;
        for (std::size_t j = 0; j < columns; ++j)
            system.matrix[i * columns + j] = power *= static_cast<double>(t);
        system.right[i] = static_cast<double>(y[i + 1]) - static_cast<double>(y[0]);
    }
    return system;
}

// How many real roots of the derivative lie strictly between lo and hi, of those that a curve may not have
// all: the two of a cubic, or the three of a quartic. Source of the cubic's roots: Press et al., Numerical
// Recipes, 5.6.
int extremaBetween(std::int32_t order, const double *c, double lo, double hi) {
    const auto isInside = [&](double root) { return root > lo && root < hi ? 1 : 0; };
    if (order == 3) {
        const double A = 3 * c[2], B = 2 * c[1], D = B * B - 4 * A * c[0];
        if (!(D > 0)) return 0;
        const double sign = B > 0 ? 1 : B < 0 ? -1 : 0;
        const double q = -0.5 * (B + sign * std::sqrt(D));
        return isInside(q / A) + isInside(c[0] / q);
    }
    const double a = 4 * c[3], a1 = 3 * c[2] / a, a2 = 2 * c[1] / a, a3 = c[0] / a;
    const double Q = (a1 * a1 - 3 * a2) / 9, R = (2 * a1 * a1 * a1 - 9 * a1 * a2 + 27 * a3) / 54;
    if (!(Q * Q * Q > R * R)) return 0;
    const double theta = std::acos(R / std::sqrt(Q * Q * Q));
    int inside = 0;
    for (const double phi : {theta / 3, (theta + kTwoPi) / 3, (theta - kTwoPi) / 3})
        inside += isInside(-2 * std::sqrt(Q) * std::cos(phi) - a1 / 3);
    return inside;
}

bool Poly_Shape_Ok(std::int32_t order, const double *c, double lo, double hi) {
    return order < 3 || extremaBetween(order, c, lo, hi) < 2;
}

template <class Number>
Number normalised(Number x, Number x0, Number x1) {
    return (x - x0) / (x1 - x0);
}

}  // namespace

bool FitPoly(const float *x, const float *y, std::uint16_t count, bool constrained, std::int32_t *order,
             double **coefficients) {
    if (count < 2 || !(std::fabs(x[count - 1] - x[0]) > 0))
        throw KV_Exception("ATTENTION: Not enough data points for meaningful fit.", KV_ERR_BAD_INPUT, KV_HERE,
                           true);
    const double lo = constrained ? 0 : static_cast<double>(x[0]);
    const double hi = constrained ? 1 : static_cast<double>(x[count - 1]);
    std::int32_t tried = *order >= 1 && *order <= kHighestOrder ? *order : usualOrder(count);
    for (;; --tried) {
        const System system = Poly_Design_Matrix(x, y, count, tried);
        auto fitted = std::make_unique<double[]>(static_cast<std::size_t>(tried));
        const double *const last = system.matrix.data() + system.matrix.size() - tried;
        if (constrained)
            Constrained_Least_Squares(system.matrix.data(), system.right.data(), system.rows, tried,
                                      fitted.get(), last, &system.right.back(), 1);
        else
            Least_Squares(system.matrix.data(), system.right.data(), system.rows, tried, fitted.get());
        if (!Poly_Shape_Ok(tried, fitted.get(), lo, hi)) continue;
        *order = tried;
        *coefficients = fitted.release();
        return true;
    }
}

void UsePoly(float x, float *y, std::int32_t order, const double *coefficients, float x0, float x1,
             float y0) {
    const float t = normalised(x, x0, x1);
    float sum = y0, power = 1;
    for (std::int32_t i = 0; i < order; ++i) {
        power *= t;
        sum += static_cast<float>(static_cast<double>(power) * coefficients[i]);
    }
    *y = sum;
}

void UsePolyd(double x, double *y, std::int32_t order, const double *coefficients, double x0, double x1,
              double y0) {
    const double t = normalised(x, x0, x1);
    double sum = y0, power = 1;
    for (std::int32_t i = 0; i < order; ++i) {
        power *= t;
        sum += power * coefficients[i];
    }
    *y = sum;
}
