#ifndef TESTS_IO_WRITER_FAULTS_H
#define TESTS_IO_WRITER_FAULTS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tessolv/tessolv.h>

#include "support/matrices.h"
#include "support/temporary_file.h"

// One call of a writer of meshes, and faults that can be put into it.

namespace test {

struct writer_call {
    temporary_file file;
    const char* name = file.name();
    zeb::dense2D<double> pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    std::vector<zeb::dense2D<unsigned>> matrices = {columns({{0, 1, 2, 3}, {1, 2, 3, 4}}), columns({{0, 1, 2}})};
    zeb::dense1D<int> types = test::types({zeb::EL_TETRA4, zeb::EL_TRIA3});
    bool reversed = false;

    template <class Writer>
    int run(Writer write) const
    {
        const zeb::dense2D<unsigned>* first = matrices.data();
        const zeb::dense2D<unsigned>* last = first + matrices.size();
        return reversed ? write(name, pos, last, first, types) : write(name, pos, first, last, types);
    }
};

struct writer_fault {
    const char* name;
    int code;
    void (*put_into)(writer_call& call);
};

// Runs the call with each fault and with each pair of faults of different codes, listed in the order in which they must
// be found: the code is that of the first of them. `expect_left(call, code)` looks at what the call left behind.
template <class Writer, class Left>
void expect_codes_in_order(Writer write, const std::vector<writer_fault>& faults, Left expect_left)
{
    for (std::size_t i = 0; i < faults.size(); ++i)
        for (std::size_t k = i; k < faults.size(); ++k) {
            if (k != i && faults[k].code == faults[i].code) continue;
            SCOPED_TRACE(std::string(faults[i].name) + " and " + faults[k].name);
            writer_call call;
            faults[k].put_into(call);
            faults[i].put_into(call);
            const int code = call.run(write);
            EXPECT_EQ(code, faults[i].code);
            expect_left(call, code);
        }
}

// The faults that every writer knows.
inline void no_file_name(writer_call& call)
{
    call.name = nullptr;
}
inline void empty_file_name(writer_call& call)
{
    call.name = "";
}
inline void a_directory(writer_call& call)
{
    call.name = "/";
}
inline void a_missing_directory(writer_call& call)
{
    call.name = "/no such directory/file";
}
inline void points_of_no_rows(writer_call& call)
{
    call.pos = zeb::dense2D<double>();
}
inline void points_of_four_rows(writer_call& call)
{
    call.pos = filled(4, 5, 1.0);
}
inline void last_before_first(writer_call& call)
{
    call.reversed = true;
}
inline void too_few_types(writer_call& call)
{
    call.types.resize(call.types.size - 1);
}
inline void too_many_types(writer_call& call)
{
    call.types.resize(call.types.size + 1, zeb::EL_TRIA3);
}
inline void wrong_rows(writer_call& call)
{
    call.matrices.front() = columns({{0, 1, 2}});
}
inline void none_in_a_pure_matrix(writer_call& call)
{
    call.matrices.front()(3, 1) = N;
}
inline void type_beyond_the_last(writer_call& call)
{
    call.types[0] = 21;
}
inline void type_below_the_first(writer_call& call)
{
    call.types[0] = -1;
}
inline void pyramid_among_mixed_solids(writer_call& call)
{
    call.matrices.front() = columns({{0, 1, 2, 3, 4, N, N, N}});
    call.types[0] = zeb::EL_SOLID_MIX;
}

}  // namespace test

#endif
