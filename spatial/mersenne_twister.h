#ifndef TESSOLV_SPATIAL_MERSENNE_TWISTER_H
#define TESSOLV_SPATIAL_MERSENNE_TWISTER_H

#include <cstdint>
#include <random>

namespace zeb::tessolv {

// M. Matsumoto, T. Nishimura. Mersenne Twister. ACM TOMACS 8(1), 1998. Seeded by the multiplier 69069, which is not the
// seeding of std::mt19937: the streams differ, so the standard engine as it is cannot stand in.
class mersenne_twister {
public:
    explicit mersenne_twister(std::uint32_t seed);

    // The next 32-bit value.
    std::uint32_t draw() { return static_cast<std::uint32_t>(engine_()); }

private:
    std::mt19937 engine_;
};

// Puts values into the order in which they enter a search tree: random enough to balance it, and the same in every
// call. The generator lives in the call.
void shuffle(unsigned int* values, std::uint64_t count);

}  // namespace zeb::tessolv

#endif
