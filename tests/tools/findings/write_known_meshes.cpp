// write_known_meshes FOLDER: known_meshes.json with every known mesh and what is expected of it, for other languages;
// beside it a file of each mesh that a file can hold.
#include <cstdio>
#include <fstream>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "formats/format.h"
#include "tools/findings/known_meshes.h"

namespace {

using nlohmann::json;

template <class Matrix>
json rows_of(const Matrix& m)
{
    json rows = json::array();
    for (std::uint64_t j = 0; j < m.cols; ++j) {
        json row = json::array();
        for (std::uint64_t i = 0; i < m.rows; ++i) row.push_back(m(i, j));
        rows.push_back(row);
    }
    return rows;
}

// NaN and infinity have no place in JSON: texts that Python takes for them.
json points_of(const tool::mesh& m)
{
    json rows = rows_of(m.pos);
    for (json& row : rows)
        for (json& x : row) {
            const auto value = x.get<double>();
            if (value != value) x = "nan";
            if (value > 1e300) x = "inf";
        }
    return rows;
}

// Name of the file, or none. An STL file would repeat the nodes.
json file_of(const test::known_mesh& known, const std::string& folder)
{
    const tool::mesh& m = known.content;
    const std::string ending = m.facets ? ".stl" : m.pos.rows == 2 ? ".mesh" : ".msh";
    const std::string name = known.name + ending;
    if (!m.faults.empty()) return nullptr;
    try {
        write_mesh(m, folder + '/' + name);
    } catch (const std::exception& reason) {
        std::fprintf(stderr, "%s: %s\n", known.name, reason.what());
        return nullptr;
    }
    return name;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    const std::string folder = argv[1];
    json all = json::array();
    for (const auto& list : {test::known_solids(), test::known_surfaces(), test::known_other_meshes()})
        for (const test::known_mesh& known : list) {
            const tool::mesh& m = known.content;
            json cells = json::object();
            for (const tool::element_block& block : m.blocks)
                cells[std::to_string(int{block.type})] = rows_of(block.connect);
            json facets = nullptr;
            if (m.facets) facets = {m.facets->in_file, m.facets->read};
            all.push_back({{"name", known.name},
                           {"expected", known.expected},
                           {"points", points_of(m)},
                           {"columns", m.pos.rows},
                           {"cells", cells},
                           {"facets", facets},
                           {"not_read", m.faults.empty() ? 0 : m.faults.front().count},
                           {"file", file_of(known, folder)}});
        }
    std::ofstream file(folder + "/known_meshes.json");
    file << all.dump() << '\n';
    return file.flush() ? 0 : 4;
}
