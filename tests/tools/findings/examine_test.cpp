#include "findings/examine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "findings/words_of_ids.h"
#include "tools/findings/known_meshes.h"
#include "tools/findings/mesh_by_hand.h"

namespace {

using namespace zeb;
using test::mesh_by_hand;
using test::nodes;
using test::place;
using tool::examination;
using tool::mesh;

// The line of known_mesh::expected.
std::string told(const mesh& m, const examination& v)
{
    std::string text;
    for (const tool::found& f : v.faults) {
        text += (f.level == tool::severity::note ? "~" : "") + std::string(info_of(f.which).code) + ' ' +
                std::to_string(f.count);
        if (!f.ids.empty()) text += " (" + tool::words_of(m, f, 100) + ')';
        text += "; ";
    }
    return (text.empty() ? "ok; " : text) + std::to_string(v.parts);
}

class Examine : public testing::TestWithParam<test::known_mesh> {};

TEST_P(Examine, FindsWhatIsWrittenDown)
{
    const auto& [name, content, expected] = GetParam();
    const examination verdict = examine(content, tool::rules_of_profile("default"));
    EXPECT_EQ(told(content, verdict), expected);
    EXPECT_EQ(verdict.elements + verdict.collapsed, content.element_count());
    EXPECT_EQ(verdict.qualities.size(), content.element_count());
}

std::string name_of(const testing::TestParamInfo<test::known_mesh>& row)
{
    return row.param.name;
}
INSTANTIATE_TEST_SUITE_P(Solids, Examine, testing::ValuesIn(test::known_solids()), name_of);
INSTANTIATE_TEST_SUITE_P(Surfaces, Examine, testing::ValuesIn(test::known_surfaces()), name_of);
INSTANTIATE_TEST_SUITE_P(Others, Examine, testing::ValuesIn(test::known_other_meshes()), name_of);

const place O{0, 0, 0}, X{1, 0, 0}, Y{0, 1, 0}, XY{1, 1, 0}, YZ{0, 1, 1};
// Two cubes, one on the other, in the order of hexahedra.
const std::vector<place> tower{O,         X,  XY,        Y,         {0, 0, 1}, {1, 0, 1},
                               {1, 1, 1}, YZ, {0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}};

TEST(ExamineRules, DecideWhatIsAFinding)
{
    const mesh open = mesh_by_hand({O, X, YZ}).with(EL_TRIA3, {{0, 2, 1}});
    EXPECT_TRUE(examine(open, tool::rules_of_profile("default")).is_clean());
    EXPECT_FALSE(examine(open, tool::rules_of_profile("closed")).is_clean());
    const tool::rules off =
        tool::rules_from_json(R"({"faults": {"open_edge": "off"}})", tool::rules_of_profile("closed"));
    EXPECT_EQ(told(open, examine(open, off)), "ok; 1");
}

TEST(ExamineRules, SetTheLimitsOfEachKind)
{
    const mesh poor = mesh_by_hand({O, X, {0.5, 0.05, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}});
    const tool::rules base = tool::rules_of_profile("default");
    EXPECT_FALSE(examine(poor, tool::rules_from_json(R"({"quality": {"triangle": {"bad": 0.15}}})", base)).is_clean());
    EXPECT_TRUE(examine(poor, tool::rules_from_json(R"({"quality": {"quad": {"bad": 0.15}}})", base)).is_clean());
    EXPECT_FALSE(examine(poor, tool::rules_of_profile("solver")).is_clean());
}

TEST(ExamineRules, SetTheDistanceOfCoincidentNodes)
{
    const mesh m = mesh_by_hand({O, X, Y, {1.001, 0, 0}, XY, {0, 1, 0.5}}).with(EL_TRIA3, {{0, 1, 2}, {3, 4, 5}});
    const tool::rules base = tool::rules_of_profile("default");
    EXPECT_TRUE(examine(m, base).is_clean());
    EXPECT_EQ(told(m, examine(m, tool::rules_from_json(R"({"coincident": 0.001})", base))),
              "coincident_node 1 (node 4); ~open_edge 6 (triangle 1 2); ~parts 2; 2");
}

TEST(ExamineRules, HoldForABoxWhoseDiagonalIsBeyondAllNumbers)
{
    constexpr double far = 1.7e308;
    const mesh m = mesh_by_hand({{-far, 0, 0}, {far, 0, 0}, {0, far, 0}}, 2).with(EL_EDGE2, {{0, 1}, {1, 2}});
    const tool::rules base = tool::rules_of_profile("default");
    EXPECT_EQ(told(m, examine(m, base)), "ok; 1");
    EXPECT_EQ(told(m, examine(m, tool::rules_from_json(R"({"coincident": 0})", base))), "ok; 1");
}

TEST(ExamineNumbers, AreThoseOfTheMesh)
{
    const mesh m = mesh_by_hand(tower).with(EL_HEXA8, {{0, 1, 2, 3, 4, 5, 6, 7}, {4, 5, 6, 7, 8, 9, 10, 11}});
    const examination v = examine(m, tool::rules_of_profile("default"));
    EXPECT_EQ(v.nodes, 12u);
    EXPECT_EQ(v.dimension, 3);
    EXPECT_EQ(v.faces, 11u);
    EXPECT_EQ(v.free_faces, 10u);
    EXPECT_EQ(v.nonmanifold_faces, 0u);
    EXPECT_EQ(v.shortest_edge, 1.0);
    EXPECT_EQ(v.box.diagonal(), std::sqrt(6.0));
    ASSERT_EQ(v.kinds.size(), 1u);
    EXPECT_EQ(v.kinds[0].good, 2u);
    EXPECT_EQ(v.kinds[0].min, 1.0);
    EXPECT_EQ(v.kinds[0].histogram[9], 2u);
}

TEST(ExamineNumbers, ShowInvertedHexahedraAsMinusOne)
{
    const mesh m =
        mesh_by_hand({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 2}, {2, 0, 2}, {2, 2, 2}, {0, 2, 2}})
            .with(EL_HEXA8, {{4, 5, 6, 7, 0, 1, 2, 3}});
    const examination v = examine(m, tool::rules_of_profile("default"));
    EXPECT_EQ(v.qualities[0], -1.0);
    EXPECT_EQ(v.kinds[0].min, -1.0);
    EXPECT_EQ(v.kinds[0].inverted, 1u);
}

