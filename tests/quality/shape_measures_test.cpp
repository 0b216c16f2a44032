#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "quality/random_elements.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::model::spot;

// Every measure against its model, bit by bit, over random elements.

namespace {

struct mesh {
    dense2D<double> pos;
    dense2D<unsigned> connect;
    std::vector<std::vector<spot>> elements;
};

mesh random_mesh(const test::shape_family& family, std::size_t count, unsigned seed)
{
    test::random_elements source(seed);
    const std::size_t corners = family.ideal.size();
    mesh m{dense2D<double>(family.dimension, count * corners), dense2D<unsigned>(corners, count), {}};
    for (std::size_t e = 0; e < count; ++e) {
        m.elements.push_back(source.next(family));
        for (std::size_t k = 0; k < corners; ++k) {
            // Nodes of neighbouring elements lie far apart.
            const std::size_t node = (e * corners + k) * 7919 % (count * corners);
            m.connect(k, e) = static_cast<unsigned>(node);
            for (unsigned i = 0; i < family.dimension; ++i) m.pos(i, node) = m.elements[e][k][i];
        }
    }
    return m;
}

std::string text_of(const std::vector<spot>& p)
{
    std::ostringstream text;
    text.precision(17);
    for (const spot& s : p) text << "(" << s[0] << " " << s[1] << " " << s[2] << ") ";
    return text.str();
}

class ShapeMeasure : public testing::TestWithParam<test::shape_family> {};

TEST_P(ShapeMeasure, IsThatOfTheModelToTheLastBit)
{
    const mesh m = random_mesh(GetParam(), 20001, 1);
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(m.pos, m.connect, GetParam().type, qualities), 0);
    ASSERT_EQ(qualities.size, 20001u);
    std::size_t good = 0, bad = 0, flat = 0;
    for (std::size_t e = 0; e < m.elements.size(); ++e) {
        const double expected = GetParam().model(m.elements[e].data());
        ASSERT_TRUE(test::same_number(qualities[e], expected))
            << "element " << e << ": " << qualities[e] << " for " << expected << " of " << text_of(m.elements[e]);
        good += expected > 0.1;
        bad += expected < -0.1;
        flat += expected != 0 && std::fabs(expected) < 1e-9;
    }
    // The sample is worth its name.
    EXPECT_GT(good, 2000u);
    if (GetParam().type != EL_TRIA3 && GetParam().type != EL_QUAD4) {
        EXPECT_GT(bad, 1000u);
        EXPECT_GT(flat, 200u);
    }
}

TEST_P(ShapeMeasure, IsTheSameForTheCornersOfHigherOrderElements)
{
    const std::vector<int> kinds[] = {{EL_TRIA3, EL_TRIA6},    {EL_QUAD4, EL_QUAD8, EL_QUAD9},
                                      {EL_TETRA4, EL_TETRA10}, {EL_PYRAMID5, EL_PYRAMID14},
                                      {EL_WEDGE6, EL_WEDGE18}, {EL_HEXA8, EL_HEXA27}};
    const mesh m = random_mesh(GetParam(), 2001, 6);
    dense1D<double> linear, higher;
    ASSERT_EQ(shape_qualities(m.pos, m.connect, GetParam().type, linear), 0);
    for (const auto& alike : kinds) {
        if (alike[0] != GetParam().type) continue;
        for (const int type : alike) {
            ASSERT_EQ(shape_qualities(m.pos, m.connect, static_cast<element_type>(type), higher), 0);
            ASSERT_EQ(higher.size, linear.size);
            for (std::size_t e = 0; e < linear.size; ++e)
                ASSERT_TRUE(test::same_number(higher[e], linear[e])) << "type " << type << ", element " << e;
        }
    }
}

TEST_P(ShapeMeasure, DoesNotDependOnTheOtherElements)
{
    mesh m = random_mesh(GetParam(), 501, 2);
    dense1D<double> together, alone;
    ASSERT_EQ(shape_qualities(m.pos, m.connect, GetParam().type, together), 0);
    for (std::size_t e = 0; e < m.elements.size(); ++e) {
        ASSERT_EQ(shape_qualities(m.pos, m.connect.sub_matrix(0, e, m.connect.rows, 1), GetParam().type, alone), 0);
        EXPECT_TRUE(test::same_number(together[e], alone[0])) << "element " << e;
    }
}

