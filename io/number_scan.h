#ifndef TESSOLV_IO_NUMBER_SCAN_H
#define TESSOLV_IO_NUMBER_SCAN_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "io/block_reader.h"
#include "io/plain_number.h"

// Numbers in text, always by the rules of the C locale, whatever the locale of the process or of its streams.
namespace zeb::tessolv {

// What counts as a number, and how far it reaches.
// c_scan: the conversion %lg of fscanf. Takes nan, inf, infinity and hexadecimal numbers; "1e" and "1e+" are read to
//         their end and give 1; 1e400 gives infinity, 1e-400 gives 0.
// stream: extraction of a double from a stream. Decimal numbers only; "1e", "1e+" and 1e400 are no numbers.
enum class number_rules : unsigned char { c_scan, stream };

constexpr bool is_space(char c)
{
    return c == ' ' || static_cast<unsigned char>(c - '\t') < 5;
}

// One number of any form and any length, fed character by character. Of long ones it keeps the digits that decide the
// nearest double.
class number_scanner {
public:
    explicit number_scanner(number_rules rules) : rules_(rules) {}

    // Whether c continues the number. The first refused character ends it.
    bool accept(char c);

    // The double nearest to what was accepted; false if that is no number.
    bool value(double& result) const;

private:
    enum class stage : unsigned char { sign, head, word, zero, mantissa, exponent_sign, exponent };

    bool accept_head(char c);
    bool accept_letter(char c);
    bool accept_mantissa(char c);
    bool accept_exponent(char c);
    void add_digit(int digit);
    bool word_value(double& result) const;
    double magnitude(bool& overflow) const;

    // A double lies half-way between two others only with at most 767 significant decimal digits; whatever follows
    // further digits matters only by not being zero.
    static constexpr std::size_t most_digits = 800;

    number_rules rules_;
    stage stage_ = stage::sign;
    bool negative_ = false;
    bool hexadecimal_ = false;
    bool has_digit_ = false;
    bool has_point_ = false;
    bool has_exponent_digit_ = false;
    bool negative_exponent_ = false;
    bool more_digits_ = false;  // one that is not zero was left out
    const char* word_ = "";     // "nan" or "infinity", of which `letters_` letters were accepted
    std::size_t letters_ = 0;
    std::size_t count_ = 0;  // significant digits in digits_
    std::array<char, most_digits> digits_;
    std::int64_t scale_ = 0;     // digits behind the last one kept, negative behind the point
    std::int64_t exponent_ = 0;  // as written, saturated
};

// Reads the number that begins at the next character of a block_reader or a line_at_hand; false if there is none. What
// belongs to it by the rules is consumed. This one is for numbers of any form.
template <class Text>
bool scan_number(Text& text, number_rules rules, double& value)
{
    number_scanner number(rules);
    for (int c = text.peek(); c != end_of_file && number.accept(static_cast<char>(c)); c = text.peek()) text.skip(1);
    return number.value(value);
}

inline bool read_number(line_at_hand& line, number_rules rules, double& value)
{
    const char* end = read_plain_number(line.begin(), value);
    if (end == nullptr) return scan_number(line, rules, value);
    line.move_to(end);
    return true;
}

inline bool read_number(block_reader& in, number_rules rules, double& value)
{
    in.ensure(longest_plain_number + 1);  // so that it ends at hand, or with the file
    const char* end = read_plain_number(in.begin(), value);
    if (end == nullptr) return scan_number(in, rules, value);
    in.move_to(end);
    return true;
}

}  // namespace zeb::tessolv

#endif
