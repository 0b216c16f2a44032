#include "meshes.h"

// The quality measures that VTK brings along; their header is not installed.
extern "C" {
double vtkverdict__v_tet_scaled_jacobian(int, double (*)[3]);
double vtkverdict__v_tet_aspect_ratio(int, double (*)[3]);
double vtkverdict__v_hex_scaled_jacobian(int, double (*)[3]);
double vtkverdict__v_tri_scaled_jacobian(int, double (*)[3]);
double vtkverdict__v_tri_aspect_ratio(int, double (*)[3]);
double vtkverdict__v_quad_scaled_jacobian(int, double (*)[3]);
double vtkverdict__wedge_scaled_jacobian(int, double (*)[3]);
}

namespace compare {
namespace {

using measure = double (*)(int, double (*)[3]);

struct measures {
    measure scaled_jacobian = nullptr, aspect_ratio = nullptr;
    std::vector<std::uint64_t> order;  // of the corners: its tetrahedra are mirror images of ours
};

measures measures_of(element_type type)
{
    switch (type) {
        case EL_TRIA3:
            return {vtkverdict__v_tri_scaled_jacobian, vtkverdict__v_tri_aspect_ratio, {0, 1, 2}};
        case EL_QUAD4:
            return {vtkverdict__v_quad_scaled_jacobian, nullptr, {0, 1, 2, 3}};
        case EL_TETRA4:
            return {vtkverdict__v_tet_scaled_jacobian, vtkverdict__v_tet_aspect_ratio, {0, 2, 1, 3}};
        case EL_WEDGE6:
            return {vtkverdict__wedge_scaled_jacobian, nullptr, {0, 1, 2, 3, 4, 5}};
        case EL_HEXA8:
            return {vtkverdict__v_hex_scaled_jacobian, nullptr, {0, 1, 2, 3, 4, 5, 6, 7}};
        default:
            return {};
    }
}

template <std::size_t N>
void measure_all(const mesh& m, const std::vector<std::uint64_t>& order, measure of, std::vector<double>& values)
{
    values.resize(m.connect.cols);
    double corners[N][3];
    std::array<std::uint64_t, N> row;
    std::copy(order.begin(), order.end(), row.begin());
    for (std::uint64_t e = 0; e < values.size(); ++e) {
        for (std::size_t i = 0; i < N; ++i) std::copy_n(&m.pos(0, m.connect(row[i], e)), 3, corners[i]);
        values[e] = of(int(N), corners);
    }
}

std::vector<double> timed_measures(const mesh& m, measure of, lap& l)
{
    const auto order = measures_of(m.type).order;
    std::vector<double> values;
    l.timed([&] {
        if (order.size() == 3) measure_all<3>(m, order, of, values);
        if (order.size() == 4) measure_all<4>(m, order, of, values);
        if (order.size() == 6) measure_all<6>(m, order, of, values);
        if (order.size() == 8) measure_all<8>(m, order, of, values);
    });
    return values;
}

void scaled_jacobian(const mesh& m, lap& l)
{
    const auto of = measures_of(m.type).scaled_jacobian;
    if (of == nullptr) return l.decline();
    const auto values = timed_measures(m, of, l);
    l.answer({double(std::count_if(values.begin(), values.end(), [](double q) { return q > 0.0; }))});
}

void aspect_ratio(const mesh& m, lap& l)
{
    const auto of = measures_of(m.type).aspect_ratio;
    if (of == nullptr) return l.decline();
    const auto values = timed_measures(m, of, l);
    double sum = 0.0;
    for (const double a : values) sum += 1.0 / a;
    l.answer({double(values.size()), sum});
}

const bool entered = enter<mesh>({
    {"quality", "VTK verdict sj", "scaled Jacobian, called for each element", "another measure", scaled_jacobian},
    {"quality", "VTK verdict ar", "aspect ratio, called for each element", "one over our measure", aspect_ratio},
});

}  // namespace
}  // namespace compare
