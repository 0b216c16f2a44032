#include <gtest/gtest.h>

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

TEST(ShapeMeasureOfASurface, InA3DMixedMatrixIsThatOfThePureMatrices)
{
    const mesh triangles = random_mesh(test::shape_families()[1], 700, 3);
    const mesh quadrangles = random_mesh(test::shape_families()[3], 700, 4);
    dense2D<double> pos(3, triangles.pos.cols + quadrangles.pos.cols);
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (unsigned i = 0; i < 3; ++i)
            pos(i, j) = j < triangles.pos.cols ? triangles.pos(i, j) : quadrangles.pos(i, j - triangles.pos.cols);

    std::mt19937 random(5);
    dense2D<unsigned> mixed(4, 1400);
    std::vector<double> expected;
    for (std::size_t t = 0, q = 0; t + q < 1400;) {
        const std::size_t e = t + q;
        const bool triangle = q == 700 || (t < 700 && random() % 3 != 0);
        for (unsigned k = 0; k < 4; ++k)
            mixed(k, e) = triangle ? (k < 3 ? triangles.connect(k, t) : test::N)
                                   : quadrangles.connect(k, q) + static_cast<unsigned>(triangles.pos.cols);
        const auto& p = triangle ? triangles.elements[t++] : quadrangles.elements[q++];
        expected.push_back(test::shape_families()[triangle ? 1 : 3].model(p.data()));
    }
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, mixed, EL_FACE_MIX, qualities), 0);
    ASSERT_EQ(qualities.size, 1400u);
    for (std::size_t e = 0; e < 1400; ++e) ASSERT_TRUE(test::same_number(qualities[e], expected[e])) << "element " << e;
}

}  // namespace
