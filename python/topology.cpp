#include <algorithm>
#include <cstring>

#include "arrays.h"
#include "module.h"

namespace binding {
namespace {

std::uint64_t faces_per_element(zeb::element_type type, std::uint64_t vertices)
{
    if (type == zeb::EL_HEXA8) return 6;
    return vertices;
}

py::array get_neighbors(py::handle connect, py::handle type, bool link_nonmanifold, bool raw)
{
    call c("get_neighbors");
    const auto elements = c.matrix<index>(connect, "connect");
    const auto kind = c.type(type, "type");
    dense2D<index> neighbors;
    c.checked([&] { return lib::get_neighbors(elements, kind, link_nonmanifold, neighbors); });
    return index_table(std::move(neighbors), raw, faces_per_element(kind, elements.rows));
}

py::array get_boundaries(py::handle connect, py::handle neighbors, py::handle type)
{
    call c("get_boundaries");
    const auto elements = c.matrix<index>(connect, "connect");
    const auto table = c.matrix<index>(neighbors, "neighbors");
    const auto kind = c.type(type, "type");
    dense2D<index> boundaries;
    c.checked([&] { return lib::get_boundaries(elements, table, kind, boundaries); });
    // A closed mesh has 0 faces of so many vertices; without memory there is no shape at all.
    if (boundaries.rows == 0 && !elements.empty()) throw std::bad_alloc();
    return handed_over(std::move(boundaries));
}

// Eight at a time: this pass over the elements must cost no more than that of the library, which it replaces.
index largest_of(const index* entries, std::uint64_t count)
{
    using four = index __attribute__((vector_size(16)));
    four a{}, b{};
    std::uint64_t i = 0;
    for (; i + 8 <= count; i += 8) {
        four x, y;
        std::memcpy(&x, entries + i, sizeof x);
        std::memcpy(&y, entries + i + 4, sizeof y);
        a = x > a ? x : a;
        b = y > b ? y : b;
    }
    a = a > b ? a : b;
    index largest = std::max({a[0], a[1], a[2], a[3]});
    for (; i < count; ++i) largest = std::max(largest, entries[i]);
    return largest;
}

// A list of all nodes up to the largest, without an entry yet: the library would make it alike, however long.
dense1D<index> list_up_to_largest(const dense2D<index>& connect, bool raw)
{
    const bool flat = connect.ld == connect.rows;  // one run instead of one for each element
    const std::uint64_t runs = flat ? 1 : connect.cols, length = flat ? connect.size : connect.rows;
    index largest = 0;
    for (std::uint64_t e = 0; e < runs; ++e) largest = std::max(largest, largest_of(&connect(0, e), length));
    if (largest == zeb::NONE_INDEX) throw_refusal("get_ancestors", -1);
    const std::uint64_t size = std::uint64_t{largest} + 1;
    require_room(size * (sizeof(index) + (raw ? 0 : sizeof(std::int64_t))));
    dense1D<index> list;
    if (!list.resize(size, zeb::NONE_INDEX)) throw std::bad_alloc();
    return list;
}

py::object get_ancestors(py::handle connect, py::handle ancestors, bool raw, py::handle out)
{
    call c("get_ancestors");
    if (ancestors.is_none()) {
        const auto elements = c.matrix<index>(connect, "connect");
        dense1D<index> found;
        c.checked([&] {
            if (!elements.empty()) found = list_up_to_largest(elements, raw);
            return lib::get_ancestors(elements, found);
        });
        return index_table(std::move(found), raw);
    }
    auto given = c.changed_vector<index>(ancestors, out, "ancestors");
    const auto elements = c.matrix<index>(connect, "connect");
    c.checked([&] { return lib::get_ancestors(elements, given.values); });
    if (!out.is_none()) return given.out;
    return index_table(std::move(given.values), raw);
}

py::tuple get_connex_parts(py::handle neighbors)
{
    call c("get_connex_parts");
    const auto table = c.matrix<index>(neighbors, "neighbors");
    dense1D<index> elements, offsets;
    c.checked([&] { return lib::get_connex_parts(table, elements, offsets); });
    if (offsets.size == 0 && table.cols != 0) throw std::bad_alloc();
    return py::make_tuple(handed_over(std::move(elements)), handed_over(std::move(offsets)));
}

py::tuple reorder_by_parts(py::handle connect, py::handle neighbors, bool raw)
{
    call c("get_connex_parts");
    auto elements = c.changed_matrix<index>(connect, py::none(), "connect");
    auto table = c.changed_matrix<index>(neighbors, py::none(), "neighbors");
    dense1D<index> offsets;
    c.checked([&] { return lib::get_connex_parts(elements.values, table.values, offsets); });
    if (offsets.size == 0 && table.values.cols != 0) throw std::bad_alloc();
    return py::make_tuple(handed_over(std::move(elements.values)), index_table(std::move(table.values), raw),
                          handed_over(std::move(offsets)));
}

py::array copy_edges(py::handle connect, py::handle type, py::handle edges)
{
    call c("copy_edges");
    auto elements = c.connectivity(connect, "connect");
    auto found = c.optional_matrix<index>(edges, "edges");
    if (elements.single) {
        const auto kind = c.type(type, "type");
        c.checked([&] { return lib::copy_edges(*elements.begin(), kind, found); });
    } else {
        c.becomes("copy_edges/range");
        const auto kinds = c.types(type, "type");
        c.checked([&] { return lib::copy_edges(elements.begin(), elements.end(), kinds, found); });
    }
    return handed_over(std::move(found), 2);
}

}  // namespace

void define_topology(py::module_& m)
{
    m.def("get_neighbors", &get_neighbors);
    m.def("get_boundaries", &get_boundaries);
    m.def("get_ancestors", &get_ancestors);
    m.def("get_connex_parts", &get_connex_parts);
    m.def("reorder_by_parts", &reorder_by_parts);
    m.def("copy_edges", &copy_edges);
}

}  // namespace binding
