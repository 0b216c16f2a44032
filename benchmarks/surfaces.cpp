// Writers and readers of STL and Wavefront OBJ files of a million triangles, reading with the weld. "ordered" are the
// triangles of a sheet row by row, "shuffled" the same ones in no order. Files go to the folder for temporary files.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <tessolv/tessolv.h>

namespace {

using namespace zeb::tessolv;

constexpr unsigned side = 707;  // squares along an edge; two triangles each make 999,698

// A wavy sheet that was shaken, so that coordinates have all their digits and triangles differ.
const dense2D<double>& nodes()
{
    static const dense2D<double> pos = [] {
        dense2D<double> m(3, std::uint64_t{side + 1} * (side + 1));
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> shake(-0.002, 0.002);
        for (unsigned j = 0; j <= side; ++j)
            for (unsigned i = 0; i <= side; ++i) {
                double* P = &m(0, j * (side + 1) + i);
                P[0] = 0.01 * i + shake(random);
                P[1] = 0.01 * j + shake(random);
                P[2] = std::sin(0.05 * i) * std::cos(0.03 * j);
            }
        return m;
    }();
    return pos;
}

dense2D<unsigned> make_triangles(bool shuffled)
{
    std::vector<unsigned> squares(std::size_t{side} * side);
    std::iota(squares.begin(), squares.end(), 0U);
    if (shuffled) std::shuffle(squares.begin(), squares.end(), std::mt19937_64(2));
    dense2D<unsigned> m(3, 2 * squares.size());
    std::uint64_t e = 0;
    for (const unsigned square : squares) {
        const unsigned a = square / side * (side + 1) + square % side;
        const unsigned corners[2][3] = {{a, a + 1, a + side + 2}, {a, a + side + 2, a + side + 1}};
        for (const auto& corner : corners) std::copy_n(corner, 3, &m(0, e++));
    }
    return m;
}

const dense2D<unsigned>& triangles(bool shuffled)
{
    static const dense2D<unsigned> ordered = make_triangles(false);
    static const dense2D<unsigned> mixed = make_triangles(true);
    return shuffled ? mixed : ordered;
}

// A file of the sheet that goes with the object.
struct sheet_file {
    std::string name = (std::filesystem::temp_directory_path() / "tessolv_surfaces_benchmark").string();
    ~sheet_file() { std::filesystem::remove(name); }

    void count_bytes(benchmark::State& state) const
    {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                                static_cast<std::int64_t>(std::filesystem::file_size(name)));
    }
};

void write_stl(benchmark::State& state, bool ascii, bool shuffled)
{
    const sheet_file file;
    const dense2D<unsigned>& connect = triangles(shuffled);
    for (auto _ : state)
        if (STL_output(file.name.c_str(), nodes(), connect, ascii) != 0) state.SkipWithError("not written");
    file.count_bytes(state);
}

void read_stl(benchmark::State& state, bool ascii, bool shuffled)
{
    const sheet_file file;
    STL_output(file.name.c_str(), nodes(), triangles(shuffled), ascii);
    for (auto _ : state) {
        dense2D<double> pos;
        dense2D<unsigned> connect;
        STL_input(file.name.c_str(), pos, connect, ascii);
        if (pos.cols != nodes().cols) state.SkipWithError("not welded");
    }
    file.count_bytes(state);
}

void write_obj(benchmark::State& state)
{
    const sheet_file file;
    for (auto _ : state)
        if (WavefrontOBJ_output(file.name.c_str(), nodes(), {}, {}, triangles(false), {}) != 0)
            state.SkipWithError("not written");
    file.count_bytes(state);
}

void read_obj(benchmark::State& state)
{
    const sheet_file file;
    std::FILE* f = std::fopen(file.name.c_str(), "w");
    const dense2D<unsigned>& connect = triangles(false);
    for (std::uint64_t j = 0; j < nodes().cols; ++j)
        std::fprintf(f, "v %f %f %f\n", nodes()(0, j), nodes()(1, j), nodes()(2, j));
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        std::fprintf(f, "f %u %u %u\n", connect(0, e) + 1, connect(1, e) + 1, connect(2, e) + 1);
    std::fclose(f);
    for (auto _ : state) {
        dense2D<double> pos, normals, uvs;
        dense2D<unsigned> trias, quads;
        if (WavefrontOBJ_input(file.name.c_str(), pos, normals, uvs, trias, quads) != 0)
            state.SkipWithError("not read");
        if (trias != connect) state.SkipWithError("read wrongly");
    }
    file.count_bytes(state);
}

BENCHMARK_CAPTURE(write_stl, text, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_stl, text_shuffled, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_stl, binary, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_stl, text, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_stl, text_shuffled, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_stl, binary, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_stl, binary_shuffled, false, true)->Unit(benchmark::kMillisecond);
BENCHMARK(write_obj)->Unit(benchmark::kMillisecond);
BENCHMARK(read_obj)->Unit(benchmark::kMillisecond);

}  // namespace
