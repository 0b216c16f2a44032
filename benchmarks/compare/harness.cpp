#include "harness.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <regex>

namespace compare {

double shrink = 1.0;
bool processor_time = false;

double seconds_now()
{
    if (!processor_time)
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    timespec own{};
    rusage children{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &own);
    getrusage(RUSAGE_CHILDREN, &children);
    return double(own.tv_sec + children.ru_utime.tv_sec + children.ru_stime.tv_sec) + 1e-9 * double(own.tv_nsec) +
           1e-6 * double(children.ru_utime.tv_usec + children.ru_stime.tv_usec);
}

// -- memory

namespace {

double status_entry(const char* key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key, 0) == 0) return 1024.0 * std::strtod(line.c_str() + std::strlen(key), nullptr);
    return 0.0;
}

}  // namespace

double memory::now()
{
    return status_entry("VmRSS:");
}

double memory::greatest()
{
    return status_entry("VmHWM:");
}

void memory::reset()
{
    malloc_trim(0);
    const int file = open("/proc/self/clear_refs", O_WRONLY);
    if (file < 0) return;
    [[maybe_unused]] const auto written = write(file, "5", 1);
    close(file);
}

double lap::start() const
{
    if (!with_memory_) return 0.0;
    memory::reset();
    return memory::now();
}

void lap::stop(double before)
{
    if (!with_memory_) return;
    peak = std::max(0.0, memory::greatest() - before);
    malloc_trim(0);
    kept = std::max(0.0, memory::now() - before);
}

// -- options

settings::settings(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const auto value = [&] { return i + 1 < argc ? argv[++i] : ""; };
        if (option == "--quick")
            runs = 3, small_budget = 0.1, shrink = 8.0;
        else if (option == "--processor-time")
            processor_time = true;
        else if (option == "--runs")
            runs = std::atoi(value());
        else if (option == "--budget")
            small_budget = std::atof(value());
        else if (option == "--filter")
            filter = value();
        else if (option == "--json")
            json = value();
        else {
            std::cerr << "usage: " << argv[0]
                      << " [--quick] [--processor-time] [--runs N] [--budget SECONDS] [--filter REGEX] [--json FILE]\n";
            std::exit(2);
        }
    }
}

// -- runs

namespace {

struct record {
    const runner* who;
    std::vector<double> seconds;
    double peak = 0.0;
    double kept = 0.0;
    std::vector<double> answers;
    std::string failure;
    bool declined = false;

    double best() const { return seconds.empty() ? 0.0 : *std::min_element(seconds.begin(), seconds.end()); }
    double total() const
    {
        double sum = 0.0;
        for (const double s : seconds) sum += s;
        return sum;
    }
    double median() const
    {
        if (seconds.empty()) return 0.0;
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t half = sorted.size() / 2;
        return sorted.size() % 2 != 0 ? sorted[half] : 0.5 * (sorted[half - 1] + sorted[half]);
    }
};

constexpr double slow = 4.0;  // seconds; the run that measures the memory counts as a run from here on

// The run that measures the memory has a process of its own, so that nothing of other runs is reused and a peer that
// dies takes nobody along.
void measure_memory(record& r)
{
    int ends[2];
    if (pipe(ends) != 0) return;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        lap l(true, false);
        r.who->run(l);
        const double result[4]{l.peak, l.kept, l.seconds, l.declined ? 1.0 : 0.0};
        const auto written = write(ends[1], result, sizeof result);
        _exit(written == sizeof result ? 0 : 1);
    }
    close(ends[1]);
    double result[4]{};
    const auto read_bytes = read(ends[0], result, sizeof result);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (read_bytes != sizeof result || status != 0) {
        r.failure = "died";
        return;
    }
    r.peak = result[0];
    r.kept = result[1];
    r.declined = result[3] != 0.0;
    if (result[2] > slow) r.seconds.push_back(result[2]);
}

bool agree(const record& one, const record& first)
{
    const auto& a = one.answers;
    const auto& b = first.answers;
    const double tolerance = one.who->tolerance;
    const auto equal = [&](double x, double y) {
        return std::abs(x - y) <= tolerance * std::max(std::abs(x), std::abs(y)) || (x != x && y != y);
    };
    return !a.empty() && a.size() <= b.size() && std::equal(a.begin(), a.end(), b.begin(), equal);
}

