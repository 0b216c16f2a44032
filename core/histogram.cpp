#include <zeb/misc/histogram.h>

#include <cmath>

namespace zeb::misc {
namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// Bin of a value within [lower, upper]. The quotient may be off by one at the edge of a bin, so the edges decide; the
// upper bound belongs to the last bin.
std::uint64_t bin_of(double value, double lower, double upper, std::uint64_t bins)
{
    const double width = upper - lower;
    const auto edge = [&](std::uint64_t k) {
        return lower + width * static_cast<double>(k) / static_cast<double>(bins);
    };
    const double place = (value - lower) / width * static_cast<double>(bins);
    const double last = static_cast<double>(bins - 1);
    auto k = static_cast<std::uint64_t>(place >= last ? last : place >= 0 ? place : 0);
    if (k > 0 && value < edge(k)) --k;
    if (k + 1 < bins && value >= edge(k + 1)) ++k;
    return k;
}

}  // namespace

histogram::histogram() : histogram(-1.0, 1.0, 20) {}

histogram::histogram(double lower, double upper, unsigned int bins)
    : lower_(lower), upper_(upper), bins_(bins, 0u), minimum_(none), maximum_(none)
{
}

histogram::~histogram() = default;

void histogram::process(double value)
{
    add(value);
}

void histogram::process(const dense1D<double>& values)
{
    for (const double value : values) add(value);
}

// The squared deviations follow the running mean value by value: B. P. Welford, Technometrics 4(3), 1962. The mean that
// is told comes from the plain sum, which an infinity leaves infinite where the running mean would become no number.
void histogram::add(double value)
{
    if (std::isnan(value)) {
        ++not_a_number_;
        return;
    }
    ++count_;
    minimum_ = count_ == 1 ? value : std::min(minimum_, value);
    maximum_ = count_ == 1 ? value : std::max(maximum_, value);
    sum_ += value;
    const double deviation = value - running_mean_;
    running_mean_ += deviation / static_cast<double>(count_);
    squares_ += deviation * (value - running_mean_);

    if (value < lower_) {
        ++below_;
    } else if (value > upper_) {
        ++above_;
    } else if (!bins_.empty()) {
        unsigned int& held = bins_[bin_of(value, lower_, upper_, bins_.size)];
        if (held != std::numeric_limits<unsigned int>::max()) ++held;
    }
}

unsigned long histogram::count() const
{
    return count_;
}
double histogram::minimum() const
{
    return minimum_;
}
double histogram::maximum() const
{
    return maximum_;
}
double histogram::mean() const
{
    return count_ != 0 ? sum_ / static_cast<double>(count_) : none;
}
double histogram::standard_deviation() const
{
    return count_ != 0 ? std::sqrt(squares_ / static_cast<double>(count_)) : none;
}
dense1D<unsigned int> histogram::bins() const
{
    return bins_;
}
unsigned long histogram::below() const
{
    return below_;
}
unsigned long histogram::above() const
{
    return above_;
}
unsigned long histogram::not_a_number() const
{
    return not_a_number_;
}

}  // namespace zeb::misc
