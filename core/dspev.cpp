#include <zeb/lapack/dspev.h>

#include <cstddef>
#include <limits>

// The hidden lengths of the character arguments come last, as Fortran compilers pass them.
extern "C" void dspev_(const char* jobz, const char* uplo, const int* n, double* ap, double* w, double* z,
                       const int* ldz, double* work, int* info, std::size_t jobz_length, std::size_t uplo_length);

namespace zeb::lapack {
namespace {

// LAPACK answers an invalid argument by printing and stopping the program; so none is let through.
int invalid_argument(char jobz, char uplo, long n, const double* ap, const double* w, const double* z, long ldz,
                     const double* work)
{
    constexpr long most = std::numeric_limits<int>::max();
    const bool vectors = jobz == 'V' || jobz == 'v';
    if (!vectors && jobz != 'N' && jobz != 'n') return 1;
    if (uplo != 'U' && uplo != 'u' && uplo != 'L' && uplo != 'l') return 2;
    if (n < 0 || n > most) return 3;
    if (n > 0 && ap == nullptr) return 4;
    if (n > 0 && w == nullptr) return 5;
    if (n > 0 && vectors && z == nullptr) return 6;
    if (ldz < 1 || ldz > most || (vectors && ldz < n)) return 7;
    if (n > 0 && work == nullptr) return 8;
    return 0;
}

}  // namespace

int dspev(char jobz, char uplo, long n, double* ap, double* w, double* z, long ldz, double* work, long& info)
{
    int result = -invalid_argument(jobz, uplo, n, ap, w, z, ldz, work);
    if (result == 0) {
        const int order = static_cast<int>(n);
        const int leading = static_cast<int>(ldz);
        dspev_(&jobz, &uplo, &order, ap, w, z, &leading, work, &result, 1, 1);
    }
    info = result;
    return result;
}

}  // namespace zeb::lapack
