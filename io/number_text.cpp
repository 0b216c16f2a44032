#include "io/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace zeb::tessolv {
namespace {

__extension__ typedef unsigned __int128 uint128;

// 5^0 to 5^27, the last one below 2^64.
constexpr auto powers_of_5 = [] {
    std::array<std::uint64_t, 28> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 5 * powers[i - 1];
    return powers;
}();

constexpr std::uint64_t power_of_10(int k)
{
    return powers_of_5[static_cast<std::size_t>(k)] << k;
}

// A minus or nothing; signs come in no order, so no branch.
char* put_sign(char* to, bool negative)
{
    *to = '-';
    return to + negative;
}

// A double as m 2^-shift with the sign apart. `field` is the biased exponent: 0 for zeros and subnormal numbers, 2047
// for infinities and NaN, of which m and shift say nothing.
struct parts_of_double {
    bool negative;
    int field;
    int shift;
    std::uint64_t m;

    explicit parts_of_double(double value)
    {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        negative = (bits >> 63) != 0;
        field = static_cast<int>((bits >> 52) & 0x7FF);
        shift = 1075 - field;
        m = (bits & 0xFFFFFFFFFFFFF) | 0x10000000000000;
    }
};

// product 2^-shift rounded to the nearest integer, ties to even; exact. shift is 1 to 127, the result below 2^63.
std::uint64_t rounded(uint128 product, int shift)
{
    const auto quotient = static_cast<std::uint64_t>(product >> shift);
    const uint128 rest = product << (128 - shift);
    constexpr uint128 half = uint128{1} << 127;
    return quotient + (rest > half || (rest == half && quotient % 2 != 0) ? 1 : 0);
}

// The values that the integer arithmetic below does not reach: huge, tiny, infinite, not a number. `mark` is that of
// the exponent, and tells the case of all letters.
char* put_rare(char* to, double value, std::chars_format format, int decimals, char mark)
{
    char* end = std::to_chars(to, to + number_room, value, format, decimals).ptr;
    if (mark == 'E')
        std::transform(to, end, to, [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return end;
}

// 10^k for k from -22 to 9, as doubles nearest to it.
constexpr int decade_offset = 22;
constexpr std::array<double, 32> decades = {1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12,
                                            1e-11, 1e-10, 1e-9,  1e-8,  1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,
                                            1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8,   1e9};

constexpr double decade(int k)
{
    const int place = k + decade_offset;
    return decades[static_cast<std::size_t>(place)];
}

// The texts d.ddde+xx. A value of decimal exponent x becomes the integer value * 10^(Decimals - x), which is exact in
// 128 bits before it is rounded as long as the power of 10 has at most 27 zeros.
template <int Decimals>
char* put_scientific_as(char* to, double value, char mark)
{
    const double size = std::fabs(value);
    const parts_of_double parts(value);
    std::uint64_t digits = 0;
    int exponent = 0;
    if (size != 0) {
        if (!(size >= decade(Decimals - 27) && size < decade(Decimals + 1)))
            return put_rare(to, value, std::chars_format::scientific, Decimals, mark);
        // log10(2) is 1233/4096 to five digits: the exponent of the power of 2 below `size`, or one less than its own.
        // A `size` that the rounding of a decade puts on the wrong side of it is printed as that decade either way.
        exponent = ((parts.field - 1023) * 1233) >> 12;
        exponent += size >= decade(exponent + 1) ? 1 : 0;
        const int scale = Decimals - exponent;
        digits = rounded(uint128{parts.m} * powers_of_5[static_cast<std::size_t>(scale)], parts.shift - scale);
        if (digits == power_of_10(Decimals + 1)) {
            digits = power_of_10(Decimals);
            ++exponent;
        }
    }
    to = put_sign(to, parts.negative);
    char* end = put_digits<Decimals + 1>(to + 1, static_cast<std::uint32_t>(digits));
    to[0] = to[1];
    to[1] = '.';
    *end++ = mark;
    *end++ = exponent < 0 ? '-' : '+';
    return put_digits<2>(end, static_cast<std::uint32_t>(std::abs(exponent)));
}

// Moves the text [to, end) to the right of a field of `width` characters; a longer one stays.
char* aligned_right(char* to, char* end, std::ptrdiff_t width)
{
    const std::ptrdiff_t missing = width - (end - to);
    if (missing <= 0) return end;
    std::memmove(to + missing, to, static_cast<std::size_t>(end - to));
    std::memset(to, ' ', static_cast<std::size_t>(missing));
    return to + width;
}

}  // namespace

char* put_fixed(char* to, double value)
{
    if (!(std::fabs(value) < 2147483648.0)) return put_rare(to, value, std::chars_format::fixed, 6, 'e');
    const parts_of_double parts(value);
    std::uint64_t whole = 0;
    std::uint64_t millionths = 0;
    if (parts.shift < 64) {
        // What is behind the point, as a fraction of 2^64.
        const std::uint64_t fraction = parts.m << (64 - parts.shift);
        whole = parts.m >> parts.shift;
        millionths = rounded(uint128{fraction} * 1000000, 64);
        if (millionths == 1000000) {
            millionths = 0;
            ++whole;
        }
    } else if (parts.shift <= 73) {
        // 10^6 m has 73 bits: shifted further it is less than a half.
        millionths = rounded(uint128{parts.m} * 1000000, parts.shift);
    }
    to = put_unsigned(put_sign(to, parts.negative), static_cast<unsigned int>(whole));
    *to++ = '.';
    return put_digits<6>(to, static_cast<std::uint32_t>(millionths));
}

char* put_scientific(char* to, double value)
{
    return put_scientific_as<6>(to, value, 'e');
}

char* put_scientific_upper(char* to, double value)
{
    return put_scientific_as<6>(to, value, 'E');
}

char* put_scientific_8(char* to, double value)
{
    return put_scientific_as<8>(to, value, 'e');
}

char* put_scientific_wide(char* to, double value)
{
    return aligned_right(to, put_scientific_as<5>(to, value, 'e'), 12);
}

char* put_signed_wide(char* to, unsigned int n)
{
    if (n >= 100000000) return aligned_right(to, put_signed(to, n), 8);
    int blanks = 0;
    for (unsigned int limit = 10; limit <= 10000000; limit *= 10) blanks += n < limit ? 1 : 0;
    std::memset(to, ' ', 8);
    return put_unsigned(to + blanks, n);
}

}  // namespace zeb::tessolv
