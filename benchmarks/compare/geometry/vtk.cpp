#include <vtkExtractGeometry.h>
#include <vtkMath.h>
#include <vtkPlane.h>
#include <vtkTransform.h>

#include "geometry/input.h"
#include "vtk_meshes.h"

namespace compare {
namespace {

void extract(const geometry_input& m, lap& l)
{
    vtkNew<vtkPlane> plane;
    plane->SetOrigin(m.C[0], m.C[1], m.C[2]);
    plane->SetNormal(-m.N[0], -m.N[1], -m.N[2]);
    vtkNew<vtkExtractGeometry> filter;
    filter->SetInputData(unstructured_grid(m));
    filter->SetImplicitFunction(plane);
    l.timed([&] { filter->Update(); });
    l.answer({double(filter->GetOutput()->GetNumberOfCells())});
}

void box(const geometry_input& m, lap& l)
{
    const auto points = vtk_points(m.pos);
    l.timed([&] { points->ComputeBounds(); });
    const double* const b = points->GetBounds();
    l.answer({b[0], b[2], b[4], b[1], b[3], b[5]});
}

void rotated(const geometry_input& m, lap& l)
{
    const auto points = vtk_points(m.pos);
    const auto out = vtk_points(m.pos);
    l.timed([&] {
        vtkNew<vtkTransform> turn;
        turn->Translate(m.C[0], m.C[1], m.C[2]);
        turn->RotateZ(vtkMath::DegreesFromRadians(m.angle));
        turn->Translate(-m.C[0], -m.C[1], -m.C[2]);
        out->Reset();
        turn->TransformPoints(points, out);
    });
    l.answer(sums(static_cast<vtkDoubleArray*>(out->GetData())->GetPointer(0), m.pos.cols));
}

const bool entered = enter<geometry_input>({
    {"clip", "VTK", "vtkExtractGeometry with a vtkPlane", "a new point list too", extract},
    {"bounding box", "VTK", "vtkPoints::ComputeBounds", "", box},
    {"rotate", "VTK", "vtkTransform::TransformPoints", "into another list of points", rotated},
});

}  // namespace
}  // namespace compare
