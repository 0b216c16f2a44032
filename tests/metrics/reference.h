#ifndef TESTS_METRICS_REFERENCE_H
#define TESTS_METRICS_REFERENCE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>
#include <random>

#include <tessolv/tessolv.h>

// Tensors of known eigenvalues, and slow models in extended precision.
namespace test {

template <std::size_t N>
using square = std::array<std::array<long double, N>, N>;

template <std::size_t N>
using values_of = std::array<long double, N>;

template <std::size_t N>
square<N> widened(const zeb::symmetric_fixed<double, N>& M)
{
    square<N> A;
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j) A[i][j] = M(i, j);
    return A;
}

template <std::size_t N>
zeb::symmetric_fixed<double, N> rounded(const square<N>& A)
{
    zeb::symmetric_fixed<double, N> M;
    for (std::size_t j = 0; j < N; ++j)
        for (std::size_t i = 0; i <= j; ++i) M(i, j) = static_cast<double>(A[i][j]);
    return M;
}

// Eigenvalues and the eigenvectors in columns by rotations of two rows and columns at a time (C. G. J. Jacobi).
template <std::size_t N>
void jacobi(square<N> A, values_of<N>& values, square<N>& vectors)
{
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j) vectors[i][j] = i == j;
    for (int sweep = 0; sweep < 40; ++sweep) {
        for (std::size_t p = 0; p < N; ++p) {
            for (std::size_t q = p + 1; q < N; ++q) {
                if (A[p][q] == 0) continue;
                const long double half = (A[q][q] - A[p][p]) / (2 * A[p][q]);
                const long double t = (half < 0 ? -1 : 1) / (std::abs(half) + std::sqrt(half * half + 1));
                const long double c = 1 / std::sqrt(t * t + 1), s = t * c;
                const auto turn = [&](long double& x, long double& y) {
                    const long double before = x;
                    x = c * x - s * y;
                    y = s * before + c * y;
                };
                for (std::size_t k = 0; k < N; ++k) turn(A[k][p], A[k][q]);
                for (std::size_t k = 0; k < N; ++k) turn(A[p][k], A[q][k]);
                for (std::size_t k = 0; k < N; ++k) turn(vectors[k][p], vectors[k][q]);
            }
        }
    }
    for (std::size_t i = 0; i < N; ++i) values[i] = A[i][i];
}

template <std::size_t N>
values_of<N> sorted_eigenvalues(const zeb::symmetric_fixed<double, N>& M)
{
    values_of<N> values;
    square<N> vectors;
    jacobi(widened(M), values, vectors);
    std::sort(values.begin(), values.end());
    return values;
}

// Orthonormal columns in a random position.
template <std::size_t N>
square<N> random_frame(std::mt19937_64& random)
{
    std::normal_distribution<double> component;
    square<N> Q;
    for (std::size_t j = 0; j < N; ++j) {
        for (auto& row : Q) row[j] = component(random);
        for (int twice = 0; twice < 2; ++twice) {
            for (std::size_t k = 0; k < j; ++k) {
                long double along = 0;
                for (const auto& row : Q) along += row[k] * row[j];
                for (auto& row : Q) row[j] -= along * row[k];
            }
        }
        long double squared = 0;
        for (const auto& row : Q) squared += row[j] * row[j];
        for (auto& row : Q) row[j] /= std::sqrt(squared);
    }
    return Q;
}

// Q diag(values) Q', to the last digit of double.
template <std::size_t N>
zeb::symmetric_fixed<double, N> tensor_of(const square<N>& Q, const values_of<N>& values)
{
    square<N> A{};
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j)
            for (std::size_t k = 0; k < N; ++k) A[i][j] += Q[i][k] * values[k] * Q[j][k];
    return rounded(A);
}

template <std::size_t N>
long double largest_entry(const zeb::symmetric_fixed<double, N>& M)
{
    long double largest = 0;
    for (const double m : M) largest = std::max(largest, std::abs(static_cast<long double>(m)));
    return largest;
}

}  // namespace test

namespace zeb {

template <class T, std::size_t N>
void PrintTo(const symmetric_fixed<T, N>& M, std::ostream* out)
{
    *out << "(";
    for (const T& m : M) *out << (&m != M.begin() ? ", " : "") << m;
    *out << ")";
}

}  // namespace zeb

#endif
