#include "formats/vtu_read.h"

#include <bit>
#include <functional>

#include <pugixml.hpp>

#include "errors.h"
#include "formats/byte_stream.h"
#include "formats/vtk_cells.h"
#include "formats/vtu_skeleton.h"
#include "mesh/builder.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

class vtu_reader {
public:
    explicit vtu_reader(const source& from) : from_(from), skeleton_(cut_skeleton(from)) {}

    mesh run()
    {
        parse();
        const pugi::xml_node grid = file_.child("UnstructuredGrid");
        if (!grid)
            fail(file_,
                 "a VTK file of type " + quoted(file_.attribute("type").value()) + ", which holds no mesh of elements");
        for (const pugi::xml_node piece : grid.children("Piece")) take_piece(piece);
        result_.pos = points_.take();
        result_.node_numbers = numbering(0, result_.pos.cols);
        assemble(std::move(cells_), vtk_dialect::standard, result_);
        for (field& f : result_.cell_fields) f.values = gathered(result_.blocks, f.values, f.components, 0);
        take_groups(result_);
        for (const pugi::xml_node array : grid.child("FieldData").children("DataArray")) take_group_name(array);
        return std::move(result_);
    }

private:
    void parse()
    {
        const pugi::xml_parse_result parsed = document_.load_buffer(skeleton_.xml.data(), skeleton_.xml.size());
        if (!parsed) fail(parsed.offset, std::string("the XML cannot be read: ") + parsed.description());
        file_ = document_.child("VTKFile");
        const std::string order = file_.attribute("byte_order").as_string("LittleEndian");
        reversed_ = (order == "BigEndian") == (std::endian::native == std::endian::little);
        wide_ = std::string_view(file_.attribute("header_type").value()) == "UInt64";
        const std::string compressor = file_.attribute("compressor").value();
        compressed_ = !compressor.empty();
        if (compressed_ && compressor != "vtkZLibDataCompressor")
            fail(file_, "compression by " + compressor + ", which is not supported");
        raw_ = std::string_view(file_.child("AppendedData").attribute("encoding").value()) == "raw";
    }

