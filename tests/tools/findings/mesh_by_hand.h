#ifndef TESTS_TOOLS_FINDINGS_MESH_BY_HAND_H
#define TESTS_TOOLS_FINDINGS_MESH_BY_HAND_H

#include <algorithm>
#include <array>
#include <vector>

#include "mesh/mesh.h"

namespace test {

using place = std::array<double, 3>;
using nodes = std::vector<unsigned int>;

// A mesh that is written down: nodes and elements are numbered from 1 on. Elements of one kind stand together.
class mesh_by_hand {
public:
    explicit mesh_by_hand(const std::vector<place>& places, std::uint64_t rows = 3)
    {
        mesh_.pos.resize(rows, places.size());
        for (std::size_t j = 0; j < places.size(); ++j) std::copy_n(places[j].begin(), rows, &mesh_.pos(0, j));
        mesh_.node_numbers = tool::numbering(1, places.size());
    }

    mesh_by_hand& with(zeb::element_type type, const std::vector<nodes>& elements, std::int32_t group = 0)
    {
        const std::uint64_t first = mesh_.element_count() + 1;
        tool::element_block block;
        block.type = type;
        block.connect.resize(zeb::NODES_PER_ELEMENT[type], elements.size());
        for (std::size_t e = 0; e < elements.size(); ++e) std::ranges::copy(elements[e], &block.connect(0, e));
        if (group != 0) block.groups.assign(elements.size(), group);
        block.numbers = tool::numbering(first, elements.size());
        const auto at = std::ranges::find_if(mesh_.blocks, [&](const auto& other) { return other.type > type; });
        mesh_.blocks.insert(at, std::move(block));
        return *this;
    }

    tool::mesh mesh() const { return mesh_; }
    operator tool::mesh() const { return mesh_; }

private:
    tool::mesh mesh_;
};

}  // namespace test

#endif
