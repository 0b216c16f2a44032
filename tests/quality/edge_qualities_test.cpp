#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <stdexcept>

#include "quality/recording_histogram.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::N;
using test::points;
using test::recording_histogram;
using zeb::misc::histogram;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
using values = std::vector<double>;

dense1D<float> sizes(const std::vector<float>& list)
{
    return test::list_of(list);
}

values fed_by(const dense2D<double>& pos, const dense2D<unsigned>& connect, element_type type,
              const dense1D<float>& asked)
{
    recording_histogram h;
    EXPECT_EQ(edge_qualities(pos, connect, type, asked, h), 0);
    EXPECT_EQ(h.vectors, 0);
    return h.values;
}

const dense2D<double> line = points({{0}, {1}, {3}, {6}, {10}});
const dense1D<float> ones = sizes({1, 1, 1, 1, 1});

// -- the value

TEST(EdgeQualities, OfEqualSizesAreTheLengthByTheSizeExactly)
{
    EXPECT_EQ(fed_by(line, columns({{0, 1}, {0, 4}, {2, 4}}), EL_EDGE2, sizes({3, 3, 3, 3, 3})),
              (values{1.0 / 3, 10.0 / 3, 7.0 / 3}));
}

TEST(EdgeQualities, OfSizesOneAndOneHalfAreTwiceTheLogarithmOfTwo)
{
    const values fed = fed_by(line, columns({{0, 1}, {1, 0}}), EL_EDGE2, sizes({1, 0.5, 1, 1, 1}));
    ASSERT_EQ(fed.size(), 1u);
    EXPECT_EQ(fed[0], std::log(0.5) / -0.5);
    EXPECT_NEAR(fed[0], 1.3862943611198906, 1e-15);
}

TEST(EdgeQualities, ChangeFromLogarithmToSeriesAtMinusOneTenth)
{
    const auto quality = [](float smaller) {
        return fed_by(line, columns({{0, 1}}), EL_EDGE2, sizes({1, smaller, 1, 1, 1})).at(0);
    };
    const double r = -0.0625;
    EXPECT_EQ(quality(0.9375f), ((0.3333333333333333 - 0.25 * r) * r - 0.5) * r + 1);
    const double far = -0.125;
    EXPECT_EQ(quality(0.875f), std::log(0.875) / far);
    // 0.9f is less than 0.9, the next float is more.
    EXPECT_EQ(quality(0.9f), std::log(1 + (double{0.9f} - 1)) / (double{0.9f} - 1));
    const double above = double{std::nextafter(0.9f, 1.0f)} - 1;
    EXPECT_EQ(quality(std::nextafter(0.9f, 1.0f)), ((0.3333333333333333 - 0.25 * above) * above - 0.5) * above + 1);
    EXPECT_NEAR(quality(0.9f), quality(std::nextafter(0.9f, 1.0f)), 3e-5);
}

TEST(EdgeQualities, WidenTheSizesBeforeTheyAreCompared)
{
    const double r = double{0.7f} / double{0.9f} - 1;
    EXPECT_EQ(fed_by(line, columns({{1, 2}}), EL_EDGE2, sizes({1, 0.7f, 0.9f, 1, 1})),
              (values{std::log(1 + r) / r * 2 / double{0.9f}}));
}

TEST(EdgeQualities, UseXYAndZOnly)
{
    const auto asked = sizes({1, 1});
    const auto edge = columns({{0, 1}});
    EXPECT_EQ(fed_by(points({{1}, {4}}), edge, EL_EDGE2, asked), values{3});
    EXPECT_EQ(fed_by(points({{0, 0}, {3, 4}}), edge, EL_EDGE2, asked), values{5});
    EXPECT_EQ(fed_by(points({{0, 0, 0}, {2, 3, 6}}), edge, EL_EDGE2, asked), values{7});
    EXPECT_EQ(fed_by(points({{0, 0, 0, 9}, {2, 3, 6, 1}}), edge, EL_EDGE2, asked), values{7});
    EXPECT_EQ(fed_by(dense2D<double>(0, 2), edge, EL_EDGE2, asked), values{0});
}

TEST(EdgeQualities, OfInfiniteSizesGoThroughTheFormula)
{
    const auto pos = points({{0}, {1}, {2}});
    const values fed = fed_by(pos, columns({{0, 1}, {1, 2}}), EL_EDGE2, sizes({1, infinity, infinity}));
    ASSERT_EQ(fed.size(), 2u);
    EXPECT_TRUE(std::isnan(fed[0]));  // infinity by infinity
    EXPECT_TRUE(std::isnan(fed[1]));
}

