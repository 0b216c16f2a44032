#include <cstdlib>

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

namespace zeb {

char* __vector_num_alloc(std::size_t bytes)
{
    return static_cast<char*>(std::malloc(bytes));
}

void __vector_num_free(char* block)
{
    std::free(block);
}

// The usual containers, compiled once here for the library and its hosts.
template class dense1D<unsigned int>;
template class dense1D<int>;
template class dense1D<float>;
template class dense1D<double>;
template class dense2D<unsigned int>;
template class dense2D<float>;
template class dense2D<double>;

}  // namespace zeb
