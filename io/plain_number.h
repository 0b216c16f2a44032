#ifndef TESSOLV_IO_PLAIN_NUMBER_H
#define TESSOLV_IO_PLAIN_NUMBER_H

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <system_error>

// The fast way to read the numbers that nearly all files hold. Digits are taken eight at a time: eight bytes behind the
// text must be readable, and one of its characters must not belong to any number.
namespace zeb::tessolv {

constexpr bool is_digit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

// 1 for a plus or a minus, otherwise 0. Signs come in no order, so there is no branch on them.
constexpr std::ptrdiff_t is_sign(char c)
{
    return ((static_cast<unsigned>(c) - '+') & ~2U) == 0;  // '-' is '+' and 2
}

// The number that the first `count` of eight digits make; the characters are given less '0', the first one lowest.
inline std::uint64_t value_of_digits(std::uint64_t digits, int count)
{
    digits <<= 8 * (8 - count);  // what is shifted in are leading zeros
    digits = digits * 10 + (digits >> 8);
    constexpr std::uint64_t pairs = 0x000000FF000000FF;
    return ((digits & pairs) * (100 + (std::uint64_t{1000000} << 32)) +
            ((digits >> 16) & pairs) * (1 + (std::uint64_t{10000} << 32))) >>
           32;
}

inline constexpr std::uint64_t short_powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

// Appends the digits at p to `number`, which wraps around beyond 64 bits; returns where they end.
inline const char* read_digits(const char* p, std::uint64_t& number)
{
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t each_byte = 0x0101010101010101;
        for (;;) {
            std::uint64_t digits;
            std::memcpy(&digits, p, 8);
            digits ^= each_byte * '0';
            const std::uint64_t others = ((digits + each_byte * 0x76) | digits) & (each_byte * 0x80);
            const int count = std::countr_zero(others) / 8;
            if (count == 0) return p;
            number = number * short_powers[count] + value_of_digits(digits, count);
            p += count;
            if (count < 8) return p;
        }
    }
    for (; is_digit(*p); ++p) number = number * 10 + static_cast<std::uint64_t>(*p - '0');
    return p;
}

// Reads one digit, a point and six digits, the form of most numbers with an exponent. False for any other text.
inline bool read_1_point_6(const char* p, std::uint64_t& number)
{
    if constexpr (std::endian::native != std::endian::little) return false;
    constexpr std::uint64_t each_byte = 0x0101010101010101;
    std::uint64_t digits;
    std::memcpy(&digits, p, 8);
    digits ^= each_byte * '0' ^ (std::uint64_t{'0' ^ '.'} << 8);  // the point becomes a digit 0
    const std::uint64_t others = (digits + each_byte * 0x76) | digits;
    if ((others & (each_byte * 0x80)) != 0 || (digits & 0xFF00) != 0) return false;
    number = value_of_digits((digits & 0xFFFFFFFFFFFF0000) | (digits & 0xFF) << 8, 8);
    return true;
}

// Reads an exponent behind its letter; null if it has no digit or far too many.
inline const char* read_plain_exponent(const char* p, std::int64_t& exponent)
{
    const bool negative = *p == '-';
    p += is_sign(*p);
    const char* const first = p;
    std::uint32_t number = 0;
    for (; is_digit(*p); ++p) number = number * 10 + static_cast<std::uint32_t>(*p - '0');
    exponent += negative ? -std::int64_t{number} : std::int64_t{number};
    return p != first && p - first <= 4 ? p : nullptr;
}

// Powers of ten that a double holds exactly, and the integers up to which it holds all.
inline constexpr std::int64_t exact_power = 22;
inline constexpr double exact_powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                          1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr std::uint64_t exact_integer = std::uint64_t{1} << 53;

// What read_plain_number takes at most: sign, 19 digits, point, letter, sign and four digits of an exponent.
inline constexpr std::size_t longest_plain_number = 27;

// Reads a decimal number of at most 19 digits at p and returns where it ends; null, and no value, where the text is
// anything else. A number that it reads is read alike by every rule of number_scan.h.
inline const char* read_plain_number(const char* p, double& value)
{
    const bool negative = *p == '-';
    p += is_sign(*p);
    const char* const first = p;
    std::uint64_t digits = 0;
    std::ptrdiff_t length = 0;
    std::int64_t exponent = 0;
    if (read_1_point_6(p, digits)) {
        p += 8;
        if (is_digit(*p)) p = read_digits(p, digits);
        length = p - first - 1;
        exponent = 1 - length;
    } else {
        for (; is_digit(*p); ++p) digits = digits * 10 + static_cast<std::uint64_t>(*p - '0');
        length = p - first;
        if (*p == '.') {
            const char* const fraction = ++p;
            p = read_digits(p, digits);
            exponent = fraction - p;
            length -= exponent;
        }
    }
    if (length == 0 || length > 19 || *p == 'x' || *p == 'X') return nullptr;
    if ((*p == 'e' || *p == 'E') && (p = read_plain_exponent(p + 1, exponent)) == nullptr) return nullptr;

    // W. D. Clinger. How to Read Floating Point Numbers Accurately. PLDI 1990: both operands are exact, so the one
    // operation rounds correctly.
    double magnitude = 0.0;
    if (digits <= exact_integer && exponent >= -exact_power && exponent <= exact_power) {
        const auto exact = static_cast<double>(digits);
        magnitude = exponent < 0 ? exact / exact_powers[-exponent] : exact * exact_powers[exponent];
    } else if (std::from_chars(first, p, magnitude).ec != std::errc()) {
        return nullptr;
    }
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | std::uint64_t{negative} << 63);
    return p;
}

}  // namespace zeb::tessolv

#endif
