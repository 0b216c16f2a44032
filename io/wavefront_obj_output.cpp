#include <string_view>

#include <tessolv/io.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "io/c_file.h"
#include "io/number_text.h"

namespace zeb::tessolv {
namespace {

// Writes a line for each column: the keyword, the values and, of positions in the plane, a third one.
void write_vectors(block_writer& out, std::string_view keyword, const dense2D<double>& m, std::string_view behind)
{
    if (m.rows * m.cols == 0) return;
    for (std::uint64_t j = 0; j < m.cols; ++j) {
        out.put(keyword);
        char* at = out.room(4 * number_room);
        for (std::uint64_t i = 0; i < m.rows; ++i) {
            at = put_scientific_8(at, column(m, j)[i]);
            *at++ = ' ';
        }
        out.advance(at);
        out.put(behind);
    }
}

// Writes a line for each face. A corner is n/n/n, where the second and the third number stand for texture and normal
// and may be missing. Nothing separates a corner from the next one: part of the interface.
void write_faces(block_writer& out, const dense2D<unsigned int>& connect, bool has_textures, bool has_normals)
{
    if (connect.rows * connect.cols == 0) return;
    constexpr std::size_t face_room = 16 + 4 * 3 * 12;
    for (std::uint64_t j = 0; j < connect.cols; ++j) {
        char* at = out.room(face_room);
        for (const char c : {' ', 'f', ' '}) *at++ = c;
        for (std::uint64_t i = 0; i < connect.rows; ++i) {
            const unsigned int number = column(connect, j)[i] + 1;
            at = put_unsigned(at, number);
            *at++ = '/';
            if (has_textures) at = put_unsigned(at, number);
            *at++ = '/';
            if (has_normals) at = put_unsigned(at, number);
        }
        *at++ = ' ';
        *at++ = '\n';
        out.advance(at);
    }
}

// Whether a matrix is empty, or has so many rows and a column for every node.
bool fits_nodes(const dense2D<double>& m, std::uint64_t rows, const dense2D<double>& pos)
{
    return m.rows * m.cols == 0 || (m.rows == rows && m.cols == pos.cols);
}

}  // namespace

int WavefrontOBJ_output(const char* filename, const dense2D<double>& pos, const dense2D<double>& normals,
                        const dense2D<double>& uvs, const dense2D<unsigned int>& tria_connect,
                        const dense2D<unsigned int>& quad_connect)
{
    // Opened before anything is checked, so that a refused mesh leaves an empty file: part of the interface.
    c_file file(filename, "w");
    if (!file.is_open()) return bad_argument(1);
    if (pos.rows != 2 && pos.rows != 3) return bad_argument(2);
    if (!fits_nodes(normals, 3, pos)) return bad_argument(3);
    if (!fits_nodes(uvs, 2, pos)) return bad_argument(4);
    if (!check_IDs(tria_connect, EL_TRIA3, NONE_INDEX)) return bad_argument(5);
    if (!check_IDs(quad_connect, EL_QUAD4, NONE_INDEX)) return bad_argument(6);

    block_writer out(file.stream());
    if (!out.allocate()) return out_of_memory;
    const bool has_textures = uvs.rows * uvs.cols != 0;
    const bool has_normals = normals.rows * normals.cols != 0;
    write_vectors(out, " v ", pos, pos.rows == 2 ? "0 \n" : "\n");
    write_vectors(out, " vt ", uvs, "\n");
    write_vectors(out, " vn ", normals, "\n");
    write_faces(out, tria_connect, has_textures, has_normals);
    write_faces(out, quad_connect, has_textures, has_normals);
    return finish(out, file);
}

}  // namespace zeb::tessolv
