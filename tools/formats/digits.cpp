#include "formats/digits.h"

#include <cmath>

namespace tool {

double digits_of_writer::spacing(double largest) const
{
    if (of == kind::behind_point) return std::pow(10.0, -count);
    if (!(largest > 0) || !std::isfinite(largest)) return 0;
    if (of == kind::bits) return std::ldexp(1.0, std::ilogb(largest) + 1 - count);
    return std::pow(10.0, std::floor(std::log10(largest)) + 1 - count);
}

std::span<const digits_of_writer> writers_of_few_digits()
{
    using enum digits_of_writer::kind;
    static constexpr digits_of_writer writers[] = {
        {"stl", bits, 24, "24 bits"},
        {"the library's ensight", significant, 6, "6 digits"},
        {"the library's medit", significant, 7, "7 digits"},
        {"the library's text stl", significant, 7, "7 digits"},
        {"the library's obj", significant, 9, "9 digits"},
        {"the library's vtk", behind_point, 6, "6 digits behind the point"},
    };
    return writers;
}

}  // namespace tool