TEST(EdgeQualities, OfADegenerateEdgeAreZero)
{
    EXPECT_EQ(fed_by(line, columns({{2, 2}, {2, 2}}), EL_EDGE2, ones), values{0});
}

// -- the edges

TEST(EdgeQualities, OfTwoTrianglesThatShareAnEdgeAreFive)
{
    // In the order in which they are first seen: 1-2, 2-0, 0-1, then 2-3 and 3-1 of the second triangle.
    EXPECT_EQ(fed_by(line, columns({{0, 1, 2}, {1, 2, 3}}), EL_TRIA3, ones), (values{2, 3, 1, 3, 5}));
}

TEST(EdgeQualities, OfAQuadraticTypeAreThoseBetweenCorners)
{
    const auto pos = points({{0}, {1}, {3}, {100}, {200}, {300}});
    const auto asked = sizes({1, 1, 1, 1, 1, 1});
    EXPECT_EQ(fed_by(pos, columns({{0, 1, 2, 3, 4, 5}}), EL_TRIA6, asked), (values{2, 3, 1}));
    recording_histogram h;
    EXPECT_EQ(edge_qualities(pos, columns({{0, 1, 2}}), EL_TRIA6, asked, h), -2);
    EXPECT_TRUE(h.values.empty());
}

TEST(EdgeQualities, OfMixedFacesFollowTheColumn)
{
    EXPECT_EQ(fed_by(line, columns({{0, 1, 2, N}, {0, 1, 3, 4}}), EL_FACE_MIX, ones), (values{2, 3, 1, 5, 4, 10}));
    EXPECT_EQ(fed_by(line, columns({{0, 1, 2}}), EL_FACE_MIX, ones), (values{2, 3, 1}));
}

TEST(EdgeQualities, OfTypesWithoutEdgesAreNone)
{
    EXPECT_EQ(fed_by(line, test::filled(20, 1, 1u), EL_HEXA20, ones), values{});
    EXPECT_EQ(fed_by(line, test::filled(8, 1, 1u), EL_SOLID_MIX, ones), values{});
    EXPECT_EQ(fed_by(line, test::filled(1, 1, 1u), EL_NODE, ones), values{});
}

TEST(EdgeQualities, OfARangeCountSharedEdgesOnce)
{
    const dense2D<unsigned> connects[] = {columns({{0, 1, 2}}), dense2D<unsigned>(), columns({{2, 1}, {3, 4}})};
    recording_histogram h;
    EXPECT_EQ(edge_qualities(line, connects, connects + 3, test::types({EL_TRIA3, -5, EL_EDGE2}), ones, h), 0);
    EXPECT_EQ(h.values, (values{2, 3, 1, 4}));
}

// -- stopping

TEST(EdgeQualities, StopWithoutAnErrorAtTheFirstSizeThatIsNotPositive)
{
    const auto edges = columns({{0, 1}, {1, 2}, {2, 3}, {3, 4}});
    for (const float bad : {0.0f, -0.0f, -1.0f, nan, -infinity}) {
        EXPECT_EQ(fed_by(line, edges, EL_EDGE2, sizes({1, 1, 1, bad, 1})), (values{1, 2})) << bad;
        EXPECT_EQ(fed_by(line, edges, EL_EDGE2, sizes({bad, 1, 1, 1, 1})), values{}) << bad;
        EXPECT_EQ(fed_by(line, edges, EL_EDGE2, sizes({1, 1, 1, 1, bad})), (values{1, 2, 3})) << bad;
    }
    // A node that no edge touches may have any size.
    EXPECT_EQ(fed_by(line, columns({{0, 1}, {1, 2}}), EL_EDGE2, sizes({1, 1, 1, 0, nan})), (values{1, 2}));
}

TEST(EdgeQualities, DoNotStartWithSizesForOtherNodes)
{
    const auto edges = columns({{0, 1}});
    EXPECT_EQ(fed_by(line, edges, EL_EDGE2, sizes({1, 1, 1, 1})), values{});
    EXPECT_EQ(fed_by(line, edges, EL_EDGE2, sizes({1, 1, 1, 1, 1, 1})), values{});
    EXPECT_EQ(fed_by(line, edges, EL_EDGE2, dense1D<float>()), values{});
}

