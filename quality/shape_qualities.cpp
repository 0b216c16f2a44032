#include <tessolv/quality.h>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "quality/score.h"
#include "quality/shape_measures.h"
#include "quality/wide_scores.h"

namespace zeb::tessolv {
namespace {

using namespace quality;

// The linear kind whose corners decide about each type; EL_NONE where there is no measure. EL_HEXA20 has none although
// its corners are known: part of the interface.
constexpr element_type measured_as[21] = {
    EL_NONE,     EL_NONE,     EL_NONE,   EL_EDGE2,  EL_EDGE2, EL_FACE_MIX, EL_TRIA3,
    EL_QUAD4,    EL_TRIA3,    EL_QUAD4,  EL_QUAD4,  EL_NONE,  EL_TETRA4,   EL_TETRA4,
    EL_PYRAMID5, EL_PYRAMID5, EL_WEDGE6, EL_WEDGE6, EL_HEXA8, EL_NONE,     EL_HEXA8,
};

element_type measure_of(int type)
{
    return type >= EL_NONE && type <= EL_HEXA27 ? measured_as[type] : EL_NONE;
}

// Whether a matrix can be measured under its type: 0, -3 or -2.
int check(const dense2D<double>& pos, const dense2D<unsigned int>& connect, int type)
{
    const element_type kind = measure_of(type);
    if (kind == EL_NONE) return bad_argument(3);
    return check_IDs(connect, kind, as_bound(pos.cols)) ? success : bad_argument(2);
}

// Scores triangles and quadrangles in one matrix, run by run of equal shape.
template <std::size_t D>
void score_faces(const node_positions& pos, const dense2D<unsigned int>& connect, double* qualities)
{
    const auto is_triangle = [&](std::uint64_t e) { return column(connect, e)[3] == NONE_INDEX; };
    for (std::uint64_t first = 0, last = 0; first < connect.cols; first = last) {
        const bool triangles = is_triangle(first);
        do ++last;
        while (last < connect.cols && is_triangle(last) == triangles);
        if (triangles)
            score<D, 3>(pos, connect, first, last, qualities, triangle);
        else
            score<D, 4>(pos, connect, first, last, qualities, quadrangle);
    }
}

template <std::size_t D>
void score_surface(const node_positions& pos, const dense2D<unsigned int>& connect, element_type kind,
                   double* qualities)
{
    if (connect.rows == 3)
        score<D, 3>(pos, connect, 0, connect.cols, qualities, triangle);
    else if (kind == EL_QUAD4)
        score<D, 4>(pos, connect, 0, connect.cols, qualities, quadrangle);
    else
        score_faces<D>(pos, connect, qualities);
}

template <std::size_t N>
void score_solids(const dense2D<double>& pos, const dense2D<unsigned int>& connect, double* qualities,
                  shape_measure<3, N> measure, wide_score* four_at_a_time)
{
    if (has_wide_lanes())
        four_at_a_time(pos, connect, qualities);
    else
        score(node_positions(pos), connect, 0, connect.cols, qualities, measure);
}

// Scores a matrix that is not empty and has passed the check; writes one value per column.
void score_matrix(const dense2D<double>& coordinates, const dense2D<unsigned int>& connect, int type, double* qualities)
{
    const node_positions pos(coordinates);
    const std::uint64_t n = connect.cols;
    switch (const element_type kind = measure_of(type)) {
        case EL_EDGE2:
            std::fill_n(qualities, n, 1.0);
            break;
        case EL_TETRA4:
            score_solids(coordinates, connect, qualities, tetrahedron, score_tetrahedra_four_at_a_time);
            break;
        case EL_PYRAMID5:
            score(pos, connect, 0, n, qualities, pyramid);
            break;
        case EL_WEDGE6:
            score_solids(coordinates, connect, qualities, wedge, score_wedges_four_at_a_time);
            break;
        case EL_HEXA8:
            score_solids(coordinates, connect, qualities, hexahedron, score_hexahedra_four_at_a_time);
            break;
        default:  // surface elements have a measure in the plane and one in space
            if (pos.rows == 2)
                score_surface<2>(pos, connect, kind, qualities);
            else if (pos.rows == 3)
                score_surface<3>(pos, connect, kind, qualities);
            else
                std::fill_n(qualities, n, 0.0);
    }
}

// The general form. Every matrix is checked before the first is measured.
int score_range(const dense2D<double>& pos, matrix_range<const dense2D<unsigned int>> connects, const int* types,
                dense1D<double>& qualities)
{
    std::uint64_t total = 0;
    for (std::size_t k = 0; k < connects.length(); ++k) {
        const dense2D<unsigned int>& connect = connects.first[k];
        const int code = connect.empty() ? success : check(pos, connect, types[k]);
        if (code != success) return code;
        if (connect.cols > std::numeric_limits<std::uint64_t>::max() - total) return out_of_memory;
        total += connect.cols;
    }
    if (!qualities.resize(total)) return out_of_memory;

    // Columns without rows are counted but not passed over, so that what follows moves up and zeros close the vector:
    // part of the interface.
    double* next = qualities.data();
    for (std::size_t k = 0; k < connects.length(); ++k) {
        if (connects.first[k].empty()) continue;
        score_matrix(pos, connects.first[k], types[k], next);
        next += connects.first[k].cols;
    }
    std::fill(next, qualities.end(), 0.0);
    return success;
}

// Only a success reaches the caller's vector; a failure empties it.
int hand_over(int code, const dense1D<double>& found, dense1D<double>& qualities)
{
    if (code == success)
        qualities.shallow_copy(found);
    else
        qualities.clear();
    return code;
}

// The histogram may be a class of the host's own, so what it throws is caught here.
int hand_over(int code, const dense1D<double>& found, misc::histogram& h)
{
    if (code != success) return code;
    return guarded([&] {
        h.process(found);
        return success;
    });
}

template <class Output>
int score_checked_range(const dense2D<double>& pos, matrix_range<const dense2D<unsigned int>> connects,
                        const dense1D<int>& types, Output& output)
{
    dense1D<double> found;
    const int code = connects.reversed()               ? bad_argument(3)
                     : connects.length() != types.size ? bad_argument(4)
                                                       : score_range(pos, connects, types.data(), found);
    return hand_over(code, found, output);
}

}  // namespace

int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                    dense1D<double>& qualities)
{
    dense1D<double> found;
    const int raw_type = type;
    const int code = measure_of(raw_type) == EL_NONE ? bad_argument(3)
                                                     : score_range(pos, {&connect, &connect + 1}, &raw_type, found);
    if (code == success && measure_of(raw_type) == EL_EDGE2) std::fill(found.begin(), found.end(), 1.0);
    return hand_over(code, found, qualities);
}

int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last,
                    const dense1D<int>& types, dense1D<double>& qualities)
{
    return score_checked_range(pos, {first, last}, types, qualities);
}

int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last,
                    const dense1D<int>& types, misc::histogram& h)
{
    return score_checked_range(pos, {first, last}, types, h);
}

int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                    misc::histogram& h)
{
    dense1D<double> found;
    const int raw_type = type;
    return hand_over(score_range(pos, {&connect, &connect + 1}, &raw_type, found), found, h);
}

}  // namespace zeb::tessolv
