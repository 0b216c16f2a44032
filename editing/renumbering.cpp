#include "editing/renumbering.h"

#include <algorithm>
#include <functional>

#include <tessolv/editing.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {
namespace {

// The memory from the first entry of a container to its last; views of one buffer may interleave without a common
// entry.
struct memory_span {
    const unsigned int* first = nullptr;
    const unsigned int* last = nullptr;

    bool meets(const memory_span& other) const
    {
        return std::less<>()(first, other.last) && std::less<>()(other.first, last);
    }
};

memory_span span_of(const dense1D<unsigned int>& list)
{
    return {list.begin(), list.end()};
}

memory_span span_of(const dense2D<unsigned int>& m)
{
    return m.empty() ? memory_span{} : memory_span{column(m, 0), column(m, m.cols - 1) + m.rows};
}

void map_run(unsigned int* run, std::uint64_t n, const dense1D<unsigned int>& new_IDs)
{
    const unsigned int* table = new_IDs.data();
    const unsigned int bound = as_bound(new_IDs.size);
    for (std::uint64_t i = 0; i < n; ++i)
        if (run[i] < bound) run[i] = table[run[i]];
}

void map_entries(dense1D<unsigned int>& ids, const dense1D<unsigned int>& new_IDs)
{
    if (!ids.empty()) map_run(ids.data(), ids.size, new_IDs);
}

void map_entries(dense2D<unsigned int>& connect, const dense1D<unsigned int>& new_IDs)
{
    for_each_run(connect, [&](unsigned int* run, std::uint64_t n) { map_run(run, n, new_IDs); });
}

// The table is read as it was on entry, also when it lies in what is written.
template <class Container>
void map_with_own_table(Container& entries, const dense1D<unsigned int>& new_IDs)
{
    dense1D<unsigned int> table;
    if (!span_of(entries).meets(span_of(new_IDs)))
        map_entries(entries, new_IDs);
    else if (table.copy(new_IDs))
        map_entries(entries, table);
}

template <class T>
void scatter(dense1D<T>& values, const dense1D<unsigned int>& perm)
{
    if (values.empty()) return;
    dense1D<T> moved;
    if (!moved.copy(values)) return;
    const std::uint64_t count = std::min(values.size, perm.size);
    for (std::uint64_t i = 0; i < count; ++i)
        if (perm[i] < values.size && perm[i] != i) moved[perm[i]] = values[i];
    values.shallow_copy(moved);
}

// Whether two matrices of the range may have entries in common.
bool any_shared(const matrix_range<dense2D<unsigned int>>& meshes, scratch<memory_span>& spans)
{
    std::transform(meshes.begin(), meshes.end(), spans.begin(), [](const auto& m) { return span_of(m); });
    std::sort(spans.begin(), spans.end(), [](const auto& a, const auto& b) { return std::less<>()(a.first, b.first); });
    const auto meet = [](const auto& a, const auto& b) { return a.meets(b); };
    return std::adjacent_find(spans.begin(), spans.end(), meet) != spans.end();
}

// Copies are mapped and written back: an entry that several matrices see gets the same value from each.
bool map_copies(const matrix_range<dense2D<unsigned int>>& meshes, const dense1D<unsigned int>& new_IDs)
{
    std::uint64_t total = 0;
    for (const auto& connect : meshes) total += connect.rows * connect.cols;
    scratch<unsigned int> mapped;
    if (!mapped.allocate(total)) return false;
    unsigned int* end = mapped.begin();
    for (auto& connect : meshes)
        for_each_run(connect, [&](unsigned int* run, std::uint64_t n) { end = std::copy_n(run, n, end); });
    map_run(mapped.begin(), total, new_IDs);
    const unsigned int* next = mapped.begin();
    for (auto& connect : meshes) {
        for_each_run(connect, [&](unsigned int* run, std::uint64_t n) {
            std::copy_n(next, n, run);
            next += n;
        });
    }
    return true;
}

}  // namespace

bool change_indices_once(const matrix_range<dense2D<unsigned int>>& meshes, const dense1D<unsigned int>& new_IDs)
{
    if (meshes.length() > 1) {
        scratch<memory_span> spans;
        if (!spans.allocate(meshes.length())) return false;
        if (any_shared(meshes, spans)) return map_copies(meshes, new_IDs);
    }
    for (auto& connect : meshes) map_entries(connect, new_IDs);
    return true;
}

void change_indices(dense1D<unsigned int>& ids, const dense1D<unsigned int>& new_IDs)
{
    map_with_own_table(ids, new_IDs);
}

void change_indices(dense2D<unsigned int>& connect, const dense1D<unsigned int>& new_IDs)
{
    map_with_own_table(connect, new_IDs);
}

void permutation(dense1D<unsigned int>& values, const dense1D<unsigned int>& perm)
{
    scatter(values, perm);
}

void permutation(dense1D<double>& values, const dense1D<unsigned int>& perm)
{
    scatter(values, perm);
}

}  // namespace zeb::tessolv
