#include "formats/vtk_write.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "formats/capability.h"
#include "formats/vtk_cells.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

bool vtk_holds(zeb::element_type type)
{
    return vtk_code_of(type) != 0;
}

template <class Value>
Value big_endian(Value value)
{
    if constexpr (std::endian::native == std::endian::big || sizeof(Value) == 1) {
        return value;
    } else if constexpr (sizeof(Value) == 8) {
        return std::bit_cast<Value>(__builtin_bswap64(std::bit_cast<std::uint64_t>(value)));
    } else {
        return std::bit_cast<Value>(__builtin_bswap32(std::bit_cast<std::uint32_t>(value)));
    }
}

// Blanks and the like would end a name.
std::string encoded_name(const std::string& name)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : name) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 33 || code > 126 || c == '"' || c == '%') {
            result += {'%', digits[code >> 4], digits[code & 15]};
        } else {
            result += c;
        }
    }
    return result.empty() ? "unnamed" : result;
}

class vtk_writer {
public:
    vtk_writer(const mesh& m, sink& to, const write_options& options)
        : mesh_(m), to_(to), binary_(!options.ascii), blocks_(writable_blocks(m, "VTK", vtk_holds, options))
    {
        note_group_names(m, "VTK", options);
    }

    void run()
    {
        to_.text("# vtk DataFile Version 3.0\nWritten by tessolv\n");
        to_.text(binary_ ? "BINARY\n" : "ASCII\n");
        to_.text("DATASET UNSTRUCTURED_GRID\n");
        write_points();
        write_cells();
        write_cell_data();
        write_fields("POINT_DATA ", mesh_.pos.cols, mesh_.point_fields, nullptr);
    }

private:
    // A number, and what separates it in a text.
    void number(double value, char behind)
    {
        if (binary_) return to_.value(big_endian(value));
        to_.real(value);
        to_.put(behind);
    }
    void number(float value, char behind)
    {
        if (binary_) return to_.value(big_endian(value));
        to_.real(value);
        to_.put(behind);
    }
    void number(std::int32_t value, char behind)
    {
        if (binary_) return to_.value(big_endian(value));
        to_.integer(value);
        to_.put(behind);
    }

    template <class Value>
    static void put_number(char*& to, Value value)
    {
        value = big_endian(value);
        std::memcpy(to, &value, sizeof value);
        to += sizeof value;
    }

    // Items of so many bytes each: put(item, place) fills the place of one.
    template <class Put>
    void numbers(std::uint64_t items, std::uint64_t bytes, Put put)
    {
        const std::uint64_t most = sink::largest_take / bytes;
        for (std::uint64_t first = 0; first < items; first += most) {
            const std::uint64_t n = std::min(most, items - first);
            char* to = to_.take(n * bytes);
            for (std::uint64_t i = 0; i < n; ++i, to += bytes) put(first + i, to);
        }
    }

    void line(const char* word, std::uint64_t count, const char* behind = "\n")
    {
        to_.text(word);
        to_.integer(count);
        to_.text(behind);
    }

    void end_section() { to_.text(binary_ ? "\n" : ""); }

    void write_points()
    {
        const coordinates& pos = mesh_.pos;
        line("POINTS ", pos.cols, " double\n");
        if (binary_ && pos.rows == 3) {
            numbers(pos.cols, 24, [&](std::uint64_t j, char* to) {
                for (std::uint64_t i = 0; i < 3; ++i) put_number(to, pos(i, j));
            });
            return end_section();
        }
        for (std::uint64_t j = 0; j < pos.cols; ++j)
            for (std::uint64_t i = 0; i < 3; ++i) number(i < pos.rows ? pos(i, j) : 0.0, i == 2 ? '\n' : ' ');
        end_section();
    }

    void write_cells()
    {
        std::uint64_t numbers = 0;
        for (const writable_block& b : blocks_) {
            cells_ += b.size();
            numbers += b.size() * (1 + zeb::NODES_PER_ELEMENT[b.type]);
        }
        line("CELLS ", cells_, " ");
        line("", numbers);
        for (const writable_block& b : blocks_) write_block(b);
        end_section();
        line("CELL_TYPES ", cells_);
        for (const writable_block& b : blocks_) write_types(b);
        end_section();
    }

