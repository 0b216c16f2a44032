// How times grow with the size of the input, and what inputs made to be slow do to them. Everything runs in a thread
// with a stack of 64 KiB.
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>

#include "growth/operations.h"

namespace compare {
namespace {

constexpr std::size_t small_stack = 64 * 1024;
constexpr unsigned int patience = 120;  // seconds
constexpr double died = -1.0;

struct timing {
    const work* what;
    int runs;
    double best;
};

void* run_and_time(void* argument)
{
    auto& t = *static_cast<timing*>(argument);
    for (int i = 0; i < t.runs; ++i) {
        lap l(false, false);
        (*t.what)(l);
        t.best = std::min(t.best, l.seconds);
    }
    return nullptr;
}

// The best of some runs in a process of its own: one that overflows its stack or takes too long ends there.
double best_time(const work& what, int runs)
{
    int ends[2];
    if (pipe(ends) != 0) return died;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(patience);
        timing t{&what, runs, 1e300};
        pthread_attr_t attributes;
        pthread_t thread;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, small_stack);
        if (pthread_create(&thread, &attributes, run_and_time, &t) != 0) _exit(1);
        pthread_join(thread, nullptr);
        _exit(write(ends[1], &t.best, sizeof t.best) == sizeof t.best ? 0 : 1);
    }
    close(ends[1]);
    double best = died;
    const bool told = read(ends[0], &best, sizeof best) == sizeof best;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return told && status == 0 ? best : died;
}

bool wanted(const settings& s, const std::string& name)
{
    return s.filter.empty() || std::regex_search(name, std::regex(s.filter));
}

constexpr double exponent_of_concern = 1.35;  // n log n with caches that grow too small stays below
constexpr double noise_of_exponents = 0.05;
constexpr double ratio_of_concern = 10.0;

struct curve {
    std::vector<double> sizes, seconds;

    bool survived() const { return std::find(seconds.begin(), seconds.end(), died) == seconds.end(); }
    double exponent() const { return std::log(seconds.back() / seconds.front()) / std::log(8.0); }
};

curve curve_of(const operation& o, bool shuffled, int runs)
{
    curve c;
    for (const double n : {125e3, 250e3, 500e3, 1e6}) {
        c.sizes.push_back(n / shrink);
        c.seconds.push_back(best_time(o.prepare(n, shuffled), runs));
    }
    return c;
}

void tell(const operation& o, const std::string& numbering, const curve& c, const char* verdict, nlohmann::json& rows)
{
    std::printf("%-34s %-9s %9.5f %9.5f %9.5f %9.5f s  grows like n^%.2f%s\n", o.name, numbering.c_str(), c.seconds[0],
                c.seconds[1], c.seconds[2], c.seconds[3], c.exponent(), verdict);
    std::fflush(stdout);
    rows.push_back({{"operation", o.name},
                    {"numbering", numbering},
                    {"sizes", c.sizes},
                    {"seconds", c.seconds},
                    {"exponent", c.survived() ? nlohmann::json(c.exponent()) : nlohmann::json()}});
}

// Nobody can be asked to grow more slowly than one loop over the same places does on the machine.
bool measure_growth(const settings& s, nlohmann::json& rows)
{
    bool good = true;
    for (const bool shuffled : {false, true}) {
        const curve plain = curve_of(plain_writes(), shuffled, s.runs);
        const double limit = std::max(exponent_of_concern, plain.exponent() + noise_of_exponents);
        tell(plain_writes(), shuffled ? "shuffled" : "ordered", plain, "", rows);
        for (const auto& o : operations()) {
            const std::string numbering = !o.has_order ? "" : shuffled ? "shuffled" : "ordered";
            if ((shuffled && !o.has_order) || !wanted(s, std::string(o.name) + ", " + numbering)) continue;
            const curve c = curve_of(o, shuffled, s.runs);
            const bool fine = c.survived() && c.exponent() < limit;
            good = good && fine;
            tell(o, numbering, c, fine ? "" : "  GROWS TOO FAST", rows);
        }
    }
    return good;
}

bool measure_hostile(const settings& s, nlohmann::json& rows)
{
    bool good = true;
    for (const auto& h : hostile_inputs()) {
        if (!wanted(s, std::string(h.operation) + ", " + h.input)) continue;
        const double seconds = best_time(h.prepare(1e6), 2);
        const double random = best_time(h.prepare_random(1e6), 2);
        const bool survived = seconds != died && random != died;
        const bool fine = survived && seconds < ratio_of_concern * random;
        good = good && fine;
        std::printf("%-16s %-50s %9.5f s  random %9.5f s  ratio %6.2f%s\n", h.operation, h.input, seconds, random,
                    seconds / random,
                    !survived ? "  DIED"
                    : fine    ? ""
                              : "  TOO SLOW");
        std::fflush(stdout);
        rows.push_back({{"operation", h.operation},
                        {"input", h.input},
                        {"seconds", survived ? seconds : 0.0},
                        {"random", random},
                        {"survived", survived}});
    }
    return good;
}

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::processor_time = true;  // shapes of curves matter here, not whether somebody else was at work
    nlohmann::json growth = nlohmann::json::array(), hostile = nlohmann::json::array();
    const bool grows_well = compare::measure_growth(s, growth);
    const bool stands_firm = compare::measure_hostile(s, hostile);
    if (!s.json.empty())
        std::ofstream(s.json) << nlohmann::json{{"growth", growth}, {"hostile", hostile}}.dump(1) << '\n';
    return grows_well && stands_firm ? 0 : 1;
}
