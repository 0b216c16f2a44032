#ifndef TESTS_QUALITY_RECORDING_HISTOGRAM_H
#define TESTS_QUALITY_RECORDING_HISTOGRAM_H

#include <vector>

#include <tessolv/tessolv.h>

namespace test {

// A histogram that writes down what it is fed, and how.
struct recording_histogram : zeb::misc::histogram {
    std::vector<double> values;
    int vectors = 0, single_values = 0;

    // Asks for no more memory up to so many values.
    explicit recording_histogram(std::size_t room = 0) { values.reserve(room); }

    void process(double value) override
    {
        ++single_values;
        values.push_back(value);
    }
    void process(const zeb::dense1D<double>& more) override
    {
        ++vectors;
        values.insert(values.end(), more.begin(), more.end());
    }
};

}  // namespace test

#endif
