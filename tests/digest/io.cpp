#include "digest/corpus.h"
#include "digest/fingerprint.h"

namespace digest {

namespace {

// Runs write(file name, mesh) for every mesh and takes the codes and the bytes.
template <class Write>
void run_writer(fingerprint& f, Write write)
{
    for (const auto& m : meshes()) {
        const test::temporary_file file;
        f.add(write(file.name(), m)).add(file);
    }
}

// The same for every matrix under its type.
template <class Write>
void run_part_writer(fingerprint& f, Write write)
{
    for (const auto& m : meshes())
        for (std::size_t k = 0; k < m.parts.size(); ++k) {
            const test::temporary_file file;
            f.add(write(file.name(), m, k, static_cast<element_type>(m.types[k]))).add(file);
        }
}

const std::vector<int> written{EL_EDGE2, EL_EDGE3,  EL_FACE_MIX, EL_TRIA3,    EL_QUAD4,  EL_TRIA6,
                               EL_QUAD8, EL_QUAD9,  EL_TETRA4,   EL_TETRA10,  EL_WEDGE6, EL_WEDGE18,
                               EL_HEXA8, EL_HEXA20, EL_HEXA27,   EL_SOLID_MIX};

void vtk()
{
    operation("vtk_convert", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            unsigned count = 0;
            dense1D<unsigned> cells, types;
            for (std::size_t k = 0; k < m.parts.size(); ++k)
                f.add(vtk_convert(m.parts[k], static_cast<element_type>(m.types[k]), count, cells, types));
            f.add(count).add(cells).add(types);
        }
    });
    operation("vtk_output(stream)", [](fingerprint& f) {
        run_writer(f, [](const char* name, const mesh& m) {
            unsigned count = 0;
            dense1D<unsigned> cells, types;
            for (std::size_t k = 0; k < m.parts.size(); ++k)
                vtk_convert(m.parts[k], static_cast<element_type>(m.types[k]), count, cells, types);
            FILE* stream = std::fopen(name, "w");
            const int code = vtk_output(stream, m.pos, count, cells, types);
            std::fclose(stream);
            return code;
        });
    });
    operation("vtk_output(range)", [](fingerprint& f) {
        run_writer(f, [](const char* name, const mesh& whole) {
            const mesh m = only(whole, written);
            return vtk_output(name, m.pos, m.first(), m.last(), m.type_list());
        });
    });
    operation("vtk_output", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return vtk_output(name, m.pos, m.parts[k], type);
        });
    });
    operation("vtk_output(matrices)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return vtk_output(name, m.pos, m.parts[0], m.parts[k], static_cast<element_type>(m.types[0]), type);
        });
    });
}

void medit()
{
    operation("medit_output(range)", [](fingerprint& f) {
        run_writer(f, [](const char* name, const mesh& m) {
            return medit_output(name, m.pos, m.first(), m.last(), m.type_list());
        });
    });
    operation("medit_output", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return medit_output(name, m.pos, m.parts[k], type);
        });
    });
    operation("medit_output(matrices)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return medit_output(name, m.pos, m.parts[0], m.parts[k], static_cast<element_type>(m.types[0]), type);
        });
    });
    operation("medit_output(references)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            dense1D<unsigned> refs;
            for (unsigned j = 0; j < m.parts[k].cols; ++j) refs.push_back(j * j % 5);
            return medit_output(name, m.pos, m.parts[k], type, refs);
        });
    });
    operation("medit_tensor", [](fingerprint& f) {
        test::dice random(41);
        for (const std::uint64_t rows : {2, 3, 6}) {
            dense2D<float> field(rows, 80);
            for (unsigned j = 0; j < 80; ++j)
                for (unsigned i = 0; i < rows; ++i) field(i, j) = static_cast<float>(signed_unit(random));
            const test::temporary_file file;
            f.add(medit_tensor(file.name(), field)).add(file);
        }
    });
}

