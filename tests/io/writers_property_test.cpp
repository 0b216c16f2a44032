#include <gtest/gtest.h>

#include <unistd.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "io/model_writers.h"
#include "support/matrices.h"
#include "support/temporary_file.h"

// The writers against models of them, on random meshes of all kinds with faults now and then.

namespace {

using namespace zeb::tessolv;
using namespace test;

class mesh_source {
public:
    explicit mesh_source(unsigned seed) : random_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
    bool one_in(unsigned n) { return below(n) == 0; }

    double coordinate()
    {
        switch (below(8)) {
            case 0:
                return std::bit_cast<double>(random_());
            case 1:
                return one_in(2) ? 0.0 : -0.0;
            case 2:
                return std::numeric_limits<double>::quiet_NaN();
            case 3:
                return std::ldexp(static_cast<double>(below(2000)) - 1000.0, -static_cast<int>(below(40)));
            case 4:
                return (static_cast<double>(below(2000)) - 1000.0) * std::pow(10.0, below(30) - 15.0);
            default:
                return std::uniform_real_distribution<double>(-100.0, 100.0)(random_);
        }
    }

    model_points points(bool faults)
    {
        model_points pos;
        pos.rows = faults && one_in(20) ? below(6) : 2 + below(2);
        pos.cols.resize(below(12));
        for (auto& x : pos.cols)
            for (std::uint64_t i = 0; i < pos.rows; ++i) x.push_back(coordinate());
        return pos;
    }

    // A matrix of `type`; nodes below n, and any number now and then when there may be faults.
    model_matrix matrix(int type, unsigned n, bool faults)
    {
        model_matrix m;
        m.type = type;
        if (type == EL_FACE_MIX)
            m.rows = 3 + below(2);
        else if (type == EL_SOLID_MIX)
            m.rows = 4 + 2 * below(3);
        else
            m.rows = type >= 0 && type <= 20 ? zeb::NODES_PER_ELEMENT[type] : below(5);
        if (faults && one_in(15)) m.rows = below(10);
        m.cols.resize(n != 0 ? below(5) : 0);
        for (auto& col : m.cols) {
            for (std::uint64_t i = 0; i < m.rows; ++i) col.push_back(faults && one_in(100) ? stray() : below(n));
            if (type == EL_FACE_MIX && m.rows == 4 && one_in(2)) col[3] = N;
            if (type == EL_SOLID_MIX && m.rows > 4 && one_in(3)) col[4] = N;
            if (type == EL_SOLID_MIX && m.rows > 6 && one_in(3)) col[6] = N;
        }
        return m;
    }

    model_mesh mesh(unsigned n, bool faults)
    {
        model_mesh m(below(5));
        const std::vector<int> written = {3, 4, 5, 5, 6, 7, 8, 9, 10, 11, 11, 12, 13, 16, 17, 18, 19, 20};
        for (auto& matrix_of_mesh : m) {
            const int type = faults && one_in(4) ? static_cast<int>(below(24)) - 1
                                                 : written[below(static_cast<unsigned>(written.size()))];
            matrix_of_mesh = matrix(type, n, faults);
        }
        return m;
    }

    unsigned stray() { return one_in(3) ? N : one_in(2) ? 0x7FFFFFF0 + below(32) : static_cast<unsigned>(random_()); }

private:
    std::mt19937_64 random_;
};

// The matrix as a host may hand it over: compact, or as a view into something larger.
template <class T>
dense2D<T> as_matrix(std::uint64_t rows, const std::vector<std::vector<T>>& cols, bool padded)
{
    dense2D<T> m(rows, cols.size());
    for (std::size_t j = 0; j < cols.size(); ++j)
        for (std::uint64_t i = 0; i < rows; ++i) m(i, j) = cols[j][i];
    return padded ? as_padded_view(m, static_cast<T>(12345)) : m;
}

struct host_mesh {
    std::vector<dense2D<unsigned>> matrices;
    dense1D<int> types;

