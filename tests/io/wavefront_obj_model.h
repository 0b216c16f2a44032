#ifndef TESTS_IO_WAVEFRONT_OBJ_MODEL_H
#define TESTS_IO_WAVEFRONT_OBJ_MODEL_H

#include <cctype>
#include <locale>
#include <ostream>
#include <regex>
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
        static const std::regex corner("^[ \t\v\f\r]*([+-]?[0-9]+)(?:/([+-]?[0-9]+)?(?:/([+-]?[0-9]+)?)?)?");
        std::vector<unsigned> nodes;
        std::string rest = text;
        for (std::smatch match; std::regex_search(rest, match, corner); rest = match.suffix()) {
            for (int field = 1; field <= 3; ++field)
                if (match[field].matched && std::stold(match[field]) > 4294967295.0L) return false;
            if ((match[2].matched && !has_textures_) || (match[3].matched && !has_normals_)) return false;
            nodes.push_back(node(std::stold(match[1])));
            if (match.suffix().first != match.suffix().second && *match.suffix().first == '/') return false;
        }
        if (rest.find_first_not_of(" \t\v\f\r") != std::string::npos) return false;
        if (nodes.size() == 3) trias.push_back(nodes);
        if (nodes.size() == 4) quads.push_back(nodes);
        return true;
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
