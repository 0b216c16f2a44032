#include <tessolv/core.h>

#include "core/columns.h"

namespace zeb::tessolv {
namespace {

// Entries are looked at in runs of this length without a branch in between: long enough to vectorise, short enough to
// stop soon after the first bad one.
constexpr std::uint64_t batch = 1024;

template <class Bad>
bool none_is_bad(const unsigned int* values, std::uint64_t count, Bad bad)
{
    for (std::uint64_t from = 0; from < count; from += batch) {
        const std::uint64_t to = std::min(count, from + batch);
        bool found = false;
        for (std::uint64_t i = from; i < to; ++i) found |= bad(values[i]);
        if (found) return false;
    }
    return true;
}

// Every entry is below n.
bool all_below(const dense2D<unsigned int>& m, unsigned int n)
{
    bool good = true;
    for_each_run(m, [&](const unsigned int* run, std::uint64_t count) {
        good = good && none_is_bad(run, count, [n](unsigned int v) { return v >= n; });
    });
    return good;
}

// NONE_INDEX + 1 is 0, so that one comparison lets both kinds of valid entries through.
bool all_below_or_none(const unsigned int* values, std::uint64_t count, unsigned int n)
{
    return none_is_bad(values, count, [n](unsigned int v) { return v + 1u > n; });
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
    return ids.empty() || all_below_or_none(ids.data(), ids.size, n);
}

bool check_IDs(const dense2D<unsigned int>& ids, unsigned int n)
{
    bool good = true;
    for_each_run(
        ids, [&](const unsigned int* run, std::uint64_t count) { good = good && all_below_or_none(run, count, n); });
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