// A quality that is no number is told as none, and counts as bad.
TEST(ExamineNumbers, OfNoQualityAreNone)
{
    const mesh m = mesh_by_hand({{0, 0, 0}, {1e200, 0, 0}, {0, 1e200, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}});
    const examination v = examine(m, tool::rules_of_profile("default"));
    EXPECT_FALSE(v.is_clean());
    ASSERT_EQ(v.kinds.size(), 1u);
    EXPECT_TRUE(std::isnan(v.kinds[0].min));
    EXPECT_TRUE(std::isnan(v.kinds[0].mean));
    EXPECT_EQ(v.kinds[0].bad, 1u);
}

TEST(ExamineNumbers, OfAPlaneSeenFromBelowAreThoseFromAbove)
{
    const mesh above = mesh_by_hand({O, X, XY, Y}).with(EL_TRIA3, {{0, 1, 2}, {0, 3, 2}});
    const mesh below = mesh_by_hand({O, X, XY, {0, 3, 0}}).with(EL_TRIA3, {{0, 1, 2}, {0, 3, 2}});
    const auto qualities = [](const mesh& m) { return examine(m, tool::rules_of_profile("default")).qualities; };
    EXPECT_GT(qualities(above)[0], 0);  // half and half: counter-clockwise
    EXPECT_LT(qualities(above)[1], 0);
    EXPECT_LT(qualities(below)[0], 0);
    EXPECT_GT(qualities(below)[1], 0);
}

TEST(ExamineNumbers, TellEdgesWithoutLength)
{
    const mesh m = mesh_by_hand({O, X, Y, Y}).with(EL_TRIA3, {{0, 1, 2}, {1, 3, 2}, {0, 0, 1}});
    const examination v = examine(m, tool::rules_of_profile("default"));
    EXPECT_EQ(v.shortest_edge, 0);
    EXPECT_EQ(v.edges_without_length, 1u);  // from node 3 to node 4, not from node 1 to itself
}

TEST(ExamineNumbers, OfEdgesWhoseSquaresAreBeyondAllNumbersAreThere)
{
    const mesh large = mesh_by_hand({{0, 0, 0}, {3e200, 4e200, 0}}, 2).with(EL_EDGE2, {{0, 1}});
    EXPECT_NEAR(examine(large, tool::rules_of_profile("default")).shortest_edge / 5e200, 1, 1e-15);
    const mesh small = mesh_by_hand({{0, 0, 0}, {3e-200, 4e-200, 0}}, 2).with(EL_EDGE2, {{0, 1}});
    EXPECT_NEAR(examine(small, tool::rules_of_profile("default")).shortest_edge / 5e-200, 1, 1e-15);
}

