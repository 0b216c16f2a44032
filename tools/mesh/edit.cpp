#include "mesh/edit.h"

#include <algorithm>

namespace tool {
namespace {

template <class T>
void keep_values(std::vector<T>& values, std::uint64_t components, const std::vector<bool>& keep, std::uint64_t first,
                 std::uint64_t count)
{
    if (values.empty()) return;
    auto to = values.begin();
    for (std::uint64_t i = 0; i < count; ++i) {
        if (!keep[first + i]) continue;
        const auto from = values.begin() + static_cast<std::ptrdiff_t>(i * components);
        to = std::copy_n(from, components, to);
    }
    values.erase(to, values.end());
}

numbering kept_numbers(const numbering& numbers, const std::vector<bool>& keep, std::uint64_t first)
{
    numbering result;
    for (std::uint64_t i = 0; i < numbers.size(); ++i)
        if (keep[first + i]) result.push_back(numbers[i]);
    return result;
}

template <class T>
void keep_columns(zeb::dense2D<T>& matrix, const std::vector<bool>& keep, std::uint64_t first)
{
    zeb::dense2D<T> result;
    const auto begin = keep.begin() + static_cast<std::ptrdiff_t>(first);
    const auto count = std::count(begin, begin + static_cast<std::ptrdiff_t>(matrix.cols), true);
    resize(result, matrix.rows, static_cast<std::uint64_t>(count));
    std::uint64_t to = 0;
    for (std::uint64_t j = 0; j < matrix.cols; ++j)
        if (keep[first + j]) std::copy_n(&matrix(0, j), matrix.rows, &result(0, to++));
    matrix = std::move(result);
}

field number_field(std::uint64_t count)
{
    field f{"number", 1, number_kind::integer, {}};
    f.values.reserve(count);
    return f;
}

}  // namespace

void keep_elements(mesh& m, const std::vector<bool>& keep)
{
    for (field& f : m.cell_fields) keep_values(f.values, f.components, keep, 0, m.element_count());
    std::uint64_t first = 0;
    for (element_block& block : m.blocks) {
        const std::uint64_t count = block.size();
        keep_values(block.groups, 1, keep, first, count);
        block.numbers = kept_numbers(block.numbers, keep, first);
        keep_columns(block.connect, keep, first);
        first += count;
    }
    std::erase_if(m.blocks, [](const element_block& block) { return block.size() == 0; });
}

std::vector<bool> used_nodes(const mesh& m)
{
    std::vector<bool> used(m.pos.cols, false);
    for (const element_block& block : m.blocks)
        for (std::uint64_t e = 0; e < block.size(); ++e)
            for (std::uint64_t i = 0; i < block.connect.rows; ++i)
                if (block.connect(i, e) < used.size()) used[block.connect(i, e)] = true;
    return used;
}

void keep_nodes(mesh& m, const std::vector<bool>& keep)
{
    zeb::dense1D<unsigned int> new_IDs;
    if (!new_IDs.resize(m.pos.cols)) throw std::bad_alloc();
    unsigned int next = 0;
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) new_IDs[j] = keep[j] ? next++ : zeb::NONE_INDEX;
    if (next == m.pos.cols) return;
    for (element_block& block : m.blocks) zeb::tessolv::change_indices(block.connect, new_IDs);
    for (field& f : m.point_fields) keep_values(f.values, f.components, keep, 0, m.pos.cols);
    m.node_numbers = kept_numbers(m.node_numbers, keep, 0);
    keep_columns(m.pos, keep, 0);
}

void set_cell_field(mesh& m, field f)
{
    std::erase_if(m.cell_fields, [&](const field& other) { return other.name == f.name; });
    m.cell_fields.push_back(std::move(f));
}

field node_number_field(const mesh& m)
{
    field f = number_field(m.pos.cols);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j)
        f.values.push_back(static_cast<double>(m.node_numbers.size() == m.pos.cols ? m.node_numbers[j] : j + 1));
    return f;
}

field element_number_field(const mesh& m)
{
    field f = number_field(m.element_count());
    for (const element_block& block : m.blocks)
        for (std::uint64_t e = 0; e < block.size(); ++e) f.values.push_back(static_cast<double>(block.numbers[e]));
    return f;
}

void number_anew(mesh& m)
{
    m.node_numbers = numbering(1, m.pos.cols);
    std::uint64_t first = 1;
    for (element_block& block : m.blocks) {
        block.numbers = numbering(first, block.size());
        first += block.size();
    }
}

}  // namespace tool