    [[noreturn]] void fail(std::ptrdiff_t xml_byte, const std::string& reason) const
    {
        const std::uint64_t place =
            skeleton_.place_of(static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(0, xml_byte)));
        throw unreadable("byte " + std::to_string(std::min(place, from_.size())) + ": " + reason);
    }

    // At the tag of the node, whose name stands behind the bracket.
    [[noreturn]] void fail(const pugi::xml_node& node, const std::string& reason) const
    {
        fail(node.offset_debug() - 1, reason);
    }

    std::uint64_t number_of(const pugi::xml_node& node, const char* name) const
    {
        std::int64_t value = -1;
        if (!parse_integer(node.attribute(name).value(), value) || value < 0)
            fail(node, std::string("a ") + node.name() + " without its " + name);
        return static_cast<std::uint64_t>(value);
    }

    void take_piece(const pugi::xml_node& piece)
    {
        const std::uint64_t points = number_of(piece, "NumberOfPoints");
        const std::uint64_t cells = number_of(piece, "NumberOfCells");
        const std::uint64_t first_point = points_.size();
        const std::uint64_t first_cell = cells_.sizes.size();
        const pugi::xml_node array = piece.child("Points").child("DataArray");
        if (!array && points != 0) fail(piece, "a piece without Points");
        if (points != 0)
            read_array(array, "the points", points, 3,
                       [&](number_stream& in) { in.read(points_.append(points), 3 * points); });
        if (cells != 0) take_cells(piece, cells, first_point);
        take_fields(piece, "PointData", points, first_point, result_.point_fields);
        take_fields(piece, "CellData", cells, first_cell, result_.cell_fields);
    }

    void take_cells(const pugi::xml_node& piece, std::uint64_t cells, std::uint64_t first_point)
    {
        const auto array = [&](const char* name) {
            const pugi::xml_node found = piece.child("Cells").find_child_by_attribute("DataArray", "Name", name);
            if (!found) fail(piece, std::string("a piece whose Cells have no ") + name);
            return found;
        };
        const std::size_t first_node = cells_.nodes.size();
        const std::size_t first_cell = cells_.sizes.size();
        read_array(array("offsets"), "the offsets", cells, 1,
                   [&](number_stream& in) { cells_.read_offsets(in, cells, false, *in_); });
        std::uint64_t nodes = 0;
        for (std::size_t c = first_cell; c < cells_.sizes.size(); ++c) nodes += cells_.sizes[c];
        read_array(array("connectivity"), "the nodes of cells", nodes, 1,
                   [&](number_stream& in) { cells_.read_nodes(in, nodes); });
        for (std::size_t i = first_node; first_point != 0 && i < cells_.nodes.size(); ++i) {
            unsigned int& index = *cells_.nodes.column(i);
            index = node_index(static_cast<std::int64_t>(index + first_point), 0);
        }
        read_array(array("types"), "the types of cells", cells, 1, [&](number_stream& in) {
            cells_.lists.push_back({first_cell, in_->place()});
            in.for_each_block(cells, [&](const std::int64_t* block, std::uint64_t n) {
                for (std::uint64_t i = 0; i < n; ++i)
                    cells_.types.push_back(block[i] >= 0 && block[i] <= 255 ? static_cast<std::uint8_t>(block[i])
                                                                            : 255);
            });
        });
    }

    // Of a file in pieces every piece has the same fields.
    void take_fields(const pugi::xml_node& piece, const char* owner, std::uint64_t items, std::uint64_t before,
                     std::vector<field>& fields)
    {
        for (const pugi::xml_node array : piece.child(owner).children("DataArray")) {
            const std::string name = array.attribute("Name").as_string("unnamed");
            const std::string type = array.attribute("type").value();
            const scalar_info* scalar = scalar_named(type);
            if (scalar == nullptr) continue;  // texts
            const auto components = static_cast<unsigned int>(array.attribute("NumberOfComponents").as_uint(1));
            if (components == 0 || components > 1000)
                fail(array, "field " + quoted(name) + " of " + std::to_string(components) + " components");
            auto at = std::ranges::find(fields, name, &field::name);
            if (at == fields.end() && before == 0)
                at = fields.insert(fields.end(), {name, components, scalar->kind, {}});
            if (at == fields.end() || at->components != components || at->values.size() != before * components)
                fail(array, "field " + quoted(name) + " is not the same in every piece");
            read_array(array, "a field", items, components, [&](number_stream& in) {
                at->values.resize((before + items) * components);
                in.read(at->values.data() + before * components, items * components);
            });
        }
        for (const field& f : fields)
            if (f.values.size() != (before + items) * f.components)
                fail(piece, "field " + quoted(f.name) + " is not in every piece");
    }

    // Of the data of the whole mesh those pairs that are the number and the dimension of a group with elements.
    void take_group_name(const pugi::xml_node& array)
    {
        const scalar_info* type = scalar_named(array.attribute("type").value());
        if (type == nullptr || type->kind != number_kind::integer || array.attribute("NumberOfTuples").as_uint() != 2 ||
            array.attribute("NumberOfComponents").as_uint(1) != 1)
            return;
        std::int64_t pair[2] = {0, 0};
        read_array(array, "data of the mesh", 2, 1, [&](number_stream& in) { in.read(pair, 2); });
        for (const element_block& block : result_.blocks) {
            const bool may_be = pair[1] == -1 || pair[1] == info_of(block.type).dimension;
            if (!may_be || std::ranges::find(block.groups, pair[0]) == block.groups.end()) continue;
            result_.group_names.push_back(
                {static_cast<int>(pair[1]), static_cast<std::int32_t>(pair[0]), array.attribute("Name").value()});
            return;
        }
    }

    // Calls read(stream) once it is sure that the file can hold so many numbers.
    void read_array(const pugi::xml_node& array, const char* what, std::uint64_t items, std::uint64_t width,
                    const std::function<void(number_stream&)>& read)
    {
        const scalar_info* type = scalar_named(array.attribute("type").value());
        if (type == nullptr || type->bytes == 0) fail(array, std::string(what) + " are of an unknown type of numbers");
        if (items > (std::uint64_t{1} << 58) / width) fail(array, "a count of " + std::to_string(items));
        if (items * width == 0) return;
        try {
            read_numbers(array, what, *type, items * width, read);
        } catch (const unreadable& reason) {
            const std::string name = array.attribute("Name").as_string(what);
            throw unreadable(std::string(reason.what()) + " (array " + quoted(name) + ')');
        }
    }

    void read_numbers(const pugi::xml_node& array, const char* what, const scalar_info& type, std::uint64_t count,
                      const std::function<void(number_stream&)>& read)
    {
        const std::string_view format = array.attribute("format").value();
        const bool appended = format == "appended";
        const vtu_skeleton::range content =
            appended ? appended_range(array) : skeleton_.contents.at(array.attribute("part").as_uint());
        cursor in(from_, content.begin, content.end);
        in_ = &in;
        in.set_binary(true);
        const auto require = [&](std::uint64_t most) {
            if (count > most) in.fail("the file is too short for " + std::to_string(count) + " numbers of " + what);
        };
        if (format == "ascii") {
            require(in.left() / 2 + 1);
            text_numbers numbers(in, what);
            return read(numbers);
        }
        raw_bytes raw(in);
        base64_bytes letters(in);
        byte_stream& bytes = appended && raw_ ? static_cast<byte_stream&>(raw) : letters;
        if (compressed_) {
            inflated_bytes plain(bytes, in, wide_, reversed_);
            require(plain.most() / type.bytes);
            decoded_numbers numbers(plain, type.type, reversed_);
            return read(numbers);
        }
        std::int64_t announced = 0;
        decoded_numbers(bytes, wide_ ? scalar_type::uint64 : scalar_type::uint32, reversed_).read(&announced, 1);
        require(std::min(bytes.most(), static_cast<std::uint64_t>(announced)) / type.bytes);
        decoded_numbers numbers(bytes, type.type, reversed_);
        read(numbers);
    }

    vtu_skeleton::range appended_range(const pugi::xml_node& array) const
    {
        if (skeleton_.appended == 0) fail(array, "an appended array in a file without AppendedData");
        const std::uint64_t offset = number_of(array, "offset");
        if (offset > from_.size() - skeleton_.appended)
            fail(array, "an array that begins " + std::to_string(offset) + " bytes on, behind the end of the file");
        return {skeleton_.appended + offset, from_.size()};
    }

    const source& from_;
    vtu_skeleton skeleton_;
    pugi::xml_document document_;
    pugi::xml_node file_;
    const cursor* in_ = nullptr;  // of the array that is read, for messages
    mesh result_;
    vtk_cells cells_;
    growing_matrix<double> points_{3};
    bool reversed_ = false;
    bool wide_ = false;
    bool compressed_ = false;
    bool raw_ = false;
};

}  // namespace

bool is_vtu(std::string_view head)
{
    const std::size_t file = head.find("<VTKFile");
    return file != head.npos && head.find("UnstructuredGrid", file) != head.npos;
}

mesh read_vtu(const source& from)
{
    return vtu_reader(from).run();
}

}  // namespace tool
