#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <unistd.h>

#include "arrays.h"
#include "module.h"

namespace binding {
namespace {

// A name as the C runtime takes it.
std::string file_name(call& c, py::handle value, const char* name)
{
    PyObject* bytes = nullptr;
    if (PyUnicode_FSConverter(value.ptr(), &bytes) == 0) {
        PyErr_Clear();
        c.refuse(name, "is no file name");
    }
    return py::reinterpret_steal<py::bytes>(bytes).cast<std::string>();
}

struct close_stream {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

// A stream of its own on the descriptor of an open Python file, behind what Python has written to it.
std::unique_ptr<std::FILE, close_stream> stream_of(call& c, py::handle file)
{
    int descriptor = -1;
    try {
        file.attr("flush")();
        descriptor = file.attr("fileno")().cast<int>();
    } catch (py::error_already_set&) {
        c.refuse("file", "is no open file of the system");
    } catch (py::cast_error&) {
        c.refuse("file", "is no open file of the system");
    }
    const int own = dup(descriptor);
    std::unique_ptr<std::FILE, close_stream> stream(own >= 0 ? fdopen(own, "wb") : nullptr);
    if (stream == nullptr) c.refuse("file", std::string("cannot be written: ") + std::strerror(errno));
    return stream;
}

index count_of(const call& c, py::handle cells)
{
    const index count = c.number(cells, "cell_count");
    if (count == zeb::NONE_INDEX) c.refuse("cell_count", "is negative");
    return count;
}

py::tuple vtk_convert(py::handle connect, py::handle type, py::handle count, py::handle cells, py::handle cell_types)
{
    call c("vtk_convert");
    index cell_count = count_of(c, count);
    const auto elements = c.matrix<index>(connect, "connect");
    const auto kind = c.type(type, "type");
    auto stream = c.optional_vector<index>(cells, "cells");
    auto codes = c.optional_vector<index>(cell_types, "cell_types");
    c.checked([&] { return lib::vtk_convert(elements, kind, cell_count, stream, codes); });
    return py::make_tuple(cell_count, handed_over(std::move(stream)), handed_over(std::move(codes)));
}

void vtk_output_cells(py::handle file, bool is_name, py::handle pos, py::handle count, py::handle cells,
                      py::handle cell_types)
{
    call c("vtk_output/cells");
    const index cell_count = count_of(c, count);
    const auto points = c.matrix<double>(pos, "pos");
    const auto list = c.vector<index>(cells, "cells");
    const auto codes = c.vector<index>(cell_types, "cell_types");
    std::unique_ptr<std::FILE, close_stream> stream;
    if (is_name) {
        const std::string name = file_name(c, file, "file");
        stream.reset(std::fopen(name.c_str(), "wb"));
        if (stream == nullptr) throw_refusal("vtk_output/cells", -1);
    } else {
        stream = stream_of(c, file);
    }
    const int code = c.run([&] {
        const int result = lib::vtk_output(stream.get(), points, cell_count, list, codes);
        const bool written = std::fclose(stream.release()) == 0;
        return result == 0 && !written ? -1 : result;
    });
    c.translate(code);
}

// The forms of a whole mesh, over one matrix or a range.
template <class One, class Range>
int write_mesh(call& c, connectivities& elements, py::handle type, One one, Range range)
{
    if (elements.single) {
        const auto kind = c.type(type, "type");
        return c.run([&] { return one(*elements.begin(), kind); });
    }
    const auto kinds = c.types(type, "type");
    return c.run([&] { return range(elements.begin(), elements.end(), kinds); });
}

void vtk_output(py::handle file, py::handle pos, py::handle connect, py::handle type)
{
    call c("vtk_output");
    const std::string name = file_name(c, file, "file");
    const auto points = c.matrix<double>(pos, "pos");
    auto elements = c.connectivity(connect, "connect");
    const auto write = [&](auto&&... mesh) { return lib::vtk_output(name.c_str(), points, mesh...); };
    const int code = write_mesh(c, elements, type, write, write);
    if (code == -2 && points.rows != 2 && points.rows != 3) c.becomes("vtk_output/pos");
    c.translate(code);
}

void medit_output(py::handle filename, py::handle pos, py::handle connect, py::handle type, py::handle refs)
{
    call c("medit_output");
    const std::string name = file_name(c, filename, "filename");
    const auto points = c.matrix<double>(pos, "pos");
    if (!refs.is_none()) {
        c.becomes("medit_output/refs");
        const auto elements = c.matrix<index>(connect, "connect");
        const auto kind = c.type(type, "type");
        const auto references = c.vector<index>(refs, "refs");
        index largest = 0;
        for (const index r : references) largest = std::max(largest, r == zeb::NONE_INDEX ? 0 : r);
        require_room((std::uint64_t{largest} + 1) * sizeof(std::uint64_t));
        c.checked([&] { return lib::medit_output(name.c_str(), points, elements, kind, references); });
        return;
    }
    auto elements = c.connectivity(connect, "connect");
    const auto write = [&](auto&&... mesh) { return lib::medit_output(name.c_str(), points, mesh...); };
    c.translate(write_mesh(c, elements, type, write, write));
}

void medit_tensor(py::handle filename, py::handle M)
{
    call c("medit_tensor");
    const std::string name = file_name(c, filename, "filename");
    const auto tensors = c.matrix<float>(M, "M");
    c.checked([&] { return lib::medit_tensor(name.c_str(), tensors); });
}

void ensight_output(py::handle filename, py::handle pos, py::handle connect, py::handle type)
{
    call c("ensight_output");
    const std::string name = file_name(c, filename, "filename");
    const auto points = c.matrix<double>(pos, "pos");
    auto elements = c.connectivity(connect, "connect");
    const auto write = [&](auto&&... mesh) { return lib::ensight_output(name.c_str(), points, mesh...); };
    c.translate(write_mesh(c, elements, type, write, write));
}

void stl_output(py::handle filename, py::handle pos, py::handle connect, bool ascii)
{
    call c("STL_output");
    const std::string name = file_name(c, filename, "filename");
    const auto points = c.matrix<double>(pos, "pos");
    const auto triangles = c.matrix<index>(connect, "connect");
    c.checked([&] { return lib::STL_output(name.c_str(), points, triangles, ascii); });
}

py::tuple stl_input(py::handle filename, bool ascii)
{
    call c("STL_input");
    const std::string name = file_name(c, filename, "filename");
    dense2D<double> points;
    dense2D<index> triangles;
    c.checked([&] { return lib::STL_input(name.c_str(), points, triangles, ascii); });
    return py::make_tuple(handed_over(std::move(points), 3), handed_over(std::move(triangles), 3));
}

void wavefront_obj_output(py::handle filename, py::handle pos, py::handle normals, py::handle uvs, py::handle trias,
                          py::handle quads)
{
    call c("WavefrontOBJ_output");
    const std::string name = file_name(c, filename, "filename");
    const auto points = c.matrix<double>(pos, "pos");
    const auto normal = c.optional_matrix<double>(normals, "normals");
    const auto uv = c.optional_matrix<double>(uvs, "uvs");
    const auto tria = c.optional_matrix<index>(trias, "tria_connect");
    const auto quad = c.optional_matrix<index>(quads, "quad_connect");
    c.checked([&] { return lib::WavefrontOBJ_output(name.c_str(), points, normal, uv, tria, quad); });
}

py::tuple wavefront_obj_input(py::handle filename)
{
    call c("WavefrontOBJ_input");
    const std::string name = file_name(c, filename, "filename");
    dense2D<double> points, normals, uvs;
    dense2D<index> trias, quads;
    c.checked([&] { return lib::WavefrontOBJ_input(name.c_str(), points, normals, uvs, trias, quads); });
    return py::make_tuple(handed_over(std::move(points), 3), handed_over(std::move(normals), 3),
                          handed_over(std::move(uvs), 2), handed_over(std::move(trias), 3),
                          handed_over(std::move(quads), 4));
}

}  // namespace

void define_io(py::module_& m)
{
    m.def("vtk_convert", &vtk_convert);
    m.def("vtk_output", &vtk_output);
    m.def("vtk_output_cells", &vtk_output_cells);
    m.def("medit_output", &medit_output);
    m.def("medit_tensor", &medit_tensor);
    m.def("ensight_output", &ensight_output);
    m.def("STL_output", &stl_output);
    m.def("STL_input", &stl_input);
    m.def("WavefrontOBJ_output", &wavefront_obj_output);
    m.def("WavefrontOBJ_input", &wavefront_obj_input);
}

}  // namespace binding