TEST_P(ShapeMeasure, OfTheIdealElementIsOne)
{
    const auto& p = GetParam().ideal;
    dense2D<double> pos(GetParam().dimension, p.size());
    dense2D<unsigned> connect(p.size(), 1);
    for (std::size_t k = 0; k < p.size(); ++k) {
        connect(k, 0) = static_cast<unsigned>(k);
        for (unsigned i = 0; i < GetParam().dimension; ++i) pos(i, k) = p[k][i];
    }
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, connect, GetParam().type, qualities), 0);
    EXPECT_NEAR(qualities[0], 1.0, 2e-12);
    EXPECT_LE(qualities[0], 1.0);
}

INSTANTIATE_TEST_SUITE_P(ShapeQualities, ShapeMeasure, testing::ValuesIn(test::shape_families()),
                         [](const auto& row) { return std::string(row.param.name); });

// Triangles and quadrangles in one matrix, in random order.
void check_mixed_faces(std::uint64_t dimension)
{
    constexpr std::size_t each = 1100;
    const auto& of_triangle = test::shape_families()[dimension - 2];
    const auto& of_quadrangle = test::shape_families()[dimension];
    const mesh triangles = random_mesh(of_triangle, each, 3);
    const mesh quadrangles = random_mesh(of_quadrangle, each, 4);
    dense2D<double> pos;
    ASSERT_EQ(append(pos, triangles.pos), 0);
    ASSERT_EQ(append(pos, quadrangles.pos), 0);

    std::mt19937 random(5);
    dense2D<unsigned> mixed(4, 2 * each);
    std::vector<double> expected;
    for (std::size_t t = 0, q = 0; t + q < 2 * each;) {
        const std::size_t e = t + q;
        const bool triangle = q == each || (t < each && random() % 3 != 0);
        for (unsigned k = 0; k < 4; ++k)
            mixed(k, e) = triangle ? (k < 3 ? triangles.connect(k, t) : test::N)
                                   : quadrangles.connect(k, q) + static_cast<unsigned>(triangles.pos.cols);
        const auto& p = triangle ? triangles.elements[t++] : quadrangles.elements[q++];
        expected.push_back((triangle ? of_triangle : of_quadrangle).model(p.data()));
    }
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, mixed, EL_FACE_MIX, qualities), 0);
    ASSERT_EQ(qualities.size, expected.size());
    for (std::size_t e = 0; e < expected.size(); ++e)
        ASSERT_TRUE(test::same_number(qualities[e], expected[e])) << "element " << e;
}

TEST(ShapeMeasureOfASurface, InAMixedMatrixOfThePlaneIsThatOfTheModels)
{
    check_mixed_faces(2);
}

TEST(ShapeMeasureOfASurface, InAMixedMatrixOfSpaceIsThatOfTheModels)
{
    check_mixed_faces(3);
}

TEST(ShapeMeasureOfARange, IsThatOfTheModelsMatrixAfterMatrix)
{
    std::mt19937 random(7);
    const auto& families = test::shape_families();
    for (unsigned round = 0; round < 700; ++round) {
        const bool plane = random() % 3 == 0;
        std::vector<dense2D<unsigned>> connects(random() % 5);
        dense1D<int> types(connects.size());
        dense2D<double> pos(plane ? 2 : 3, 0);
        std::vector<double> expected;
        for (std::size_t k = 0; k < connects.size(); ++k) {
            const auto& family =
                plane ? families[2 * (random() % 2)] : families[std::array{1u, 3u, 4u, 5u, 6u, 7u}[random() % 6]];
            const mesh m = random_mesh(family, random() % 6, 1000 * round + static_cast<unsigned>(k));
            types[k] = family.type;
            connects[k] = m.connect;
            for (std::uint64_t e = 0; e < m.connect.cols; ++e) {
                for (std::uint64_t i = 0; i < m.connect.rows; ++i) connects[k](i, e) += static_cast<unsigned>(pos.cols);
                expected.push_back(family.model(m.elements[e].data()));
            }
            ASSERT_EQ(append(pos, m.pos), 0);
            if (random() % 2 == 0) connects[k].shallow_copy(test::as_padded_view(connects[k], test::N));
        }
        dense1D<double> qualities;
        const dense2D<unsigned>* first = connects.data();
        ASSERT_EQ(shape_qualities(test::as_padded_view(pos, 3.5), first, first + connects.size(), types, qualities), 0);
        ASSERT_EQ(qualities.size, expected.size());
        for (std::size_t e = 0; e < expected.size(); ++e)
            ASSERT_TRUE(test::same_number(qualities[e], expected[e])) << "round " << round << ", element " << e;
    }
}

}  // namespace
