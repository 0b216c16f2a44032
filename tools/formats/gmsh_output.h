#ifndef TOOLS_FORMATS_GMSH_OUTPUT_H
#define TOOLS_FORMATS_GMSH_OUTPUT_H

#include <cstdint>
#include <vector>

#include "formats/capability.h"
#include "formats/format.h"
#include "formats/node_orders.h"

namespace tool {

// What both versions of Gmsh files have in common.
class gmsh_output {
public:
    gmsh_output(const mesh& m, sink& to, const write_options& options);

    // A number as four or eight bytes, or as a word with `behind` after it.
    void integer(std::int64_t value, char behind)
    {
        if (binary) return bytes(static_cast<std::int32_t>(value));
        to.integer(value);
        to.put(behind);
    }
    void large(std::uint64_t value, char behind)
    {
        if (binary) return bytes(value);
        to.integer(value);
        to.put(behind);
    }
    void real(double value, char behind)
    {
        if (binary) return bytes(value);
        to.real(value);
        to.put(behind);
    }
    void coordinates_of(std::uint64_t node);
    // The nodes of an element in the order and with the numbers of the file, through write(number, last).
    template <class Write>
    void nodes_of(const writable_block& b, std::uint64_t e, Write write)
    {
        const unsigned int size = zeb::NODES_PER_ELEMENT[b.type];
        unsigned int nodes[27];
        std::copy_n(b.nodes(e), size, nodes);
        to_file_order(node_order::gmsh, b.type, nodes, 1);
        for (unsigned int k = 0; k < size; ++k) write(node_number(nodes[k]), k + 1 == size);
    }

    void header(const char* version);
    void physical_names();
    void data();
    void line(std::uint64_t value)
    {
        to.integer(value);
        to.put('\n');
    }
    void end_bytes() { to.text(binary ? "\n" : ""); }

    std::uint64_t node_number(std::uint64_t node) const
    {
        return keeps_node_numbers ? content.node_numbers[node] : node + 1;
    }
    std::uint64_t element_number(const writable_block& b, std::uint64_t e) const
    {
        return keeps_element_numbers ? b.block->numbers[e] : b.first + e + 1;
    }

    const mesh& content;
    sink& to;
    bool binary;
    std::vector<writable_block> blocks;
    std::uint64_t elements = 0;
    bool keeps_node_numbers = false;
    bool keeps_element_numbers = false;

private:
    template <class Value>
    void bytes(Value value)
    {
        to.value(value);
    }
    void data_header(const char* section, const field& f, std::uint64_t items);
    void data_item(std::uint64_t number, const double* values, unsigned int components);
};

}  // namespace tool

#endif
