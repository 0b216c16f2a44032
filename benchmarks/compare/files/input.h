#ifndef TESSOLV_BENCHMARKS_COMPARE_FILES_INPUT_H
#define TESSOLV_BENCHMARKS_COMPARE_FILES_INPUT_H

#include <filesystem>
#include <string>

#include "meshes.h"

namespace compare {

// A folder that goes with the object.
struct folder {
    std::string path;
    explicit folder(const std::string& name)
        : path((std::filesystem::temp_directory_path() / (name + std::to_string(next_serial()))).string())
    {
        std::filesystem::create_directories(path);
    }
    ~folder() { std::filesystem::remove_all(path); }
    folder(const folder&) = delete;
    folder& operator=(const folder&) = delete;
};

// A mesh and, for readers and converters, the file that holds it.
struct files_input : mesh {
    std::shared_ptr<folder> place = std::make_shared<folder>("tessolv_compare_");
    std::string file = {};

    std::string to(const char* name) const { return place->path + "/" + name; }
};

// A new file for each run, removed afterwards.
struct new_file {
    std::string name;
    new_file(const files_input& in, const char* suffix) : name(in.to("out") + suffix) {}
    ~new_file() { std::filesystem::remove(name); }
    new_file(const new_file&) = delete;
    new_file& operator=(const new_file&) = delete;
    const char* c_str() const { return name.c_str(); }
};

// What a file holds, read as plainly as can be: numbers of things and the sum of the coordinates.
std::vector<double> in_stl_text(const std::string& name);
std::vector<double> in_stl_binary(const std::string& name);
std::vector<double> in_obj(const std::string& name);
std::vector<double> in_vtk(const std::string& name);
std::vector<double> in_medit(const std::string& name);

using contents = std::vector<double> (*)(const std::string&);

template <class Write>
void write_and_look(const files_input& in, lap& l, const char* suffix, contents look, Write write)
{
    const new_file out(in, suffix);
    l.timed([&] { write(out.c_str()); });
    if (l.asks()) l.answer(look(out.name));
}

}  // namespace compare

#endif