TEST(ExamineFaults, TellWhereTheFirstOneLies)
{
    // Two triangles in space, one of them twice, and a node that nobody uses.
    const mesh m = mesh_by_hand({O, X, YZ, {3, 0, 3}, {7, 8, 9}}).with(EL_TRIA3, {{0, 1, 2}, {1, 3, 2}, {3, 2, 1}});
    const examination v = examine(m, tool::rules_of_profile("default"));
    const auto first_at = [&](tool::fault which) {
        const tool::found* f = v.find(which);
        return f != nullptr && f->first_at ? *f->first_at : place{};
    };
    EXPECT_EQ(first_at(tool::fault::unused_node), (place{7, 8, 9}));
    EXPECT_EQ(first_at(tool::fault::open_edge), (place{0.5, 0, 0}));
    EXPECT_EQ(first_at(tool::fault::nonmanifold), (place{0.5, 0.5, 0.5}));
    const place duplicate = first_at(tool::fault::duplicate);
    EXPECT_NEAR(duplicate[0], 4.0 / 3, 1e-15);
    EXPECT_NEAR(duplicate[2], 4.0 / 3, 1e-15);
}

TEST(ExamineFaults, HaveTheWordsOfTheMesh)
{
    const std::vector<nodes> fan{{0, 1, 2}, {0, 1, 3}, {0, 1, 4}};
    mesh m = mesh_by_hand({O, X, YZ, Y, {0, -1, 0}}).with(EL_TRIA3, fan);
    const auto text = [&] {
        return examine(m, tool::rules_of_profile("default")).find(tool::fault::nonmanifold)->text;
    };
    EXPECT_EQ(text(), "1 edge of three or more elements");
    m.facets.emplace();
    EXPECT_EQ(text(), "1 edge of three or more triangles");
}

TEST(ExamineFaults, CountClosedPartsInsideOut)
{
    const std::vector<place> two{O, X, Y, {0, 0, 1}, {5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1}};
    const std::vector<nodes> inward{{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}};
    const std::vector<nodes> outward{{4, 6, 5}, {4, 5, 7}, {4, 7, 6}, {5, 6, 7}};
    std::vector<nodes> both = inward;
    both.insert(both.end(), outward.begin(), outward.end());
    const auto text = [&](const std::vector<nodes>& all) {
        return examine(mesh_by_hand(two).with(EL_TRIA3, all), tool::rules_of_profile("default"))
            .find(tool::fault::inside_out)
            ->text;
    };
    EXPECT_EQ(text(inward), "the closed surface is inside out");
    EXPECT_EQ(text(both), "1 of 2 closed surfaces inside out");
}

// The surface of a cube of n cells along each side around a middle, blown up to a ball if asked for.
struct box_surface {
    std::vector<place> at;
    std::vector<nodes> quads;

    void add(const place& middle, double half, int n, bool is_ball, bool inward)
    {
        std::map<std::array<int, 3>, unsigned> numbers;
        const auto number_of = [&](const std::array<int, 3>& cell) {
            const auto [known, is_new] = numbers.try_emplace(cell, static_cast<unsigned>(at.size()));
            if (is_new) {
                place x{};
                double length = 0;
                for (std::size_t k = 0; k < 3; ++k) x[k] = 2.0 * cell[k] / n - 1;
                for (const double c : x) length += c * c;
                for (std::size_t k = 0; k < 3; ++k)
                    x[k] = middle[k] + half * x[k] / (is_ball ? std::sqrt(length) : 1.0);
                at.push_back(x);
            }
            return known->second;
        };
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (const bool far : {false, true}) {
                for (int i = 0; i < n * n; ++i) {
                    nodes quad;
                    for (const auto& [u, v] : std::array<std::array<int, 2>, 4>{{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}) {
                        std::array<int, 3> cell{};
                        cell[axis] = far ? n : 0;
                        cell[(axis + 1) % 3] = i % n + u;
                        cell[(axis + 2) % 3] = i / n + v;
                        quad.push_back(number_of(cell));
                    }
                    if (far == inward) std::reverse(quad.begin(), quad.end());
                    quads.push_back(quad);
                }
            }
        }
    }
};

TEST(ExamineFaults, TellCavitiesFromWhatLiesOutsideALargeSurface)
{
    box_surface all;
    all.add({0, 0, 0}, 4, 40, true, false);
    for (const double x : {-2, 0, 2})
        for (const double y : {-2, 0, 2})
            for (const double z : {-2, 0, 2}) all.add({x, y, z}, 0.1, 1, false, true);
    for (const double x : {-2.5, 2.5})
        for (const double y : {-2.5, 2.5})
            for (const double z : {-2.5, 2.5}) all.add({x, y, z}, 0.1, 1, false, true);
    EXPECT_EQ(examine(mesh_by_hand(all.at).with(EL_QUAD4, all.quads), tool::rules_of_profile("default"))
                  .find(tool::fault::inside_out)
                  ->text,
              "8 of 36 closed surfaces inside out");
}

}  // namespace
