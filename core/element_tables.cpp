#include <tessolv/element_type.h>

namespace zeb {

const std::uint32_t NODES_PER_ELEMENT[21] = {0, 1, 0, 2, 3, 0, 3, 4, 6, 8, 9, 0, 4, 10, 5, 14, 6, 18, 8, 20, 27};

const std::uint32_t VERTICES_PER_ELEMENT[21] = {0, 1, 2, 2, 2, 0, 3, 4, 3, 4, 4, 0, 4, 4, 5, 5, 6, 6, 8, 8, 8};

}  // namespace zeb
