#ifndef TESTS_SUPPORT_MATRICES_H
#define TESTS_SUPPORT_MATRICES_H

#include <initializer_list>
#include <ostream>
#include <vector>

#include <tessolv/tessolv.h>

// Matrices and lists as a reader would write them down, and how GoogleTest prints them.

namespace test {

constexpr unsigned N = zeb::NONE_INDEX;

template <class T>
zeb::dense1D<T> list_of(const std::vector<T>& values)
{
    zeb::dense1D<T> v(values.size());
    std::copy(values.begin(), values.end(), v.begin());
    return v;
}

inline zeb::dense1D<unsigned> indices(const std::vector<unsigned>& values)
{
    return list_of(values);
}
inline zeb::dense1D<int> types(const std::vector<int>& values)
{
    return list_of(values);
}
inline zeb::dense1D<double> numbers(const std::vector<double>& values)
{
    return list_of(values);
}

// A matrix by its columns; all of the same length.
template <class T>
zeb::dense2D<T> matrix_of(const std::vector<std::vector<T>>& cols)
{
    zeb::dense2D<T> m(cols.empty() ? 0 : cols.front().size(), cols.size());
    for (std::size_t j = 0; j < cols.size(); ++j)
        for (std::size_t i = 0; i < cols[j].size(); ++i) m(i, j) = cols[j][i];
    return m;
}

inline zeb::dense2D<unsigned> columns(const std::vector<std::vector<unsigned>>& cols)
{
    return matrix_of(cols);
}
inline zeb::dense2D<double> points(const std::vector<std::vector<double>>& cols)
{
    return matrix_of(cols);
}

template <class T>
zeb::dense2D<T> filled(std::uint64_t rows, std::uint64_t cols, T value)
{
    return zeb::dense2D<T>(rows, cols, value);
}

// The same values in a matrix with offset > 0 and ld > rows; what surrounds them is `padding`.
template <class T>
zeb::dense2D<T> as_padded_view(const zeb::dense2D<T>& m, T padding)
{
    zeb::dense2D<T> whole(m.rows + 3, m.cols + 2, padding);
    zeb::dense2D<T> view = whole.sub_matrix(2, 1, m.rows, m.cols);
    for (std::uint64_t j = 0; j < m.cols; ++j)
        for (std::uint64_t i = 0; i < m.rows; ++i) view(i, j) = m(i, j);
    return view;
}

}  // namespace test

namespace zeb {

template <class T>
void PrintTo(const dense1D<T>& v, std::ostream* out)
{
    *out << "(";
    for (std::uint64_t i = 0; i < v.size; ++i) *out << (i != 0 ? ", " : "") << v[i];
    *out << ")";
}

template <class T>
void PrintTo(const dense2D<T>& m, std::ostream* out)
{
    *out << m.rows << " x " << m.cols << " [";
    for (std::uint64_t j = 0; j < m.cols; ++j) {
        *out << (j != 0 ? ", (" : "(");
        for (std::uint64_t i = 0; i < m.rows; ++i) *out << (i != 0 ? " " : "") << m(i, j);
        *out << ")";
    }
    *out << "]";
}

}  // namespace zeb

#endif