    const dense2D<unsigned>* first() const { return matrices.data(); }
    const dense2D<unsigned>* last() const { return matrices.data() + matrices.size(); }
};

host_mesh as_mesh(const model_mesh& mesh, mesh_source& source)
{
    host_mesh host;
    std::vector<int> types;
    for (const model_matrix& m : mesh) {
        host.matrices.push_back(as_matrix(m.rows, m.cols, source.one_in(2)));
        types.push_back(m.type);
    }
    host.types = list_of(types);
    return host;
}

void expect_left_behind(const temporary_file& file, int code, const model_file& expected)
{
    EXPECT_EQ(code, expected.code);
    EXPECT_EQ(access(file.name(), F_OK) == 0, expected.exists);
    EXPECT_EQ(file.bytes(), expected.bytes);
}

class RandomMesh : public testing::TestWithParam<unsigned> {};

constexpr int cases_per_seed = 550;

TEST_P(RandomMesh, IsWrittenAsTheModelOfVtkWritesIt)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const bool faults = source.one_in(3);
        const model_points pos = source.points(faults);
        const model_mesh mesh = source.mesh(static_cast<unsigned>(pos.cols.size()), faults);
        const dense2D<double> matrix = as_matrix(pos.rows, pos.cols, source.one_in(2));
        const host_mesh host = as_mesh(mesh, source);
        const model_file expected = model_vtk_output(pos, mesh);
        SCOPED_TRACE(testing::Message() << "round " << round);

        const temporary_file file;
        expect_left_behind(file, vtk_output(file.name(), matrix, host.first(), host.last(), host.types), expected);
        const temporary_file short_form;
        if (mesh.size() == 1)
            expect_left_behind(short_form,
                               vtk_output(short_form.name(), matrix, host.matrices[0], element_type(host.types[0])),
                               expected);
        if (mesh.size() == 2)
            expect_left_behind(short_form,
                               vtk_output(short_form.name(), matrix, host.matrices[0], host.matrices[1],
                                          element_type(host.types[0]), element_type(host.types[1])),
                               expected);
    }
}

TEST_P(RandomMesh, IsConvertedToTheStreamsOfTheModel)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const model_mesh mesh = source.mesh(20, true);
        const host_mesh host = as_mesh(mesh, source);
        model_streams expected;
        unsigned count = 0;
        dense1D<unsigned> cells, types;
        for (std::size_t k = 0; k < mesh.size(); ++k) {
            SCOPED_TRACE(testing::Message() << "round " << round << ", matrix " << k);
            const int code = model_vtk_convert(mesh[k], expected);
            EXPECT_EQ(vtk_convert(host.matrices[k], element_type(host.types[k]), count, cells, types), code);
            EXPECT_EQ(count, expected.count);
            EXPECT_EQ(cells, indices(expected.cells));
            EXPECT_EQ(types, indices(expected.types));
        }
        const model_points pos = source.points(false);
        expected.count = source.one_in(2) ? expected.count : source.below(30);
        std::string bytes;
        const temporary_file file;
        std::FILE* stream = std::fopen(file.name(), "w");
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(vtk_output(stream, as_matrix(pos.rows, pos.cols, source.one_in(2)), expected.count, cells, types), 0);
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(file.bytes(), model_vtk_body(pos, expected));
    }
}

