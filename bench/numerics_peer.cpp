#include "numerics_peer.h"

#include <Eigen/Dense>
#include <algorithm>

extern "C" {
void dgelss_(const int *m, const int *n, const int *nrhs, double *a, const int *lda, double *b,
             const int *ldb, double *s, const double *rcond, int *rank, double *work, const int *lwork,
             int *info);
void dgelsd_(const int *m, const int *n, const int *nrhs, double *a, const int *lda, double *b,
             const int *ldb, double *s, const double *rcond, int *rank, double *work, const int *lwork,
             int *iwork, int *info);
}

namespace peer {

namespace {

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

template <class Svd>
void solve(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x) {
    Svd svd(Eigen::Map<const RowMajor>(a.data(), m, n), Eigen::ComputeThinU | Eigen::ComputeThinV);
    svd.setThreshold(1e-10);
    Eigen::Map<Eigen::VectorXd>(x.data(), n) = svd.solve(Eigen::Map<const Eigen::VectorXd>(b.data(), m));
}

// What LAPACK wants: columns, and room to work in.
struct System {
    System(const Matrix &a, const std::vector<double> &b, int m, int n) {
        const auto rows = static_cast<std::size_t>(m), columns = static_cast<std::size_t>(n);
        matrix.resize(rows * columns);
        for (std::size_t r = 0; r < rows; ++r)
            for (std::size_t c = 0; c < columns; ++c)
                matrix[c * rows + r] = a[r * columns + c];
        right = b;
        values.resize(columns);
        work.resize(100000);
        integers.resize(10000);
    }
    static thread_local std::vector<double> matrix, right, values, work;
    static thread_local std::vector<int> integers;
    int one = 1, rank = 0, info = 0;
    double cut = 1e-10;
};
thread_local std::vector<double> System::matrix, System::right, System::values, System::work;
thread_local std::vector<int> System::integers;

}  // namespace

void jacobiSvd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x) {
    solve<Eigen::JacobiSVD<Eigen::MatrixXd>>(a, b, m, n, x);
}

void bdcSvd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x) {
    solve<Eigen::BDCSVD<Eigen::MatrixXd>>(a, b, m, n, x);
}

void dgelss(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x) {
    System s(a, b, m, n);
    const int size = static_cast<int>(s.work.size());
    dgelss_(&m, &n, &s.one, s.matrix.data(), &m, s.right.data(), &m, s.values.data(), &s.cut, &s.rank,
            s.work.data(), &size, &s.info);
    std::copy_n(s.right.begin(), n, x.begin());
}

void dgelsd(const Matrix &a, const std::vector<double> &b, int m, int n, std::vector<double> &x) {
    System s(a, b, m, n);
    const int size = static_cast<int>(s.work.size());
    dgelsd_(&m, &n, &s.one, s.matrix.data(), &m, s.right.data(), &m, s.values.data(), &s.cut, &s.rank,
            s.work.data(), &size, s.integers.data(), &s.info);
    std::copy_n(s.right.begin(), n, x.begin());
}

void inverse(const Matrix &a, int n, Matrix &result) {
    const Eigen::MatrixXd matrix = Eigen::Map<const RowMajor>(a.data(), n, n);
    Eigen::Map<RowMajor>(result.data(), n, n) = matrix.inverse();
}

}  // namespace peer
