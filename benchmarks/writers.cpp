// Writers of VTK, MEDIT and EnSight files, a million elements each. The files go to the folder for temporary files and
// are removed. "print" is the same VTK file by the runtime's formatted print, what a plain writer would take.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include <tessolv/tessolv.h>

namespace {

using namespace zeb::tessolv;

constexpr unsigned side = 55;  // cubes along an edge; six tetrahedra each make 998,250

unsigned corner(unsigned i, unsigned j, unsigned k)
{
    return (k * (side + 1) + j) * (side + 1) + i;
}

// Nodes of a grid that was shaken, so that coordinates have all their digits.
const dense2D<double>& nodes()
{
    static const dense2D<double> pos = [] {
        dense2D<double> m(3, std::uint64_t{side + 1} * (side + 1) * (side + 1));
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> shake(-0.2, 0.2);
        for (unsigned k = 0; k <= side; ++k)
            for (unsigned j = 0; j <= side; ++j)
                for (unsigned i = 0; i <= side; ++i) {
                    const unsigned n = corner(i, j, k);
                    m(0, n) = i + shake(random);
                    m(1, n) = j + shake(random);
                    m(2, n) = k + shake(random);
                }
        return m;
    }();
    return pos;
}

const dense2D<unsigned>& tetrahedra()
{
    static const dense2D<unsigned> connect = [] {
        constexpr unsigned paths[6][2] = {{1, 3}, {1, 5}, {2, 3}, {2, 6}, {4, 5}, {4, 6}};
        dense2D<unsigned> m(4, std::uint64_t{6} * side * side * side);
        std::uint64_t e = 0;
        for (unsigned k = 0; k < side; ++k)
            for (unsigned j = 0; j < side; ++j)
                for (unsigned i = 0; i < side; ++i) {
                    const auto at = [&](unsigned c) { return corner(i + (c & 1), j + (c >> 1 & 1), k + (c >> 2)); };
                    for (const auto& path : paths) {
                        m(0, e) = at(0);
                        m(1, e) = at(path[0]);
                        m(2, e) = at(path[1]);
                        m(3, e++) = at(7);
                    }
                }
        return m;
    }();
    return connect;
}

// The same tetrahedra as a matrix of eight rows.
const dense2D<unsigned>& mixed()
{
    static const dense2D<unsigned> connect = [] {
        dense2D<unsigned> m(8, tetrahedra().cols, NONE_INDEX);
        for (std::uint64_t e = 0; e < m.cols; ++e)
            for (unsigned i = 0; i < 4; ++i) m(i, e) = tetrahedra()(i, e);
        return m;
    }();
    return connect;
}

template <class Write>
void run(benchmark::State& state, Write write)
{
    const std::string name = (std::filesystem::temp_directory_path() / "tessolv_writers_benchmark").string();
    nodes();
    for (auto _ : state)
        if (write(name.c_str()) != 0) state.SkipWithError("the file was not written");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(name)));
    std::filesystem::remove(name);
}

int print_vtk(const char* name)
{
    std::FILE* f = std::fopen(name, "w");
    if (f == nullptr) return -1;
    const dense2D<double>& pos = nodes();
    const dense2D<unsigned>& connect = tetrahedra();
    for (std::uint64_t j = 0; j < pos.cols; ++j) std::fprintf(f, "%f %f %f\n", pos(0, j), pos(1, j), pos(2, j));
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        std::fprintf(f, "%d %d %d %d %d \n", 4, static_cast<int>(connect(0, e)), static_cast<int>(connect(1, e)),
                     static_cast<int>(connect(3, e)), static_cast<int>(connect(2, e)));
    for (std::uint64_t e = 0; e < connect.cols; ++e) std::fprintf(f, "%d\n", 10);
    return std::fclose(f);
}

void vtk_tetra(benchmark::State& state)
{
    run(state, [](const char* name) { return vtk_output(name, nodes(), tetrahedra(), EL_TETRA4); });
}

void vtk_mixed(benchmark::State& state)
{
    run(state, [](const char* name) { return vtk_output(name, nodes(), mixed(), EL_SOLID_MIX); });
}

void vtk_streams(benchmark::State& state)
{
    run(state, [](const char* name) {
        unsigned count = 0;
        dense1D<unsigned> cells, types;
        std::FILE* f = std::fopen(name, "w");
        int result = vtk_convert(tetrahedra(), EL_TETRA4, count, cells, types);
        if (result == 0) result = vtk_output(f, nodes(), count, cells, types);
        return std::fclose(f) == 0 ? result : -1;
    });
}

void vtk_print(benchmark::State& state)
{
    run(state, print_vtk);
}

void medit_tetra(benchmark::State& state)
{
    run(state, [](const char* name) { return medit_output(name, nodes(), tetrahedra(), EL_TETRA4); });
}

void medit_references(benchmark::State& state)
{
    dense1D<unsigned> refs(tetrahedra().cols);
    std::mt19937 random(1);
    for (unsigned& r : refs) r = static_cast<unsigned>(random() % 100);
    run(state, [&](const char* name) { return medit_output(name, nodes(), tetrahedra(), EL_TETRA4, refs); });
}

void ensight_tetra(benchmark::State& state)
{
    run(state, [](const char* name) { return ensight_output(name, nodes(), tetrahedra(), EL_TETRA4); });
}

BENCHMARK(vtk_tetra)->Unit(benchmark::kMillisecond);
BENCHMARK(vtk_mixed)->Unit(benchmark::kMillisecond);
BENCHMARK(vtk_streams)->Unit(benchmark::kMillisecond);
BENCHMARK(vtk_print)->Unit(benchmark::kMillisecond);
BENCHMARK(medit_tetra)->Unit(benchmark::kMillisecond);
BENCHMARK(medit_references)->Unit(benchmark::kMillisecond);
BENCHMARK(ensight_tetra)->Unit(benchmark::kMillisecond);

}  // namespace
