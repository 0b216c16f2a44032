#ifndef TESTS_IO_MODEL_WRITERS_H
#define TESTS_IO_MODEL_WRITERS_H

#include <cstdint>
#include <string>
#include <vector>

#include <tessolv/tessolv.h>

// The writers once more, slowly: step by step as the formats are described, every number by the runtime's formatted
// print (the program must not have set a locale), mixed matrices regrouped into copies. Nothing of the library is used.

namespace test {

struct model_points {
    std::uint64_t rows = 0;
    std::vector<std::vector<double>> cols;
};

struct model_matrix {
    std::uint64_t rows = 0;
    int type = 0;
    std::vector<std::vector<unsigned>> cols;
};

using model_mesh = std::vector<model_matrix>;

// What a writer leaves behind.
struct model_file {
    int code = 0;
    bool exists = false;
    std::string bytes;
};

// The streams of vtk_convert, appended to.
struct model_streams {
    unsigned count = 0;
    std::vector<unsigned> cells, types;
};

int model_vtk_convert(const model_matrix& connect, model_streams& streams);
std::string model_vtk_body(const model_points& pos, const model_streams& streams);

model_file model_vtk_output(const model_points& pos, const model_mesh& mesh);
model_file model_medit_output(const model_points& pos, const model_mesh& mesh);
model_file model_medit_output(const model_points& pos, const model_matrix& connect, const std::vector<unsigned>& refs);
model_file model_medit_tensor(std::uint64_t rows, const std::vector<std::vector<float>>& cols);
model_file model_ensight_output(const model_points& pos, const model_mesh& mesh);

}  // namespace test

#endif
