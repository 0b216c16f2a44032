#include "topology/element_topology.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <vector>

#include <tessolv/core.h>

using namespace zeb::tessolv;

namespace {

using pair_set = std::multiset<std::set<int>>;

template <std::size_t Rows, std::size_t Width>
pair_set edges_around(const node_table<Rows, Width>& faces)
{
    pair_set all;
    for (const auto& face : faces)
        for (std::size_t i = 0; i < Width; ++i) all.insert({face[i], face[(i + 1) % Width]});
    return all;
}

template <std::size_t Rows>
pair_set twice(const node_table<Rows, 2>& edges)
{
    pair_set all;
    for (const auto& [a, b] : edges) {
        all.insert({a, b});
        all.insert({a, b});
    }
    return all;
}

template <class Element>
unsigned nodes_of(Element)
{
    return Element::nodes;
}

}  // namespace

TEST(ElementTopology, FacesOfASolidMeetInPairsAtItsEdges)
{
    EXPECT_EQ(edges_around(tetra4::faces), twice(tetra4::edges));
    EXPECT_EQ(edges_around(hexa8::faces), twice(hexa8::edges));
}

TEST(ElementTopology, FaceKOfATriangleOrTetrahedronIsOppositeVertexK)
{
    for (unsigned char k = 0; k < 3; ++k) EXPECT_EQ(std::count(tria3::faces[k].begin(), tria3::faces[k].end(), k), 0);
    for (unsigned char k = 0; k < 4; ++k) EXPECT_EQ(std::count(tetra4::faces[k].begin(), tetra4::faces[k].end(), k), 0);
    for (unsigned char k = 0; k < 4; ++k) EXPECT_EQ(quad4::faces[k].front(), k);
}

TEST(ElementTopology, ThePyramidAndTheWedgeCloseAroundTheirFaces)
{
    pair_set pyramid = edges_around(node_table<4, 3>{{{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}});
    pyramid.merge(edges_around(node_table<1, 4>{{{0, 1, 2, 3}}}));
    EXPECT_EQ(pyramid, twice(pyramid5::edges));
    pair_set wedge = edges_around(node_table<2, 3>{{{0, 1, 2}, {3, 4, 5}}});
    wedge.merge(edges_around(node_table<3, 4>{{{0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}}}));
    EXPECT_EQ(wedge, twice(wedge6::edges));
}

TEST(ElementTopology, TheShapeOfAMixedSurfaceElementDecidesItsTables)
{
    constexpr unsigned triangle[] = {5, 6, 7, NONE_INDEX}, quadrangle[] = {5, 6, 7, 8};
    EXPECT_EQ(faces_of<face_mix>(triangle).size(), 3u);
    EXPECT_EQ(faces_of<face_mix>(quadrangle).size(), 4u);
    EXPECT_EQ(edges_of<face_mix>(triangle)[0], tria3::edges[0]);
    EXPECT_EQ(edges_of<face_mix>(quadrangle)[0], quad4::edges[0]);
    EXPECT_EQ(faces_of<quad4>(triangle).size(), 4u);  // in a pure matrix nothing is looked at
}

TEST(ElementTopology, EveryKindIsVisitedByTheElementOfItsCorners)
{
    const std::map<int, unsigned> corners{{EL_EDGE2, 2},    {EL_EDGE3, 2},     {EL_FACE_MIX, 4}, {EL_TRIA3, 3},
                                          {EL_TRIA6, 3},    {EL_QUAD4, 4},     {EL_QUAD8, 4},    {EL_QUAD9, 4},
                                          {EL_TETRA4, 4},   {EL_TETRA10, 4},   {EL_HEXA8, 8},    {EL_HEXA27, 8},
                                          {EL_PYRAMID5, 5}, {EL_PYRAMID14, 5}, {EL_WEDGE6, 6},   {EL_WEDGE18, 6}};
    for (int type = -2; type < 24; ++type) {
        const auto nodes = [](auto element) { return nodes_of(element); };
        const unsigned expected = corners.count(type) != 0 ? corners.at(type) : 99;
        EXPECT_EQ(visit_element(static_cast<element_type>(type), 99u, nodes), expected) << type;
        const bool has_faces = expected != 99 && expected != 5 && expected != 6;
        EXPECT_EQ(visit_faced_element(static_cast<element_type>(type), 99u, nodes), has_faces ? expected : 99) << type;
    }
}

TEST(ElementTopology, VerticesAreSortedWithTheirRepetitions)
{
    constexpr unsigned nodes[] = {9, 3, 9, 1, 0};
    EXPECT_EQ((sorted_vertices<4>(nodes, {0, 1, 2, 3})), (std::array<unsigned, 4>{1, 3, 9, 9}));
    EXPECT_EQ((sorted_vertices<3>(nodes, {0, 1, 4})), (std::array<unsigned, 3>{0, 3, 9}));
    EXPECT_EQ((sorted_vertices<1>(nodes, {2})), (std::array<unsigned, 1>{9}));
}
