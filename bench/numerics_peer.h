#pragma once

#include <vector>

// The libraries that a user would otherwise take for small linear algebra. The Eigen library's namespace has
// the name of one of our functions, so its headers and ours don't meet.

namespace peer {

using Matrix = std::vector<double>;  // row-major

/// Least squares of an m by n system by a singular value decomposition, in x.
using Solver = void (*)(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x);
void jacobiSvd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x);
void bdcSvd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x);
/// LAPACK's, with its workspace kept between calls.
void dgelss(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x);
void dgelsd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x);

void inverse(const Matrix &a, int n, Matrix &result);

}  // namespace peer
