#ifndef TESSOLV_BENCHMARKS_COMPARE_VTK_MESHES_H
#define TESSOLV_BENCHMARKS_COMPARE_VTK_MESHES_H

#include <vtkCellArray.h>
#include <vtkDoubleArray.h>
#include <vtkIdList.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSMPTools.h>
#include <vtkSmartPointer.h>
#include <vtkUnstructuredGrid.h>

#include "meshes.h"

// Meshes as VTK holds them.
namespace compare {

// One thread, as for everybody.
inline const bool vtk_is_sequential = vtkSMPTools::SetBackend("Sequential");

inline vtkSmartPointer<vtkPoints> vtk_points(const dense2D<double>& pos)
{
    vtkNew<vtkDoubleArray> values;
    values->SetNumberOfComponents(3);
    values->SetNumberOfTuples(static_cast<vtkIdType>(pos.cols));
    double* p = values->GetPointer(0);
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) *p++ = i < pos.rows ? pos(i, j) : 0.0;
    auto points = vtkSmartPointer<vtkPoints>::New();
    points->SetData(values);
    return points;
}

inline vtkSmartPointer<vtkCellArray> vtk_cells(const dense2D<unsigned int>& connect)
{
    vtkNew<vtkIdTypeArray> nodes;
    nodes->SetNumberOfValues(static_cast<vtkIdType>(connect.rows * connect.cols));
    std::copy_n(entries(connect), connect.rows * connect.cols, nodes->GetPointer(0));
    auto cells = vtkSmartPointer<vtkCellArray>::New();
    cells->SetData(static_cast<vtkIdType>(connect.rows), nodes);
    return cells;
}

inline int vtk_kind(element_type type)
{
    return type == EL_TRIA3    ? VTK_TRIANGLE
           : type == EL_QUAD4  ? VTK_QUAD
           : type == EL_TETRA4 ? VTK_TETRA
           : type == EL_WEDGE6 ? VTK_WEDGE
                               : VTK_HEXAHEDRON;
}

inline vtkSmartPointer<vtkUnstructuredGrid> unstructured_grid(const mesh& m)
{
    auto grid = vtkSmartPointer<vtkUnstructuredGrid>::New();
    grid->SetPoints(vtk_points(m.pos));
    grid->SetCells(vtk_kind(m.type), vtk_cells(m.connect));
    return grid;
}

inline vtkSmartPointer<vtkPolyData> poly_data(const mesh& m)
{
    auto data = vtkSmartPointer<vtkPolyData>::New();
    data->SetPoints(vtk_points(m.pos));
    data->SetPolys(vtk_cells(m.connect));
    return data;
}

}  // namespace compare

#endif
