#ifndef TESSOLV_QUALITY_H
#define TESSOLV_QUALITY_H

#include <tessolv/core.h>

#include <zeb/misc/histogram.h>

namespace zeb {
namespace tessolv {

TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                                dense1D<double>& qualities);
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                                const dense2D<unsigned int>* last, const dense1D<int>& types,
                                dense1D<double>& qualities);
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                                const dense2D<unsigned int>* last, const dense1D<int>& types, misc::histogram& h);
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                                misc::histogram& h);

}  // namespace tessolv
}  // namespace zeb

#endif