    void write_block(const writable_block& b)
    {
        const auto size = static_cast<std::int32_t>(zeb::NODES_PER_ELEMENT[b.type]);
        for_each_part(b, node_order::vtk, [&](std::uint64_t, const unsigned int* nodes, std::uint64_t n) {
            if (binary_) return put_elements(nodes, n, size);
            for (const unsigned int* end = nodes + n * static_cast<unsigned int>(size); nodes != end;) {
                number(size, ' ');
                for (std::int32_t k = 1; k <= size; ++k)
                    number(static_cast<std::int32_t>(*nodes++), k == size ? '\n' : ' ');
            }
        });
    }

    void put_elements(const unsigned int* nodes, std::uint64_t n, std::int32_t size)
    {
        char* to = to_.take(n * (static_cast<std::uint64_t>(size) + 1) * sizeof size);
        for (std::uint64_t e = 0; e < n; ++e) {
            put_number(to, size);
            for (std::int32_t k = 0; k < size; ++k) put_number(to, *nodes++);
        }
    }

    void write_types(const writable_block& b)
    {
        const auto code = static_cast<std::int32_t>(vtk_code_of(b.type));
        if (binary_) return numbers(b.size(), sizeof code, [&](std::uint64_t, char* to) { put_number(to, code); });
        for (std::uint64_t e = 0; e < b.size(); ++e) number(code, '\n');
    }

    void write_cell_data()
    {
        if (!mesh_.has_groups()) return write_fields("CELL_DATA ", cells_, mesh_.cell_fields, &blocks_);
        line("CELL_DATA ", cells_);
        line("FIELD FieldData ", mesh_.cell_fields.size() + 1);
        line("group 1 ", cells_, " int\n");
        for (const writable_block& b : blocks_)
            for (std::uint64_t e = 0; e < b.size(); ++e) number(b.block->group(e), '\n');
        end_section();
        for (const field& f : mesh_.cell_fields) write_field(f, cells_, &blocks_);
    }

    void write_fields(const char* word, std::uint64_t items, const std::vector<field>& fields,
                      const std::vector<writable_block>* blocks)
    {
        if (fields.empty()) return;
        line(word, items);
        line("FIELD FieldData ", fields.size());
        for (const field& f : fields) write_field(f, items, blocks);
    }

    // Whole, or the values of the blocks that are written.
    void write_field(const field& f, std::uint64_t items, const std::vector<writable_block>* blocks)
    {
        const bool small = f.kind == number_kind::integer && fits_int32(f);
        to_.text(encoded_name(f.name));
        line(" ", f.components, " ");
        line("", items, small ? " int\n" : f.kind == number_kind::real32 ? " float\n" : " double\n");
        if (blocks == nullptr) {
            write_values(f, small, 0, items);
        } else {
            for (const writable_block& b : *blocks) write_values(f, small, first_value(mesh_, *b.block), b.size());
        }
        end_section();
    }

    static bool fits_int32(const field& f)
    {
        constexpr double limit = 2147483647;
        for (const double v : f.values)
            if (!(v >= -limit && v <= limit)) return false;
        return true;
    }

    void write_values(const field& f, bool small, std::uint64_t first, std::uint64_t items)
    {
        const double* value = f.values.data() + first * f.components;
        for (std::uint64_t i = 0; i < items; ++i) {
            for (unsigned int k = 1; k <= f.components; ++k, ++value) {
                const char behind = k == f.components ? '\n' : ' ';
                if (small) {
                    number(static_cast<std::int32_t>(*value), behind);
                } else if (f.kind == number_kind::real32) {
                    number(static_cast<float>(*value), behind);
                } else {
                    number(*value, behind);
                }
            }
        }
    }

    const mesh& mesh_;
    sink& to_;
    bool binary_;
    std::vector<writable_block> blocks_;
    std::uint64_t cells_ = 0;
};

}  // namespace

void write_vtk(const mesh& m, sink& to, const write_options& options)
{
    const std::optional<mesh> rest = without_lost_nodes(m, vtk_holds, options);
    vtk_writer(rest ? *rest : m, to, options).run();
}

}  // namespace tool
