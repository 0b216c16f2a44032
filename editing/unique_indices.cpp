#include <algorithm>

#include <tessolv/editing.h>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "core/scratch.h"
#include "editing/index_set.h"

namespace zeb::tessolv {
namespace {

using connect_range = matrix_range<const dense2D<unsigned int>>;

template <class Visit>
void visit_runs(const dense1D<unsigned int>& list, Visit visit)
{
    if (!list.empty()) visit(list.data(), list.size);
}

template <class Visit>
void visit_runs(const connect_range& meshes, Visit visit)
{
    for (const auto& connect : meshes) for_each_run(connect, visit);
}

// The distinct indices of a list or of a range of matrices that are not in `exclude`, in the order of their first
// appearance. False without memory.
template <class Source>
bool collect_unique(const Source& source, const dense1D<unsigned int>& exclude, scratch<unsigned int>& unique)
{
    std::uint64_t count = 0;
    index_interval interval;
    visit_runs(source, [&](const unsigned int* run, std::uint64_t n) {
        count += n;
        interval.include(run, n);
    });
    unique.clear();
    if (interval.length() == 0) return true;
    if (!unique.allocate(std::min(interval.length(), count))) return false;
    return with_index_set(interval, count + exclude.size, [&](auto& set) {
        visit_runs(exclude, [&](const unsigned int* run, std::uint64_t n) {
            for (std::uint64_t i = 0; i < n; ++i) set.insert(run[i]);
        });
        unsigned int* end = unique.begin();
        visit_runs(source, [&](const unsigned int* run, std::uint64_t n) {
            for (std::uint64_t i = 0; i < n; ++i)
                if (set.insert(run[i])) *end++ = run[i];
        });
        unique.truncate(static_cast<std::size_t>(end - unique.begin()));
    });
}

// Room at the end of a list. It doubles where the list has to move, so that appending bit by bit stays linear.
bool reserve_more(dense1D<unsigned int>& out, std::uint64_t more)
{
    return out.reserve(out.size + more, 2);
}

bool append_values(dense1D<unsigned int>& out, const scratch<unsigned int>& values)
{
    const std::uint64_t before = out.size;
    if (!reserve_more(out, values.size()) || !out.resize(before + values.size())) return false;
    std::copy(values.begin(), values.end(), out.begin() + before);
    return true;
}

std::uint64_t total_columns(const connect_range& meshes)
{
    std::uint64_t total = 0;
    for (const auto& connect : meshes) total += connect.empty() ? 0 : connect.cols;
    return total;
}

}  // namespace

int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in, const dense1D<unsigned int>& exclude)
{
    scratch<unsigned int> unique;
    if (collect_unique(in, exclude, unique)) append_values(out, unique);
    return success;  // without memory too, `out` is then as it was: part of the interface
}

int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in)
{
    return unique_indices(out, in, dense1D<unsigned int>());
}

int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last)
{
    const connect_range meshes{first, last};
    if (meshes.reversed()) return bad_argument(3);
    // Room for one index per element, as the interface has it, is asked for even where fewer are found.
    scratch<unsigned int> unique;
    return reserve_more(out, total_columns(meshes)) && collect_unique(meshes, dense1D<unsigned int>(), unique) &&
                   append_values(out, unique)
               ? success
               : out_of_memory;
}

int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>& connect)
{
    return unique_indices(out, &connect, &connect + 1);
}

int count_unique_indices(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last)
{
    const connect_range meshes{first, last};
    if (meshes.reversed()) return bad_argument(2);  // not the -3 of unique_indices: part of the interface
    scratch<unsigned int> unique;
    return collect_unique(meshes, dense1D<unsigned int>(), unique) ? as_result(unique.size()) : out_of_memory;
}

int count_unique_indices(const dense2D<unsigned int>& connect)
{
    return count_unique_indices(&connect, &connect + 1);
}

}  // namespace zeb::tessolv
