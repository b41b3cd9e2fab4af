#pragma once

#include <cstdint>
#include <memory>

#include "kvbase/base/export.h"

/// Minimises a function of n variables whose gradient is known: steepest descent, with a golden-section
/// search for the step in each round. The work is limited: at most 11 rounds, each of one gradient, up to 25
/// trials for a step that improves, and at most 11 rounds of two calls of the function between 0 and such a
/// step.
///
/// What a round ends with is taken without a look at what was before, so the value can rise. One thread at a
/// time; the callbacks run on it. They may throw: the exception passes through, and x is what the last
/// finished search for a step left.
class KV_EXPORT KV_Optimizer {
public:
    /// The value at x. user is what the constructor was given.
    using Function = double (*)(void *user, double *x);
    /// Writes the partial derivatives at x.
    using GradientFunction = void (*)(void *user, double *x, double *gradient);

    /// A minimisation from x on, of dimension entries, which stay the caller's and are changed in place; they
    /// must outlive the object, and so must user. Calls the function once.
    KV_Optimizer(std::int32_t dimension, double *x, void *user, Function function,
                 GradientFunction gradientFunction);
    KV_Optimizer(const KV_Optimizer &) = delete;
    /// Takes over all of the other's state, the caller's x included; the gradient is copied.
    KV_Optimizer &operator=(const KV_Optimizer &other);
    ~KV_Optimizer();

    /// Minimises until the rounds are used up or the value is at most 1e-10, and returns the value at x.
    /// Calls nothing when the value is exactly 0. Another call goes on from there.
    double OptimizationGold();

private:
    double valueAt(double step);
    double findBracket();
    void OptimizationOneDimGold();

    std::int32_t m_dimension;
    double *m_x;                           // the caller's
    std::unique_ptr<double[]> m_gradient;  // the last one
    std::unique_ptr<double[]> m_trial;     // a point on the way down it
    std::int32_t m_maxOuter = 10, m_maxInner = 10;
    double m_value;
    double m_valueGoal = 1e-10, m_stepGoal = 1e-10;
    double m_low = 0, m_high = 1.0;  // steps that embrace the best one
    double m_bestStep = 0;           // of the last search
    void *m_user;
    Function m_function;
    GradientFunction m_gradientFunction;
};
