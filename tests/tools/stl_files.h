#ifndef TESTS_TOOLS_STL_FILES_H
#define TESTS_TOOLS_STL_FILES_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// STL files as bytes, and files on the disk for them.

namespace test {

using corner = std::array<float, 3>;
using facet = std::array<corner, 3>;

inline constexpr corner O{0, 0, 0}, X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1}, W{0, -1, 0}, V{0, 0, -1};

// The four faces of the tetrahedron O X Y Z: closed, 4 nodes, 6 edges.
inline const std::vector<facet> tetrahedron{{O, Y, X}, {O, X, Z}, {O, Z, Y}, {X, Y, Z}};

// Three triangles on the edge O X.
inline const std::vector<facet> book{{O, X, Y}, {O, X, Z}, {O, X, W}};

std::string text_facet(const facet& f);
std::string text_facets(const std::vector<facet>& facets);
std::string text_stl(const std::vector<facet>& facets);  // "solid part" ... "endsolid part"

std::string binary_header(const std::string& title, std::uint32_t announced);
std::string binary_facets(const std::vector<facet>& facets);
std::string binary_stl(const std::vector<facet>& facets, const std::string& title = "part");

// A folder of its own for one test, removed with all that is in it.
class temporary_folder {
public:
    temporary_folder();
    ~temporary_folder();
    temporary_folder(const temporary_folder&) = delete;
    temporary_folder& operator=(const temporary_folder&) = delete;

    std::string path(const std::string& name) const { return folder_ + '/' + name; }
    std::string write(const std::string& name, const std::string& bytes) const;

private:
    std::string folder_;
};

std::string read_file(const std::string& path);

}  // namespace test

#endif
