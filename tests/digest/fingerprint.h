#ifndef TESTS_DIGEST_FINGERPRINT_H
#define TESTS_DIGEST_FINGERPRINT_H

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include <tessolv/tessolv.h>

#include "support/temporary_file.h"

namespace digest {

// 64-bit FNV-1a over everything that an operation gives back. Numbers count by their bits, so that 0 and -0 differ;
// a NaN counts as NaN alone, because which of two NaN operands a sum hands on is the compiler's choice.
// G. Fowler, L. C. Noll, K.-P. Vo. The FNV Non-Cryptographic Hash Algorithm, draft-eastlake-fnv.
class fingerprint {
public:
    std::uint64_t value() const { return value_; }

    fingerprint& add(std::uint64_t word)
    {
        for (int shift = 0; shift < 64; shift += 8) add_byte(static_cast<unsigned char>(word >> shift));
        return *this;
    }
    fingerprint& add(unsigned int word) { return add(std::uint64_t{word}); }
    fingerprint& add(int code) { return add(static_cast<std::uint64_t>(static_cast<std::int64_t>(code))); }
    fingerprint& add(long code) { return add(static_cast<std::uint64_t>(code)); }
    fingerprint& add(bool answer) { return add(std::uint64_t{answer}); }
    fingerprint& add(double x) { return add(std::isnan(x) ? not_a_number : std::bit_cast<std::uint64_t>(x)); }
    fingerprint& add(float x)
    {
        return add(std::isnan(x) ? not_a_number : std::uint64_t{std::bit_cast<std::uint32_t>(x)});
    }

    fingerprint& add(const std::string& bytes)
    {
        add(std::uint64_t{bytes.size()});
        for (const char c : bytes) add_byte(static_cast<unsigned char>(c));
        return *this;
    }

    template <class T>
    fingerprint& add(const zeb::dense1D<T>& v)
    {
        add(v.size);
        for (std::uint64_t i = 0; i < v.size; ++i) add(v[i]);
        return *this;
    }

    template <class T>
    fingerprint& add(const zeb::dense2D<T>& m)
    {
        add(m.rows).add(m.cols);
        for (std::uint64_t j = 0; j < m.cols; ++j)
            for (std::uint64_t i = 0; i < m.rows; ++i) add(m(i, j));
        return *this;
    }

    template <class T, std::size_t Count>
    fingerprint& add(const zeb::detail::fixed_storage<T, Count>& values)
    {
        for (const T& x : values) add(x);
        return *this;
    }

    fingerprint& add(const zeb::misc::histogram& h)
    {
        add(h.count()).add(h.below()).add(h.above()).add(h.not_a_number()).add(h.bins());
        return add(h.minimum()).add(h.maximum()).add(h.mean()).add(h.standard_deviation());
    }

    // What a writer left behind.
    fingerprint& add(const test::temporary_file& file) { return add(file.bytes()); }

private:
    static constexpr std::uint64_t not_a_number = 0x7FF8000000000000;

    void add_byte(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001B3; }

    std::uint64_t value_ = 0xCBF29CE484222325;
};

// One line of the digest: what an operation gave back over the whole corpus.
inline void operation(const char* name, const std::function<void(fingerprint&)>& run)
{
    fingerprint result;
    run(result);
    std::printf("%-45s %016llx\n", name, static_cast<unsigned long long>(result.value()));
    std::fflush(stdout);
}

// One function per header of the library.
void core();
void topology();
void spatial();
void editing();
void quality();
void metrics();
void geometry();
void io();

}  // namespace digest

#endif
