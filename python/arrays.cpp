#include "arrays.h"

namespace binding {

long held_buffers = 0;

namespace {

void widen(const index* from, std::uint64_t count, std::int64_t* to)
{
    for (std::uint64_t i = 0; i < count; ++i) to[i] = from[i] == zeb::NONE_INDEX ? -1 : std::int64_t{from[i]};
}

}  // namespace

py::array index_table(dense1D<index>&& values, bool raw)
{
    if (raw) return handed_over(std::move(values));
    py::array_t<std::int64_t> table(detail::count(values.size));
    widen(values.data(), values.size, table.mutable_data());
    return table;
}

py::array index_table(dense2D<index>&& values, bool raw, std::uint64_t columns)
{
    if (raw) return handed_over(std::move(values), columns);
    const std::uint64_t width = values.rows != 0 ? values.rows : columns;
    py::array_t<std::int64_t> table(std::vector<py::ssize_t>{detail::count(values.cols), detail::count(width)});
    for (std::uint64_t e = 0; !values.empty() && e < values.cols; ++e)
        widen(&values(0, e), values.rows, table.mutable_data() + e * values.rows);
    return table;
}

}  // namespace binding
