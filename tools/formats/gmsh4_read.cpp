#include "formats/gmsh_input.h"

namespace tool {
namespace {

// One entity: what it is bounded by is of no use here, and so is its box.
void read_entity(gmsh_input& input, std::int64_t dimension, gmsh_entities& entities)
{
    const std::int64_t tag = input.integer("the number of an entity");
    std::array<double, 6> box;
    input.reals(box.data(), dimension == 0 ? 3 : 6, "a coordinate");
    const std::uint64_t groups = input.count(input.large("a number of groups"), 1, 4, "groups");
    for (std::uint64_t k = 0; k < groups; ++k) {
        const std::int64_t group = input.integer("a group");
        if (k == 0) entities[{dimension, tag}] = static_cast<std::int32_t>(group < 0 ? -group : group);
    }
    if (dimension == 0) return;
    const std::uint64_t boundaries = input.count(input.large("a number of boundaries"), 1, 4, "boundaries");
    for (std::uint64_t k = 0; k < boundaries; ++k) input.integer("a boundary");
}

struct block_header {
    std::int64_t dimension;
    std::int64_t entity;
    std::int64_t third;  // whether the nodes have parameters, or the type of the elements
    std::int64_t count;
};

block_header read_block_header(gmsh_input& input)
{
    block_header header{};
    header.dimension = input.integer("the dimension of an entity");
    header.entity = input.integer("the number of an entity");
    header.third = input.integer("a type");
    header.count = input.large("a number of items");
    return header;
}

// The four counts in front of nodes and elements; the number of blocks is returned.
std::uint64_t read_counts(gmsh_input& input, std::uint64_t numbers, std::uint64_t bytes, const char* what,
                          std::uint64_t& total)
{
    input.in.skip_line();
    const std::uint64_t blocks = input.count(input.large("a number of blocks"), 4, 20, "blocks");
    total = input.count(input.large("a count"), numbers, bytes, what);
    input.large("the least number");
    input.large("the greatest number");
    return blocks;
}

void read_node_block(gmsh_input& input, std::uint64_t left)
{
    const block_header header = read_block_header(input);
    const std::uint64_t count = input.count(header.count, 4, 32, "nodes");
    if (count > left) input.in.fail("the counts of nodes do not add up");
    std::array<std::int64_t, 4096> tags;
    for (std::uint64_t done = 0; done < count;) {
        const std::uint64_t n = std::min<std::uint64_t>(tags.size(), count - done);
        input.integers(tags.data(), n, scalar_type::int64, "the number of a node");
        for (std::uint64_t i = 0; i < n; ++i) input.result.node_numbers.push_back(static_cast<std::uint64_t>(tags[i]));
        done += n;
    }
    if (header.third == 0) {
        double* first = input.pos.append(count);
        return input.reals(first, 3 * count, "a coordinate");
    }
    // With as many parameters behind each as the entity has dimensions.
    if (header.dimension < 0 || header.dimension > 3)
        input.in.fail("an entity of dimension " + std::to_string(header.dimension));
    std::array<double, 3> parameters;
    for (std::uint64_t j = 0; j < count; ++j) {
        input.reals(input.pos.append(), 3, "a coordinate");
        input.reals(parameters.data(), static_cast<std::uint64_t>(header.dimension), "a parameter");
    }
}

std::uint64_t read_element_block(gmsh_input& input, const gmsh_entities& entities, std::uint64_t left)
{
    const block_header header = read_block_header(input);
    const zeb::element_type type = input.known_type(header.third, 0);
    const std::uint64_t numbers = 1 + zeb::NODES_PER_ELEMENT[type];
    const std::uint64_t count = input.count(header.count, numbers, 8 * numbers, "elements");
    if (count > left) input.in.fail("the counts of elements do not add up");
    std::int32_t group = static_cast<std::int32_t>(header.entity);
    if (input.has_physical_groups) {
        const auto found = entities.find({header.dimension, header.entity});
        group = found != entities.end() ? found->second : 0;
    }
    std::array<std::int64_t, 4096> records;
    for (std::uint64_t done = 0; done < count;) {
        const std::uint64_t n = std::min(records.size() / numbers, count - done);
        input.integers(records.data(), n * numbers, scalar_type::int64, "a node of an element");
        for (std::uint64_t e = 0; e < n; ++e)
            input.take_element(type, group, records[e * numbers], &records[e * numbers + 1]);
        done += n;
    }
    return count;
}

}  // namespace

void read_gmsh4_entities(gmsh_input& input, gmsh_entities& entities)
{
    input.in.skip_line();
    std::array<std::int64_t, 4> counts;
    input.integers(counts.data(), 4, scalar_type::int64, "a number of entities");
    for (std::int64_t dimension = 0; dimension < 4; ++dimension) {
        const std::uint64_t count = input.count(counts[static_cast<std::size_t>(dimension)], 5, 32, "entities");
        for (std::uint64_t k = 0; k < count; ++k) read_entity(input, dimension, entities);
    }
    input.has_physical_groups = !entities.empty();
}

void read_gmsh4_nodes(gmsh_input& input)
{
    std::uint64_t total = 0;
    const std::uint64_t blocks = read_counts(input, 4, 32, "nodes", total);
    input.pos.reserve(total);
    for (std::uint64_t b = 0; b < blocks; ++b) read_node_block(input, total - input.pos.size());
    if (input.pos.size() != total) input.in.fail("the counts of nodes do not add up");
    input.index_nodes();
}

void read_gmsh4_elements(gmsh_input& input, const gmsh_entities& entities)
{
    std::uint64_t total = 0;
    const std::uint64_t blocks = read_counts(input, 2, 16, "elements", total);
    std::uint64_t done = 0;
    for (std::uint64_t b = 0; b < blocks; ++b) done += read_element_block(input, entities, total - done);
    if (done != total) input.in.fail("the counts of elements do not add up");
}

}  // namespace tool
