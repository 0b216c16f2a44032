#ifndef TESSOLV_EDITING_RENUMBERING_H
#define TESSOLV_EDITING_RENUMBERING_H

#include <tessolv/core.h>

#include "core/mesh_range.h"

namespace zeb::tessolv {

// Maps the entries of the matrices through `new_IDs` in place, as change_indices does, each entry once: matrices of the
// range may be views of one another. False, and nothing changed, without memory, which only such ranges need.
[[nodiscard]] bool change_indices_once(const matrix_range<dense2D<unsigned int>>& meshes,
                                       const dense1D<unsigned int>& new_IDs);

}  // namespace zeb::tessolv

#endif
