#ifndef TOOLS_FINDINGS_ELEMENT_FACES_H
#define TOOLS_FINDINGS_ELEMENT_FACES_H

#include <span>

#include <tessolv/element_type.h>

namespace tool {

// A face of an element by its corners: 1 of a line, 2 of a surface element, 3 or 4 of a solid. Those of a solid that
// scores positive turn counter-clockwise seen from outside.
struct local_face {
    unsigned int width;
    unsigned char nodes[4];
};

// In the order of the library's neighbours where it has them. Points have none. Quadratic kinds have those of their
// corners.
std::span<const local_face> faces_of(zeb::element_type type);

// The kind of a face alone.
zeb::element_type type_of_face(unsigned int width);

}  // namespace tool

#endif
