#ifndef TESTS_QUALITY_RANDOM_ELEMENTS_H
#define TESTS_QUALITY_RANDOM_ELEMENTS_H

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

#include "quality/shape_model.h"

namespace test {

// The same double, zeros by their sign too; any NaN is like any other.
inline bool same_number(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

// A shape, the model of its measure and its ideal element.
struct shape_family {
    const char* name;
    zeb::element_type type;
    unsigned dimension;  // rows of the coordinates
    std::vector<model::spot> ideal;
    double (*model)(const model::spot* p);
};

inline const std::vector<shape_family>& shape_families()
{
    using model::spot;
    const double h = std::sqrt(0.75);
    const std::vector<spot> square{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    const std::vector<spot> triangle{{0, 0, 0}, {1, 0, 0}, {0.5, h, 0}};
    static const std::vector<shape_family> families{
        {"triangle_2d", zeb::EL_TRIA3, 2, triangle, [](const spot* p) { return model::triangle_2d(p[0], p[1], p[2]); }},
        {"triangle_3d", zeb::EL_TRIA3, 3, triangle, [](const spot* p) { return model::triangle_3d(p[0], p[1], p[2]); }},
        {"quadrangle_2d", zeb::EL_QUAD4, 2, square,
         [](const spot* p) {
             return model::quadrangle_2d({p[0], p[1], p[2], p[3]});
         }},
        {"quadrangle_3d", zeb::EL_QUAD4, 3, square,
         [](const spot* p) {
             return model::quadrangle_3d({p[0], p[1], p[2], p[3]});
         }},
        {"tetrahedron",
         zeb::EL_TETRA4,
         3,
         {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}},
         [](const spot* p) {
             return model::tetrahedron({p[0], p[1], p[2], p[3]});
         }},
        {"pyramid",
         zeb::EL_PYRAMID5,
         3,
         {square[0], square[1], square[2], square[3], {0.5, 0.5, std::sqrt(0.5)}},
         [](const spot* p) {
             return model::pyramid({p[0], p[1], p[2], p[3], p[4]});
         }},
        {"wedge",
         zeb::EL_WEDGE6,
         3,
         {triangle[0], triangle[1], triangle[2], {0, 0, 1}, {1, 0, 1}, {0.5, h, 1}},
         [](const spot* p) {
             return model::wedge({p[0], p[1], p[2], p[3], p[4], p[5]});
         }},
        {"hexahedron",
         zeb::EL_HEXA8,
         3,
         {square[0], square[1], square[2], square[3], {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
         [](const spot* p) {
             return model::hexahedron({p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7]});
         }},
    };
    return families;
}

// Elements of every sort that a mesh may hold: near the ideal, arbitrary, inverted, flat, almost flat, of coincident
// nodes, far from the origin, huge, tiny, not finite.
class random_elements {
public:
    explicit random_elements(unsigned seed) : random_(seed) {}

    std::vector<model::spot> next(const shape_family& family)
    {
        std::vector<model::spot> p(family.ideal.size());
        const unsigned sort = pick(11);
        const bool near_ideal = sort < 4;
        for (std::size_t k = 0; k < p.size(); ++k)
            for (unsigned i = 0; i < 3; ++i)
                p[k][i] = near_ideal ? family.ideal[k][i] + 0.4 * unit() * pick(2) : sort < 6 ? pick(3) : unit();
        if (sort == 1) mirror(p);
        if (sort == 2) flatten(p, 3e-10 * unit() * unit());
        if (sort == 3) move(p, 1e6 * unit());
        if (sort == 6) flatten(p, pick(2) ? 0.0 : 1e-9 * unit());
        if (sort == 7) collapse(p);
        if (sort == 8) scale(p, std::pow(10.0, 200.0 * unit()));
        if (sort == 8 && pick(2)) collapse(p);
        if (sort == 9) spoil(p);
        if (sort == 10) turn(p, family);
        if (family.dimension == 2)
            for (model::spot& s : p) s[2] = 0;
        return p;
    }

    unsigned pick(unsigned n) { return static_cast<unsigned>(random_() % n); }

private:
    double unit() { return std::ldexp(static_cast<double>(random_()), -31) - 1.0; }

    void mirror(std::vector<model::spot>& p)
    {
        for (model::spot& s : p) s[0] = -s[0];
    }
    // The ideal element or its mirror image, turned about the third axis: what rounding carries past 1 and -1.
    void turn(std::vector<model::spot>& p, const shape_family& family)
    {
        const double angle = 3 * unit(), size = 1 + pick(3);
        p = family.ideal;
        if (pick(2)) mirror(p);
        for (model::spot& s : p)
            s = {size * (std::cos(angle) * s[0] - std::sin(angle) * s[1]),
                 size * (std::sin(angle) * s[0] + std::cos(angle) * s[1]), size * s[2]};
    }
    // Onto an inclined plane, but for a little.
    void flatten(std::vector<model::spot>& p, double little)
    {
        const double a = unit(), b = unit();
        for (model::spot& s : p) s[2] = a * s[0] + b * s[1] + little * s[2];
    }
    void move(std::vector<model::spot>& p, double far)
    {
        for (model::spot& s : p)
            for (double& x : s) x += far;
    }
    void collapse(std::vector<model::spot>& p)
    {
        const unsigned times = 1 + pick(3);
        for (unsigned t = 0; t < times; ++t)
            p[pick(static_cast<unsigned>(p.size()))] = p[pick(static_cast<unsigned>(p.size()))];
    }
    void scale(std::vector<model::spot>& p, double factor)
    {
        for (model::spot& s : p)
            for (double& x : s) x *= factor;
    }
    void spoil(std::vector<model::spot>& p)
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        const double bad[] = {infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 1e308, -1e308};
        const unsigned times = 1 + pick(2);
        for (unsigned t = 0; t < times; ++t) p[pick(static_cast<unsigned>(p.size()))][pick(3)] = bad[pick(5)];
    }

    std::mt19937 random_;
};

}  // namespace test

#endif
