#ifndef ZEB_LAPACK_DSPEV_H
#define ZEB_LAPACK_DSPEV_H

#include <tessolv/export.h>

namespace zeb {
namespace lapack {

/// Eigenvalues and, on request, eigenvectors of a real symmetric matrix in packed storage: LAPACK's DSPEV.
/// @code
/// double ap[3] = {2, 1, 2}, w[2], work[6];  // [2 1; 1 2]
/// long info = 0;
/// zeb::lapack::dspev('N', 'U', 2, ap, w, nullptr, 1, work, info);  // -> 0
/// w[0];                                                            // -> 1
/// w[1];                                                            // -> 3
/// @endcode
/// @param jobz      'N' eigenvalues only, 'V' eigenvectors too.
/// @param uplo      'U' upper triangle in `ap`, 'L' lower triangle.
/// @param n         order of the matrix.
/// @param[in,out] ap  n(n+1)/2 packed entries; destroyed.
/// @param[out] w    n eigenvalues, ascending.
/// @param[out] z    eigenvectors as columns, ldz x n; not referenced with 'N' and may be null.
/// @param ldz       at least 1, and at least n with 'V'.
/// @param work      3n entries of working storage.
/// @param[out] info 0; -k when argument k is not valid (checked here, so nothing is printed and nothing stops);
///                  > 0 when the algorithm did not converge.
/// @return `info`.
TESSOLV_API int dspev(char jobz, char uplo, long n, double* ap, double* w, double* z, long ldz, double* work,
                      long& info);

}  // namespace lapack
}  // namespace zeb

#endif