void ensight()
{
    operation("ensight_output(range)", [](fingerprint& f) {
        run_writer(f, [](const char* name, const mesh& m) {
            return ensight_output(name, m.pos, m.first(), m.last(), m.type_list());
        });
    });
    operation("ensight_output", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return ensight_output(name, m.pos, m.parts[k], type);
        });
    });
    operation("ensight_output(matrices)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type type) {
            return ensight_output(name, m.pos, m.parts[0], m.parts[k], static_cast<element_type>(m.types[0]), type);
        });
    });
}

void run_stl_input(fingerprint& f, bool ascii)
{
    for (const auto& m : meshes())
        for (std::size_t k = 0; k < m.parts.size(); ++k) {
            const test::temporary_file file;
            STL_output(file.name(), m.pos, m.parts[k], ascii);
            const std::string whole = file.bytes();
            for (const std::size_t kept : {whole.size(), whole.size() / 2}) {
                file.write(whole.substr(0, kept));
                dense2D<double> pos(1, 1, 0.0);
                dense2D<unsigned> connect(1, 1, 0u);
                f.add(STL_input(file.name(), pos, connect, ascii)).add(pos).add(connect);
            }
        }
}

void surfaces()
{
    operation("STL_output(text)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type) {
            return STL_output(name, m.pos, m.parts[k], true);
        });
    });
    operation("STL_output(binary)", [](fingerprint& f) {
        run_part_writer(f, [](const char* name, const mesh& m, std::size_t k, element_type) {
            return STL_output(name, m.pos, m.parts[k], false);
        });
    });
    operation("STL_input(text)", [](fingerprint& f) { run_stl_input(f, true); });
    operation("STL_input(binary)", [](fingerprint& f) { run_stl_input(f, false); });
}

int write_obj(const char* name, const mesh& m, std::size_t k, bool attributes)
{
    test::dice random(42);
    const auto normals = random_points(random, 3, m.pos.cols, spread::plain);
    const auto uvs = random_points(random, 2, m.pos.cols, spread::coarse);
    const dense2D<double> none;
    const dense2D<unsigned> no_faces;
    const bool quads = m.types[k] == EL_QUAD4;
    return WavefrontOBJ_output(name, m.pos, attributes ? normals : none, attributes ? uvs : none,
                               quads ? no_faces : m.parts[k], quads ? m.parts[k] : no_faces);
}

// Faces whose corners stand apart, as the reader wants them, under coordinates and attributes that the writer wrote.
void run_obj_input(fingerprint& f)
{
    for (const auto& m : meshes()) {
        if (m.parts.empty()) continue;
        const test::temporary_file file;
        write_obj(file.name(), mesh{m.pos, {dense2D<unsigned>()}, {EL_TRIA3}}, 0, true);
        std::string text = file.bytes();
        const auto& part = m.parts.back();
        for (std::uint64_t e = 0; e < part.cols; ++e) {
            text += "f";
            for (std::uint64_t i = 0; i < 3 + e % 3; ++i) {
                const std::string node = std::to_string(part(i, e) + 1);
                text += " " + node + (e % 2 == 0 ? "" : "/" + node + "/" + node);
            }
            text += e % 4 == 0 ? "\r\n" : "\n";
        }
        file.write(text);
        dense2D<double> pos, normals, uvs;
        dense2D<unsigned> trias, quads;
        f.add(WavefrontOBJ_input(file.name(), pos, normals, uvs, trias, quads));
        f.add(pos).add(normals).add(uvs).add(trias).add(quads);
    }
}

}  // namespace

void io()
{
    vtk();
    medit();
    ensight();
    surfaces();
    operation("WavefrontOBJ_output", [](fingerprint& f) {
        for (const bool attributes : {false, true})
            run_part_writer(f, [&](const char* name, const mesh& m, std::size_t k, element_type) {
                return write_obj(name, m, k, attributes);
            });
    });
    operation("WavefrontOBJ_input", run_obj_input);
}

}  // namespace digest
