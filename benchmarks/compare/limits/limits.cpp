// What the machine charges: the rates from which the report works out what no program can be faster than.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <random>

#include "harness.h"

namespace compare {
namespace {

volatile double keep = 0.0;  // results go here, so that no work is left out

// Best time of some runs.
template <class Work>
double best_of(int runs, Work work)
{
    double best = 1e300;
    for (int i = 0; i < runs; ++i) {
        lap l(false, false);
        work(l);
        best = std::min(best, l.seconds);
    }
    return best;
}

constexpr std::size_t mega = std::size_t{1} << 20;

// -- memory

double copied_bytes_per_second()
{
    const std::size_t size = 256 * mega;
    std::vector<char> from(size, 'x'), to(size, 'y');
    const double t = best_of(5, [&](lap& l) { l.timed([&] { std::memcpy(to.data(), from.data(), size); }); });
    keep = keep + to[size / 2];
    return 2.0 * double(size) / t;  // read and written
}

double touched_bytes_per_second(bool huge_pages)
{
    const std::size_t size = 128 * mega;
    const double t = best_of(5, [&](lap& l) {
        void* const block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED) return;
        if (huge_pages) madvise(block, size, MADV_HUGEPAGE);
        l.timed([&] {
            for (std::size_t i = 0; i < size; i += 4096) static_cast<volatile char*>(block)[i] = 1;
        });
        munmap(block, size);
    });
    return double(size) / t;
}

double seconds_per_random_read(std::size_t bytes)
{
    const std::size_t count = 4 * mega;
    std::vector<unsigned int> data(bytes / sizeof(unsigned int), 1u), place(count);
    std::mt19937_64 random(1);
    for (unsigned int& p : place) p = static_cast<unsigned int>(random() % data.size());
    unsigned int sum = 0;
    const double t = best_of(3, [&](lap& l) {
        l.timed([&] {
            for (const unsigned int p : place) sum += data[p];
        });
    });
    keep = keep + sum;
    return t / double(count);
}

// Four passes of eight bits over keys with a number each.
double sorted_keys_per_second()
{
    using item = std::pair<std::uint32_t, std::uint32_t>;
    const std::size_t count = 4 * mega;
    std::mt19937 random(1);
    std::vector<item> given(count), from, to(count);
    for (std::size_t i = 0; i < count; ++i) given[i] = {static_cast<std::uint32_t>(random()), std::uint32_t(i)};
    const double t = best_of(3, [&](lap& l) {
        from = given;
        l.timed([&] {
            for (int shift = 0; shift < 32; shift += 8) {
                std::size_t start[257]{};
                for (const item& x : from) ++start[(x.first >> shift & 255) + 1];
                std::partial_sum(start, start + 257, start);
                for (const item& x : from) to[start[x.first >> shift & 255]++] = x;
                from.swap(to);
            }
        });
    });
    keep = keep + from[count / 2].second;
    return double(count) / t;
}

// -- numbers and text

const std::vector<double>& numbers()
{
    static const std::vector<double> made = [] {
        std::vector<double> all(mega);
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> number(-100.0, 100.0);
        for (double& x : all) x = number(random);
        return all;
    }();
    return made;
}

constexpr int widest = 32;

template <class Print>
double seconds_to_print(Print print)
{
    std::vector<char> text(numbers().size() * widest);
    const double t = best_of(3, [&](lap& l) {
        l.timed([&] {
            char* out = text.data();
            for (const double x : numbers()) {
                out = print(out, x);
                *out++ = ' ';
            }
        });
    });
    keep = keep + text[text.size() / 2];
    return t / double(numbers().size());
}

char* print_digits(char* out, std::uint64_t n, int least)
{
    char digits[24];
    int count = 0;
    while (n != 0 || count < least) {
        digits[count++] = static_cast<char>('0' + n % 10);
        n /= 10;
    }
    return std::reverse_copy(digits, digits + count, out);
}

// Six decimals in integer arithmetic; right but for halves of the last digit.
char* print_fixed(char* out, double x)
{
    if (x < 0.0) *out++ = '-', x = -x;
    const auto scaled = static_cast<std::uint64_t>(x * 1e6 + 0.5);
    out = print_digits(out, scaled / 1000000, 1);
    *out++ = '.';
    return print_digits(out, scaled % 1000000, 6);
}

std::uint32_t whole(double x)
{
    return static_cast<std::uint32_t>((x + 100.0) * 5000.0);
}

std::string text_of_numbers()
{
    std::string text;
    char word[widest];
    for (const double x : numbers()) text.append(word, print_fixed(word, x)) += ' ';
    return text;
}

template <class Scan>
double seconds_to_scan(Scan scan)
{
    const std::string text = text_of_numbers();
    double sum = 0.0;
    const double t = best_of(3, [&](lap& l) {
        l.timed([&] {
            const char* at = text.data();
            const char* const end = at + text.size();
            while (at < end) {
                double x = 0.0;
                at = scan(at, end, x) + 1;
                sum += x;
            }
        });
    });
    keep = keep + sum;
    return t / double(numbers().size());
}

const char* scan_runtime(const char* at, const char*, double& x)
{
    char* after = nullptr;
    x = std::strtod(at, &after);
    return after;
}

const char* scan_standard(const char* at, const char* end, double& x)
{
    return std::from_chars(at, end, x).ptr;
}

// Digits gathered in an integer, then one division; exact for up to 15 digits.
const char* scan_integer(const char* at, const char*, double& x)
{
    const bool negative = *at == '-';
    if (negative) ++at;
    std::uint64_t digits = 0;
    for (; *at != '.'; ++at) digits = 10 * digits + std::uint64_t(*at - '0');
    ++at;
    double scale = 1.0;
    for (; *at >= '0'; ++at, scale *= 10.0) digits = 10 * digits + std::uint64_t(*at - '0');
    x = double(digits) / scale;
    if (negative) x = -x;
    return at;
}

// -- files in the page cache

std::pair<double, double> file_bytes_per_second()
{
    const std::string name = (std::filesystem::temp_directory_path() / "tessolv_compare_limits").string();
    std::vector<char> block(mega, 'x');
    const int blocks = 256;
    const double written = best_of(3, [&](lap& l) {
        std::filesystem::remove(name);
        l.timed([&] {
            const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            for (int i = 0; i < blocks; ++i)
                if (write(file, block.data(), block.size()) < 0) return;
            close(file);
        });
    });
    const double loaded = best_of(3, [&](lap& l) {
        l.timed([&] {
            const int file = open(name.c_str(), O_RDONLY);
            while (read(file, block.data(), block.size()) > 0) {
            }
            close(file);
        });
    });
    std::filesystem::remove(name);
    const double bytes = double(mega) * blocks;
    return {bytes / written, bytes / loaded};
}

std::map<std::string, double> measured_rates()
{
    std::map<std::string, double> rate;
    rate["copy, bytes/s read and written"] = copied_bytes_per_second();
    rate["first touch, bytes/s"] = touched_bytes_per_second(false);
    rate["first touch of huge pages, bytes/s"] = touched_bytes_per_second(true);
    rate["random read in 8 MiB, s"] = seconds_per_random_read(8 * mega);
    rate["random read in 64 MiB, s"] = seconds_per_random_read(64 * mega);
    rate["random read in 1 GiB, s"] = seconds_per_random_read(1024 * mega);
    rate["radix sort, keys/s"] = sorted_keys_per_second();
    rate["print %f, s"] = seconds_to_print([](char* out, double x) { return out + std::snprintf(out, 32, "%f", x); });
    rate["print to_chars, s"] = seconds_to_print(
        [](char* out, double x) { return std::to_chars(out, out + 31, x, std::chars_format::fixed, 6).ptr; });
    rate["print in integers, s"] = seconds_to_print(print_fixed);
    rate["print %d, s"] =
        seconds_to_print([](char* out, double x) { return out + std::snprintf(out, 32, "%u", whole(x)); });
    rate["print whole to_chars, s"] =
        seconds_to_print([](char* out, double x) { return std::to_chars(out, out + 31, whole(x)).ptr; });
    rate["scan strtod, s"] = seconds_to_scan(scan_runtime);
    rate["scan from_chars, s"] = seconds_to_scan(scan_standard);
    rate["scan in integers, s"] = seconds_to_scan(scan_integer);
    std::tie(rate["file written, bytes/s"], rate["file read, bytes/s"]) = file_bytes_per_second();
    return rate;
}

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    const auto rates = compare::measured_rates();
    for (const auto& [name, value] : rates) std::printf("%-40s %12.5g\n", name.c_str(), value);
    if (!s.json.empty()) std::ofstream(s.json) << nlohmann::json{{"limits", rates}}.dump(1) << '\n';
}
