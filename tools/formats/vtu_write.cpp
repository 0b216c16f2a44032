#include "formats/vtu_write.h"

#include <libdeflate.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>

#include "errors.h"
#include "formats/capability.h"
#include "formats/scalar_type.h"
#include "formats/vtk_cells.h"
#include "markup.h"

namespace tool {
namespace {

bool vtu_holds(zeb::element_type type)
{
    return vtk_code_of(type) != 0;
}

// XML has no place for control characters.
std::string name_in_xml(std::string name)
{
    for (char& c : name)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return escaped(name);
}

// Numbers of an array as text.
class text_array {
public:
    explicit text_array(sink& to) : to_(to) {}

    void add(double value) { separated(value); }
    void add(float value) { separated(value); }
    template <class Integer>
    void add(Integer value)
    {
        to_.integer(std::int64_t{value});
        separate();
    }

private:
    template <class Real>
    void separated(Real value)
    {
        to_.real(value);
        separate();
    }
    void separate()
    {
        constexpr unsigned int a_line = 12;
        to_.put(++count_ % a_line == 0 ? '\n' : ' ');
    }

    sink& to_;
    unsigned int count_ = 0;
};

// Numbers of an array as blocks packed by zlib, behind a header with their sizes.
class packed_array {
public:
    explicit packed_array(libdeflate_compressor* compressor) : compressor_(compressor), block_(block_size) {}

    template <class Value>
    void add(Value value)
    {
        std::memcpy(block_.data() + used_, &value, sizeof value);
        used_ += sizeof value;
        if (used_ == block_size) pack();
    }

    void finish()
    {
        last_ = used_;
        if (used_ != 0) pack();
        sizes_[0] = sizes_.size() - 3;
        sizes_[1] = block_size;
        sizes_[2] = last_;
    }

    std::uint64_t size() const { return sizes_.size() * 8 + packed_.size(); }
    void write(sink& to) const
    {
        to.raw(sizes_.data(), sizes_.size() * 8);
        to.raw(packed_.data(), packed_.size());
    }

private:
    // A multiple of every size of numbers.
    static constexpr std::size_t block_size = std::size_t{1} << 18;

    void pack()
    {
        const std::size_t before = packed_.size();
        packed_.resize(before + libdeflate_zlib_compress_bound(compressor_, used_));
        const std::size_t size = libdeflate_zlib_compress(compressor_, block_.data(), used_, packed_.data() + before,
                                                          packed_.size() - before);
        packed_.resize(before + size);
        sizes_.push_back(size);
        used_ = 0;
    }

    libdeflate_compressor* compressor_;
    std::vector<char> block_;
    std::size_t used_ = 0;
    std::size_t last_ = 0;
    std::vector<std::uint64_t> sizes_{0, 0, 0};
    std::vector<char> packed_;
};

class vtu_writer {
    static constexpr int quick = 3;

public:
    vtu_writer(const mesh& m, sink& to, const write_options& options)
        : mesh_(m),
          to_(to),
          ascii_(options.ascii),
          blocks_(writable_blocks(m, "VTU", vtu_holds, options)),
          compressor_(libdeflate_alloc_compressor(quick), libdeflate_free_compressor)
    {
        if (!compressor_) throw std::bad_alloc();
        if (!blocks_.empty()) cells_ = blocks_.back().first + blocks_.back().size();
    }

