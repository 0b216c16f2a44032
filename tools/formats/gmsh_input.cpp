#include "formats/gmsh_input.h"

#include "errors.h"
#include "formats/gmsh_types.h"

namespace tool {

std::int64_t gmsh_input::stored(scalar_type type, const char* what)
{
    std::int64_t value = 0;
    integers(&value, 1, type, what);
    return value;
}

double gmsh_input::real(const char* what)
{
    double value = 0;
    reals(&value, 1, what);
    return value;
}

void gmsh_input::integers(std::int64_t* to, std::uint64_t n, scalar_type type, const char* what)
{
    if (binary) {
        binary_numbers(in, type, reversed, what).read(to, n);
    } else {
        for (std::uint64_t i = 0; i < n; ++i) to[i] = in.integer(what);
    }
}

void gmsh_input::reals(double* to, std::uint64_t n, const char* what)
{
    if (binary) {
        binary_numbers(in, scalar_type::real64, reversed, what).read(to, n);
    } else {
        in.reals(to, n, what);
    }
}

std::uint64_t gmsh_input::count(std::int64_t announced, std::uint64_t numbers, std::uint64_t bytes, const char* what)
{
    const std::uint64_t most = binary ? in.left() / bytes : in.left() / (2 * numbers) + 1;
    if (announced < 0 || static_cast<std::uint64_t>(announced) > most)
        in.fail("the file is too short for " + std::to_string(announced) + ' ' + what);
    return static_cast<std::uint64_t>(announced);
}

void gmsh_input::index_nodes()
{
    result.pos = pos.take();
    nodes_ = number_index(result.node_numbers);
    if (nodes_.repeated() != number_index::none)
        in.fail("node " + std::to_string(nodes_.repeated()) + " is given twice");
    has_nodes = true;
}

zeb::element_type gmsh_input::known_type(std::int64_t code, std::int64_t element) const
{
    const zeb::element_type type = type_of_gmsh(code);
    if (type != zeb::EL_NONE) return type;
    const char* name = code == 18 ? " (wedge of 15 nodes)" : code == 19 ? " (pyramid of 13 nodes)" : "";
    const std::string who = element > 0 ? "element " + std::to_string(element) + " is" : "elements are";
    in.fail(who + " of type " + std::to_string(code) + name + ", which is not supported");
}

void gmsh_input::take_element(zeb::element_type type, std::int32_t group, std::int64_t number,
                              const std::int64_t* nodes)
{
    unsigned int* column = elements.add(type, group, static_cast<std::uint64_t>(number));
    for (unsigned int k = 0; k < zeb::NODES_PER_ELEMENT[type]; ++k) {
        const std::uint64_t found = nodes_.find(static_cast<std::uint64_t>(nodes[k]));
        column[k] = found < zeb::NONE_INDEX ? static_cast<unsigned int>(found) : zeb::NONE_INDEX;
    }
}

}  // namespace tool
