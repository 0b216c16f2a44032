#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <tessolv/io.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "io/c_file.h"
#include "io/facet_geometry.h"
#include "io/number_text.h"

namespace zeb::tessolv {
namespace {

struct facet {
    vector3 normal;
    vector3 corners[3];
};

vector3 position(const dense2D<double>& pos, unsigned int node)
{
    const double* P = column(pos, node);
    return {P[0], P[1], pos.rows == 3 ? P[2] : 0.0};
}

facet facet_of(const dense2D<double>& pos, const unsigned int* nodes)
{
    const vector3 A = position(pos, nodes[0]);
    const vector3 B = position(pos, nodes[1]);
    const vector3 C = position(pos, nodes[2]);
    return {unit_vector(cross(B - A, C - A)), {A, B, C}};
}

// -- text

char* put_text(char* to, std::string_view text)
{
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

// " %le %le %le\n"
char* put_vector(char* to, const vector3& v)
{
    for (const double component : {v.x, v.y, v.z}) {
        *to++ = ' ';
        to = put_scientific(to, component);
    }
    *to++ = '\n';
    return to;
}

// Texts of the corners that were written last. A node is met by some six triangles, mostly soon after each other.
class corner_texts {
public:
    [[nodiscard]] bool allocate(std::uint64_t nodes)
    {
        return places_.allocate(std::bit_ceil(std::clamp<std::uint64_t>(nodes, 1, 1 << 14)), place{NONE_INDEX, 0, {}});
    }

    // Writes the coordinates of a node; `to` has room for three numbers.
    char* put(char* to, unsigned int node, const vector3& P)
    {
        place& found = places_[node & (places_.size() - 1)];
        if (found.node != node) {
            found.node = node;
            found.length = static_cast<unsigned int>(put_vector(to, P) - to);
            std::memcpy(found.text, to, sizeof found.text);
        } else {
            std::memcpy(to, found.text, sizeof found.text);
        }
        return to + found.length;
    }

private:
    struct place {
        unsigned int node;
        unsigned int length;
        char text[48];  // " -1.234567e-100" three times and a newline take 46
    };

    scratch<place> places_;
};

void write_text(block_writer& out, corner_texts& texts, const dense2D<double>& pos,
                const dense2D<unsigned int>& connect, std::uint64_t facets)
{
    constexpr std::size_t facet_room = 12 * number_room + 256;
    out.put("solid ZEB\n");
    for (std::uint64_t j = 0; j < facets; ++j) {
        const facet f = facet_of(pos, column(connect, j));
        char* at = put_text(out.room(facet_room), "   facet normal");
        at = put_text(put_vector(at, f.normal), "      outer loop\n");
        for (std::size_t k = 0; k < 3; ++k)
            at = texts.put(put_text(at, "         vertex"), column(connect, j)[k], f.corners[k]);
        out.advance(put_text(at, "      endloop\n   endfacet\n"));
    }
    out.put("endsolid ZEB\n");
}

// -- binary: little-endian on every machine

constexpr std::size_t header_size = 80;
constexpr std::size_t facet_size = 4 * 12 + 2;

char* put_uint32(char* to, std::uint32_t value)
{
    for (int k = 0; k < 4; ++k) *to++ = static_cast<char>(value >> (8 * k));
    return to;
}

char* put_floats(char* to, const vector3& v)
{
    for (const double component : {v.x, v.y, v.z})
        to = put_uint32(to, std::bit_cast<std::uint32_t>(static_cast<float>(component)));
    return to;
}

void write_binary(block_writer& out, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                  std::uint64_t facets)
{
    char header[header_size] = "ZEB STL Binary";
    out.put({header, header_size});
    out.advance(put_uint32(out.room(4), static_cast<std::uint32_t>(facets)));
    for (std::uint64_t j = 0; j < facets; ++j) {
        const facet f = facet_of(pos, column(connect, j));
        char* at = put_floats(out.room(facet_size), f.normal);
        for (const vector3& corner : f.corners) at = put_floats(at, corner);
        *at++ = 0;  // the attribute
        *at++ = 0;
        out.advance(at);
    }
}

}  // namespace

int STL_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect, bool ascii)
{
    // Opened before anything is checked, so that a refused mesh leaves an empty file: part of the interface.
    c_file file(filename, ascii ? "wt" : "wb");
    if (!file.is_open()) return bad_argument(1);
    if (pos.rows != 2 && pos.rows != 3) return bad_argument(2);
    if (!check_IDs(connect, EL_TRIA3, as_bound(pos.cols))) return bad_argument(3);
    block_writer out(file.stream());
    corner_texts texts;
    if (!out.allocate() || (ascii && !texts.allocate(pos.cols))) return out_of_memory;
    const std::uint64_t facets = connect.rows != 0 ? connect.cols : 0;
    if (ascii)
        write_text(out, texts, pos, connect, facets);
    else
        write_binary(out, pos, connect, facets);
    return finish(out, file);
}

}  // namespace zeb::tessolv
