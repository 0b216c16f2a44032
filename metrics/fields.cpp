#include <tessolv/metrics.h>

#include <algorithm>
#include <cmath>

#include "core/columns.h"
#include "core/return_codes.h"
#include "metrics/certain_validity.h"

namespace zeb::tessolv {
namespace {

constexpr std::uint64_t rows_2d = 3, rows_3d = 6, rows_of_basis = 6;

bool has_rows_of_metrics(const dense2D<float>& metrics)
{
    return metrics.rows == rows_2d || metrics.rows == rows_3d;
}

template <std::size_t N>
symmetric_fixed<double, N> widened(const float* entries)
{
    symmetric_fixed<double, N> M;
    std::copy_n(entries, N * (N + 1) / 2, M.begin());
    return M;
}

template <std::size_t N>
void store_narrowed(const symmetric_fixed<double, N>& M, float* entries)
{
    std::transform(M.begin(), M.end(), entries, [](double m) { return static_cast<float>(m); });
}

bool is_valid_size(float h)
{
    return h > 0.0f && std::isfinite(h);
}

bool is_valid_column(const dense2D<float>& metrics, std::uint64_t j)
{
    const float* entries = column(metrics, j);
    return metrics.rows == rows_2d ? is_valid_metric(widened<2>(entries)) : is_valid_metric(widened<3>(entries));
}

// Numbers of two columns side by side.
using lanes = double __attribute__((vector_size(2 * sizeof(double))));

bool are_certainly_valid(const float* first, const float* second)
{
    lanes m[rows_3d];
    for (std::size_t i = 0; i < rows_3d; ++i) m[i] = lanes{first[i], second[i]};
    const auto certain = is_certainly_valid(m);
    return (certain[0] & certain[1]) != 0;
}

void store_isotropic(double h, dense2D<float>& metrics, std::uint64_t j)
{
    const auto store = [&](auto M) {
        metric_iso_to_aniso(h, M);
        store_narrowed(M, column(metrics, j));
    };
    metrics.rows == rows_2d ? store(symmetric_fixed<double, 2>()) : store(symmetric_fixed<double, 3>());
}

// The input as it was on entry while `written` is written in place: itself, or `copy` where the two share a buffer. Null
// without memory. The reference counter of the input is not touched, so that calls in several threads may read one.
template <class Container, class Written>
const Container* as_on_entry(const Container& input, const Written& written, Container& copy)
{
    if (input.buffer != written.buffer) return &input;
    return copy.copy(input) ? &copy : nullptr;
}

bool are_bases_of(std::uint64_t nodes, const dense2D<double>& bases)
{
    return bases.rows == rows_of_basis && bases.cols == nodes;
}

// Replaces M2 by one tensor per node: project(j, basis, tensor) sets that of node j. False, and nothing changed,
// without memory.
template <class Project>
bool project_field(const dense2D<double>& bases, dense2D<float>& M2, Project project)
{
    dense2D<float> projected;
    if (!projected.resize(rows_2d, bases.cols)) return false;
    for (std::uint64_t j = 0; j < bases.cols; ++j) {
        matrix_fixed<double, 3, 2> basis;
        std::copy_n(column(bases, j), rows_of_basis, basis.begin());
        symmetric_fixed<double, 2> M;
        project(j, basis, M);
        store_narrowed(M, column(projected, j));
    }
    return M2.shallow_copy(projected);
}

}  // namespace

bool are_valid_metrics(const dense1D<float>& sizes)
{
    return std::all_of(sizes.begin(), sizes.end(), is_valid_size);
}

bool are_valid_metrics(const dense1D<unsigned int>& nodes, const dense1D<float>& sizes)
{
    return std::all_of(nodes.begin(), nodes.end(),
                       [&](unsigned int i) { return i < sizes.size && is_valid_size(sizes[i]); });
}

bool are_valid_metrics(const dense2D<float>& metrics)
{
    if (!has_rows_of_metrics(metrics)) return false;
    for (std::uint64_t j = 0; j < metrics.cols; ++j) {
        if (metrics.rows == rows_3d && metrics.cols - j >= 2 &&
            are_certainly_valid(column(metrics, j), column(metrics, j + 1)))
            ++j;
        else if (!is_valid_column(metrics, j))
            return false;
    }
    return true;
}

bool are_valid_metrics(const dense1D<unsigned int>& nodes, const dense2D<float>& metrics)
{
    if (nodes.empty() && metrics.empty()) return true;
    return has_rows_of_metrics(metrics) && std::all_of(nodes.begin(), nodes.end(), [&](unsigned int j) {
               return j < metrics.cols && is_valid_column(metrics, j);
           });
}

int overwrite_invalid_metrics(dense1D<float>& sizes, const dense1D<float>& defaults)
{
    dense1D<float> copy;
    const dense1D<float>* const given = as_on_entry(defaults, sizes, copy);
    if (given == nullptr) return out_of_memory;
    for (std::uint64_t i = 0; i < std::min(sizes.size, given->size); ++i)
        if (sizes[i] <= 0.0f && (*given)[i] > 0.0f) sizes[i] = (*given)[i];  // NaN stays: part of the interface
    return success;
}

int overwrite_invalid_metrics(dense2D<float>& metrics, const dense1D<float>& default_sizes)
{
    if (metrics.empty()) return success;
    if (!has_rows_of_metrics(metrics)) return bad_argument(1);
    dense1D<float> copy;
    const dense1D<float>* const given = as_on_entry(default_sizes, metrics, copy);
    if (given == nullptr) return out_of_memory;
    for (std::uint64_t j = 0; j < std::min(metrics.cols, given->size); ++j)
        if (!is_valid_column(metrics, j) && (*given)[j] > 0.0f) store_isotropic((*given)[j], metrics, j);
    return success;
}

int overwrite_invalid_metrics(dense2D<float>& metrics, const dense2D<float>& default_metrics)
{
    if (metrics.empty()) return success;
    if (!has_rows_of_metrics(metrics)) return bad_argument(1);
    if (default_metrics.rows != metrics.rows) return bad_argument(2);
    dense2D<float> copy;
    const dense2D<float>* const given = as_on_entry(default_metrics, metrics, copy);
    if (given == nullptr) return out_of_memory;
    for (std::uint64_t j = 0; j < std::min(metrics.cols, given->cols); ++j)
        if (!is_valid_column(metrics, j) && is_valid_column(*given, j))
            std::copy_n(column(*given, j), metrics.rows, column(metrics, j));
    return success;
}

int metrics_aniso3d_to_aniso2d(const dense2D<float>& M3, const dense2D<double>& bases, dense2D<float>& M2)
{
    if (M3.rows != rows_3d) return bad_argument(1);
    if (!are_bases_of(M3.cols, bases)) return bad_argument(2);
    const auto project = [&](std::uint64_t j, const auto& basis, auto& M) {
        metric_aniso3d_to_aniso2d(widened<3>(column(M3, j)), basis, M);
    };
    return project_field(bases, M2, project) ? success : out_of_memory;
}

int metrics_iso_to_aniso2d(const dense1D<float>& sizes, const dense2D<double>& bases, dense2D<float>& M2)
{
    if (!are_bases_of(sizes.size, bases)) return bad_argument(2);
    const auto project = [&](std::uint64_t j, const auto& basis, auto& M) {
        metric_iso_to_aniso2d(sizes[j], basis, M);
    };
    return project_field(bases, M2, project) ? success : out_of_memory;
}

}  // namespace zeb::tessolv
