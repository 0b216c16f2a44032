#ifndef TESTS_SUPPORT_RANDOM_MESHES_H
#define TESTS_SUPPORT_RANDOM_MESHES_H

#include <cstdint>
#include <random>

#include <tessolv/tessolv.h>

namespace test {

// Repeatable random numbers.
class dice {
public:
    explicit dice(unsigned seed) : engine_(seed) {}

    // 0 .. n - 1
    unsigned below(unsigned n) { return static_cast<unsigned>(engine_() % n); }
    bool one_in(unsigned n) { return below(n) == 0; }

    template <class T, std::size_t Count>
    const T& one_of(const T (&values)[Count])
    {
        return values[below(Count)];
    }

private:
    std::mt19937 engine_;
};

// Elements of random nodes first .. first + nodes - 1: with few nodes most elements are degenerate or share faces with
// several others. In mixed matrices of 4 and more rows about half of the elements are of the smaller shapes.
inline zeb::dense2D<unsigned> random_elements(dice& random, zeb::element_type type, std::uint64_t rows,
                                              std::uint64_t elements, unsigned nodes, unsigned first = 0)
{
    zeb::dense2D<unsigned> connect(rows, elements);
    for (std::uint64_t e = 0; e < elements; ++e) {
        for (std::uint64_t i = 0; i < rows; ++i) connect(i, e) = first + random.below(nodes);
        if (type == zeb::EL_FACE_MIX && rows == 4 && random.one_in(2)) connect(3, e) = zeb::NONE_INDEX;
        if (type == zeb::EL_SOLID_MIX && rows > 4 && random.one_in(3)) connect(4, e) = zeb::NONE_INDEX;
        if (type == zeb::EL_SOLID_MIX && rows > 6 && random.one_in(2)) connect(6, e) = zeb::NONE_INDEX;
    }
    return connect;
}

}  // namespace test

#endif
