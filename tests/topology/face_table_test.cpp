#include "topology/face_table.h"

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

template <std::size_t Width>
vertex_bounds bounds_of(const faces<Width>& all)
{
    vertex_bounds bounds;
    for (const auto& f : all) {
        bounds.lowest = std::min(bounds.lowest, f.front());
        bounds.highest = std::max(bounds.highest, f.back());
    }
    return bounds;
}

template <std::size_t Width>
bool count_faces(face_table<Width>& table, const faces<Width>& all)
{
    return table.allocate(bounds_of(all), [&](auto enter) { std::for_each(all.begin(), all.end(), enter); });
}

template <std::size_t Width>
void compare_on_random_faces(unsigned seed)
{
    dice random(seed);
    for (int trial = 0; trial < 500; ++trial) {
        const unsigned count = 1 + random.below(200), nodes = 1 + random.below(12),
                       first = random.one_in(2) ? 0 : 0xFFFFFFF0;
        faces<Width> all(count);
        for (auto& f : all) {
            for (unsigned& v : f) v = first + random.below(nodes);
            std::sort(f.begin(), f.end());
        }
        face_table<Width> table;
        ASSERT_TRUE(count_faces(table, all));
        std::map<std::array<unsigned, Width>, unsigned> first_seen;
        for (unsigned j = 0; j < count; ++j) {
            unsigned* const note = table.find(all[j], table.place_of(all[j]));
            ASSERT_NE(note, nullptr);
            const auto [known, is_new] = first_seen.try_emplace(all[j], j);
            ASSERT_EQ(*note, is_new ? NONE_INDEX : known->second) << "trial " << trial << ", face " << j;
            *note = known->second;
        }
    }
}

}  // namespace

TEST(FaceTable, KeepsANoteOfEveryEnd)
{
    compare_on_random_faces<1>(1);
}
TEST(FaceTable, KeepsANoteOfEveryEdge)
{
    compare_on_random_faces<2>(2);
}
TEST(FaceTable, KeepsANoteOfEveryTriangle)
{
    compare_on_random_faces<3>(3);
}
TEST(FaceTable, KeepsANoteOfEveryQuadrangle)
{
    compare_on_random_faces<4>(4);
}

TEST(FaceTable, GivesUpWhereManyFacesOfOneVertexComeOnce)
{
    faces<2> all;
    for (unsigned v = 1; v <= 20000; ++v) all.push_back({0, v});
    face_table<2> table;
    ASSERT_TRUE(count_faces(table, all));
    const auto crowded = [&](const auto& f) {
        unsigned* const note = table.find(f, table.place_of(f));
        if (note != nullptr) *note = f[1];
        return note == nullptr;
    };
    const auto first_refused = std::find_if(all.begin(), all.end(), crowded);
    EXPECT_NE(first_refused, all.end());
    EXPECT_GT(first_refused - all.begin(), 10000);  // half full is not crowded
}

TEST(FaceTable, SuitsNumbersNoThinnerThanTheFaces)
{
    EXPECT_TRUE(face_table<3>::suits({0xFFFFFF00, 0xFFFFFF63}, 100));
    EXPECT_FALSE(face_table<3>::suits({0xFFFFFF00, 0xFFFFFF64}, 100));
    EXPECT_FALSE(face_table<3>::suits({0, 5}, 0xFFFFFFFF));
    EXPECT_FALSE(face_table<3>::suits({}, 100));
}
