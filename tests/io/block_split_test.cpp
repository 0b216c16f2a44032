#include <gtest/gtest.h>

#include <vector>

#include "io/block_split.h"
#include "io/mesh_arguments.h"
#include "support/matrices.h"

namespace {

using namespace zeb::tessolv;
using namespace test;

// The columns of a block as a matrix.
dense2D<unsigned> elements(const pure_block& block)
{
    std::vector<std::vector<unsigned>> found;
    for_each_element(block, [&](std::uint64_t j) {
        const unsigned* nodes = column(*block.matrix, j);
        found.emplace_back(nodes, nodes + block.nodes);
    });
    EXPECT_EQ(found.size(), block.count);
    return columns(found);
}

TEST(SplitBlocks, SkipsEmptyMatricesAndKeepsPureOnes)
{
    const std::vector<dense2D<unsigned>> matrices = {columns({{0, 1, 2}, {3, 4, 5}}), dense2D<unsigned>(4, 0),
                                                     dense2D<unsigned>(0, 4), columns({{0, 1, 2, 3, 4}})};
    const dense1D<int> kinds = types({EL_TRIA3, EL_QUAD4, 99, EL_PYRAMID5});
    scratch<pure_block> blocks;
    ASSERT_TRUE(split_blocks({{matrices.data(), matrices.data() + 4}, kinds}, blocks));
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0].matrix, &matrices[0]);
    EXPECT_EQ(blocks[0].type, EL_TRIA3);
    EXPECT_EQ(blocks[0].source, 0u);
    EXPECT_EQ(elements(blocks[0]), matrices[0]);
    EXPECT_EQ(blocks[1].type, EL_PYRAMID5);
    EXPECT_EQ(blocks[1].source, 3u);
}

TEST(SplitBlocks, GroupsSolidsByShapeInInputOrder)
{
    const dense2D<unsigned> mixed = as_padded_view(columns({{0, 1, 2, 3, 4, 5, 6, 7},
                                                            {1, 1, 1, 1, 1, 1, N, 0},
                                                            {2, 2, 2, 2, N, 0, 0, 0},
                                                            {3, 3, 3, 3, 3, 3, N, N},
                                                            {4, 4, 4, 4, N, N, N, N},
                                                            {5, 5, 5, 5, 5, 5, 5, 5}}),
                                                   N);
    scratch<pure_block> blocks;
    ASSERT_TRUE(split_matrix(mixed, EL_SOLID_MIX, 7, {}, blocks));
    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_EQ(blocks[0].type, EL_TETRA4);
    EXPECT_EQ(elements(blocks[0]), columns({{2, 2, 2, 2}, {4, 4, 4, 4}}));
    EXPECT_EQ(blocks[1].type, EL_WEDGE6);
    EXPECT_EQ(elements(blocks[1]), columns({{1, 1, 1, 1, 1, 1}, {3, 3, 3, 3, 3, 3}}));
    EXPECT_EQ(blocks[2].type, EL_HEXA8);
    EXPECT_EQ(elements(blocks[2]), columns({{0, 1, 2, 3, 4, 5, 6, 7}, {5, 5, 5, 5, 5, 5, 5, 5}}));
    EXPECT_EQ(blocks[2].source, 7u);
}

TEST(SplitBlocks, MakesNoEmptyBlocks)
{
    scratch<pure_block> blocks;
    const dense2D<unsigned> quadrangles = columns({{0, 1, 2, 3}});
    const dense2D<unsigned> triangles = columns({{0, 1, 2}});
    const dense2D<unsigned> tetrahedra = columns({{0, 1, 2, 3}});
    ASSERT_TRUE(split_matrix(quadrangles, EL_FACE_MIX, 0, {}, blocks));
    ASSERT_TRUE(split_matrix(triangles, EL_FACE_MIX, 1, {}, blocks));
    ASSERT_TRUE(split_matrix(tetrahedra, EL_SOLID_MIX, 2, {}, blocks));
    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_EQ(blocks[0].type, EL_QUAD4);
    EXPECT_EQ(blocks[1].type, EL_TRIA3);
    EXPECT_EQ(blocks[2].type, EL_TETRA4);
}

TEST(SplitBlocks, DropsShapesOfOtherNodeCounts)
{
    const dense2D<unsigned> pyramid = columns({{0, 1, 2, 3, 4, N, N, N}});
    scratch<pure_block> blocks;
    ASSERT_TRUE(split_matrix(pyramid, EL_SOLID_MIX, 0, {}, blocks));
    EXPECT_TRUE(blocks.empty());
}

TEST(SplitBlocks, WalksTheSelectedColumnsInTheirOrder)
{
    const dense2D<unsigned> mixed = columns({{0, 0, 0, N}, {1, 1, 1, 1}, {2, 2, 2, N}, {3, 3, 3, N}});
    const std::uint64_t selected[] = {3, 1, 0};
    scratch<pure_block> blocks;
    ASSERT_TRUE(split_matrix(mixed, EL_FACE_MIX, 0, {selected, 3}, blocks));
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(elements(blocks[0]), columns({{3, 3, 3}, {0, 0, 0}}));
    EXPECT_EQ(elements(blocks[1]), columns({{1, 1, 1, 1}}));
}

TEST(MeshArguments, LookIntoTheMatricesOfTheHost)
{
    const dense2D<unsigned> a = as_padded_view(columns({{0, 1}, {2, 3}}), 9u);
    const dense2D<unsigned> b;
    const std::int32_t owners = a.buffer->ref_count;
    {
        const mesh_arguments<2> mesh({&a, &b}, {EL_EDGE2, static_cast<element_type>(-7)});
        ASSERT_EQ(mesh.last() - mesh.first(), 2);
        EXPECT_EQ(mesh.first()[0], a);
        EXPECT_EQ(&mesh.first()[0](0, 0), &a(0, 0));
        EXPECT_EQ(mesh.first()[1], b);
        EXPECT_EQ(mesh.types(), types({EL_EDGE2, -7}));
        EXPECT_EQ(a.buffer->ref_count, owners);
    }
    EXPECT_EQ(a, columns({{0, 1}, {2, 3}}));
    EXPECT_EQ(a.buffer->ref_count, owners);
}

}  // namespace
