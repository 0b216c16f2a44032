#include "topology/face_groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "support/random_meshes.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

template <std::size_t Width>
using faces = std::vector<std::array<unsigned, Width>>;

// The IDs of each group in the order in which they were visited, by the first one. Groups whose visits started over
// count from the last time.
template <std::size_t Width>
std::map<std::uint64_t, std::vector<std::uint64_t>> groups_of(const faces<Width>& all, std::uint64_t id_step)
{
    vertex_bounds bounds;
    zeb::dense2D<unsigned> vertices(Width, all.size());
    for (std::size_t j = 0; j < all.size(); ++j) std::copy(all[j].begin(), all[j].end(), &vertices(0, j));
    bounds.include(vertices, Width);

    face_groups<Width> grouped;
    EXPECT_TRUE(grouped.collect(bounds, all.size(), [&](auto enter) {
        for (std::size_t j = 0; j < all.size(); ++j) enter(all[j], j * id_step);
    }));
    std::map<std::uint64_t, std::vector<std::uint64_t>> groups;
    grouped.for_each([&](std::uint64_t first, std::uint64_t second, std::uint64_t id) {
        auto& group = groups[first];
        if (id == first) group.clear();
        if (id == second && group.size() > 1) group.resize(1);
        if (group.empty()) group.push_back(first);
        if (id != first) group.push_back(id);
        EXPECT_EQ(second, group[group.size() == 1 ? 0 : 1]);
    });
    return groups;
}

template <std::size_t Width>
std::map<std::uint64_t, std::vector<std::uint64_t>> expected_groups(const faces<Width>& all, std::uint64_t id_step)
{
    std::map<std::array<unsigned, Width>, std::vector<std::uint64_t>> by_vertices;
    for (std::size_t j = 0; j < all.size(); ++j) by_vertices[all[j]].push_back(j * id_step);
    std::map<std::uint64_t, std::vector<std::uint64_t>> groups;
    for (const auto& [vertices, ids] : by_vertices) groups[ids.front()] = ids;
    return groups;
}

template <std::size_t Width>
void compare_on_random_faces(unsigned seed)
{
    dice random(seed);
    for (int trial = 0; trial < 500; ++trial) {
        const unsigned count = random.below(200), nodes = 1 + random.below(12),
                       first = random.one_in(2) ? 0 : 0xFFFFFFF0;
        faces<Width> all(count);
        for (auto& f : all) {
            for (unsigned& v : f) v = first + random.below(nodes);
            std::sort(f.begin(), f.end());
        }
        // The largest IDs are just below 2^35.
        const std::uint64_t id_step = random.one_in(2) ? 1 : ((std::uint64_t{1} << 35) - 1) / std::max(count, 1u);
        ASSERT_EQ(groups_of<Width>(all, id_step), expected_groups<Width>(all, id_step)) << "trial " << trial;
    }
}

}  // namespace

TEST(FaceGroups, FindEqualVertices)
{
    compare_on_random_faces<1>(1);
}
TEST(FaceGroups, FindEqualEdges)
{
    compare_on_random_faces<2>(2);
}
TEST(FaceGroups, FindEqualTriangles)
{
    compare_on_random_faces<3>(3);
}
TEST(FaceGroups, FindEqualQuadrangles)
{
    compare_on_random_faces<4>(4);
}

TEST(FaceGroups, ComeFromARangeThatIsTooLongForTheTable)
{
    faces<2> all;
    for (unsigned repeated = 0; repeated < 3; ++repeated)
        for (unsigned v = 0; v < 40000; ++v) all.push_back({0, 1 + v * (repeated + 1)});
    EXPECT_EQ(groups_of<2>(all, 1), expected_groups<2>(all, 1));
}

TEST(FaceGroups, ComeFromNumbersThatAreMadeToCollide)
{
    // Edges (0, v) whose hashes agree in 11 bits, from which the table of a range of a thousand edges starts to look.
    faces<2> all;
    for (unsigned v = 1; all.size() < 1000; ++v)
        if (face_groups<2>::hash({0, v}) >> 53 == 5) all.push_back({0, v});
    const faces<2> once = all;
    all.insert(all.end(), once.rbegin(), once.rend());
    all.insert(all.begin(), once.begin(), once.begin() + 20);
    EXPECT_EQ(groups_of<2>(all, 1), expected_groups<2>(all, 1));
}

TEST(VertexBounds, TakeInTheRowsAskedForAndNoMissingNodes)
{
    zeb::dense2D<unsigned> connect(3, 2, 50);
    connect(0, 0) = 7;
    connect(1, 1) = 60;
    connect(2, 0) = NONE_INDEX;
    connect(2, 1) = 1;
    vertex_bounds corners;
    corners.include(connect, 2);
    EXPECT_EQ(corners.lowest, 7u);
    EXPECT_EQ(corners.highest, 60u);
    vertex_bounds all;
    all.include(connect, 3);
    EXPECT_EQ(all.lowest, 1u);
    EXPECT_EQ(all.highest, 60u);
}

TEST(VertexRanges, KeepEveryVertexApartFromTheOthers)
{
    dice random(5);
    for (int trial = 0; trial < 2000; ++trial) {
        vertex_bounds bounds;
        bounds.lowest = random.one_in(2) ? random.below(1000) : random.below(0xFFFFFFFF);
        bounds.highest = bounds.lowest + random.below(random.one_in(2) ? 5000 : 0xFFFFFFFF - bounds.lowest);
        const vertex_ranges ranges(bounds, random.below(random.one_in(2) ? 100 : 10000000));
        const unsigned v = bounds.lowest + random.below(bounds.highest - bounds.lowest + 1);
        const unsigned w = random.one_in(2) ? bounds.lowest + random.below(bounds.highest - bounds.lowest + 1)
                                            : std::min(v + 1, bounds.highest);
        ASSERT_LT(ranges.range(v), ranges.count());
        ASSERT_LT(ranges.place(v), 1u << 29);
        const bool same = ranges.range(v) == ranges.range(w) && ranges.place(v) == ranges.place(w);
        ASSERT_EQ(same, v == w) << v << " and " << w;
    }
}
