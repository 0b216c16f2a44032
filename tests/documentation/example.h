#ifndef TESTS_DOCUMENTATION_EXAMPLE_H
#define TESTS_DOCUMENTATION_EXAMPLE_H

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include <tessolv/tessolv.h>

#include "support/matrices.h"

// What the examples of the documentation are wrapped in: a line `expression;  // -> text` of an example becomes
// example::expect(expression, "text", ...), and run_all.py writes the rest around it.
namespace example {

inline int& wrong_lines()
{
    static int count = 0;
    return count;
}

inline void print(std::ostream& out, unsigned value)
{
    if (value == zeb::NONE_INDEX)
        out << "NONE_INDEX";
    else
        out << value;
}
inline void print(std::ostream& out, bool value)
{
    out << (value ? "true" : "false");
}
template <class T>
void print(std::ostream& out, const T& value)
{
    out << value;
}

template <class Values>
void print_values(std::ostream& out, const Values& values, std::uint64_t count)
{
    out << "(";
    for (std::uint64_t i = 0; i < count; ++i) {
        out << (i != 0 ? ", " : "");
        print(out, values[i]);
    }
    out << ")";
}
template <class T>
void print(std::ostream& out, const zeb::dense1D<T>& v)
{
    print_values(out, v, v.size);
}
template <class T, std::size_t N>
void print(std::ostream& out, const zeb::vector_fixed<T, N>& v)
{
    print_values(out, v, N);
}
// The packed entries.
template <class T, std::size_t N>
void print(std::ostream& out, const zeb::symmetric_fixed<T, N>& m)
{
    print_values(out, m, N * (N + 1) / 2);
}
// Column by column.
template <class T>
void print(std::ostream& out, const zeb::dense2D<T>& m)
{
    for (std::uint64_t j = 0; j < m.cols; ++j) {
        out << (j != 0 ? " " : "");
        print_values(out, m.col(j), m.rows);
    }
}

template <class T>
void expect(const T& value, const std::string& text, const char* file, int line)
{
    std::ostringstream found;
    found.imbue(std::locale::classic());
    print(found, value);
    if (found.str() == text) return;
    std::cerr << file << ":" << line << ": the example says " << text << ", it gives " << found.str() << "\n";
    ++wrong_lines();
}

}  // namespace example

#endif