// -- codes

TEST(EdgeQualities, OfNothingAreNoneWhateverTheType)
{
    for (const int type : {-1, 0, 6, 19, 99})
        for (const auto& none : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 7)})
            EXPECT_EQ(fed_by(line, none, static_cast<element_type>(type), ones), values{});
    recording_histogram h;
    EXPECT_EQ(edge_qualities(line, nullptr, nullptr, test::types({EL_TRIA3}), ones, h), 0);
    const dense2D<unsigned> connect = columns({{0, 99}});
    EXPECT_EQ(edge_qualities(line, &connect, &connect, test::types({1, 2, 3}), ones, h), 0);
    EXPECT_TRUE(h.values.empty());
}

TEST(EdgeQualities, RefuseWhatTheTypeDoesNotAllow)
{
    recording_histogram h;
    for (const auto& bad : {columns({{0, 5}}), columns({{0, 1}, {0, N}}), columns({{0, 1, 2}}), columns({{0}})})
        EXPECT_EQ(edge_qualities(line, bad, EL_EDGE2, ones, h), -2);
    for (const int type : {-1, 0, 2, 21, std::numeric_limits<int>::max()})
        EXPECT_EQ(edge_qualities(line, columns({{0, 1}}), static_cast<element_type>(type), ones, h), -2) << type;
    EXPECT_EQ(edge_qualities(line, test::filled(20, 1, 5u), EL_HEXA20, ones, h), -2);
    EXPECT_TRUE(h.values.empty());
}

TEST(EdgeQualities, RefuseTheTypesOfARangeBeforeItsMatrices)
{
    const dense2D<unsigned> connects[] = {columns({{0, 1}}), columns({{0, 9}})};
    recording_histogram h;
    EXPECT_EQ(edge_qualities(line, connects, connects + 2, test::types({EL_EDGE2}), ones, h), -4);
    EXPECT_EQ(edge_qualities(line, connects, connects + 2, test::types({EL_EDGE2, EL_EDGE2, EL_EDGE2}), ones, h), -4);
    EXPECT_EQ(edge_qualities(line, connects + 2, connects, test::types({EL_EDGE2, EL_EDGE2}), ones, h), -4);
    EXPECT_EQ(edge_qualities(line, connects + 2, connects, test::types({}), ones, h), -4);
    EXPECT_EQ(edge_qualities(line, connects, connects + 2, test::types({EL_EDGE2, EL_EDGE2}), ones, h), -2);
    EXPECT_EQ(edge_qualities(line, connects, connects + 2, test::types({EL_TRIA3, EL_EDGE2}), ones, h), -2);
    EXPECT_TRUE(h.values.empty()) << "an edge was measured before all matrices were checked";
    // Bad indices come before sizes that do not fit.
    EXPECT_EQ(edge_qualities(line, connects, connects + 2, test::types({EL_EDGE2, EL_EDGE2}), sizes({1}), h), -2);
    EXPECT_EQ(edge_qualities(line, connects[1], EL_EDGE2, sizes({1}), h), -2);
}

TEST(EdgeQualities, CatchWhatAHistogramThrows)
{
    struct : histogram {
        using histogram::process;
        void process(double) override { throw std::runtime_error("full"); }
    } h;
    EXPECT_EQ(edge_qualities(line, columns({{0, 1}}), EL_EDGE2, ones, h), -199);
}

// -- all kinds, against lists of edges in a map

using edge_list = std::vector<std::pair<unsigned, unsigned>>;

