#include <vtkCellData.h>
#include <vtkConnectivityFilter.h>
#include <vtkDataSetSurfaceFilter.h>
#include <vtkExtractEdges.h>
#include <vtkGeometryFilter.h>

#include "topology/input.h"
#include "vtk_meshes.h"

namespace compare {
namespace {

void across_edges(const topology_input& m, lap& l)
{
    const auto data = poly_data(m);
    dense2D<unsigned int> found(3, m.connect.cols, NONE_INDEX);
    l.timed([&] {
        vtkNew<vtkIdList> others;
        data->BuildLinks();
        for (std::uint64_t e = 0; e < m.connect.cols; ++e)
            for (unsigned int k = 0; k < 3; ++k) {
                data->GetCellEdgeNeighbors(vtkIdType(e), m.connect((k + 1) % 3, e), m.connect((k + 2) % 3, e), others);
                if (others->GetNumberOfIds() == 1) found(k, e) = static_cast<unsigned int>(others->GetId(0));
            }
    });
    fingerprint sum;
    for (std::uint64_t e = 0; e < found.cols; ++e)
        for (unsigned int k = 0; k < 3; ++k)
            if (found(k, e) != NONE_INDEX) sum.add(e, found(k, e));
    l.answer({sum.count(), sum.value()});
}

void across_faces(const topology_input& m, lap& l)
{
    if (m.type == EL_TRIA3) return across_edges(m, l);
    if (double(m.connect.cols) * shrink > 2e6) return l.decline();  // half a minute a run
    const auto grid = unstructured_grid(m);
    const cell& faces = faces_of(m.type);
    dense2D<unsigned int> found(faces.size(), m.connect.cols, NONE_INDEX);
    l.timed([&] {
        vtkNew<vtkIdList> others;
        grid->BuildLinks();
        vtkIdType corners[4];
        for (std::uint64_t e = 0; e < m.connect.cols; ++e)
            for (std::size_t k = 0; k < faces.size(); ++k) {
                for (std::size_t i = 0; i < faces[k].size(); ++i) corners[i] = m.connect(faces[k][i], e);
                grid->GetCellNeighbors(vtkIdType(e), vtkIdType(faces[k].size()), corners, others);
                if (others->GetNumberOfIds() == 1) found(k, e) = static_cast<unsigned int>(others->GetId(0));
            }
    });
    fingerprint sum;
    for (std::uint64_t e = 0; e < found.cols; ++e)
        for (std::size_t k = 0; k < faces.size(); ++k)
            if (found(k, e) != NONE_INDEX) sum.add(e, found(k, e));
    l.answer({sum.count(), sum.value()});
}

template <class Filter>
void run_filter(Filter* filter, vtkDataSet* in, lap& l)
{
    filter->SetInputData(in);
    l.timed([&] { filter->Update(); });
}

void surface_filter(const topology_input& m, lap& l)
{
    vtkNew<vtkDataSetSurfaceFilter> filter;
    filter->DelegationOff();
    run_filter(filter.Get(), unstructured_grid(m), l);
    l.answer({double(filter->GetOutput()->GetNumberOfCells())});
}

void geometry_filter(const topology_input& m, lap& l)
{
    vtkNew<vtkGeometryFilter> filter;
    filter->MergingOff();
    run_filter(filter.Get(), unstructured_grid(m), l);
    l.answer({double(filter->GetOutput()->GetNumberOfCells())});
}

void links(const topology_input& m, lap& l)
{
    const auto grid = unstructured_grid(m);
    l.timed([&] { grid->BuildLinks(); });
    fingerprint sum;
    for (vtkIdType n = 0; n < grid->GetNumberOfPoints(); ++n) {
        vtkIdType count = 0;
        vtkIdType* cells = nullptr;
        grid->GetPointCells(n, count, cells);
        sum.add(std::uint64_t(n), std::uint64_t(*std::max_element(cells, cells + count)));
    }
    l.answer({sum.count(), sum.value()});
}

void extract_edges(const topology_input& m, lap& l)
{
    vtkNew<vtkExtractEdges> filter;
    run_filter(filter.Get(), unstructured_grid(m), l);
    l.answer({double(filter->GetOutput()->GetNumberOfLines())});
}

void connectivity(const topology_input& m, lap& l)
{
    vtkNew<vtkConnectivityFilter> filter;
    filter->SetExtractionModeToAllRegions();
    filter->ColorRegionsOn();
    run_filter(filter.Get(), unstructured_grid(m), l);
    std::vector<double> sizes(std::size_t(filter->GetNumberOfExtractedRegions()));
    vtkDataArray* const part_of = filter->GetOutput()->GetCellData()->GetArray("RegionId");
    for (vtkIdType e = 0; e < part_of->GetNumberOfTuples(); ++e) ++sizes[std::size_t(part_of->GetTuple1(e))];
    double squares = 0.0;
    for (const double n : sizes) squares += n * n;
    l.answer({double(sizes.size()), squares});
}

const bool entered = enter<topology_input>({
    {"neighbours", "VTK",
     "BuildLinks, then GetCellNeighbors for each face (vtkUnstructuredGrid) or GetCellEdgeNeighbors (vtkPolyData)", "",
     across_faces},
    {"neighbours and boundary", "VTK surface", "vtkDataSetSurfaceFilter, its own way",
     "no neighbours; a new point list", surface_filter},
    {"neighbours and boundary", "VTK geometry", "vtkGeometryFilter", "no neighbours; a new point list",
     geometry_filter},
    {"ancestors", "VTK", "vtkUnstructuredGrid::BuildLinks", "all elements of each node", links},
    {"edges", "VTK", "vtkExtractEdges", "a new point list too", extract_edges},
    {"connected parts", "VTK", "vtkConnectivityFilter, all regions",
     "through nodes; makes the links and copies the mesh", connectivity},
});

}  // namespace
}  // namespace compare
