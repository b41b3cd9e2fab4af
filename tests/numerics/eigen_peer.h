#pragma once

#include <vector>

// What the Eigen library makes of a problem. Its namespace has the name of one of our functions, so its
// headers and ours don't meet.

namespace peer {

using Matrix = std::vector<double>;  // row-major

/// The shortest least-squares solution. Singular values below 1e-10 of the largest count as 0.
std::vector<double> leastSquares(const Matrix &a, const std::vector<double> &b, int m, int n);
/// In descending order.
std::vector<double> singularValues(const Matrix &a, int m, int n);

}  // namespace peer
