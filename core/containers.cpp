#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

// The usual containers, compiled once here for the library and its hosts.
namespace zeb {

template class dense1D<unsigned int>;
template class dense1D<int>;
template class dense1D<float>;
template class dense1D<double>;
template class dense2D<unsigned int>;
template class dense2D<float>;
template class dense2D<double>;

}  // namespace zeb
