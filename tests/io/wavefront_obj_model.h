#ifndef TESTS_IO_WAVEFRONT_OBJ_MODEL_H
#define TESTS_IO_WAVEFRONT_OBJ_MODEL_H

#include <cctype>
#include <locale>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "support/matrices.h"
#include "support/temporary_file.h"

// What WavefrontOBJ_input gives, as one object, and a slow model of it.
namespace test {

struct obj_mesh {
    int code = 0;
    zeb::dense2D<double> pos{}, normals{}, uvs{};
    zeb::dense2D<unsigned int> trias{}, quads{};
};

inline bool operator==(const obj_mesh& a, const obj_mesh& b)
{
    return a.code == b.code && a.pos == b.pos && a.normals == b.normals && a.uvs == b.uvs && a.trias == b.trias &&
           a.quads == b.quads;
}

inline void PrintTo(const obj_mesh& m, std::ostream* out)
{
    *out << "code " << m.code;
    PrintTo(m.pos, &(*out << ", v "));
    PrintTo(m.normals, &(*out << ", vn "));
    PrintTo(m.uvs, &(*out << ", vt "));
    PrintTo(m.trias, &(*out << ", trias "));
    PrintTo(m.quads, &(*out << ", quads "));
}

// What the function makes of a file; the outputs hold something else before.
inline obj_mesh read_file(const char* name)
{
    obj_mesh m{7, points({{1, 2}}), points({{3}}), points({{4}}), columns({{5}}), columns({{6}})};
    m.code = zeb::tessolv::WavefrontOBJ_input(name, m.pos, m.normals, m.uvs, m.trias, m.quads);
    return m;
}

inline obj_mesh read_text(const std::string& text)
{
    const temporary_file file(text);
    return read_file(file.name());
}

// -- the same by lines, streams and regular expressions

template <class T>
void append(std::vector<std::vector<T>>& cols, std::vector<T> column, std::size_t rows)
{
    column.resize(rows);
    cols.push_back(column);
}

class line_model {
public:
    std::vector<std::vector<double>> pos, normals, uvs;
    std::vector<std::vector<unsigned>> trias, quads;

    // False for a line that ends the reading.
    bool take(const std::string& line)
    {
        std::istringstream words(line);
        words.imbue(std::locale::classic());
        std::string keyword;
        words >> keyword;
        if (keyword == "f") return take_face(line.substr(line.find('f') + 1));
        if (keyword != "v" && keyword != "vn" && keyword != "vt") return true;
        std::vector<double> numbers;
        for (double number; words >> number;) numbers.push_back(number);
        if (keyword == "v") {
            if (numbers.size() < 3) return false;
            append(pos, numbers, 3);
        } else if (keyword == "vn") {
            has_normals_ = true;
            if (numbers.size() != 3) return false;
            append(normals, numbers, 3);
        } else {
            has_textures_ = true;
            if (numbers.size() > 3) return false;
            if (!numbers.empty()) append(uvs, numbers, uvs.empty() ? numbers.size() : uvs.front().size());
        }
        return true;
    }

private:
    bool take_face(const std::string& text)
    {
        std::vector<unsigned> nodes;
        const std::string blanks = " \t\v\f\r";
        for (std::size_t at = 0; (at = text.find_first_not_of(blanks, at)) != std::string::npos;) {
            std::optional<long double> fields[3];
            fields[0] = integer(text, at);
            for (int k = 1; k < 3 && fields[0] && text[at] == '/'; ++k) fields[k] = integer(text, ++at);
            if (!fields[0] || text[at] == '/') return false;
            for (const auto& field : fields)
                if (field && *field > 4294967295.0L) return false;
            if ((fields[1] && !has_textures_) || (fields[2] && !has_normals_)) return false;
            nodes.push_back(node(*fields[0]));
        }
        if (nodes.size() == 3) trias.push_back(nodes);
        if (nodes.size() == 4) quads.push_back(nodes);
        return true;
    }

    // The integer at a place of the text, which moves behind it.
    static std::optional<long double> integer(const std::string& text, std::size_t& at)
    {
        const std::size_t first = at + (text[at] == '+' || text[at] == '-' ? 1 : 0);
        std::size_t end = first;
        while (std::isdigit(static_cast<unsigned char>(text[end]))) ++end;
        if (end == first) return std::nullopt;
        const long double value = std::stold(text.substr(at, end - at));
        at = end;
        return value;
    }

    unsigned node(long double number) const
    {
        const long double count = static_cast<long double>(pos.size());
        if (number > 0) return static_cast<unsigned>(number - 1);
        return static_cast<unsigned>(number < 0 && -number <= count ? count + number : count);
    }

    bool has_normals_ = false;
    bool has_textures_ = false;
};

inline obj_mesh model_of(const std::string& text)
{
    line_model model;
    int code = 0;
    std::istringstream in(text);
    for (std::string line; code == 0 && std::getline(in, line);)
        if (!model.take(line)) code = -1;
    return {
        code, points(model.pos), points(model.normals), points(model.uvs), columns(model.trias), columns(model.quads)};
}

// One line of every kind and form.
inline const char* const every_form =
    "# comment\n\nmtllib a.mtl\no box\n"
    "v 0 0 0\n v 1.5 -2e-1 +3 1.0\r\n\tv\t.5\t1.\t1e2 # w\nv 0.1 0.2 0.3 0.4 0.5 0.6\n"
    "vt 0.5 0.25\nvt 1\nvt 1 2 3\nvt\nvn 0 0 1\nvn 1e-400 0.70710678118654752440 -0 x\n"
    "f 1 2 3\nf 1/1 2/2 3/3 4/1\nf 1/1/1 2/2/2 3/3/1\nf 1//1 2//2 3//1 4//2\nf 1/ 2/ 3/\nf 1// 2// 3//\n"
    "f -1 -2 -3\nf -4/-1/-1 -9 0\nf 1 2\nf 1 2 3 4 1\nf\ng side\nusemtl x\ns off\nl 1 2\nfo 1 2 3\nvp 1\n"
    "f 4294967295 1 2";

}  // namespace test

#endif
