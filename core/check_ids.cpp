#include <tessolv/core.h>

#include "core/columns.h"
#include "core/index_runs.h"

namespace zeb::tessolv {
namespace {

// Every entry is below n.
bool all_below(const dense2D<unsigned int>& m, unsigned int n)
{
    bool good = true;
    for_each_run(m, [&](const unsigned int* run, std::uint64_t count) { good = good && run_is_below(run, count, n); });
    return good;
}

// A column of a mixed kind ends at a NONE_INDEX in row `end_a` or `end_b`; what stands above it is below n.
bool mixed_columns_below(const dense2D<unsigned int>& connect, std::uint64_t end_a, std::uint64_t end_b, unsigned int n)
{
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        const unsigned int* nodes = column(connect, e);
        for (std::uint64_t i = 0; i < connect.rows; ++i) {
            if (nodes[i] == NONE_INDEX && (i == end_a || i == end_b)) break;
            if (nodes[i] >= n) return false;
        }
    }
    return true;
}

}  // namespace

bool check_IDs(const dense1D<unsigned int>& ids, unsigned int n)
{
    return ids.empty() || run_is_below_or_none(ids.data(), ids.size, n);
}

bool check_IDs(const dense2D<unsigned int>& ids, unsigned int n)
{
    bool good = true;
    for_each_run(
        ids, [&](const unsigned int* run, std::uint64_t count) { good = good && run_is_below_or_none(run, count, n); });
    return good;
}

bool check_IDs(const dense2D<unsigned int>& connect, element_type type, unsigned int n)
{
    if (connect.rows * connect.cols == 0) return true;
    switch (type) {
        case EL_FACE_MIX:
            return (connect.rows == 3 || connect.rows == 4) && mixed_columns_below(connect, 3, 3, n);
        case EL_SOLID_MIX:
            return (connect.rows == 4 || connect.rows == 6 || connect.rows == 8) &&
                   mixed_columns_below(connect, 4, 6, n);
        default:
            return type >= EL_NONE && type <= EL_HEXA27 && connect.rows == NODES_PER_ELEMENT[type] &&
                   all_below(connect, n);
    }
}

}  // namespace zeb::tessolv
