#include <algorithm>

#include <tessolv/editing.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {
namespace {

// Up to this many rows every pair is compared, which is shorter than sorting.
constexpr std::uint64_t few_rows = 8;

bool any_pair_is_equal(const unsigned int* nodes, std::uint64_t rows)
{
    bool found = false;
    for (std::uint64_t i = 1; i < rows; ++i)
        for (std::uint64_t k = 0; k < i; ++k) found |= nodes[i] == nodes[k] && nodes[i] != NONE_INDEX;
    return found;
}

// NONE_INDEX, the padding of mixed kinds, may repeat. `sorted` is working storage of `rows` entries, of none if they
// are few.
bool repeats_a_node(const unsigned int* nodes, std::uint64_t rows, scratch<unsigned int>& sorted)
{
    if (rows <= few_rows) return any_pair_is_equal(nodes, rows);
    std::copy_n(nodes, rows, sorted.begin());
    std::sort(sorted.begin(), sorted.end());
    // NONE_INDEX is the largest value: a pair of it comes first only where there is no other.
    const auto* pair = std::adjacent_find(sorted.begin(), sorted.end());
    return pair != sorted.end() && *pair != NONE_INDEX;
}

}  // namespace

int remove_degenerated(dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs)
{
    dense1D<unsigned int> numbers;
    scratch<unsigned int> sorted;
    const bool sorts = connect.rows > few_rows && !connect.empty();
    if (!numbers.resize(connect.cols, NONE_INDEX) || !sorted.allocate(sorts ? connect.rows : 0)) return out_of_memory;
    unsigned int kept = 0;
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        if (connect.rows != 0) {
            const unsigned int* nodes = column(connect, e);
            if (repeats_a_node(nodes, connect.rows, sorted)) continue;
            if (kept != e) std::copy_n(nodes, connect.rows, column(connect, kept));
        }
        numbers[e] = kept++;
    }
    const std::uint64_t removed = connect.cols - kept;
    connect.resize(connect.rows, kept);  // fewer columns never fail
    new_IDs.shallow_copy(numbers);
    return as_result(removed);
}

}  // namespace zeb::tessolv
