#include "digest/corpus.h"

#include <limits>

#include "support/mesh_builders.h"

namespace digest {

using test::dice;

double signed_unit(dice& random)
{
    return random.below(1u << 24) / 8388608.0 - 1.0;
}

namespace {

double wild_number(dice& random)
{
    using limits = std::numeric_limits<double>;
    const double rare[] = {limits::quiet_NaN(), limits::infinity(), -limits::infinity(),  -0.0, 0.0, limits::max(),
                           -limits::max(),      limits::min(),      limits::denorm_min(), 1e-9, 1e12};
    return random.one_in(4) ? random.one_of(rare) : signed_unit(random);
}

double number(dice& random, spread kind)
{
    switch (kind) {
        case spread::coarse:
            return random.below(9) / 8.0;
        case spread::wild:
            return wild_number(random);
        default:
            return signed_unit(random);
    }
}

struct shape {
    int type;
    std::uint64_t rows;
};

// Every element_type, and the rows that its matrices may have.
std::vector<shape> shapes()
{
    std::vector<shape> all{{EL_FACE_MIX, 3}, {EL_FACE_MIX, 4}, {EL_SOLID_MIX, 4}, {EL_SOLID_MIX, 6}, {EL_SOLID_MIX, 8}};
    for (int type = EL_NODE; type <= EL_HEXA27; ++type)
        if (zeb::NODES_PER_ELEMENT[type] != 0 && type != EL_EDGE_MIX)
            all.push_back({type, zeb::NODES_PER_ELEMENT[type]});
    return all;
}

mesh random_mesh(dice& random, std::uint64_t rows, unsigned nodes, spread kind, bool padded)
{
    mesh m;
    m.pos = random_points(random, rows, nodes, kind);
    if (padded) m.pos.shallow_copy(test::as_padded_view(m.pos, -7.5));
    for (const auto& [type, height] : shapes()) {
        const auto connect =
            test::random_elements(random, static_cast<element_type>(type), height, 2 + random.below(24), nodes);
        m.parts.emplace_back();
        m.parts.back().shallow_copy(padded ? test::as_padded_view(connect, 0xFFFFFFFEu) : connect);
        m.types.push_back(type);
    }
    return m;
}

mesh grid_mesh(dice& random, std::uint64_t rows, unsigned n)
{
    mesh m;
    m.pos = shaken_grid(random, rows, n);
    const auto add = [&](const dense2D<unsigned>& connect, int type) {
        m.parts.push_back(connect);
        m.types.push_back(type);
    };
    add(test::tria_grid(n), EL_TRIA3);
    add(test::quad_grid(n), EL_QUAD4);
    if (rows == 3) {
        add(test::tetra_grid(n), EL_TETRA4);
        add(test::hexa_grid(n), EL_HEXA8);
    }
    return m;
}

std::vector<mesh> all_meshes()
{
    dice random(20240501);
    std::vector<mesh> all;
    for (const std::uint64_t rows : {2, 3})
        for (const auto kind : {spread::plain, spread::coarse, spread::wild})
            for (const unsigned nodes : {6u, 150u})
                for (const bool padded : {false, true}) all.push_back(random_mesh(random, rows, nodes, kind, padded));
    all.push_back(grid_mesh(random, 2, 20));
    all.push_back(grid_mesh(random, 3, 7));
    all.push_back(mesh{dense2D<double>(3, 0), {}, {}});
    return all;
}

}  // namespace

dense2D<double> random_points(dice& random, std::uint64_t rows, std::uint64_t nodes, spread kind)
{
    dense2D<double> pos(rows, nodes);
    for (std::uint64_t j = 0; j < nodes; ++j)
        for (std::uint64_t i = 0; i < rows; ++i) pos(i, j) = number(random, kind);
    return pos;
}

dense2D<double> shaken_grid(dice& random, std::uint64_t rows, unsigned n)
{
    const unsigned w = n + 1;
    dense2D<double> pos(rows, rows == 3 ? w * w * w : w * w);
    for (unsigned j = 0; j < pos.cols; ++j) {
        const unsigned cell[3] = {j % w, j / w % w, j / (w * w)};
        for (std::uint64_t i = 0; i < rows; ++i) pos(i, j) = cell[i] + 0.4 * signed_unit(random);
    }
    return pos;
}

const std::vector<mesh>& meshes()
{
    static const std::vector<mesh> all = all_meshes();
    return all;
}

mesh only(const mesh& whole, const std::vector<int>& types)
{
    mesh chosen;
    chosen.pos.shallow_copy(whole.pos);
    for (std::size_t k = 0; k < whole.parts.size(); ++k) {
        if (std::find(types.begin(), types.end(), whole.types[k]) == types.end()) continue;
        chosen.parts.emplace_back();
        chosen.parts.back().shallow_copy(whole.parts[k]);
        chosen.types.push_back(whole.types[k]);
    }
    return chosen;
}

mesh corners(const mesh& whole)
{
    mesh linear = only(whole, whole.types);
    for (std::size_t k = 0; k < whole.parts.size(); ++k) {
        const auto& part = whole.parts[k];
        const std::uint64_t vertices = zeb::VERTICES_PER_ELEMENT[whole.types[k]];
        if (vertices != 0 && vertices < part.rows)
            linear.parts[k].shallow_copy(part.sub_matrix(0, 0, vertices, part.cols));
    }
    return linear;
}

mesh copy_of(const mesh& original)
{
    mesh copy;
    copy.pos = original.pos;
    copy.parts = original.parts;
    copy.types = original.types;
    return copy;
}

std::vector<dense1D<unsigned>> index_lists(unsigned n)
{
    dice random(n + 77);
    std::vector<dense1D<unsigned>> lists(4);
    for (unsigned i = 0; i < n; ++i) lists[1].push_back(n - 1 - i);
    for (unsigned i = 0; i < 3 * n; ++i) lists[2].push_back(random.below(n));
    for (unsigned i = 0; i < 2 * n + 5; ++i)
        lists[3].push_back(random.one_in(9) ? NONE_INDEX : random.one_in(9) ? 0xFFFFFFFEu : random.below(n + 3));
    return lists;
}

}  // namespace digest
