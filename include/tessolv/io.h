#ifndef TESSOLV_IO_H
#define TESSOLV_IO_H

#include <cstdio>

#include <tessolv/core.h>

namespace zeb {
namespace tessolv {

TESSOLV_API int vtk_convert(const dense2D<unsigned int>& connect, element_type type, unsigned int& cell_count,
                            dense1D<unsigned int>& cells, dense1D<unsigned int>& cell_types);
TESSOLV_API int vtk_output(FILE* f, const dense2D<double>& pos, unsigned int cell_count,
                           const dense1D<unsigned int>& cells, const dense1D<unsigned int>& cell_types);
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>* first,
                           const dense2D<unsigned int>* last, const dense1D<int>& types);
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                           element_type type);
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect1,
                           const dense2D<unsigned int>& connect2, element_type type1, element_type type2);

TESSOLV_API int STL_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                           bool ascii);
TESSOLV_API int STL_input(const char* filename, dense2D<double>& pos, dense2D<unsigned int>& connect, bool ascii);

TESSOLV_API int WavefrontOBJ_output(const char* filename, const dense2D<double>& pos, const dense2D<double>& normals,
                                    const dense2D<double>& uvs, const dense2D<unsigned int>& tria_connect,
                                    const dense2D<unsigned int>& quad_connect);
TESSOLV_API int WavefrontOBJ_input(const char* filename, dense2D<double>& pos, dense2D<double>& normals,
                                   dense2D<double>& uvs, dense2D<unsigned int>& tria_connect,
                                   dense2D<unsigned int>& quad_connect);

}  // namespace tessolv
}  // namespace zeb

#endif
