#include <algorithm>
#include <bit>
#include <cstring>

#include <tessolv/io.h>

#include "core/return_codes.h"
#include "io/block_reader.h"
#include "io/facet_soup.h"
#include "io/number_scan.h"

namespace zeb::tessolv {
namespace {

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
        const bool has_loop_end = pass_line(in);
        const bool has_facet_end = pass_line(in);
        if (!has_loop_end || !has_facet_end) return success;
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
    if (code == success) code = soup.weld();
    if (code != success) soup = facet_soup();
    pos.shallow_copy(soup.pos);
    connect.shallow_copy(soup.connect);
    return code == success ? as_result(soup.connect.cols) : code;
}

}  // namespace zeb::tessolv
