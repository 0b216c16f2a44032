#ifndef TOOLS_FORMATS_DIGITS_H
#define TOOLS_FORMATS_DIGITS_H

#include <span>

namespace tool {

// A writer that keeps fewer digits of a coordinate than a double has. The others write what reads back exactly.
struct digits_of_writer {
    enum class kind { bits, significant, behind_point };

    const char* name;  // "stl", and "the library's vtk" for the library's own output
    kind of;
    int count;
    const char* words;  // "24 bits"

    // The distance of two neighbouring numbers that are written, where the largest coordinate is so large.
    double spacing(double largest) const;
};

std::span<const digits_of_writer> writers_of_few_digits();

}  // namespace tool

#endif
