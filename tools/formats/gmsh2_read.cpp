#include <limits>

#include "formats/gmsh_input.h"

namespace tool {
namespace {

std::int32_t group_number(const gmsh_input& input, std::int64_t tag)
{
    if (tag < std::numeric_limits<std::int32_t>::min() || tag > std::numeric_limits<std::int32_t>::max())
        input.in.fail("a group of number " + std::to_string(tag));
    return static_cast<std::int32_t>(tag);
}

class element_reader {
public:
    explicit element_reader(gmsh_input& input) : input_(input) {}

    void run()
    {
        const std::int64_t announced = input_.in.integer("the number of elements");
        input_.in.skip_line();
        const std::uint64_t total = input_.count(announced, 4, 8, "elements");
        for (std::uint64_t done = 0; done < total;) done += input_.binary ? read_block(total - done) : read_one();
    }

private:
    // A header and the elements that share it.
    std::uint64_t read_block(std::uint64_t left)
    {
        std::int64_t header[3];
        input_.integers(header, 3, scalar_type::int32, "elements");
        const zeb::element_type type = input_.known_type(header[0], 0);
        require_tags(header[2]);
        if (header[1] <= 0 || static_cast<std::uint64_t>(header[1]) > left)
            input_.in.fail("the counts of elements do not add up");
        const auto tags = static_cast<std::size_t>(header[2]);
        const std::uint64_t numbers = 1 + tags + zeb::NODES_PER_ELEMENT[type];
        std::array<std::int64_t, 4096> records;
        for (auto missing = static_cast<std::uint64_t>(header[1]); missing != 0;) {
            const std::uint64_t n = std::min(records.size() / numbers, missing);
            input_.integers(records.data(), n * numbers, scalar_type::int32, "elements");
            for (const std::int64_t* r = records.data(); r != records.data() + n * numbers; r += numbers)
                take(type, r[0], r + 1, tags, r + 1 + tags);
            missing -= n;
        }
        return static_cast<std::uint64_t>(header[1]);
    }

    std::uint64_t read_one()
    {
        const std::int64_t number = input_.in.integer("the number of an element");
        const zeb::element_type type = input_.known_type(input_.in.integer("a type of elements"), number);
        const std::int64_t tags = input_.in.integer("a number of tags");
        require_tags(tags);
        std::array<std::int64_t, 128> record;
        const std::uint64_t numbers = static_cast<std::uint64_t>(tags) + zeb::NODES_PER_ELEMENT[type];
        input_.integers(record.data(), numbers, scalar_type::int32, "a node of an element");
        take(type, number, record.data(), static_cast<std::size_t>(tags), &record[static_cast<std::size_t>(tags)]);
        return 1;
    }

    void require_tags(std::int64_t tags) const
    {
        constexpr std::int64_t most = 100;
        if (tags < 0 || tags > most) input_.in.fail("an element with " + std::to_string(tags) + " tags");
    }

    // The first tag is the physical group, the second the geometric entity, which stands in as long as no element has
    // a physical group.
    void take(zeb::element_type type, std::int64_t number, const std::int64_t* tags, std::size_t count,
              const std::int64_t* nodes)
    {
        const std::int32_t physical = count > 0 ? group_number(input_, tags[0]) : 0;
        if (physical != 0 && !input_.has_physical_groups) {
            input_.has_physical_groups = true;
            input_.elements.forget_groups();
        }
        const std::int32_t entity = count > 1 ? group_number(input_, tags[1]) : 0;
        input_.take_element(type, input_.has_physical_groups ? physical : entity, number, nodes);
    }

    gmsh_input& input_;
};

// Records of a number and three coordinates.
void read_binary_nodes(gmsh_input& input, std::uint64_t total)
{
    constexpr std::uint64_t bytes = 28;
    std::array<char, 1024 * bytes> block;
    for (std::uint64_t done = 0; done < total;) {
        const std::uint64_t n = std::min<std::uint64_t>(1024, total - done);
        input.in.raw(block.data(), n * bytes, "the nodes");
        for (const char* record = block.data(); record != block.data() + n * bytes; record += bytes) {
            std::int64_t number = 0;
            decode(scalar_type::int32, input.reversed, record, &number, 1);
            input.result.node_numbers.push_back(static_cast<std::uint64_t>(number));
            decode(scalar_type::real64, input.reversed, record + 4, input.pos.append(), 3);
        }
        done += n;
    }
}

}  // namespace

void read_gmsh2_nodes(gmsh_input& input)
{
    const std::int64_t announced = input.in.integer("the number of nodes");
    input.in.skip_line();
    const std::uint64_t total = input.count(announced, 4, 28, "nodes");
    input.pos.reserve(total);
    if (input.binary) {
        read_binary_nodes(input, total);
    } else {
        for (std::uint64_t j = 0; j < total; ++j) {
            input.result.node_numbers.push_back(input.in.count("the number of a node"));
            input.in.reals(input.pos.append(), 3, "a coordinate");
        }
    }
    input.index_nodes();
}

void read_gmsh2_elements(gmsh_input& input)
{
    element_reader(input).run();
}

}  // namespace tool
