#include "eigen_peer.h"

#include <Eigen/Dense>

namespace {

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

Eigen::JacobiSVD<Eigen::MatrixXd> decompose(const peer::Matrix &a, int m, int n) {
    Eigen::JacobiSVD<Eigen::MatrixXd> svd(Eigen::Map<const RowMajor>(a.data(), m, n),
                                          Eigen::ComputeThinU | Eigen::ComputeThinV);
    svd.setThreshold(1e-10);
    return svd;
}

std::vector<double> toVector(const Eigen::VectorXd &v) { return {v.data(), v.data() + v.size()}; }

}  // namespace

namespace peer {

std::vector<double> leastSquares(const Matrix &a, const std::vector<double> &b, int m, int n) {
    return toVector(decompose(a, m, n).solve(Eigen::Map<const Eigen::VectorXd>(b.data(), m)));
}

std::vector<double> singularValues(const Matrix &a, int m, int n) {
    return toVector(decompose(a, m, n).singularValues());
}

}  // namespace peer
