#include <Eigen/Geometry>

#include "geometry/input.h"

namespace compare {
namespace {

using columns = Eigen::Map<Eigen::Matrix3Xd>;

void box(const geometry_input& m, lap& l)
{
    const Eigen::Map<const Eigen::Matrix3Xd> pos(&m.pos(0, 0), 3, Eigen::Index(m.pos.cols));
    Eigen::Vector3d low, high;
    l.timed([&] {
        low = pos.rowwise().minCoeff();
        high = pos.rowwise().maxCoeff();
    });
    l.answer({low[0], low[1], low[2], high[0], high[1], high[2]});
}

void rotated(const geometry_input& m, lap& l)
{
    dense2D<double> copy = m.pos;
    columns pos(&copy(0, 0), 3, Eigen::Index(copy.cols));
    l.timed([&] {
        const Eigen::Vector3d centre(m.C[0], m.C[1], m.C[2]);
        const Eigen::Matrix3d turn = Eigen::AngleAxisd(m.angle, Eigen::Vector3d::UnitZ()).toRotationMatrix();
        for (Eigen::Index j = 0; j < pos.cols(); ++j) pos.col(j) = (turn * (pos.col(j) - centre) + centre).eval();
    });
    l.answer(sums(&copy(0, 0), m.pos.cols));
}

const bool entered = enter<geometry_input>({
    {"bounding box", "Eigen", "rowwise minCoeff and maxCoeff", "NaN is not passed over", box},
    {"rotate", "Eigen", "AngleAxisd and a product per column", "", rotated},
});

}  // namespace
}  // namespace compare
