#include "io/number_scan.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace zeb::tessolv {
namespace {

// A larger exponent counts as this one: it is out of range whatever digits a file of possible length has.
constexpr std::int64_t most_exponent = 100'000'000'000'000'000;

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Value of a digit of the base, -1 if it is none.
constexpr int digit_value(char c, bool hexadecimal)
{
    if (is_digit(c)) return c - '0';
    const char letter = lower(c);
    return hexadecimal && letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace

bool number_scanner::accept(char c)
{
    switch (stage_) {
        case stage::sign:
            stage_ = stage::head;
            if (c != '+' && c != '-') return accept_head(c);
            negative_ = c == '-';
            return true;
        case stage::head:
            return accept_head(c);
        case stage::word:
            return accept_letter(c);
        case stage::zero:
            stage_ = stage::mantissa;
            if (lower(c) != 'x') return accept_mantissa(c);
            hexadecimal_ = true;
            has_digit_ = false;
            return true;
        case stage::mantissa:
            return accept_mantissa(c);
        case stage::exponent_sign:
            stage_ = stage::exponent;
            if (c != '+' && c != '-') return accept_exponent(c);
            negative_exponent_ = c == '-';
            return true;
        default:
            return accept_exponent(c);
    }
}

// The first character behind the sign.
bool number_scanner::accept_head(char c)
{
    stage_ = stage::mantissa;
    if (rules_ == number_rules::c_scan) {
        word_ = lower(c) == 'n' ? "nan" : lower(c) == 'i' ? "infinity" : "";
        if (*word_ != '\0') {
            stage_ = stage::word;
            return accept_letter(c);
        }
        if (c == '0') {
            stage_ = stage::zero;
            has_digit_ = true;
            return true;
        }
    }
    return accept_mantissa(c);
}

bool number_scanner::accept_letter(char c)
{
    if (word_[letters_] == '\0' || lower(c) != word_[letters_]) return false;
    ++letters_;
    return true;
}

bool number_scanner::accept_mantissa(char c)
{
    const int digit = digit_value(c, hexadecimal_);
    if (digit >= 0) {
        add_digit(digit);
        return true;
    }
    if (c == '.' && !has_point_) {
        has_point_ = true;
        return true;
    }
    if (!has_digit_ || lower(c) != (hexadecimal_ ? 'p' : 'e')) return false;
    stage_ = stage::exponent_sign;
    return true;
}

bool number_scanner::accept_exponent(char c)
{
    if (!is_digit(c)) return false;
    has_exponent_digit_ = true;
    exponent_ = std::min(exponent_ * 10 + (c - '0'), most_exponent);
    return true;
}

void number_scanner::add_digit(int digit)
{
    has_digit_ = true;
    const bool kept = count_ < most_digits;
    if (kept && (digit != 0 || count_ != 0)) digits_[count_++] = "0123456789abcdef"[digit];
    if (!kept) more_digits_ |= digit != 0;
    if (kept && has_point_) --scale_;
    if (!kept && !has_point_) ++scale_;
}

bool number_scanner::value(double& result) const
{
    if (stage_ == stage::word) return word_value(result);
    if (!has_digit_ && !(hexadecimal_ && has_point_)) return false;  // "0x." is the 0 before the x
    const bool has_exponent = stage_ == stage::exponent_sign || stage_ == stage::exponent;
    bool overflow = false;
    const double found = magnitude(overflow);
    if (rules_ == number_rules::stream && (overflow || (has_exponent && !has_exponent_digit_))) return false;
    result = negative_ ? -found : found;
    return true;
}

bool number_scanner::word_value(double& result) const
{
    using limits = std::numeric_limits<double>;
    if (letters_ != 3 && letters_ != std::strlen(word_)) return false;
    result = std::copysign(*word_ == 'n' ? limits::quiet_NaN() : limits::infinity(), negative_ ? -1.0 : 1.0);
    return true;
}

double number_scanner::magnitude(bool& overflow) const
{
    if (count_ == 0) return 0.0;
    std::array<char, most_digits + 16> text;
    char* end = std::copy_n(digits_.begin(), count_, text.begin());
    if (more_digits_) *end++ = '1';
    const std::int64_t unit = hexadecimal_ ? 4 : 1;  // a digit is so many bits, or one power of ten
    const std::int64_t length = end - text.begin();
    const std::int64_t written = negative_exponent_ ? -exponent_ : exponent_;
    const std::int64_t scale = (scale_ - (more_digits_ ? 1 : 0)) * unit + written;
    *end++ = hexadecimal_ ? 'p' : 'e';
    end = std::to_chars(end, text.end(), std::clamp<std::int64_t>(scale, -99999, 99999)).ptr;

    double result = 0.0;
    const auto format = hexadecimal_ ? std::chars_format::hex : std::chars_format::general;
    if (std::from_chars(text.begin(), end, result, format).ec == std::errc()) return result;
    overflow = scale + length * unit > 0;  // out of range is either far above 1 or far below
    return overflow ? std::numeric_limits<double>::infinity() : 0.0;
}

}  // namespace zeb::tessolv
