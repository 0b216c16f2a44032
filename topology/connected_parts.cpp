#include <tessolv/topology.h>

#include <algorithm>
#include <bit>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {
namespace {

// One bit for each of a number of elements.
class element_marks {
public:
    [[nodiscard]] bool allocate(std::uint64_t elements) { return words_.allocate(elements / 64 + 1, 0); }

    // Whether e was not marked before; it is now.
    bool mark(std::uint64_t e)
    {
        const std::uint64_t bit = std::uint64_t{1} << (e % 64);
        const bool is_new = (words_[e / 64] & bit) == 0;
        words_[e / 64] |= bit;
        return is_new;
    }

    // The first element from e on that is not marked, or one from `end` on.
    std::uint64_t first_unmarked(std::uint64_t e, std::uint64_t end) const
    {
        while (e < end) {
            const std::uint64_t open = ~words_[e / 64] >> (e % 64);
            if (open != 0) return e + static_cast<std::uint64_t>(std::countr_zero(open));
            e = (e / 64 + 1) * 64;
        }
        return end;
    }

private:
    scratch<std::uint64_t> words_;
};

// Elements between the one that is looked at and the one whose column is fetched from memory: enough for a few columns
// to be on their way at once.
constexpr std::uint64_t fetched_ahead = 12;

// What becomes of an entry equal to the number of elements, which is neither an element nor beyond them.
enum class entry_past_end { listed_once, skipped };

bool appended(dense1D<unsigned int>& list, std::uint64_t value)
{
    const std::uint64_t before = list.size;
    list.push_back(static_cast<unsigned int>(value));
    return list.size != before;
}

// Lists the elements part by part, each part breadth first from its lowest element, and where the parts begin and end.
// The list is the queue as well: an element is marked when it enters, which gives the order of marking it when it is
// taken, as only its first place in the queue counts. False without memory.
bool list_parts(const dense2D<unsigned int>& neighbors, entry_past_end past_end, dense1D<unsigned int>& elements,
                dense1D<unsigned int>& offsets)
{
    const std::uint64_t n = neighbors.cols;
    element_marks entered;
    if (n > NONE_INDEX || !entered.allocate(n + 1) || !elements.resize(n + 1) || !appended(offsets, 0)) return false;
    if (past_end == entry_past_end::skipped || n == NONE_INDEX) entered.mark(n);

    unsigned int* const list = elements.data();
    std::uint64_t listed = 0;
    for (std::uint64_t seed = entered.first_unmarked(0, n); seed < n; seed = entered.first_unmarked(seed, n)) {
        entered.mark(seed);
        std::uint64_t next = listed;
        list[listed++] = static_cast<unsigned int>(seed);
        for (; next < listed; ++next) {
            const std::uint64_t e = list[next];
            if (e == n) continue;
            if (next + fetched_ahead < listed) __builtin_prefetch(&neighbors(0, list[next + fetched_ahead]));
            for (std::uint64_t i = 0; i < neighbors.rows; ++i) {
                const unsigned int m = neighbors(i, e);
                if (m <= n && entered.mark(m)) list[listed++] = m;
            }
        }
        if (!appended(offsets, listed)) return false;
    }
    return elements.resize(listed);
}

// The columns of m in the order of a list; `entry` turns each old entry into the new one. False without memory.
template <class Entry>
bool gather(const dense2D<unsigned int>& m, const dense1D<unsigned int>& order, dense2D<unsigned int>& result,
            Entry entry)
{
    if (!result.resize(m.rows, m.cols)) return false;
    for (std::uint64_t k = 0; k < m.cols && m.rows != 0; ++k)
        std::transform(column(m, order[k]), column(m, order[k]) + m.rows, column(result, k), entry);
    return true;
}

// Reorders both matrices, and the entries of the second with their columns. False, and nothing changed, without memory.
bool reorder(const dense1D<unsigned int>& order, dense2D<unsigned int>& connect, dense2D<unsigned int>& neighbors)
{
    const std::uint64_t n = order.size;
    scratch<unsigned int> new_index;
    if (!new_index.allocate(n)) return false;
    for (std::uint64_t k = 0; k < n; ++k) new_index[order[k]] = static_cast<unsigned int>(k);

    dense2D<unsigned int> new_connect;
    dense2D<unsigned int> new_neighbors;
    if (!gather(connect, order, new_connect, [](unsigned int node) { return node; })) return false;
    if (!gather(neighbors, order, new_neighbors, [&](unsigned int m) { return m < n ? new_index[m] : m; }))
        return false;
    connect.shallow_copy(new_connect);
    neighbors.shallow_copy(new_neighbors);
    return true;
}

}  // namespace

int get_connex_parts(const dense2D<unsigned int>& neighbors, dense1D<unsigned int>& elements,
                     dense1D<unsigned int>& offsets)
{
    dense1D<unsigned int> listed;
    dense1D<unsigned int> parts;
    if (!list_parts(neighbors, entry_past_end::listed_once, listed, parts)) {
        listed.clear();  // exhausted memory is not reported here: part of the interface
        parts.clear();
    }
    elements.shallow_copy(listed);
    offsets.shallow_copy(parts);
    return success;
}

int get_connex_parts(dense2D<unsigned int>& connect, dense2D<unsigned int>& neighbors, dense1D<unsigned int>& offsets)
{
    dense1D<unsigned int> order;
    dense1D<unsigned int> parts;
    const bool of_one_length = connect.cols == neighbors.cols && neighbors.cols != 0;
    if (!list_parts(neighbors, entry_past_end::skipped, order, parts) ||
        (of_one_length && !reorder(order, connect, neighbors)))
        parts.clear();  // exhausted memory is not reported here: part of the interface
    offsets.shallow_copy(parts);
    return success;
}

}  // namespace zeb::tessolv
