#ifndef TESSOLV_BENCHMARKS_COMPARE_GROWTH_OPERATIONS_H
#define TESSOLV_BENCHMARKS_COMPARE_GROWTH_OPERATIONS_H

#include "meshes.h"

// Every operation of the library on an input of a given size: what growth.cpp times and instructions.cpp counts.
namespace compare {

using work = std::function<void(lap&)>;

struct operation {
    const char* name;
    bool has_order;  // whether numbering plays a part
    std::function<work(double n, bool shuffled)> prepare;
};

const std::vector<operation>& operations();
const std::vector<operation>& file_operations();  // those of them that write and read files

// What the machine itself charges: one plain loop that writes numbers to places in the order given.
const operation& plain_writes();

// An input made to be slow, and one of the same size that is not.
struct hostile {
    const char* operation;
    const char* input;
    std::function<work(double n)> prepare, prepare_random;
};

const std::vector<hostile>& hostile_inputs();

// -- shared by the tables

dense2D<double> random_points(double n, unsigned int seed);
mesh triangle_soup(double facets, bool shuffled);

// Binds an input, made now, to what is done with it in each run.
template <class Input, class Run>
work on(Input input, Run run)
{
    return [kept = std::make_shared<const Input>(std::move(input)), run](lap& l) { run(*kept, l); };
}

// An operation on the input that `make` makes.
template <class Make, class Run>
operation with(const char* name, Make make, Run run, bool has_order = true)
{
    return {name, has_order, [=](double n, bool shuffled) { return on(make(n, shuffled), run); }};
}

}  // namespace compare

#endif
