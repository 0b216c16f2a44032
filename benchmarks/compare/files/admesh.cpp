#include <admesh/stl.h>

#include "files/input.h"

namespace compare {
namespace {

struct surface_file {
    stl_file stl;
    surface_file() { stl_initialize(&stl); }
    ~surface_file() { stl_close(&stl); }
    surface_file(const surface_file&) = delete;
    surface_file& operator=(const surface_file&) = delete;
};

void fill(surface_file& s, const mesh& m)
{
    s.stl.stats.type = inmemory;
    s.stl.stats.number_of_facets = int(m.connect.cols);
    s.stl.stats.original_num_facets = int(m.connect.cols);
    stl_allocate(&s.stl);
    for (std::uint64_t e = 0; e < m.connect.cols; ++e) {
        stl_facet& facet = s.stl.facet_start[e];
        for (std::uint64_t i = 0; i < 3; ++i) {
            const double* const P = &m.pos(0, m.connect(i, e));
            facet.vertex[i] = {float(P[0]), float(P[1]), float(P[2])};
        }
        float normal[3];
        stl_calculate_normal(normal, &facet);
        stl_normalize_vector(normal);
        facet.normal = {normal[0], normal[1], normal[2]};
    }
}

void write_text(const files_input& m, lap& l)
{
    surface_file s;
    fill(s, m);
    write_and_look(m, l, ".stl", in_stl_text, [&](const char* name) { stl_write_ascii(&s.stl, name, "compared"); });
}

void write_binary(const files_input& m, lap& l)
{
    surface_file s;
    fill(s, m);
    write_and_look(m, l, ".stl", in_stl_binary, [&](const char* name) { stl_write_binary(&s.stl, name, "compared"); });
}

void read(const files_input& m, lap& l)
{
    surface_file s;
    std::string name = m.file;
    l.timed([&] {
        stl_open(&s.stl, name.data());
        stl_check_facets_exact(&s.stl);
        stl_generate_shared_vertices(&s.stl);
    });
    double sum = 0.0;
    for (int i = 0; i < s.stl.stats.shared_vertices; ++i)
        sum += double(s.stl.v_shared[i].x) + s.stl.v_shared[i].y + s.stl.v_shared[i].z;
    l.answer({double(s.stl.stats.number_of_facets), double(s.stl.stats.shared_vertices), sum});
}

const bool entered = enter<files_input>({
    {"write STL text", "admesh", "stl_write_ascii", "from facets that hold their coordinates and normals", write_text},
    {"write STL binary", "admesh", "stl_write_binary", "from facets that hold their coordinates and normals",
     write_binary},
    {"read STL text, weld", "admesh", "stl_open, stl_check_facets_exact, stl_generate_shared_vertices",
     "welds equal positions only; finds neighbours", read},
    {"read STL binary, weld", "admesh", "stl_open, stl_check_facets_exact, stl_generate_shared_vertices",
     "welds equal positions only; finds neighbours", read},
});

}  // namespace
}  // namespace compare
