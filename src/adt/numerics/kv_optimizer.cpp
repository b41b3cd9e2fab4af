#include "kvbase/numerics/kv_optimizer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr double kLongPart = 0.618033989, kShortPart = 0.381966011;  // of the golden section
constexpr int kMostTrials = 25;

std::size_t entries(std::int32_t dimension) { return static_cast<std::size_t>(std::max(dimension, 0)); }

}  // namespace

KV_Optimizer::KV_Optimizer(std::int32_t dimension, double *x, void *user, Function function,
                           GradientFunction gradientFunction)
    : m_dimension(dimension),
      m_x(x),
      m_gradient(std::make_unique<double[]>(entries(dimension))),
      m_trial(std::make_unique<double[]>(entries(dimension))),
      m_value(function(user, x)),
      m_user(user),
      m_function(function),
      m_gradientFunction(gradientFunction) {}

KV_Optimizer &KV_Optimizer::operator=(const KV_Optimizer &other) {
    if (this == &other) return *this;
    auto gradient = std::make_unique<double[]>(entries(other.m_dimension));
    auto trial = std::make_unique<double[]>(entries(other.m_dimension));
    std::copy_n(other.m_gradient.get(), entries(other.m_dimension), gradient.get());
    m_dimension = other.m_dimension;
    m_x = other.m_x;
    m_gradient = std::move(gradient);
    m_trial = std::move(trial);
    m_value = other.m_value;
    m_low = other.m_low;
    m_high = other.m_high;
    m_bestStep = other.m_bestStep;
    m_user = other.m_user;
    m_function = other.m_function;
    m_gradientFunction = other.m_gradientFunction;
    return *this;
}

KV_Optimizer::~KV_Optimizer() = default;

// The function's value a step down the gradient; the point is then in m_trial.
double KV_Optimizer::valueAt(double step) {
    for (std::size_t i = 0; i < entries(m_dimension); ++i)
        m_trial[i] = m_x[i] - step * m_gradient[i];
    return m_function(m_user, m_trial.get());
}

double KV_Optimizer::OptimizationGold() {
    if (m_value == 0) return m_value;
    for (std::int32_t round = 1;; ++round) {
        m_gradientFunction(m_user, m_x, m_gradient.get());
        const double next = findBracket();
        OptimizationOneDimGold();
        m_high = next;
        if (round > m_maxOuter || !(m_value > m_valueGoal)) return m_value;
    }
}

// Looks for a step that improves, in steps that become shorter by the golden section, and sets m_low and
// m_high to embrace the best one. The upper end for the next round: wider when the first step had improved
// already.
double KV_Optimizer::findBracket() {
    m_low = 0;
    double former = m_high, step = kLongPart * m_high;
    for (int trial = 1;; ++trial) {
        const bool ends = valueAt(step) < m_value || trial == kMostTrials;
        if (ends || !(former > 0)) {
            if (former > 0) m_high = former;
            return trial == 1 ? 2 * former : former;
        }
        const double shorter = kShortPart * former;
        former = step;
        step = shorter;
    }
}

// Golden section between m_low and m_high. Both points are taken anew in each round.
void KV_Optimizer::OptimizationOneDimGold() {
    for (std::int32_t round = 1;; ++round) {
        const double distance = m_high - m_low;
        const double farStep = distance * kLongPart + m_low, nearStep = distance * kShortPart + m_low;
        const double nearValue = valueAt(nearStep), farValue = valueAt(farStep);
        const bool isNear = farValue > nearValue;
        (isNear ? m_high : m_low) = isNear ? farStep : nearStep;
        if (round <= m_maxInner && std::fabs(m_low - m_high) > m_stepGoal) continue;

        m_bestStep = isNear ? nearStep : farStep;
        for (std::size_t i = 0; i < entries(m_dimension); ++i)
            m_x[i] -= m_bestStep * m_gradient[i];
        m_value = isNear ? nearValue : farValue;
        return;
    }
}
