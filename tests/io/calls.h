#ifndef TESTS_IO_CALLS_H
#define TESTS_IO_CALLS_H

#include <cstdio>

#include "io/stl_model.h"
#include "io/wavefront_obj_model.h"
#include "support/stored_call.h"
#include "support/temporary_file.h"

namespace test {

namespace file_arguments {

inline const auto pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
inline const auto faces = columns({{0, 1, 2, 3}, {0, 1, 2, N}});
inline const auto tetras = columns({{0, 1, 2, 4}});
inline const auto trias = columns({{0, 2, 1}, {1, 2, 3}});

// A call that writes a file: its bytes belong to the outcome.
template <class Write>
void write_file(setting& s, Write write)
{
    const temporary_file file;
    s.run([&] { return write(file.name()); });
    s.note(file.bytes());
}

// The three forms of a writer of meshes.
template <class Writer>
void write_range(setting& s, Writer writer)
{
    const auto& coordinates = s.input(pos);
    const auto* first = s.input_range<unsigned>({faces, tetras});
    const auto& kinds = s.input(types({zeb::EL_FACE_MIX, zeb::EL_TETRA4}));
    write_file(s, [&](const char* name) { return writer(name, coordinates, first, first + 2, kinds); });
}

template <class Writer>
void write_two(setting& s, Writer writer)
{
    const auto& coordinates = s.input(pos);
    const auto& first = s.input(faces);
    const auto& second = s.input(tetras);
    write_file(s, [&](const char* name) {
        return writer(name, coordinates, first, second, zeb::EL_FACE_MIX, zeb::EL_TETRA4);
    });
}

template <class Writer>
void write_one(setting& s, Writer writer)
{
    const auto& coordinates = s.input(pos);
    const auto& connect = s.input(tetras);
    write_file(s, [&](const char* name) { return writer(name, coordinates, connect, zeb::EL_TETRA4); });
}

inline void write_stl(setting& s, bool ascii)
{
    const auto& coordinates = s.input(pos);
    const auto& connect = s.input(trias);
    write_file(s, [&](const char* name) { return zeb::tessolv::STL_output(name, coordinates, connect, ascii); });
}

inline void read_stl(setting& s, bool ascii)
{
    const temporary_file file(stl_bytes(cube_facets(2), ascii));
    auto& coordinates = s.emptied(points({{1, 2}, {3, 4}}));
    auto& connect = s.emptied(filled(3, 40, 7u));
    s.run([&] { return zeb::tessolv::STL_input(file.name(), coordinates, connect, ascii); });
}

constexpr auto vtk = [](const auto&... arguments) { return zeb::tessolv::vtk_output(arguments...); };
constexpr auto medit = [](const auto&... arguments) { return zeb::tessolv::medit_output(arguments...); };
constexpr auto ensight = [](const auto&... arguments) { return zeb::tessolv::ensight_output(arguments...); };

}  // namespace file_arguments

// Every operation on files.
inline const stored_call io_calls[] = {
    {"vtk_convert",
     [](setting& s) {
         const auto& connect = s.input(columns({{1, 2, 3, 4, 5, 6}, {6, 5, 4, 3, 2, 1}}));
         auto& cells = s.kept(indices({1, 8}));
         auto& kinds = s.kept(indices({1}));
         unsigned count = 1;
         s.run([&] { return zeb::tessolv::vtk_convert(connect, zeb::EL_TRIA6, count, cells, kinds); });
         s.note(count);
     }},
    {"vtk_output_to_a_stream",
     [](setting& s) {
         const auto& pos = s.input(file_arguments::pos);
         const auto& cells = s.input(indices({2, 0, 1, 1, 4}));
         const auto& kinds = s.input(indices({3, 1}));
         const temporary_file file;
         std::FILE* stream = std::fopen(file.name(), "w");
         s.run([&] { return zeb::tessolv::vtk_output(stream, pos, 2, cells, kinds); });
         std::fclose(stream);
         s.note(file.bytes());
     }},
    {"vtk_output_of_a_range", [](setting& s) { file_arguments::write_range(s, file_arguments::vtk); }},
    {"vtk_output_of_two", [](setting& s) { file_arguments::write_two(s, file_arguments::vtk); }},
    {"vtk_output_of_one", [](setting& s) { file_arguments::write_one(s, file_arguments::vtk); }},
    {"medit_output_of_a_range", [](setting& s) { file_arguments::write_range(s, file_arguments::medit); }},
    {"medit_output_of_two", [](setting& s) { file_arguments::write_two(s, file_arguments::medit); }},
    {"medit_output_of_one", [](setting& s) { file_arguments::write_one(s, file_arguments::medit); }},
    {"medit_output_by_reference",
     [](setting& s) {
         const auto& pos = s.input(file_arguments::pos);
         const auto& connect = s.input(file_arguments::faces);
         const auto& refs = s.input(indices({5, 2}));
         file_arguments::write_file(s, [&](const char* name) {
             const int code = zeb::tessolv::medit_output(name, pos, connect, zeb::EL_FACE_MIX, refs);
             return code == -6 ? -199 : code;  // a code of its own for one of its requests
         });
     }},
    {"medit_tensor",
     [](setting& s) {
         const auto& M = s.input(matrix_of<float>({{1, 0, 4}, {-0.25f, 0, 0.01f}}));
         file_arguments::write_file(s, [&](const char* name) { return zeb::tessolv::medit_tensor(name, M); });
     }},
    {"ensight_output_of_a_range", [](setting& s) { file_arguments::write_range(s, file_arguments::ensight); }},
    {"ensight_output_of_two", [](setting& s) { file_arguments::write_two(s, file_arguments::ensight); }},
    {"ensight_output_of_one", [](setting& s) { file_arguments::write_one(s, file_arguments::ensight); }},
    {"STL_output_of_text", [](setting& s) { file_arguments::write_stl(s, true); }},
    {"STL_output_of_binary", [](setting& s) { file_arguments::write_stl(s, false); }},
    {"STL_input_of_text", [](setting& s) { file_arguments::read_stl(s, true); }},
    {"STL_input_of_binary", [](setting& s) { file_arguments::read_stl(s, false); }},
    {"WavefrontOBJ_output",
     [](setting& s) {
         const auto& pos = s.input(file_arguments::pos);
         const auto& uvs = s.input(points({{0, 1}, {2, 3}, {4, 5}, {6, 7}, {8, 9}}));
         const auto& trias = s.input(file_arguments::trias);
         const auto& quads = s.input(columns({{0, 1, 4, 3}}));
         file_arguments::write_file(
             s, [&](const char* name) { return zeb::tessolv::WavefrontOBJ_output(name, pos, pos, uvs, trias, quads); });
     }},
    {"WavefrontOBJ_input",
     [](setting& s) {
         const temporary_file file(every_form);
         auto& pos = s.replaced(points({{1, 2}, {3, 4}}));
         auto& normals = s.replaced(filled(3, 40, 7.0));
         auto& uvs = s.replaced(filled(1, 2, 7.0));
         auto& trias = s.replaced(columns({{1}}));
         auto& quads = s.replaced(filled(4, 40, 7u));
         s.run([&] { return zeb::tessolv::WavefrontOBJ_input(file.name(), pos, normals, uvs, trias, quads); }, -1);
     }},
};

}  // namespace test

#endif
