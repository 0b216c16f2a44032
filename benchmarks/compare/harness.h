#ifndef TESSOLV_BENCHMARKS_COMPARE_HARNESS_H
#define TESSOLV_BENCHMARKS_COMPARE_HARNESS_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Measures operations of the library beside those of other libraries: the contestants of a row run one after the other
// on the same input, round by round. A program is a table of cases (what goes in) and tables of contestants (who takes
// it), which enter themselves from the file of each peer: a peer that is not installed is a file that is not compiled.
namespace compare {

// What a row cannot be faster than on the machine that measured the rates of limits.cpp.
struct cost {
    double streamed = 0.0;   // bytes read and written in order
    double fresh = 0.0;      // bytes of results, which are new memory
    double scattered = 0.0;  // items read or written at random ...
    double within = 0.0;     // ... in so many bytes
    double printed = 0.0;    // numbers with decimals turned into text
    double integers = 0.0;   // whole numbers turned into text
    double scanned = 0.0;    // numbers read from text
    double stored = 0.0;     // bytes of files written
    double loaded = 0.0;     // bytes of files read
};

// Memory of the process in bytes: now, and its greatest since the last reset.
struct memory {
    static double now();
    static double greatest();
    static void reset();  // gives what was freed back to the system first
};

// On a busy machine the time that the process had a processor, and its children, tells more than the clock on the wall.
extern bool processor_time;
double seconds_now();

// One run of one contestant.
class lap {
public:
    lap(bool with_memory, bool asks) : with_memory_(with_memory), asks_(asks) {}

    bool with_memory() const { return with_memory_; }
    bool asks() const { return asks_; }  // whether the answer is wanted: for those that take long

    // What counts. Everything before and after it is preparation and comparison of the results.
    template <class Operation>
    void timed(Operation operation)
    {
        const double before = start();
        if (entered != nullptr) entered();
        const double begin = seconds_now();
        operation();
        seconds = seconds_now() - begin;
        if (left != nullptr) left();
        stop(before);
    }

    // For an operation that ran elsewhere.
    void measured(double seconds_there, double peak_there) { seconds = seconds_there, peak = peak_there; }

    // What the operation found. A peer that tells less gives the first values only.
    void answer(std::vector<double> values) { answers = std::move(values); }
    void decline() { declined = true; }

    // For those who count something else than seconds.
    static inline void (*entered)() = nullptr;
    static inline void (*left)() = nullptr;

    double seconds = 0.0;
    double peak = 0.0;  // memory beyond the inputs, results included
    double kept = 0.0;  // memory of the results
    std::vector<double> answers;
    bool declined = false;

private:
    double start() const;
    void stop(double before);

    bool with_memory_;
    bool asks_;
};

inline const char* const ours = "tessolv";

template <class Input>
struct contestant {
    const char* operation;
    const char* name;    // of the library
    const char* called;  // what of it was called
    const char* note;    // in what it does less or more; empty when it is the same
    std::function<void(const Input&, lap&)> run;
    double tolerance = 0.0;  // of its answers, where it is coarser than the case allows
};

template <class Input>
struct case_of {
    const char* operation;
    const char* size;
    const char* compared;  // what the answers are
    std::function<Input(bool shuffled)> input;
    std::function<cost(const Input&, bool shuffled)> limit = {};
    bool has_order = true;   // whether numbering plays a part
    double tolerance = 0.0;  // relative, between answers
};

template <class Input>
std::vector<contestant<Input>>& contestants()
{
    static std::vector<contestant<Input>> all;
    return all;
}

template <class Input>
bool enter(std::vector<contestant<Input>> more)
{
    auto& all = contestants<Input>();
    all.insert(all.end(), more.begin(), more.end());
    return true;
}

// -- what the tables are handed to; the input is bound by now

struct runner {
    std::string name, called, note;
    std::function<void(lap&)> run;
    double tolerance;
};

struct row {
    std::string family, operation, size, numbering, compared;
    cost limit;
    std::vector<runner> runners;
};

struct settings {
    int runs = 5;             // at least
    double small_budget = 1;  // seconds that a contestant may spend on more runs than that
    std::string filter, json;

    settings(int argc, char** argv);
};

// Sizes are divided by this in a quick run; set by `settings`.
extern double shrink;

class report {
public:
    report(std::string family, const settings& s);
    ~report();  // writes the JSON file
    bool wants(const std::string& operation, const std::string& size, const std::string& numbering) const;
    void measure(const row& r);
    bool agreed() const { return agreed_; }

private:
    struct rows;
    std::string family_;
    settings settings_;
    rows* rows_;
    bool agreed_ = true;
};

template <class Input>
void measure_cases(report& all, const std::string& family, const std::vector<case_of<Input>>& cases)
{
    for (const auto& c : cases)
        for (const bool shuffled : {false, true}) {
            const std::string numbering = !c.has_order ? "" : shuffled ? "shuffled" : "ordered";
            if ((shuffled && !c.has_order) || !all.wants(c.operation, c.size, numbering)) continue;
            const Input input = c.input(shuffled);
            row r{family, c.operation, c.size, numbering, c.compared, {}, {}};
            if (c.limit) r.limit = c.limit(input, shuffled);
            for (const bool us : {true, false})
                for (const auto& who : contestants<Input>())
                    if (std::string(who.operation) == c.operation && us == (who.name == std::string(ours)))
                        r.runners.push_back({who.name, who.called, who.note, [&](lap& l) { who.run(input, l); },
                                             std::max(c.tolerance, who.tolerance)});
            all.measure(r);
        }
}

// A sum over a set that does not depend on the order in which the set is walked, exact in a double.
class fingerprint {
public:
    void add(std::uint64_t a, std::uint64_t b = 0)
    {
        std::uint64_t h = a * 0x9E3779B97F4A7C15u + b + 0x7F4A7C15u;
        h = (h ^ h >> 29) * 0xBF58476D1CE4E5B9u;
        sum_ += h ^ h >> 32;
        ++count_;
    }
    double count() const { return static_cast<double>(count_); }
    double value() const { return static_cast<double>(sum_ >> 12); }

private:
    std::uint64_t sum_ = 0;
    std::uint64_t count_ = 0;
};

}  // namespace compare

#endif
