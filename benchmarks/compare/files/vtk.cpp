#include <vtkOBJReader.h>
#include <vtkOBJWriter.h>
#include <vtkSTLReader.h>
#include <vtkSTLWriter.h>
#include <vtkUnstructuredGridWriter.h>

#include "files/input.h"
#include "vtk_meshes.h"

namespace compare {
namespace {

template <class Writer>
void write(const files_input& m, lap& l, const char* suffix, contents look, vtkDataObject* data, int file_type)
{
    write_and_look(m, l, suffix, look, [&](const char* name) {
        vtkNew<Writer> writer;
        writer->SetInputData(data);
        writer->SetFileName(name);
        if constexpr (!std::is_same_v<Writer, vtkOBJWriter>) writer->SetFileType(file_type);
        writer->Write();
    });
}

void stl_text(const files_input& m, lap& l)
{
    write<vtkSTLWriter>(m, l, ".stl", in_stl_text, poly_data(m), VTK_ASCII);
}
void stl_binary(const files_input& m, lap& l)
{
    write<vtkSTLWriter>(m, l, ".stl", in_stl_binary, poly_data(m), VTK_BINARY);
}
void obj(const files_input& m, lap& l)
{
    write<vtkOBJWriter>(m, l, ".obj", in_obj, poly_data(m), VTK_ASCII);
}
void legacy(const files_input& m, lap& l)
{
    write<vtkUnstructuredGridWriter>(m, l, ".vtk", in_vtk, unstructured_grid(m), VTK_ASCII);
}

template <class Reader>
void read(const files_input& m, lap& l)
{
    vtkNew<Reader> reader;
    reader->SetFileName(m.file.c_str());
    l.timed([&] { reader->Update(); });
    vtkPolyData* const data = reader->GetOutput();
    double sum = 0.0;
    for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
        const double* const P = data->GetPoint(i);
        sum += P[0] + P[1] + P[2];
    }
    l.answer({double(data->GetNumberOfPolys()), double(data->GetNumberOfPoints()), sum});
}

const bool entered = enter<files_input>({
    {"write STL text", "VTK", "vtkSTLWriter", "", stl_text},
    {"write STL binary", "VTK", "vtkSTLWriter", "", stl_binary},
    {"write OBJ", "VTK", "vtkOBJWriter", "", obj},
    {"write VTK text", "VTK", "vtkUnstructuredGridWriter", "format 5.1: offsets and connectivity", legacy},
    {"read STL text, weld", "VTK", "vtkSTLReader", "welds equal positions only", read<vtkSTLReader>},
    {"read STL binary, weld", "VTK", "vtkSTLReader", "welds equal positions only", read<vtkSTLReader>},
    {"read OBJ", "VTK", "vtkOBJReader", "", read<vtkOBJReader>},
});

}  // namespace
}  // namespace compare
