#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include <tessolv/editing.h>
#include <tessolv/io.h>
#include <tessolv/spatial.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "io/block_reader.h"
#include "io/facet_geometry.h"
#include "io/growing_columns.h"
#include "io/number_scan.h"

namespace zeb::tessolv {
namespace {

// What a file holds before the weld: facets that share no node. A facet that the file breaks off in leaves nodes that
// no triangle names.
struct facet_soup {
    dense2D<double> pos;
    dense2D<unsigned int> connect;

    // Provides room for so many facets at once. What a large file is long enough for costs less so than by doubling.
    [[nodiscard]] bool reserve(std::uint64_t facets)
    {
        return facets == 0 || (reserve_columns(pos, 3, 3 * facets) && reserve_columns(connect, 3, facets));
    }

    [[nodiscard]] bool add_corner(const double* corner)
    {
        return pos.cols < NONE_INDEX && append_column(pos, corner, 3);
    }

    [[nodiscard]] bool add_facet_of_last_corners()
    {
        const auto first = static_cast<unsigned int>(pos.cols - 3);
        const unsigned int nodes[] = {first, first + 1, first + 2};
        return append_column(connect, nodes, 3);
    }
};

// -- text: each step takes exactly what fgets or fscanf would take in the C locale

void pass_spaces(block_reader& in)
{
    in.pass_while(is_space);
}

// fgets with room for 255 characters: a line, or as much of a longer one. False at the end of the file.
bool pass_line(block_reader& in)
{
    const std::size_t room = std::min<std::size_t>(in.ensure(255), 255);
    const void* end = room != 0 ? std::memchr(in.begin(), '\n', room) : nullptr;
    in.move_to(end != nullptr ? static_cast<const char*>(end) + 1 : in.begin() + room);
    return room != 0;
}

// A blank and a word in the format of a scan: any white space, also none, and the very letters.
template <std::size_t N>
bool pass_word(block_reader& in, const char (&word)[N])
{
    pass_spaces(in);
    if (in.ensure(N - 1) < N - 1 || std::memcmp(in.begin(), word, N - 1) != 0) return false;
    in.skip(N - 1);
    return true;
}

// " %lg %lg %lg\n"
bool scan_vector(block_reader& in, double (&vector)[3])
{
    for (double& component : vector) {
        pass_spaces(in);
        if (!read_number(in, number_rules::c_scan, component)) return false;
    }
    pass_spaces(in);
    return true;
}

constexpr std::uint64_t sample = 2000;

// Facets of one file are alike in length, so those read tell how many will come. Only a guess: it may be refused.
void foresee_rest(const block_reader& in, facet_soup& soup)
{
    const std::uint64_t expected = sample * in.remaining() / in.passed();
    static_cast<void>(soup.reserve(sample + expected + expected / 16));
}

int read_text(block_reader& in, facet_soup& soup)
{
    if (!pass_line(in)) return bad_argument(1);
    double vector[3];
    while (pass_word(in, "facet") && pass_word(in, "normal") && scan_vector(in, vector) && pass_line(in)) {
        for (int k = 0; k < 3; ++k) {
            if (!pass_word(in, "vertex") || !scan_vector(in, vector)) return success;
            if (!soup.add_corner(vector)) return out_of_memory;
        }
        if (!pass_line(in) || !pass_line(in)) return success;
        if (!soup.add_facet_of_last_corners()) return out_of_memory;
        if (soup.connect.cols == sample) foresee_rest(in, soup);
    }
    return success;
}

// -- binary: little-endian on every machine

constexpr std::size_t header_size = 80;
constexpr std::size_t vector_size = 12;
constexpr std::size_t facet_size = 4 * vector_size + 2;

std::uint32_t load_uint32(const char* bytes)
{
    std::uint32_t value = 0;
    for (int k = 0; k < 4; ++k) value |= std::uint32_t{static_cast<unsigned char>(bytes[k])} << (8 * k);
    return value;
}

int read_binary(block_reader& in, facet_soup& soup)
{
    if (in.ensure(header_size + 4) < header_size + 4) return bad_argument(1);
    const std::uint32_t count = load_uint32(in.begin() + header_size);
    in.skip(header_size + 4);
    // The count alone is never trusted: it may be anything.
    if (!soup.reserve(std::min<std::uint64_t>(count, in.remaining() / facet_size))) return out_of_memory;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t at_hand = std::min(in.ensure(facet_size), facet_size);
        for (std::size_t first = vector_size; first + vector_size <= at_hand; first += vector_size) {
            double corner[3];
            for (std::size_t k = 0; k < 3; ++k)
                corner[k] = std::bit_cast<float>(load_uint32(in.begin() + first + 4 * k));
            if (!soup.add_corner(corner)) return out_of_memory;
        }
        if (at_hand < facet_size) break;
        if (!soup.add_facet_of_last_corners()) return out_of_memory;
        in.skip(facet_size);
    }
    return success;
}

// -- weld

// Distance of P from the line through A and B, 0 if these coincide.
double distance_to_line(const vector3& P, const vector3& A, const vector3& B)
{
    return length(cross(unit_vector(B - A), P - A));
}

// The least height of a facet, without those of no height; the largest double if there is none.
double least_height(const facet_soup& soup)
{
    double least = std::numeric_limits<double>::max();
    for (std::uint64_t j = 0; j < soup.connect.cols; ++j) {
        const double* at = column(soup.pos, 3 * j);
        const vector3 P[] = {{at[0], at[1], at[2]}, {at[3], at[4], at[5]}, {at[6], at[7], at[8]}};
        double height = distance_to_line(P[2], P[0], P[1]);
        height = std::min(height, distance_to_line(P[0], P[1], P[2]));
        height = std::min(height, distance_to_line(P[1], P[2], P[0]));
        if (height > 0 && height < least) least = height;
    }
    return least;
}

constexpr double weld_fraction = 0.05;  // of the least height: no facet can fold onto itself

// Makes one node of those that coincide and drops what is left over. Without any height every facet keeps its own
// nodes.
int weld(facet_soup& soup)
{
    const double height = least_height(soup);
    if (!(height < std::numeric_limits<double>::max())) return success;
    dense1D<unsigned int> new_IDs;
    int code = merge(soup.pos, soup.connect, new_IDs, weld_fraction * height, 0);
    if (code >= 0) code = remove_degenerated(soup.connect, new_IDs);
    if (code >= 0) code = simplify(soup.pos, soup.connect);
    return std::min(code, success);
}

int read_soup(const char* filename, bool ascii, facet_soup& soup)
{
    block_reader in;
    if (const int refused = in.open(filename)) return refused;
    return ascii ? read_text(in, soup) : read_binary(in, soup);
}

}  // namespace

int STL_input(const char* filename, dense2D<double>& pos, dense2D<unsigned int>& connect, bool ascii)
{
    facet_soup soup;
    int code = read_soup(filename, ascii, soup);
    if (code == success) code = weld(soup);
    if (code != success) soup = facet_soup();
    pos.shallow_copy(soup.pos);
    connect.shallow_copy(soup.connect);
    return code == success ? as_result(soup.connect.cols) : code;
}

}  // namespace zeb::tessolv
