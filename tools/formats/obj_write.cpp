#include "formats/obj_write.h"

#include "formats/capability.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

const char* letter_of(zeb::element_type type)
{
    switch (type) {
        case zeb::EL_NODE:
            return "p";
        case zeb::EL_EDGE2:
            return "l";
        case zeb::EL_TRIA3:
        case zeb::EL_QUAD4:
            return "f";
        default:
            return nullptr;
    }
}

bool obj_holds(zeb::element_type type)
{
    return letter_of(type) != nullptr;
}

class obj_writer {
public:
    obj_writer(const mesh& m, sink& to, const write_options& options)
        : mesh_(m), to_(to), blocks_(writable_blocks(m, "OBJ", obj_holds, options))
    {
        std::vector<std::string> left_out;
        for (const field& f : m.point_fields) {
            if (f.name == "normals" && f.components == 3 && normals_ == nullptr) {
                normals_ = &f;
            } else if (f.name == "uv" && f.components == 2 && uvs_ == nullptr) {
                uvs_ = &f;
            } else {
                left_out.push_back(f.name);
            }
        }
        for (const field& f : m.cell_fields) left_out.push_back(f.name);
        if (!left_out.empty()) options.note("OBJ holds no fields: left out " + joined(left_out));
    }

    void run()
    {
        to_.text("# written by tessolv\n");
        const coordinates& pos = mesh_.pos;
        for (std::uint64_t j = 0; j < pos.cols; ++j) {
            to_.put('v');
            for (std::uint64_t i = 0; i < 3; ++i) {
                to_.put(' ');
                to_.real(i < pos.rows ? pos(i, j) : 0.0);
            }
            to_.put('\n');
        }
        if (uvs_ != nullptr) write_values("vt", *uvs_);
        if (normals_ != nullptr) write_values("vn", *normals_);
        for (const writable_block& b : blocks_) write_block(b);
    }

private:
    void write_values(const char* word, const field& f)
    {
        for (std::size_t i = 0; i < f.values.size(); ++i) {
            if (i % f.components == 0) to_.text(word);
            to_.put(' ');
            to_.real(f.values[i]);
            if ((i + 1) % f.components == 0) to_.put('\n');
        }
    }

    void write_group(std::int32_t group, int dimension)
    {
        if (group == group_) return;
        group_ = group;
        const group_name* named = find_group_name(mesh_, dimension, group);
        std::string name = named != nullptr && !named->name.empty() ? named->name : "group_" + std::to_string(group);
        for (char& c : name)
            if (c == '\n' || c == '\r' || c == '\\') c = '_';
        to_.text("g " + name + '\n');
    }

    void write_block(const writable_block& b)
    {
        const std::string_view letter = letter_of(b.type);
        const int dimension = info_of(b.type).dimension;
        const unsigned int size = zeb::NODES_PER_ELEMENT[b.type];
        for (std::uint64_t e = 0; e < b.size(); ++e) {
            write_group(b.block->group(e), dimension);
            to_.text(letter);
            for (unsigned int k = 0; k < size; ++k) write_corner(std::uint64_t{b.nodes(e)[k]} + 1, letter == "f");
            to_.put('\n');
        }
    }

    void write_corner(std::uint64_t number, bool of_face)
    {
        to_.put(' ');
        to_.integer(number);
        if (!of_face || (uvs_ == nullptr && normals_ == nullptr)) return;
        to_.put('/');
        if (uvs_ != nullptr) to_.integer(number);
        if (normals_ == nullptr) return;
        to_.put('/');
        to_.integer(number);
    }

    const mesh& mesh_;
    sink& to_;
    std::vector<writable_block> blocks_;
    const field* normals_ = nullptr;
    const field* uvs_ = nullptr;
    std::int32_t group_ = 0;
};

}  // namespace

void write_obj(const mesh& m, sink& to, const write_options& options)
{
    const std::optional<mesh> rest = without_lost_nodes(m, obj_holds, options);
    obj_writer(rest ? *rest : m, to, options).run();
}

}  // namespace tool
