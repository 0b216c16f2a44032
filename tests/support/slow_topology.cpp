#include "support/slow_topology.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <numeric>
#include <set>

namespace test::slow {

using namespace zeb::tessolv;

namespace {

nodes pick(const nodes& element, std::initializer_list<unsigned> local)
{
    nodes picked;
    for (const unsigned i : local) picked.push_back(element[i]);
    return picked;
}

// The sides of a polygon from each of its vertices to the next one.
std::vector<nodes> sides(const nodes& element, unsigned corners)
{
    std::vector<nodes> all;
    for (unsigned k = 0; k < corners; ++k) all.push_back({element[k], element[(k + 1) % corners]});
    return all;
}

std::vector<nodes> triangle_sides(const nodes& element)
{
    std::vector<nodes> all;
    for (unsigned k = 0; k < 3; ++k) all.push_back({element[(k + 1) % 3], element[(k + 2) % 3]});
    return all;
}

bool skips_sum_of_none(element_type type)
{
    return type == EL_FACE_MIX || type == EL_HEXA8;
}

unsigned sum_of(const nodes& face)
{
    return std::accumulate(face.begin(), face.end(), 0u);
}

nodes sorted(nodes face)
{
    std::sort(face.begin(), face.end());
    return face;
}

unsigned face_count(element_type type)
{
    return type == EL_EDGE2 ? 2 : type == EL_TRIA3 ? 3 : type == EL_HEXA8 ? 6 : 4;
}

struct entry {
    unsigned element, face;
    nodes vertices;
};

// A face and the equal ones after it, as pairing leaves them.
void pair_up(const entry& a, const std::vector<entry>& matches, bool link_nonmanifold, dense2D<unsigned>& result)
{
    if (matches.size() > 1 && !link_nonmanifold) {
        result(a.face, a.element) = NONE_INDEX;
        for (const entry& b : matches) result(b.face, b.element) = NONE_INDEX;
        return;
    }
    for (const entry& b : matches) {
        result(a.face, a.element) = b.element;
        result(b.face, b.element) = a.element;
    }
}

template <class Enter>
void for_each_face(const dense2D<unsigned>& connect, element_type type, Enter enter)
{
    const auto elements = elements_of(connect, type);
    for (unsigned e = 0; e < elements.size(); ++e) {
        const auto faces = faces_of(elements[e], type);
        for (unsigned k = 0; k < faces.size(); ++k)
            if (!skips_sum_of_none(type) || sum_of(faces[k]) != NONE_INDEX) enter(entry{e, k, sorted(faces[k])});
    }
}

element_type without_mix(const dense2D<unsigned>& connect, element_type type)
{
    return type == EL_FACE_MIX && connect.rows == 3 ? EL_TRIA3 : type;
}

}  // namespace

std::vector<nodes> elements_of(const dense2D<unsigned>& connect, element_type type)
{
    std::vector<nodes> elements;
    for (std::uint64_t j = 0; j < connect.cols; ++j) {
        nodes element;
        for (std::uint64_t i = 0; i < connect.rows; ++i) element.push_back(connect(i, j));
        if (type == EL_FACE_MIX && connect.rows == 4 && element[3] == NONE_INDEX) element.pop_back();
        elements.push_back(element);
    }
    return elements;
}

std::vector<nodes> faces_of(const nodes& element, element_type type)
{
    switch (type) {
        case EL_EDGE2:
            return {{element[1]}, {element[0]}};
        case EL_FACE_MIX:
            return element.size() == 3 ? triangle_sides(element) : sides(element, 4);
        case EL_TRIA3:
            return triangle_sides(element);
        case EL_QUAD4:
            return sides(element, 4);
        case EL_TETRA4:
            return {pick(element, {1, 2, 3}), pick(element, {2, 0, 3}), pick(element, {1, 3, 0}),
                    pick(element, {2, 1, 0})};
        case EL_HEXA8:
            return {pick(element, {0, 3, 7, 4}), pick(element, {1, 5, 6, 2}), pick(element, {0, 4, 5, 1}),
                    pick(element, {3, 2, 6, 7}), pick(element, {0, 1, 2, 3}), pick(element, {7, 6, 5, 4})};
        default:
            return {};
    }
}

std::vector<std::pair<unsigned, unsigned>> edges_of(const nodes& element, element_type type)
{
    static const std::map<int, std::vector<std::pair<unsigned, unsigned>>> tables = [] {
        const std::vector<std::pair<unsigned, unsigned>> edge{{0, 1}}, tria{{1, 2}, {2, 0}, {0, 1}},
            quad{{0, 1}, {1, 2}, {2, 3}, {3, 0}}, tetra{{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}},
            pyramid{{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}},
            wedge{{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0}, {0, 1}, {4, 5}, {5, 3}, {3, 4}},
            hexa{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
        return std::map<int, std::vector<std::pair<unsigned, unsigned>>>{
            {EL_EDGE2, edge},    {EL_EDGE3, edge},       {EL_TRIA3, tria},        {EL_TRIA6, tria},
            {EL_QUAD4, quad},    {EL_QUAD8, quad},       {EL_QUAD9, quad},        {EL_TETRA4, tetra},
            {EL_TETRA10, tetra}, {EL_PYRAMID5, pyramid}, {EL_PYRAMID14, pyramid}, {EL_WEDGE6, wedge},
            {EL_WEDGE18, wedge}, {EL_HEXA8, hexa},       {EL_HEXA27, hexa}};
    }();
    if (type == EL_FACE_MIX) type = element.size() == 3 ? EL_TRIA3 : EL_QUAD4;
    std::vector<std::pair<unsigned, unsigned>> edges;
    const auto table = tables.find(type);
    if (table == tables.end()) return edges;
    for (const auto& [i, j] : table->second) edges.push_back(std::minmax(element[i], element[j]));
    return edges;
}

dense2D<unsigned> neighbors(const dense2D<unsigned>& connect, element_type type, bool link_nonmanifold)
{
    type = without_mix(connect, type);
    dense2D<unsigned> result(face_count(type), connect.cols, NONE_INDEX);
    std::vector<std::vector<entry>> buckets(53);
    for_each_face(connect, type, [&](const entry& f) { buckets[sum_of(f.vertices) % 53].push_back(f); });
    for (auto& bucket : buckets) {
        while (!bucket.empty()) {
            const entry a = bucket.front();
            bucket.erase(bucket.begin());
            const auto other = std::stable_partition(bucket.begin(), bucket.end(),
                                                     [&](const entry& b) { return b.vertices == a.vertices; });
            pair_up(a, {bucket.begin(), other}, link_nonmanifold, result);
            bucket.erase(bucket.begin(), other);
        }
    }
    return result;
}

dense2D<unsigned> neighbors_by_map(const dense2D<unsigned>& connect, element_type type, bool link_nonmanifold)
{
    type = without_mix(connect, type);
    dense2D<unsigned> result(face_count(type), connect.cols, NONE_INDEX);
    std::map<nodes, std::vector<entry>> groups;
    for_each_face(connect, type, [&](const entry& f) { groups[f.vertices].push_back(f); });
    for (const auto& [vertices, faces] : groups)
        pair_up(faces.front(), {faces.begin() + 1, faces.end()}, link_nonmanifold, result);
    return result;
}

dense2D<unsigned> boundaries(const dense2D<unsigned>& connect, const dense2D<unsigned>& neighbors, element_type type)
{
    std::vector<nodes> open;
    std::uint64_t count = 0;
    const auto elements = elements_of(connect, type);
    for (unsigned e = 0; e < elements.size(); ++e) {
        const auto faces = faces_of(elements[e], type);
        for (unsigned k = 0; k < neighbors.rows; ++k) {
            if (neighbors(k, e) != NONE_INDEX) continue;
            ++count;
            if (k < faces.size()) open.push_back(faces[k]);
        }
    }
    const std::uint64_t width = type == EL_EDGE2 ? 1 : type == EL_TETRA4 ? 3 : type == EL_HEXA8 ? 4 : 2;
    dense2D<unsigned> result(width, count, NONE_INDEX);
    for (std::size_t j = 0; j < open.size(); ++j)
        for (std::size_t i = 0; i < width; ++i) result(i, j) = open[j][i];
    return result;
}

parts connected_parts(const dense2D<unsigned>& neighbors, bool lists_count)
{
    const auto n = static_cast<unsigned>(neighbors.cols);
    parts found{{}, {0}};
    std::vector<bool> visited(n + 1, false);
    visited[n] = !lists_count;
    const auto open_element = [&] {
        return static_cast<unsigned>(std::find(visited.begin(), visited.end() - 1, false) - visited.begin());
    };
    for (unsigned seed = open_element(); seed < n; seed = open_element()) {
        std::deque<unsigned> queue{seed};
        while (!queue.empty()) {
            const unsigned e = queue.front();
            queue.pop_front();
            if (visited[e]) continue;
            visited[e] = true;
            found.elements.push_back(e);
            for (std::uint64_t i = 0; e < n && i < neighbors.rows; ++i) {
                const unsigned m = neighbors(i, e);
                if (m <= n && !visited[m]) queue.push_back(m);
            }
        }
        found.offsets.push_back(static_cast<unsigned>(found.elements.size()));
    }
    return found;
}

std::vector<std::pair<unsigned, unsigned>> edges(const std::vector<dense2D<unsigned>>& matrices,
                                                 const std::vector<int>& types)
{
    std::vector<std::pair<unsigned, unsigned>> listed;
    std::set<std::pair<unsigned, unsigned>> seen;
    for (std::size_t k = 0; k < matrices.size(); ++k) {
        if (matrices[k].empty()) continue;
        const auto type = static_cast<element_type>(types[k]);
        for (const nodes& element : elements_of(matrices[k], type))
            for (const auto& edge : edges_of(element, type))
                if (seen.insert(edge).second) listed.push_back(edge);
    }
    return listed;
}

}  // namespace test::slow
