#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "metrics/input.h"

namespace compare {
namespace {

using matrix = Eigen::Matrix3d;

template <class Number>
matrix matrix_of(const Number* M)
{
    matrix A;
    A << M[0], M[1], M[3], M[1], M[2], M[4], M[3], M[4], M[5];
    return A;
}

template <class Solve>
void eigenvalues(const metrics_input& in, lap& l, Solve solve)
{
    double sum = 0.0;
    l.timed([&] {
        Eigen::SelfAdjointEigenSolver<matrix> solver;
        for (const tensor& M : in.tensors) {
            solve(solver, matrix_of(M.data()));
            const auto& values = solver.eigenvalues();
            sum += values[0] + 2 * values[1] + 3 * values[2];
        }
    });
    l.answer({sum});
}

void iterative(const metrics_input& in, lap& l)
{
    eigenvalues(in, l, [](auto& solver, const matrix& A) { solver.compute(A); });
}

void direct(const metrics_input& in, lap& l)
{
    eigenvalues(in, l, [](auto& solver, const matrix& A) { solver.computeDirect(A); });
}

void cholesky(const metrics_input& in, lap& l)
{
    double valid = 0.0;
    l.timed([&] {
        for (const tensor& M : in.tensors)
            valid += Eigen::LLT<matrix>(matrix_of(M.data())).info() == Eigen::Success ? 1.0 : 0.0;
    });
    l.answer({valid});
}

void cholesky_of_field(const metrics_input& in, lap& l)
{
    bool valid = true;
    l.timed([&] {
        for (std::uint64_t j = 0; valid && j < in.field.cols; ++j)
            valid = Eigen::LLT<matrix>(matrix_of(&in.field(0, j))).info() == Eigen::Success;
    });
    l.answer({valid ? 1.0 : 0.0});
}

void reduction(const metrics_input& in, lap& l)
{
    double sum = 0.0;
    l.timed([&] {
        for (std::size_t j = 0; j < in.tensors.size(); ++j) {
            const matrix A = matrix_of(in.tensors[j].data());
            const Eigen::GeneralizedSelfAdjointEigenSolver<matrix> solver(matrix_of(in.others[j].data()), A);
            const matrix back = A * solver.eigenvectors();
            sum += (back * solver.eigenvalues().cwiseMax(1.0).asDiagonal() * back.transpose()).trace();
        }
    });
    l.answer({sum});
}

const bool entered = enter<metrics_input>({
    {"eigen-pairs", "Eigen", "SelfAdjointEigenSolver::compute", "vectors too", iterative},
    {"eigen-pairs", "Eigen direct", "SelfAdjointEigenSolver::computeDirect",
     "vectors too; closed form without a test, wrong in the eighth digit at times", direct},
    {"validity", "Eigen", "LLT", "no test of the ratio", cholesky},
    {"validity of a field", "Eigen", "LLT in double", "no test of the ratio", cholesky_of_field},
    {"intersection", "Eigen", "GeneralizedSelfAdjointEigenSolver and the way back", "tests nothing", reduction},
});

}  // namespace
}  // namespace compare
