#include "spatial/mersenne_twister.h"

#include <utility>

namespace zeb::tessolv {
namespace {

// The first state of the generator in the form in which a standard engine takes it.
class multiplicative_seed {
public:
    using result_type = std::uint32_t;

    explicit multiplicative_seed(std::uint32_t seed) : word_(seed | 1u) {}

    template <class Iterator>
    void generate(Iterator first, Iterator last)
    {
        for (; first != last; ++first) {
            *first = word_;
            word_ *= 69069u;
        }
    }

private:
    std::uint32_t word_;
};

std::mt19937 seeded_engine(std::uint32_t seed)
{
    multiplicative_seed words(seed);
    return std::mt19937(words);
}

}  // namespace

mersenne_twister::mersenne_twister(std::uint32_t seed) : engine_(seeded_engine(seed)) {}

// R. Durstenfeld. Algorithm 235: Random permutation. Communications of the ACM 7(7), 1964; run forward.
void shuffle(unsigned int* values, std::uint64_t count)
{
    mersenne_twister random(1);
    for (std::uint64_t i = 1; i < count; ++i) std::swap(values[i], values[random.draw() % (i + 1)]);
}

}  // namespace zeb::tessolv