    void run()
    {
        to_.text("<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"");
        to_.text(std::endian::native == std::endian::little ? "LittleEndian" : "BigEndian");
        to_.text("\" header_type=\"UInt64\"");
        to_.text(ascii_ ? ">\n" : " compressor=\"vtkZLibDataCompressor\">\n");
        to_.text("<UnstructuredGrid>\n");
        write_group_names();
        to_.text("<Piece NumberOfPoints=\"" + std::to_string(mesh_.pos.cols) + "\" NumberOfCells=\"" +
                 std::to_string(cells_) + "\">\n");
        write_points();
        write_cells();
        write_data();
        to_.text("</Piece>\n</UnstructuredGrid>\n");
        if (!ascii_) write_appended();
        to_.text("</VTKFile>\n");
    }

private:
    // fill(out) adds the numbers; `type` must be that of what it adds.
    template <class Fill>
    void array(const std::string& name, scalar_type type, unsigned int components, Fill fill)
    {
        to_.text("<DataArray type=\"" + std::string(info_of(type).xml) + "\" Name=\"" + name_in_xml(name) +
                 "\" NumberOfComponents=\"" + std::to_string(components) + '"');
        if (ascii_) {
            to_.text(" format=\"ascii\">\n");
            text_array out(to_);
            fill(out);
            to_.text("\n</DataArray>\n");
        } else {
            packed_array out(compressor_.get());
            fill(out);
            out.finish();
            to_.text(" format=\"appended\" offset=\"" + std::to_string(offset_) + "\"/>\n");
            offset_ += out.size();
            appended_.push_back(std::move(out));
        }
    }

    // VTK has no place for them but in the data of the whole mesh: an array of the number and the dimension under each
    // name, as meshio keeps the names of Gmsh files.
    void write_group_names()
    {
        if (!mesh_.has_groups() || mesh_.group_names.empty()) return;
        to_.text("<FieldData>\n");
        for (const group_name& g : mesh_.group_names)
            to_.text("<DataArray type=\"Int32\" Name=\"" + name_in_xml(g.name) +
                     "\" NumberOfTuples=\"2\" format=\"ascii\">" + std::to_string(g.number) + ' ' +
                     std::to_string(g.dimension) + "</DataArray>\n");
        to_.text("</FieldData>\n");
    }

    void write_points()
    {
        const coordinates& pos = mesh_.pos;
        to_.text("<Points>\n");
        array("Points", scalar_type::real64, 3, [&](auto& out) {
            for (std::uint64_t j = 0; j < pos.cols; ++j)
                for (std::uint64_t i = 0; i < 3; ++i) out.add(i < pos.rows ? pos(i, j) : 0.0);
        });
        to_.text("</Points>\n");
    }

    void write_cells()
    {
        to_.text("<Cells>\n");
        std::uint64_t numbers = mesh_.pos.cols;
        for (const writable_block& b : blocks_) numbers += b.size() * zeb::NODES_PER_ELEMENT[b.type];
        numbers <= std::uint64_t{std::numeric_limits<std::int32_t>::max()} ? write_nodes_of_cells<std::int32_t>()
                                                                           : write_nodes_of_cells<std::int64_t>();
        array("types", scalar_type::uint8, 1, [&](auto& out) {
            for (const writable_block& b : blocks_)
                for (std::uint64_t e = 0; e < b.size(); ++e) out.add(static_cast<std::uint8_t>(vtk_code_of(b.type)));
        });
        to_.text("</Cells>\n");
    }

    template <class Integer>
    void write_nodes_of_cells()
    {
        constexpr scalar_type type = sizeof(Integer) == 4 ? scalar_type::int32 : scalar_type::int64;
        array("connectivity", type, 1, [&](auto& out) {
            for (const writable_block& b : blocks_)
                for_each_part(b, node_order::vtk, [&](std::uint64_t, const unsigned int* nodes, std::uint64_t n) {
                    const unsigned int* end = nodes + n * zeb::NODES_PER_ELEMENT[b.type];
                    for (; nodes != end; ++nodes) out.add(static_cast<Integer>(*nodes));
                });
        });
        array("offsets", type, 1, [&](auto& out) {
            Integer end = 0;
            for (const writable_block& b : blocks_)
                for (std::uint64_t e = 0; e < b.size(); ++e)
                    out.add(end += static_cast<Integer>(zeb::NODES_PER_ELEMENT[b.type]));
        });
    }

    void write_data()
    {
        to_.text("<PointData>\n");
        for (const field& f : mesh_.point_fields)
            write_field(f, [&](auto add) { add(std::uint64_t{0}, mesh_.pos.cols); });
        to_.text("</PointData>\n<CellData>\n");
        if (mesh_.has_groups()) {
            array("group", scalar_type::int32, 1, [&](auto& out) {
                for (const writable_block& b : blocks_)
                    for (std::uint64_t e = 0; e < b.size(); ++e) out.add(b.block->group(e));
            });
        }
        for (const field& f : mesh_.cell_fields) {
            write_field(f, [&](auto add) {
                for (const writable_block& b : blocks_) add(first_value(mesh_, *b.block), b.size());
            });
        }
        to_.text("</CellData>\n");
    }

    // for_each_part(add) calls add(first item, items) for what is written of the field.
    template <class Parts>
    void write_field(const field& f, Parts for_each_part)
    {
        constexpr double most = 9007199254740992.0;  // integers are exact up to here
        const bool integers = f.kind == number_kind::integer &&
                              std::ranges::all_of(f.values, [](double v) { return v >= -most && v <= most; });
        const scalar_type type = integers                        ? scalar_type::int64
                                 : f.kind == number_kind::real32 ? scalar_type::real32
                                                                 : scalar_type::real64;
        array(f.name, type, f.components, [&](auto& out) {
            for_each_part([&](std::uint64_t first, std::uint64_t items) {
                const double* value = f.values.data() + first * f.components;
                for (const double* end = value + items * f.components; value != end; ++value) {
                    if (type == scalar_type::int64)
                        out.add(static_cast<std::int64_t>(*value));
                    else if (type == scalar_type::real32)
                        out.add(static_cast<float>(*value));
                    else
                        out.add(*value);
                }
            });
        });
    }

    void write_appended()
    {
        to_.text("<AppendedData encoding=\"raw\">\n_");
        for (const packed_array& a : appended_) a.write(to_);
        to_.text("\n</AppendedData>\n");
    }

    const mesh& mesh_;
    sink& to_;
    bool ascii_;
    std::vector<writable_block> blocks_;
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor_;
    std::uint64_t cells_ = 0;
    std::uint64_t offset_ = 0;
    std::vector<packed_array> appended_;
};

}  // namespace

void write_vtu(const mesh& m, sink& to, const write_options& options)
{
    const std::optional<mesh> rest = without_lost_nodes(m, vtu_holds, options);
    vtu_writer(rest ? *rest : m, to, options).run();
}

}  // namespace tool