std::string in_words(const std::vector<double>& answers)
{
    std::string text;
    for (const double a : answers) {
        char number[32];
        std::snprintf(number, sizeof number, "%s%.15g", text.empty() ? "" : ", ", a);
        text += number;
    }
    return text;
}

nlohmann::json in_json(const record& r, const record& first)
{
    nlohmann::json j{{"name", r.who->name}, {"called", r.who->called}, {"note", r.who->note}};
    if (!r.failure.empty()) {
        j["failure"] = r.failure;
        return j;
    }
    j.update({{"runs", r.seconds.size()},
              {"best", r.best()},
              {"median", r.median()},
              {"peak", r.peak},
              {"kept", r.kept},
              {"answers", r.answers},
              {"agrees", agree(r, first)}});
    if (&r != &first)
        j.update({{"ratio_best", r.best() / first.best()}, {"ratio_median", r.median() / first.median()}});
    return j;
}

void print(const record& r, const record& first)
{
    if (!r.failure.empty()) {
        std::printf("    %-14s %s\n", r.who->name.c_str(), r.failure.c_str());
        return;
    }
    std::printf("    %-14s best %9.5f s  median %9.5f s  of %2zu   peak %8.1f MB  kept %8.1f MB", r.who->name.c_str(),
                r.best(), r.median(), r.seconds.size(), r.peak / 1e6, r.kept / 1e6);
    if (&r != &first)
        std::printf("   ratio %7.2f best %7.2f median   %s", r.best() / first.best(), r.median() / first.median(),
                    agree(r, first) ? "agrees" : "DIFFERS");
    std::printf("   %s%s%s\n", r.who->called.c_str(), r.who->note.empty() ? "" : "; ", r.who->note.c_str());
}

}  // namespace

struct report::rows {
    nlohmann::json json = nlohmann::json::array();
};

report::report(std::string family, const settings& s) : family_(std::move(family)), settings_(s), rows_(new rows) {}

report::~report()
{
    if (!settings_.json.empty())
        std::ofstream(settings_.json) << nlohmann::json{{"family", family_},
                                                        {"clock", processor_time ? "processor" : "wall"},
                                                        {"rows", rows_->json}}
                                             .dump(1)
                                      << '\n';
    delete rows_;
}

bool report::wants(const std::string& operation, const std::string& size, const std::string& numbering) const
{
    return settings_.filter.empty() ||
           std::regex_search(operation + ", " + size + ", " + numbering, std::regex(settings_.filter));
}

void report::measure(const row& r)
{
    std::printf("%s, %s%s%s%s\n", r.operation.c_str(), r.size.c_str(), shrink > 1.0 ? ", quick: an eighth of it" : "",
                r.numbering.empty() ? "" : ", ", r.numbering.c_str());
    std::fflush(stdout);
    std::vector<record> records;
    for (const auto& who : r.runners) {
        record one{&who, {}, 0.0, 0.0, {}, {}};
        measure_memory(one);
        if (!one.declined) records.push_back(one);
    }
    for (int round = 0; round < 3 * settings_.runs; ++round)
        for (auto& one : records) {
            const bool enough = static_cast<int>(one.seconds.size()) >= settings_.runs;
            const double per_run = one.total() / std::max(1.0, static_cast<double>(one.seconds.size()));
            if (!one.failure.empty() || (enough && one.total() + per_run > settings_.small_budget)) continue;
            lap l(false, one.answers.empty());
            one.who->run(l);
            one.seconds.push_back(l.seconds);
            if (one.answers.empty()) one.answers = l.answers;
        }
    nlohmann::json j{{"family", r.family}, {"operation", r.operation}, {"size", r.size},
                     {"shrunk", shrink},   {"numbering", r.numbering}, {"compared", r.compared}};
    j["limit"] = {{"streamed", r.limit.streamed}, {"fresh", r.limit.fresh},     {"scattered", r.limit.scattered},
                  {"within", r.limit.within},     {"printed", r.limit.printed}, {"integers", r.limit.integers},
                  {"scanned", r.limit.scanned},   {"stored", r.limit.stored},   {"loaded", r.limit.loaded}};
    for (const auto& one : records) {
        print(one, records.front());
        j["contestants"].push_back(in_json(one, records.front()));
        agreed_ = agreed_ && (!one.failure.empty() || agree(one, records.front()));
    }
    if (!records.empty())
        std::printf("    compared: %s: %s\n", r.compared.c_str(), in_words(records.front().answers).c_str());
    std::fflush(stdout);
    rows_->json.push_back(j);
}

}  // namespace compare
