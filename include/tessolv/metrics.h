#ifndef TESSOLV_METRICS_H
#define TESSOLV_METRICS_H

#include <tessolv/core.h>

/// \file
/// Anisotropic sizes. A metric is a symmetric positive definite tensor M: the length of v under it is sqrt(v' M v), and
/// a size h along a unit direction u stands in it as u' M u = 1/h^2. Tensors are packed by columns of the upper
/// triangle, (m00, m01, m11) in 2-D and (m00, m01, m11, m02, m12, m22) in 3-D.
///
/// A field has one entry per node, in single precision, and is computed with in double precision: isotropic sizes are a
/// dense1D<float>, tensors a dense2D<float> of 3 rows (2-D) or 6 rows (3-D).

namespace zeb {
namespace tessolv {

/// @name Single tensors
/// @{

/// The tensor of the size h in every direction: 1/h^2 on the diagonal; 0 unless h > 0.
/// @code
/// symmetric_fixed<double, 2> M;
/// metric_iso_to_aniso(0.5, M);
/// M;  // -> (4, 0, 4)
/// @endcode
TESSOLV_API void metric_iso_to_aniso(double h, symmetric_fixed<double, 2>& M);
/// The same in 3-D.
TESSOLV_API void metric_iso_to_aniso(double h, symmetric_fixed<double, 3>& M);

/// The same in a plane that is spanned by the columns of B, which need be neither orthogonal nor of unit length:
/// M = B' B / h^2; 0 unless h > 0 and 1/h^2 is not 0.
TESSOLV_API void metric_iso_to_aniso2d(double h, const matrix_fixed<double, 3, 2>& B, symmetric_fixed<double, 2>& M);

/// What a metric of space is in the plane that is spanned by the columns of B: M2 = B' M3 B.
TESSOLV_API void metric_aniso3d_to_aniso2d(const symmetric_fixed<double, 3>& M3, const matrix_fixed<double, 3, 2>& B,
                                           symmetric_fixed<double, 2>& M2);

/// Eigenvalues in ascending order.
/// @code
/// vector_fixed<double, 2> values;
/// eigen_pairs(symmetric_fixed<double, 2>(2, 1, 2), values, matrix_fixed<double, 2, 2>());
/// values;  // -> (1, 3)
/// @endcode
/// @param M             any symmetric tensor.
/// @param[out] values   the eigenvalues.
/// @param vectors       a copy, part of the interface: the caller's matrix stays as it is.
/// @note In 2-D they are the roots of the characteristic polynomial: nearly equal ones are good to 1e-8 of their size
///       only. In 3-D each is good to 1e-14 of the greatest.
TESSOLV_API void eigen_pairs(const symmetric_fixed<double, 2>& M, vector_fixed<double, 2>& values,
                             matrix_fixed<double, 2, 2> vectors);
/// The same in 3-D.
TESSOLV_API void eigen_pairs(const symmetric_fixed<double, 3>& M, vector_fixed<double, 3>& values,
                             matrix_fixed<double, 3, 3> vectors);

/// Whether M is a metric: all entries finite, the least eigenvalue greater than 0 and than 1e-24 times the greatest.
TESSOLV_API bool is_valid_metric(const symmetric_fixed<double, 2>& M);
/// The same in 3-D.
TESSOLV_API bool is_valid_metric(const symmetric_fixed<double, 3>& M);

/// The metric that asks for the smaller of two sizes in every direction in which both tensors are diagonal at once
/// (simultaneous reduction).
/// @code
/// const symmetric_fixed<double, 2> M1(1, 0, 4), M2(9, 0, 1);  // sizes 1 and 1/2; 1/3 and 1
/// symmetric_fixed<double, 2> smaller;
/// minimum_metric(M1, M2, smaller);  // -> true
/// smaller;                          // -> (9, 0, 4)
/// @endcode
/// @param M1         positive definite.
/// @param M2         should be so too; in directions where it is not, M1 alone counts.
/// @param[out] Mout  may be M1 or M2; untouched when the result is false.
/// @return false when an entry of either tensor is NaN or infinite, when M1 is not positive definite, and when a size
///         is 0 (a tensor beyond the range of double).
/// @note No shared state.
TESSOLV_API bool minimum_metric(const symmetric_fixed<double, 2>& M1, const symmetric_fixed<double, 2>& M2,
                                symmetric_fixed<double, 2>& Mout);
/// The same in 3-D.
TESSOLV_API bool minimum_metric(const symmetric_fixed<double, 3>& M1, const symmetric_fixed<double, 3>& M2,
                                symmetric_fixed<double, 3>& Mout);
/// @}

/// @name Fields
/// @{

/// Whether every size is greater than 0 and finite. True for an empty field.
TESSOLV_API bool are_valid_metrics(const dense1D<float>& sizes);

/// The same for the listed nodes alone; false where one lies beyond the field.
TESSOLV_API bool are_valid_metrics(const dense1D<unsigned int>& nodes, const dense1D<float>& sizes);

/// Whether every column is a metric as in is_valid_metric. Without columns true for 3 and 6 rows; false for any other
/// number of rows.
TESSOLV_API bool are_valid_metrics(const dense2D<float>& metrics);

/// The same for the listed nodes alone; false where one lies beyond the field. An empty list is true for a field
/// without entries, whatever its rows, and otherwise for 3 and 6 rows.
TESSOLV_API bool are_valid_metrics(const dense1D<unsigned int>& nodes, const dense2D<float>& metrics);

/// Replaces sizes of 0 and less by the default of their node where that is greater than 0. NaN and infinite sizes stay,
/// although are_valid_metrics refuses them.
/// @param[in,out] sizes  written in place: views and shared buffers see it.
/// @param defaults       entries beyond the shorter of the two fields play no part.
/// @return 0; -199 memory, which is needed only when the two share a buffer.
TESSOLV_API int overwrite_invalid_metrics(dense1D<float>& sizes, const dense1D<float>& defaults);

/// Replaces columns that are no metric by the isotropic one of the default size of their node, where that is greater
/// than 0.
/// @param[in,out] metrics  3 or 6 rows; written in place: views and shared buffers see it.
/// @param default_sizes    one for each node; entries beyond the shorter of the two fields play no part.
/// @return 0, also for a field without entries; -1 rows; -199 memory, which is needed only when the two share a buffer.
TESSOLV_API int overwrite_invalid_metrics(dense2D<float>& metrics, const dense1D<float>& default_sizes);

/// The same with default metrics; a default that is no metric replaces nothing.
/// @param[in,out] metrics  as above.
/// @param default_metrics  as many rows as `metrics`.
/// @return 0, also for a field without entries; -1 rows of `metrics`; -2 rows of `default_metrics`; -199 memory.
TESSOLV_API int overwrite_invalid_metrics(dense2D<float>& metrics, const dense2D<float>& default_metrics);

/// What the metrics of space are in a plane at each node: see metric_aniso3d_to_aniso2d.
/// @param M3       6 x nodes.
/// @param bases    6 x nodes: the two vectors that span the plane, one below the other.
/// @param[out] M2  3 x nodes, replaced; untouched on failure.
/// @return 0; -1 rows of `M3`; -2 rows or columns of `bases`; -199 memory.
TESSOLV_API int metrics_aniso3d_to_aniso2d(const dense2D<float>& M3, const dense2D<double>& bases, dense2D<float>& M2);

/// The metrics of isotropic sizes in a plane at each node: see metric_iso_to_aniso2d.
/// @param sizes    one for each node; a size that is not greater than 0 gives a column of zeros.
/// @param bases    6 x nodes, as above.
/// @param[out] M2  3 x nodes, replaced; untouched on failure.
/// @return 0; -2 rows or columns of `bases`; -199 memory.
TESSOLV_API int metrics_iso_to_aniso2d(const dense1D<float>& sizes, const dense2D<double>& bases, dense2D<float>& M2);

/// Appends the columns of B to A, in one field the nodes of two meshes.
/// @param[in,out] A  takes the rows of B when it has none; untouched on failure. May be B.
/// @param B          the rows of A, or no entries.
/// @return 0; -3 rows of B, which are of no account when it has no entries; -199 memory.
TESSOLV_API int append(dense2D<float>& A, const dense2D<float>& B);

/// The same for the matrices of [first, last) in their order. A without rows takes those of the first matrix that has
/// entries.
/// @return 0; -3 last before first, or the rows of a matrix with entries; -199 memory.
TESSOLV_API int append(dense2D<float>& A, const dense2D<float>* first, const dense2D<float>* last);

/// The same for the listed columns of B, in the order of the list, a column as often as it is listed.
/// @return 0, at once for an empty list; -1 rows of A, unless it has no entries; -3 an index that is no column of B;
///         -199 memory.
TESSOLV_API int append(dense2D<float>& A, const dense2D<float>& B, const dense1D<unsigned int>& columns);

/// Appends the sizes of B to A.
/// @param[in,out] A  untouched on failure. May be B.
/// @param B          sizes of any number.
/// @return 0; -199 memory.
TESSOLV_API int append(dense1D<float>& A, const dense1D<float>& B);

/// The same for the vectors of [first, last) in their order.
/// @return 0; -3 last before first; -199 memory.
TESSOLV_API int append(dense1D<float>& A, const dense1D<float>* first, const dense1D<float>* last);

/// The same for the listed entries of B, in the order of the list, an entry as often as it is listed.
/// @return 0, at once for an empty list; -3 an index that is no entry of B; -199 memory.
TESSOLV_API int append(dense1D<float>& A, const dense1D<float>& B, const dense1D<unsigned int>& entries);
/// @}

}  // namespace tessolv
}  // namespace zeb

#endif
