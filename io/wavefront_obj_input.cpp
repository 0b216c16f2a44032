#include <array>

#include <tessolv/io.h>

#include "core/return_codes.h"
#include "io/block_reader.h"
#include "io/growing_columns.h"
#include "io/wavefront_obj_line.h"

namespace zeb::tessolv {
namespace {

// A matrix that grows by a line of the file at a time.
template <class T>
struct line_columns {
    dense2D<T> matrix;
    std::uint64_t begun = 0;  // bytes of the file that had been read before its first column

    // The columns that it will have if the file goes on as since the first one; 0 as long as that is a guess. Reserved at
    // once they leave no smaller buffers behind: 3.4 MB beyond the results of a million triangles instead of 13. What is
    // reserved for lines that do not come is never touched.
    std::uint64_t expected(const block_reader& in)
    {
        constexpr std::uint64_t enough = std::uint64_t{1} << 20;
        if (matrix.cols == 0) begun = in.passed();
        const std::uint64_t taken = in.passed() - begun;
        if (taken < enough) return 0;
        constexpr double margin = 1.25;  // a line is known by its block only
        const double per_byte = margin * static_cast<double>(matrix.cols) / static_cast<double>(taken);
        return matrix.cols + static_cast<std::uint64_t>(per_byte * static_cast<double>(in.remaining()));
    }
};

// Reads one file into five matrices of its own. The functions that read a line give success or the code that ends the
// reading.
class obj_reader {
public:
    line_columns<double> pos, normals, uvs;
    line_columns<unsigned int> trias, quads;

    int read(const char* filename)
    {
        if (in_.open(filename) != success) return bad_argument(1);
        while (in_.ensure(1) != 0) {
            if (const int refused = read_lines()) return refused;
        }
        return in_.broke_off() ? bad_argument(1) : success;
    }

private:
    // Reads the lines that are at hand as a whole. A line that is not goes through the block piece by piece.
    int read_lines()
    {
        const char* const end = in_.ensure_lines();
        if (end == in_.begin()) return read_line(in_);
        line_at_hand line(in_.begin());
        while (line.begin() != end) {
            if (const int refused = read_line(line)) return refused;
        }
        in_.move_to(end);
        return success;
    }

    template <class Text>
    int read_line(Text& text)
    {
        int code = success;
        switch (obj::read_keyword(text)) {
            case obj::keyword::v:
                code = read_position(text);
                break;
            case obj::keyword::vt:
                code = read_texture(text);
                break;
            case obj::keyword::vn:
                code = read_normal(text);
                break;
            case obj::keyword::f:
                code = read_face(text);
                break;
            default:
                break;
        }
        if (code == success) obj::pass_line(text);
        return code;
    }

    template <class Text>
    int read_position(Text& text)
    {
        if (obj::read_numbers(text, numbers_) < 3) return bad_argument(1);
        return append(pos, numbers_.data(), 3);
    }

    template <class Text>
    int read_normal(Text& text)
    {
        has_normals_ = true;
        if (obj::read_numbers(text, numbers_) != 3) return bad_argument(1);
        return append(normals, numbers_.data(), 3);
    }

    // The first line that has numbers decides how many every column has.
    template <class Text>
    int read_texture(Text& text)
    {
        has_textures_ = true;
        const std::size_t count = obj::read_numbers(text, numbers_);
        if (count > 3) return bad_argument(1);
        return count != 0 ? append(uvs, numbers_.data(), uvs.matrix.cols != 0 ? uvs.matrix.rows : count) : success;
    }

    // Faces other than triangles and quadrilaterals must be as well-formed as these, and are passed over.
    template <class Text>
    int read_face(Text& text)
    {
        std::array<unsigned int, 4> nodes{};
        std::size_t count = 0;
        for (; !obj::at_line_end(text); ++count) {
            obj::corner read;
            if (!obj::read_corner(text, read)) return bad_argument(1);
            if ((read.has_texture && !has_textures_) || (read.has_normal && !has_normals_)) return bad_argument(1);
            if (count < nodes.size()) nodes[count] = node_of(read);
        }
        if (count == 3) return append(trias, nodes.data(), 3);
        return count == 4 ? append(quads, nodes.data(), 4) : success;
    }

    // Nodes are counted from 1, negative numbers from the last node back. A number that names no node counts as 0, and
    // 0 becomes the index behind the last node, which check_IDs refuses.
    unsigned int node_of(const obj::corner& read) const
    {
        const std::uint64_t known = pos.matrix.cols;
        if (read.counts_back && read.node != 0 && read.node <= known) return as_bound(known - read.node);
        return read.counts_back || read.node == 0 ? as_bound(known) : static_cast<unsigned int>(read.node - 1);
    }

    // A line in which reading broke off is left out. Exhausted memory has no code of its own
    // here: part of the interface.
    template <class T>
    int append(line_columns<T>& lines, const T* values, std::uint64_t rows)
    {
        if (in_.size() == 0 && in_.broke_off()) return bad_argument(1);
        const auto expected = [&] { return lines.expected(in_); };
        return append_column(lines.matrix, values, rows, expected) ? success : bad_argument(1);
    }

    block_reader in_;
    std::array<double, 4> numbers_{};
    bool has_textures_ = false;
    bool has_normals_ = false;
};

}  // namespace

int WavefrontOBJ_input(const char* filename, dense2D<double>& pos, dense2D<double>& normals, dense2D<double>& uvs,
                       dense2D<unsigned int>& tria_connect, dense2D<unsigned int>& quad_connect)
{
    obj_reader reader;
    const int code = reader.read(filename);
    // Also after an error: what stands before it in the file is kept.
    pos.shallow_copy(reader.pos.matrix);
    normals.shallow_copy(reader.normals.matrix);
    uvs.shallow_copy(reader.uvs.matrix);
    tria_connect.shallow_copy(reader.trias.matrix);
    quad_connect.shallow_copy(reader.quads.matrix);
    return code;
}

}  // namespace zeb::tessolv