TEST_P(RandomMesh, IsWrittenAsTheModelOfMeditWritesIt)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const bool faults = source.one_in(3);
        model_points pos = source.points(faults);
        if (source.one_in(5)) {
            pos.rows = std::min<std::uint64_t>(pos.rows, 1);
            for (auto& x : pos.cols) x.resize(pos.rows);
        }
        const model_mesh mesh = source.mesh(source.one_in(4) ? 0xFFFFFFFF : 200, faults);
        const dense2D<double> matrix = as_matrix(pos.rows, pos.cols, source.one_in(2));
        const host_mesh host = as_mesh(mesh, source);
        const model_file expected = model_medit_output(pos, mesh);
        SCOPED_TRACE(testing::Message() << "round " << round);

        const temporary_file file;
        expect_left_behind(file, medit_output(file.name(), matrix, host.first(), host.last(), host.types), expected);
        const temporary_file short_form;
        if (mesh.size() == 1)
            expect_left_behind(short_form,
                               medit_output(short_form.name(), matrix, host.matrices[0], element_type(host.types[0])),
                               expected);
        if (mesh.size() == 2)
            expect_left_behind(short_form,
                               medit_output(short_form.name(), matrix, host.matrices[0], host.matrices[1],
                                            element_type(host.types[0]), element_type(host.types[1])),
                               expected);
    }
}

TEST_P(RandomMesh, IsWrittenByReferenceAsTheModelWritesIt)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const bool faults = source.one_in(2);
        const model_points pos = source.points(faults);
        model_mesh mesh = source.mesh(200, faults);
        while (mesh.empty()) mesh = source.mesh(200, faults);
        const host_mesh host = as_mesh(mesh, source);
        std::vector<unsigned> refs;
        for (std::size_t j = 0; j < mesh[0].cols.size(); ++j)
            refs.push_back(source.one_in(4) ? N : source.one_in(5) ? 100000 + source.below(100) : source.below(3));
        if (source.one_in(20)) refs.push_back(0);
        SCOPED_TRACE(testing::Message() << "round " << round);
        const temporary_file file;
        const int code = medit_output(file.name(), as_matrix(pos.rows, pos.cols, source.one_in(2)), host.matrices[0],
                                      element_type(host.types[0]), indices(refs));
        expect_left_behind(file, code, model_medit_output(pos, mesh[0], refs));
    }
}

TEST_P(RandomMesh, IsWrittenAsTheModelOfEnsightWritesIt)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const bool faults = source.one_in(3);
        model_points pos = source.points(faults);
        if (source.one_in(5)) {
            pos.rows = std::min<std::uint64_t>(pos.rows, 1);
            for (auto& x : pos.cols) x.resize(pos.rows);
        }
        const model_mesh mesh = source.mesh(source.one_in(4) ? 0xFFFFFFFF : 200, faults);
        const dense2D<double> matrix = as_matrix(pos.rows, pos.cols, source.one_in(2));
        const host_mesh host = as_mesh(mesh, source);
        const model_file expected = model_ensight_output(pos, mesh);
        SCOPED_TRACE(testing::Message() << "round " << round);

        const temporary_file file;
        expect_left_behind(file, ensight_output(file.name(), matrix, host.first(), host.last(), host.types), expected);
        const temporary_file short_form;
        if (mesh.size() == 1)
            expect_left_behind(short_form,
                               ensight_output(short_form.name(), matrix, host.matrices[0], element_type(host.types[0])),
                               expected);
        if (mesh.size() == 2)
            expect_left_behind(short_form,
                               ensight_output(short_form.name(), matrix, host.matrices[0], host.matrices[1],
                                              element_type(host.types[0]), element_type(host.types[1])),
                               expected);
    }
}

TEST_P(RandomMesh, HasItsTensorsWrittenAsTheModelWritesThem)
{
    mesh_source source(GetParam());
    for (int round = 0; round < cases_per_seed && !HasFailure(); ++round) {
        const std::uint64_t rows = source.one_in(10) ? source.below(8) : 3 + 3 * source.below(2);
        std::vector<std::vector<float>> cols(source.below(6));
        for (auto& col : cols)
            for (std::uint64_t i = 0; i < rows; ++i) col.push_back(static_cast<float>(source.coordinate()));
        SCOPED_TRACE(testing::Message() << "round " << round);
        const temporary_file file;
        expect_left_behind(file, medit_tensor(file.name(), as_matrix(rows, cols, source.one_in(2))),
                           model_medit_tensor(rows, cols));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomMesh, testing::Values(1u, 2u, 3u, 4u));

}  // namespace
