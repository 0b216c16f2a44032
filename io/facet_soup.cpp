#include "io/facet_soup.h"

#include <algorithm>

#include <tessolv/editing.h>
#include <tessolv/spatial.h>

#include "core/columns.h"
#include "core/large_pages.h"
#include "core/return_codes.h"
#include "io/facet_geometry.h"
#include "io/growing_columns.h"

namespace zeb::tessolv {
namespace {

constexpr double weld_fraction = 0.05;  // of the least height: part of the interface

// Distance of P from the line through A and B, 0 if these coincide.
double distance_to_line(const vector3& P, const vector3& A, const vector3& B)
{
    return length(cross(unit_vector(B - A), P - A));
}

double height_of(const vector3 (&P)[3])
{
    double height = distance_to_line(P[2], P[0], P[1]);
    height = std::min(height, distance_to_line(P[0], P[1], P[2]));
    return std::min(height, distance_to_line(P[1], P[2], P[0]));
}

// Whether the height of a facet is surely above a value. It is twice the area over the longest side, here without a
// root or a division. Rounding has no say where it is above by a thousandth, the facet is no needle and nothing comes
// near the smallest doubles. False where a coordinate is not a number or a square is infinite.
bool is_surely_higher(const vector3 (&P)[3], double value)
{
    const vector3 edge = P[1] - P[0];
    const vector3 other = P[2] - P[0];
    const vector3 third = P[2] - P[1];
    const vector3 normal = cross(edge, other);
    const double area = dot(normal, normal);
    const double side = std::max({dot(edge, edge), dot(other, other), dot(third, third)});
    const double bound = 1.001 * (value * value * side);
    return area > bound && bound > 1e-280 && area > 1e-20 * (side * side);
}

}  // namespace

bool facet_soup::reserve(std::uint64_t facets)
{
    if (!pos.reserve(3, 3 * facets) || !connect.reserve(3, facets)) return false;
    if (facets != 0) prefer_large_pages(pos.buffer->data, pos.buffer->capacity * sizeof(double));
    return true;
}

bool facet_soup::add_corner(const double* corner)
{
    return pos.cols < NONE_INDEX && append_column(pos, corner, 3);
}

bool facet_soup::add_facet_of_last_corners()
{
    const auto first = static_cast<unsigned int>(pos.cols - 3);
    const unsigned int nodes[] = {first, first + 1, first + 2};
    if (!append_column(connect, nodes, 3)) return false;

    const double* at = column(pos, first);
    const vector3 corners[] = {{at[0], at[1], at[2]}, {at[3], at[4], at[5]}, {at[6], at[7], at[8]}};
    if (!is_surely_higher(corners, least_height_)) {
        const double height = height_of(corners);
        if (height > 0 && height < least_height_) least_height_ = height;
    }
    return true;
}

int facet_soup::weld()
{
    if (least_height_ == std::numeric_limits<double>::max()) return success;
    dense1D<unsigned int> new_IDs;
    int code = merge(pos, connect, new_IDs, weld_fraction * least_height_, 0);
    if (code >= 0) code = remove_degenerated(connect, new_IDs);
    if (code >= 0) code = simplify(pos, connect);
    return std::min(code, success);
}

}  // namespace zeb::tessolv
