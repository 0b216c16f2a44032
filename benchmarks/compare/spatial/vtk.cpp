#include <vtkKdTree.h>
#include <vtkKdTreePointLocator.h>
#include <vtkStaticCleanPolyData.h>
#include <vtkStaticPointLocator.h>

#include "spatial/input.h"
#include "vtk_meshes.h"

namespace compare {
namespace {

vtkSmartPointer<vtkPolyData> only_points(const mesh& m)
{
    auto data = vtkSmartPointer<vtkPolyData>::New();
    data->SetPoints(vtk_points(m.pos));
    return data;
}

template <class Locator>
vtkSmartPointer<Locator> locator_over(const mesh& m)
{
    auto locator = vtkSmartPointer<Locator>::New();
    locator->SetDataSet(only_points(m));
    locator->BuildLocator();
    return locator;
}

template <class Locator>
void build(const spatial_input& in, lap& l)
{
    const auto data = only_points(in);
    vtkNew<Locator> locator;
    locator->SetDataSet(data);
    l.timed([&] { locator->BuildLocator(); });
    l.answer(sum_of_distances(in, probes, [&](std::uint64_t i) {
        return squared_distance(in, i, std::uint64_t(locator->FindClosestPoint(&in.places(0, i))));
    }));
}

template <class Locator>
void nearest(const spatial_input& in, lap& l)
{
    const auto& locator = prepared<vtkSmartPointer<Locator>>(in, locator_over<Locator>);
    std::vector<vtkIdType> found(in.places.cols);
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i) found[i] = locator->FindClosestPoint(&in.places(0, i));
    });
    l.answer(sum_of_distances(in, in.places.cols,
                              [&](std::uint64_t i) { return squared_distance(in, i, std::uint64_t(found[i])); }));
}

void boxes(const spatial_input& in, lap& l)
{
    const auto& tree = prepared<vtkSmartPointer<vtkKdTree>>(in, [](const mesh& m) {
        auto t = vtkSmartPointer<vtkKdTree>::New();
        t->BuildLocatorFromPoints(vtk_points(m.pos));
        return t;
    });
    vtkNew<vtkIdTypeArray> found;
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i) {
            const auto P = in.place(i);
            const double h = in.half;
            double area[6]{P[0] - h, P[0] + h, P[1] - h, P[1] + h, P[2] - h, P[2] + h};
            tree->FindPointsInArea(area, found, false);
        }
    });
    double sum = 0.0;
    for (vtkIdType i = 0; i < found->GetNumberOfTuples(); ++i) sum += in.pos(0, std::uint64_t(found->GetValue(i)));
    l.answer({double(found->GetNumberOfTuples()), sum});
}

void weld(const spatial_input& in, lap& l)
{
    vtkNew<vtkStaticCleanPolyData> filter;
    filter->SetInputData(poly_data(in));
    filter->ToleranceIsAbsoluteOn();
    filter->SetAbsoluteTolerance(in.tolerance);
    filter->ConvertPolysToLinesOff();
    l.timed([&] { filter->Update(); });
    vtkPolyData* const out = filter->GetOutput();
    std::vector<std::uint64_t> first(std::size_t(out->GetNumberOfPoints()), ~std::uint64_t{0});
    fingerprint first_of_each;
    vtkNew<vtkIdList> nodes;
    for (vtkIdType e = 0; e < out->GetNumberOfPolys(); ++e) {
        out->GetPolys()->GetCellAtId(e, nodes);
        for (vtkIdType i = 0; i < 3; ++i) {
            auto& f = first[std::size_t(nodes->GetId(i))];
            f = std::min(f, std::uint64_t(3 * e + i));
            first_of_each.add(std::uint64_t(3 * e + i), f);
        }
    }
    l.answer({double(out->GetNumberOfPoints()), first_of_each.value()});
}

// Coordinates rounded to floats: now and then another point is the nearest, or on the other side of a wall.
const char* const holds_floats = "holds the points in single precision";
constexpr double coarse = 1e-5;

const bool entered = enter<spatial_input>({
    {"detector build", "VTK k-d tree", "vtkKdTreePointLocator::BuildLocator", holds_floats,
     build<vtkKdTreePointLocator>, coarse},
    {"detector build", "VTK bins", "vtkStaticPointLocator::BuildLocator", "equal cells, no tree",
     build<vtkStaticPointLocator>},
    {"nearest", "VTK k-d tree", "vtkKdTreePointLocator::FindClosestPoint", holds_floats, nearest<vtkKdTreePointLocator>,
     coarse},
    {"nearest", "VTK bins", "vtkStaticPointLocator::FindClosestPoint", "equal cells, no tree",
     nearest<vtkStaticPointLocator>},
    {"boxes", "VTK k-d tree", "vtkKdTree::FindPointsInArea", holds_floats, boxes, coarse},
    {"weld", "VTK", "vtkStaticCleanPolyData with an absolute tolerance", "not closest first; a new point list", weld},
});

}  // namespace
}  // namespace compare
