#ifndef ZEB_MISC_HISTOGRAM_H
#define ZEB_MISC_HISTOGRAM_H

#include <zeb/dense1D.h>

namespace zeb {
namespace misc {

/// Collects values: their number, extremes, mean, standard deviation and counts in bins of equal width. A host may
/// derive from it to collect statistics of its own; the library calls `process` and nothing else.
/// @code
/// zeb::misc::histogram h(0, 1, 4);
/// for (const double x : {0.1, 0.2, 0.3, 1.0, 1.5}) h.process(x);
/// h.bins();     // -> (2, 1, 0, 1)
/// h.above();    // -> 1
/// h.maximum();  // -> 1.5
/// @endcode
class TESSOLV_API histogram {
public:
    /// 20 bins over [-1, 1], the range of shape qualities.
    histogram();

    /// `bins` bins over [lower, upper], both bounds included. Without memory there are no bins; the rest is collected.
    histogram(double lower, double upper, unsigned int bins);

    histogram(const histogram&) = default;             ///< Copies the counts, too.
    histogram& operator=(const histogram&) = default;  ///< Copies the counts, too.
    virtual ~histogram();

    /// Adds one value. A NaN is counted by not_a_number() alone.
    virtual void process(double value);

    /// Adds every value of a vector.
    virtual void process(const dense1D<double>& values);

    unsigned long count() const;        ///< values added, NaN apart
    double minimum() const;             ///< smallest value; NaN when there is none
    double maximum() const;             ///< largest value; NaN when there is none
    double mean() const;                ///< NaN when there is no value
    double standard_deviation() const;  ///< root of the mean squared deviation (divisor: count); NaN without a value

    /// Values in each bin: of n bins, bin k starts at lower + (upper - lower) k / n and ends before the next one; the
    /// last one holds the upper bound, too. A deep copy.
    dense1D<unsigned int> bins() const;

    unsigned long below() const;         ///< values under the lower bound
    unsigned long above() const;         ///< values over the upper bound
    unsigned long not_a_number() const;  ///< NaN

private:
    [[gnu::visibility("hidden")]] void add(double value);

    double lower_;
    double upper_;
    dense1D<unsigned int> bins_;
    unsigned long count_ = 0;
    unsigned long below_ = 0;
    unsigned long above_ = 0;
    unsigned long not_a_number_ = 0;
    double minimum_;
    double maximum_;
    double sum_ = 0;
    double running_mean_ = 0;
    double squares_ = 0;  // sum of squared deviations from the running mean
};

}  // namespace misc
}  // namespace zeb

#endif