const std::map<int, edge_list>& local_edges()
{
    const edge_list edge{{0, 1}}, tria{{1, 2}, {2, 0}, {0, 1}}, quad{{0, 1}, {1, 2}, {2, 3}, {3, 0}};
    const edge_list tetra{{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}};
    const edge_list pyramid{{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}};
    const edge_list wedge{{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0}, {0, 1}, {4, 5}, {5, 3}, {3, 4}};
    const edge_list hexa{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                         {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    static const std::map<int, edge_list> table{
        {EL_NODE, {}},          {EL_EDGE2, edge},        {EL_EDGE3, edge},   {EL_TRIA3, tria},    {EL_TRIA6, tria},
        {EL_QUAD4, quad},       {EL_QUAD8, quad},        {EL_QUAD9, quad},   {EL_TETRA4, tetra},  {EL_TETRA10, tetra},
        {EL_PYRAMID5, pyramid}, {EL_PYRAMID14, pyramid}, {EL_WEDGE6, wedge}, {EL_WEDGE18, wedge}, {EL_HEXA8, hexa},
        {EL_HEXA20, {}},        {EL_HEXA27, hexa}};
    return table;
}

double expected_quality(const dense2D<double>& pos, unsigned a, unsigned b, double ha, double hb)
{
    double square = 0;
    for (unsigned i = 0; i < pos.rows && i < 3; ++i) square += (pos(i, a) - pos(i, b)) * (pos(i, a) - pos(i, b));
    const double most = ha > hb ? ha : hb;
    const double least = ha > hb ? hb : ha;
    const double r = least / most - 1;
    const double f = r > -0.1 ? ((0.3333333333333333 - 0.25 * r) * r - 0.5) * r + 1 : std::log(1 + r) / r;
    return f * std::sqrt(square) / most;
}

TEST(EdgeQualities, AreThoseOfTheEdgesInFirstSeenOrder)
{
    std::mt19937 random(7);
    const auto pick = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    std::size_t stopped = 0;
    for (int round = 0; round < 3000; ++round) {
        const unsigned nodes = 2 + pick(9);
        dense2D<double> pos(1 + pick(4), nodes);
        std::vector<float> asked;
        for (unsigned j = 0; j < nodes; ++j) {
            for (unsigned i = 0; i < pos.rows; ++i) pos(i, j) = static_cast<double>(random()) / 1e9;
            asked.push_back(pick(60) == 0 ? 0.0f : 0.5f + static_cast<float>(pick(16)) / 16);
        }
        std::vector<dense2D<unsigned>> connects;
        std::vector<int> types;
        std::vector<std::pair<unsigned, unsigned>> seen;
        const auto see = [&](unsigned a, unsigned b) {
            const auto edge = std::minmax(a, b);
            if (std::find(seen.begin(), seen.end(), std::pair<unsigned, unsigned>(edge)) == seen.end())
                seen.emplace_back(edge);
        };
        const unsigned matrices = 1 + pick(3);
        for (unsigned k = 0; k < matrices; ++k) {
            const bool mixed = pick(5) == 0;
            const auto kind = std::next(local_edges().begin(), pick(static_cast<unsigned>(local_edges().size())));
            const std::uint64_t rows = mixed ? 4 : NODES_PER_ELEMENT[kind->first];
            dense2D<unsigned> connect(rows, pick(4));
            for (std::uint64_t e = 0; e < connect.cols; ++e) {
                for (std::uint64_t i = 0; i < rows; ++i) connect(i, e) = pick(nodes);
                if (mixed && pick(2)) connect(3, e) = N;
                const auto& edges = !mixed               ? kind->second
                                    : connect(3, e) == N ? local_edges().at(EL_TRIA3)
                                                         : local_edges().at(EL_QUAD4);
                for (const auto& [a, b] : edges) see(connect(a, e), connect(b, e));
            }
            connects.push_back(connect);
            types.push_back(mixed ? EL_FACE_MIX : kind->first);
        }
        values expected;
        for (const auto& [a, b] : seen) {
            if (!(asked[a] > 0 && asked[b] > 0)) {
                ++stopped;
                break;
            }
            expected.push_back(expected_quality(pos, a, b, asked[a], asked[b]));
        }
        recording_histogram h;
        ASSERT_EQ(edge_qualities(pos, connects.data(), connects.data() + matrices, test::types(types), sizes(asked), h),
                  0);
        ASSERT_EQ(h.values, expected) << "round " << round;

        std::vector<dense2D<unsigned>> views;
        for (const auto& m : connects) views.push_back(test::as_padded_view(m, N - 1));
        std::vector<float> padded{7, 7};
        padded.insert(padded.end(), asked.begin(), asked.end());
        recording_histogram of_views;
        ASSERT_EQ(edge_qualities(test::as_padded_view(pos, -1e9), views.data(), views.data() + matrices,
                                 test::types(types), sizes(padded).sub_vector(2, nodes), of_views),
                  0);
        ASSERT_EQ(of_views.values, expected) << "round " << round;
        if (matrices == 1) {
            ASSERT_EQ(fed_by(pos, connects[0], static_cast<element_type>(types[0]), sizes(asked)), expected);
        }
    }
    EXPECT_GT(stopped, 100u);
}

}  // namespace
