#ifndef TOOLS_FORMATS_GMSH_OUTPUT_H
#define TOOLS_FORMATS_GMSH_OUTPUT_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "formats/capability.h"
#include "formats/format.h"

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
    // Elements in the order and with the numbers of the file, some hundreds at a time: calls
    // write(first, numbers of their nodes, n).
    template <class Write>
    void for_each_part_of(const writable_block& b, Write write)
    {
        std::array<std::uint64_t, 2048> numbers;
        const std::uint64_t size = zeb::NODES_PER_ELEMENT[b.type];
        for_each_part(b, node_order::gmsh, [&](std::uint64_t first, const unsigned int* nodes, std::uint64_t n) {
            for (std::uint64_t i = 0; i < n * size; ++i) numbers[i] = node_number(nodes[i]);
            write(first, static_cast<const std::uint64_t*>(numbers.data()), n);
        });
    }
    // Numbers as bytes, each made by at(i).
    template <class At>
    void all_bytes(std::uint64_t count, At at)
    {
        using value = decltype(at(std::uint64_t{0}));
        constexpr std::uint64_t most = sink::largest_take / sizeof(value);
        for (std::uint64_t first = 0; first < count; first += most) {
            const std::uint64_t n = std::min(most, count - first);
            char* place = to.take(n * sizeof(value));
            for (std::uint64_t i = 0; i < n; ++i, place += sizeof(value)) {
                const value number = at(first + i);
                std::memcpy(place, &number, sizeof number);
            }
        }
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
