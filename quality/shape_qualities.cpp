#include <tessolv/quality.h>

#include <algorithm>
#include <limits>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
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

// Scores triangles and quadrangles in one matrix, run by run of equal shape; short runs without lanes left over.
void score_faces(const dense2D<double>& pos, const dense2D<unsigned int>& connect, std::size_t space,
                 const score_functions& widest, double* qualities)
{
    const auto is_triangle = [&](std::uint64_t e) { return column(connect, e)[3] == NONE_INDEX; };
    for (std::uint64_t first = 0, last = 0; first < connect.cols; first = last) {
        const bool triangles = is_triangle(first);
        do ++last;
        while (last < connect.cols && is_triangle(last) == triangles);
        const score_functions& chosen = last - first < 8 ? two_at_a_time : widest;
        (triangles ? chosen.triangles : chosen.quadrangles)[space](pos, connect, first, last, qualities);
    }
}

// Scores a matrix that is not empty and has passed the check; writes one value per column.
void score_matrix(const dense2D<double>& pos, const dense2D<unsigned int>& connect, int type, double* qualities)
{
    const score_functions widest = widest_scores();
    const auto score = [&](score_function* by) { by(pos, connect, 0, connect.cols, qualities); };
    const std::size_t space = pos.rows - 2;  // surface elements have a measure in the plane and one in space
    switch (const element_type kind = measure_of(type)) {
        case EL_EDGE2:
            std::fill_n(qualities, connect.cols, 1.0);
            return;
        case EL_TETRA4:
            return score(widest.tetrahedra);
        case EL_PYRAMID5:
            return score(widest.pyramids);
        case EL_WEDGE6:
            return score(widest.wedges);
        case EL_HEXA8:
            return score(widest.hexahedra);
        default:
            if (pos.rows != 2 && pos.rows != 3)
                std::fill_n(qualities, connect.cols, 0.0);
            else if (connect.rows == 3)
                score(widest.triangles[space]);
            else if (kind == EL_QUAD4)
                score(widest.quadrangles[space]);
            else
                score_faces(pos, connect, space, widest, qualities);
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
