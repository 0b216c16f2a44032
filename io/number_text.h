#ifndef TESSOLV_IO_NUMBER_TEXT_H
#define TESSOLV_IO_NUMBER_TEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "io/c_file.h"

// Numbers as texts. Each function writes at `to` what the C runtime prints in the C locale for the format beside it,
// whatever locale the program has set, and returns the end of the text; no terminating zero.
namespace zeb::tessolv {

// Bytes that a number needs at most: the largest double as %f is 317 characters long. What lies between the end of a
// text and to + number_room may be overwritten.
constexpr std::size_t number_room = 320;

char* put_fixed(char* to, double value);             // %f
char* put_scientific(char* to, double value);        // %e
char* put_scientific_upper(char* to, double value);  // %E
char* put_scientific_8(char* to, double value);      // %.8e
char* put_scientific_wide(char* to, double value);   // %12.5e

char* put_signed_wide(char* to, unsigned int n);  // %8d of the same 32 bits

// "00", "01", ... "99"
inline constexpr auto digit_pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

// Exactly Count digits, with leading zeros.
template <int Count>
char* put_digits(char* to, std::uint32_t n)
{
    for (int i = Count - 2; i >= 0; i -= 2, n /= 100) {
        const std::size_t pair = n % 100;
        std::memcpy(to + i, &digit_pairs[2 * pair], 2);
    }
    if (Count % 2 != 0) *to = static_cast<char>('0' + n);
    return to + Count;
}

// A number below 10^4 without leading zeros.
inline char* put_short(char* to, std::uint32_t n)
{
    if (n < 100) return n < 10 ? put_digits<1>(to, n) : put_digits<2>(to, n);
    return n < 1000 ? put_digits<3>(to, n) : put_digits<4>(to, n);
}

// %u
inline char* put_unsigned(char* to, unsigned int n)
{
    if (n < 10000) return put_short(to, n);
    if (n < 100000000) return put_digits<4>(put_short(to, n / 10000), n % 10000);
    return put_digits<8>(put_short(to, n / 100000000), n % 100000000);
}

// %d of the same 32 bits: from 2^31 on a negative number
inline char* put_signed(char* to, unsigned int n)
{
    if (n > 0x7FFFFFFF) {
        *to++ = '-';
        n = 0 - n;
    }
    return put_unsigned(to, n);
}

// Puts %d of the lowest 32 bits of a count, and a text behind it.
inline void put_count(block_writer& out, std::uint64_t count, std::string_view after)
{
    out.advance(put_signed(out.room(number_room), static_cast<unsigned int>(count)));
    out.put(after);
}

}  // namespace zeb::tessolv

#endif
