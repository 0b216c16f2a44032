#include <algorithm>

#include <tessolv/editing.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"
#include "editing/hash_slots.h"

namespace zeb::tessolv {
namespace {

using index_list = dense1D<unsigned int>;
using connectivity = dense2D<unsigned int>;

// Where the entries of the first argument stand in the second, and the reverse. Handed over last: the outputs may be
// inputs.
struct matched_positions {
    index_list in_1, in_2;

    bool allocate(std::uint64_t count1, std::uint64_t count2)
    {
        return in_1.resize(count2, NONE_INDEX) && in_2.resize(count1, NONE_INDEX);
    }

    void match(std::uint64_t k, std::uint64_t j)
    {
        in_1[j] = static_cast<unsigned int>(k);
        in_2[k] = static_cast<unsigned int>(j);
    }
};

// Start of the least rotation of a cycle of n entries: two candidates are compared, and the one that loses at distance
// k takes the k starts behind it along. Y. Shiloach. Fast canonization of circular strings. Journal of Algorithms 2(2),
// 1981.
std::uint64_t least_rotation(const unsigned int* cycle, std::uint64_t n)
{
    const auto at = [cycle, n](std::uint64_t i) { return cycle[i < n ? i : i - n]; };
    std::uint64_t a = 0;
    std::uint64_t b = 1;
    for (std::uint64_t k = 0; a < n && b < n && k < n;) {
        if (at(a + k) == at(b + k)) {
            ++k;
            continue;
        }
        (at(a + k) > at(b + k) ? a : b) += k + 1;
        if (a == b) ++b;
        k = 0;
    }
    return std::min(a, b);
}

void copy_from_least(const unsigned int* cycle, std::uint64_t n, unsigned int* turned)
{
    std::rotate_copy(cycle, cycle + least_rotation(cycle, n), cycle + n, turned);
}

// Columns in a form in which those that match up to rotation and reversal are equal: the least of the sequences that
// one can read around the element, in either direction.
bool normalise(const connectivity& connect, connectivity& keys)
{
    if (connect.empty()) return keys.resize(connect.rows, connect.cols);
    const std::uint64_t n = connect.rows;
    scratch<unsigned int> backward;
    scratch<unsigned int> turned;
    if (!keys.resize(n, connect.cols) || !backward.allocate(n) || !turned.allocate(n)) return false;
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        const unsigned int* nodes = column(connect, e);
        unsigned int* key = column(keys, e);
        copy_from_least(nodes, n, key);
        std::reverse_copy(nodes, nodes + n, backward.begin());
        copy_from_least(backward.begin(), n, turned.begin());
        if (std::lexicographical_compare(turned.begin(), turned.end(), key, key + n))
            std::copy(turned.begin(), turned.end(), key);
    }
    return true;
}

// A table of columns under their normalised form. Of equal columns it holds the one that was entered last.
class column_table {
public:
    explicit column_table(const connectivity& keys) : keys_(keys) {}

    [[nodiscard]] bool allocate() { return slots_.allocate(keys_.cols); }

    // The slot of column j of a matrix of the same rows; NONE_INDEX stands in it if no column here is equal.
    unsigned int& find(const connectivity& matrix, std::uint64_t j)
    {
        const std::uint64_t rows = keys_.rows;
        const unsigned int* wanted = entries(matrix, j);
        std::uint64_t hash = rows;
        for (std::uint64_t i = 0; i < rows; ++i) hash = mixed(hash ^ wanted[i]);
        return slots_.find(hash, [&](unsigned int k) { return std::equal(wanted, wanted + rows, entries(keys_, k)); });
    }

private:
    static const unsigned int* entries(const connectivity& m, std::uint64_t j)
    {
        return m.rows != 0 ? column(m, j) : nullptr;
    }

    const connectivity& keys_;
    hash_slots slots_;
};

// Columns without rows are all equal. Those from NONE_INDEX on have no position that could be reported.
int match_columns(const connectivity& keys1, const connectivity& keys2, matched_positions& found)
{
    column_table table(keys1);
    if (!table.allocate()) return out_of_memory;
    const std::uint64_t count1 = as_bound(keys1.cols);
    const std::uint64_t count2 = as_bound(keys2.cols);
    bool any_repeated = false;
    for (std::uint64_t k = 0; k < count1; ++k) {
        unsigned int& slot = table.find(keys1, k);
        any_repeated |= slot != NONE_INDEX;
        slot = static_cast<unsigned int>(k);
    }
    for (std::uint64_t j = 0; j < count2; ++j) {
        const unsigned int k = table.find(keys2, j);
        if (k != NONE_INDEX) found.match(k, j);
    }
    for (std::uint64_t k = 0; any_repeated && k < count1; ++k) found.in_2[k] = found.in_2[table.find(keys1, k)];
    return success;
}

// Hands the positions over, or nothing at all.
int conclude(int code, const matched_positions& found, index_list& pos_in_1, index_list& pos_in_2)
{
    if (code != success) {
        pos_in_1.clear();
        pos_in_2.clear();
    } else {
        pos_in_1.shallow_copy(found.in_1);
        pos_in_2.shallow_copy(found.in_2);
    }
    return code;
}

int match_lists(const index_list& ids1, const index_list& ids2, matched_positions& found)
{
    hash_slots places;
    if (!found.allocate(ids1.size, ids2.size) || !places.allocate(ids1.size)) return out_of_memory;
    const auto place_of = [&](unsigned int id) -> unsigned int& {
        return places.find(mixed(id), [&](unsigned int k) { return ids1[k] == id; });
    };
    for (std::uint64_t k = 0; k < as_bound(ids1.size); ++k)
        if (ids1[k] != NONE_INDEX) place_of(ids1[k]) = static_cast<unsigned int>(k);
    for (std::uint64_t j = 0; j < as_bound(ids2.size); ++j) {
        const unsigned int k = place_of(ids2[j]);
        if (k != NONE_INDEX) found.match(k, j);
    }
    return success;
}

int match_elements(const connectivity& connect1, const connectivity& connect2, bool strict, matched_positions& found)
{
    if (connect1.rows != connect2.rows) return bad_argument(2);
    if (!found.allocate(connect1.cols, connect2.cols)) return out_of_memory;
    if (strict) return match_columns(connect1, connect2, found);
    connectivity keys1, keys2;
    if (!normalise(connect1, keys1) || !normalise(connect2, keys2)) return out_of_memory;
    return match_columns(keys1, keys2, found);
}

}  // namespace

int get_IDs(const dense1D<unsigned int>& ids1, const dense1D<unsigned int>& ids2, dense1D<unsigned int>& pos_in_1,
            dense1D<unsigned int>& pos_in_2)
{
    matched_positions found;
    return conclude(match_lists(ids1, ids2, found), found, pos_in_1, pos_in_2);
}

int get_IDs(const dense2D<unsigned int>& connect1, const dense2D<unsigned int>& connect2,
            dense1D<unsigned int>& pos_in_1, dense1D<unsigned int>& pos_in_2, bool strict)
{
    matched_positions found;
    return conclude(match_elements(connect1, connect2, strict, found), found, pos_in_1, pos_in_2);
}

}  // namespace zeb::tessolv
