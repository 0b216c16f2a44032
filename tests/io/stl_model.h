#ifndef TESTS_IO_STL_MODEL_H
#define TESTS_IO_STL_MODEL_H

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "support/classic_locale.h"
#include "support/matrices.h"
#include "support/temporary_file.h"

// What STL_input gives, as one object, and a literal model of it over the streams of the C runtime.
namespace test {

struct stl_mesh {
    int code = 0;
    zeb::dense2D<double> pos{};
    zeb::dense2D<unsigned> connect{};
};

// Equal to the bit, but for the payload of a NaN.
inline bool same_value(double a, double b)
{
    if (std::isnan(a) && std::isnan(b)) return std::signbit(a) == std::signbit(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

inline bool operator==(const stl_mesh& a, const stl_mesh& b)
{
    if (a.code != b.code || a.connect != b.connect || a.pos.rows != b.pos.rows || a.pos.cols != b.pos.cols)
        return false;
    for (std::uint64_t j = 0; j < a.pos.cols; ++j)
        for (std::uint64_t i = 0; i < a.pos.rows; ++i)
            if (!same_value(a.pos(i, j), b.pos(i, j))) return false;
    return true;
}

inline void PrintTo(const stl_mesh& m, std::ostream* out)
{
    *out << "code " << m.code;
    PrintTo(m.pos, &(*out << ", nodes "));
    PrintTo(m.connect, &(*out << ", triangles "));
}

// What the function makes of a file; the outputs hold something else before.
inline stl_mesh read_stl_file(const char* name, bool ascii)
{
    stl_mesh m{77, points({{1, 2}}), columns({{5, 6}})};
    m.code = zeb::tessolv::STL_input(name, m.pos, m.connect, ascii);
    return m;
}

inline stl_mesh read_stl(const std::string& bytes, bool ascii)
{
    const temporary_file file(bytes);
    return read_stl_file(file.name(), ascii);
}

class stl_model {
public:
    // A negative code, or 0 and the facets.
    int read_text(std::FILE* f)
    {
        const classic_locale classic;
        char line[256];
        if (std::fgets(line, sizeof line, f) == nullptr) return -1;
        double v[3];
        while (std::fscanf(f, "   facet normal %lg %lg %lg\n", &v[0], &v[1], &v[2]) == 3) {
            if (std::fgets(line, sizeof line, f) == nullptr) break;
            int corners = 0;
            for (; corners < 3; ++corners) {
                if (std::fscanf(f, "      vertex %lg %lg %lg\n", &v[0], &v[1], &v[2]) != 3) break;
                nodes_.push_back({v[0], v[1], v[2]});
            }
            if (corners < 3) break;
            if (std::fgets(line, sizeof line, f) == nullptr) break;
            if (std::fgets(line, sizeof line, f) == nullptr) break;
            add_triangle();
        }
        return 0;
    }

    int read_binary(std::FILE* f)
    {
        char header[80];
        std::uint32_t count = 0;
        if (std::fread(header, 1, 80, f) != 80 || std::fread(&count, 1, 4, f) != 4) return -1;
        for (std::uint32_t i = 0; i < count; ++i) {
            float v[3];
            if (std::fread(v, 1, 12, f) != 12) break;
            int corners = 0;
            for (; corners < 3 && std::fread(v, 1, 12, f) == 12; ++corners) nodes_.push_back({v[0], v[1], v[2]});
            if (corners < 3) break;
            char attribute[2];
            if (std::fread(attribute, 1, 2, f) != 2) break;
            add_triangle();
        }
        return 0;
    }

    void add_facet(const std::vector<std::vector<double>>& corners)
    {
        nodes_.insert(nodes_.end(), corners.begin(), corners.end());
        add_triangle();
    }

    std::size_t facets() const { return triangles_.size(); }

    // The corners, three of each facet and those of one that broke off.
    const std::vector<std::vector<double>>& nodes() const { return nodes_; }

    // The largest double if there is none.
    double least_height() const
    {
        double least = std::numeric_limits<double>::max();
        for (const auto& t : triangles_) {
            const double h = height(nodes_[t[0]], nodes_[t[1]], nodes_[t[2]]);
            if (h > 0 && h < least) least = h;
        }
        return least;
    }

    stl_mesh welded() const
    {
        stl_mesh m{0, points(nodes_), columns(triangles_)};
        const double least = least_height();
        if (least < std::numeric_limits<double>::max()) {
            zeb::dense1D<unsigned> work, work2;
            m.code = zeb::tessolv::merge(m.pos, m.connect, work, 0.05 * least, 0);
            if (m.code < 0) return m;
            zeb::tessolv::remove_degenerated(m.connect, work2);
            m.code = zeb::tessolv::simplify(m.pos, m.connect);
            if (m.code < 0) return m;
        }
        m.code = static_cast<int>(m.connect.cols);
        return m;
    }

private:
    using vector = std::vector<double>;

    void add_triangle()
    {
        const auto n = static_cast<unsigned>(nodes_.size());
        triangles_.push_back({n - 3, n - 2, n - 1});
    }

    static double norm(const double (&v)[3]) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

    static double distance(const vector& P, const vector& A, const vector& B)
    {
        double u[3], w[3], x[3];
        for (std::size_t i = 0; i < 3; ++i) {
            u[i] = B[i] - A[i];
            w[i] = P[i] - A[i];
        }
        const double size = norm(u);
        if (size == 0) return 0;
        for (double& component : u) component /= size;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
            x[i] = u[j] * w[k] - u[k] * w[j];
        }
        return norm(x);
    }

    static double height(const vector& A, const vector& B, const vector& C)
    {
        double h = distance(C, A, B);
        const double h1 = distance(A, B, C);
        const double h2 = distance(B, C, A);
        if (h1 < h) h = h1;
        if (h2 < h) h = h2;
        return h;
    }

    std::vector<vector> nodes_;
    std::vector<std::vector<unsigned>> triangles_;
};

inline stl_mesh stl_model_of(const std::string& bytes, bool ascii)
{
    const temporary_file file(bytes);
    std::FILE* f = std::fopen(file.name(), ascii ? "rt" : "rb");
    stl_model model;
    const int code = ascii ? model.read_text(f) : model.read_binary(f);
    std::fclose(f);
    return code < 0 ? stl_mesh{code} : model.welded();
}

// -- the makings of files

using facet_corners = std::vector<std::vector<double>>;

inline std::string stl_text(const std::vector<facet_corners>& facets)
{
    const classic_locale classic;
    std::string text = "solid some name\n";
    for (const facet_corners& facet : facets) {
        text += "  facet normal 0 0 1\n    outer loop\n";
        for (const auto& P : facet) {
            char line[120];
            std::snprintf(line, sizeof line, "      vertex %.9g %.9g %.9g\n", P[0], P[1], P[2]);
            text += line;
        }
        text += "    endloop\n  endfacet\n";
    }
    return text + "endsolid some name\n";
}

inline std::string bytes_of(std::uint32_t value)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

inline std::string stl_binary(const std::vector<facet_corners>& facets, std::uint32_t count)
{
    std::string bytes = "solid, but binary" + std::string(63, ' ') + bytes_of(count);
    for (const facet_corners& facet : facets) {
        for (int k = 0; k < 3; ++k) bytes += bytes_of(0x7FC00000);  // nobody looks at the normal
        for (const auto& P : facet)
            for (const double x : P) bytes += bytes_of(std::bit_cast<std::uint32_t>(static_cast<float>(x)));
        bytes += "ab";  // nor at the attribute
    }
    return bytes;
}

inline std::string stl_bytes(const std::vector<facet_corners>& facets, bool ascii)
{
    return ascii ? stl_text(facets) : stl_binary(facets, static_cast<std::uint32_t>(facets.size()));
}

// The surface of a cube in 12 facets.
inline std::vector<facet_corners> cube_facets(double side)
{
    constexpr int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    const auto corner = [side](int n) {
        const int x = n % 2, y = n / 2 % 2, z = n / 4;
        return std::vector<double>{x * side, y * side, z * side};
    };
    std::vector<facet_corners> facets;
    for (const auto& q : quads) {
        facets.push_back({corner(q[0]), corner(q[1]), corner(q[2])});
        facets.push_back({corner(q[0]), corner(q[2]), corner(q[3])});
    }
    return facets;
}

}  // namespace test

#endif
