#include "stl/stl_text.h"

#include <locale.h>
#include <stdlib.h>

#include <array>
#include <string>
#include <string_view>

namespace tool {
namespace {

constexpr int longest_line = 255;  // what the reader takes of a line at once

bool is_digit(int c)
{
    return c >= '0' && c <= '9';
}

bool is_hexadecimal(int c)
{
    return is_digit(c) || (lower_case(c) >= 'a' && lower_case(c) <= 'f');
}

// Of the longest beginning that is a number, with a decimal point whatever the locale of the process.
double value_of(const std::string& letters)
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(letters.c_str(), nullptr, classic);
}

class text_reader {
public:
    text_reader(byte_source& in, const std::function<void(const double*)>& take) : in_(in), take_(take) {}

    text_scan run()
    {
        scan_.first_line_too_long = !skip_line() && in_.peek() != byte_source::end;
        while (take_facet()) {
            ++scan_.facets;
            if (take_) take_(corners_.data());
        }
        return scan_;
    }

private:
    bool take_facet()
    {
        in_.skip_blanks();
        scan_.line = in_.line();
        const bool begun = in_.peek() == 'f';
        if (!take_word("facet")) return stop(begun ? scan_stop::no_facet : why_no_facet());
        if (!take_separated_word("normal") || !take_triple(corners_.data())) return stop(scan_stop::no_facet);
        skip_line();
        for (std::size_t corner = 0; corner < 3; ++corner) {
            in_.skip_blanks();
            scan_.line = in_.line();
            if (!take_word("vertex") || !take_triple(&corners_[3 * corner])) return stop(scan_stop::no_vertex);
        }
        scan_.line = in_.line();
        for (int line = 0; line < 2; ++line) {
            if (in_.peek() == byte_source::end) return stop(scan_stop::cut_short);
            skip_line();
        }
        return true;
    }

    bool stop(scan_stop reason)
    {
        const bool ended = in_.peek() == byte_source::end;
        const bool in_facet = reason == scan_stop::no_facet || reason == scan_stop::no_vertex;
        scan_.stop = ended && in_facet ? scan_stop::cut_short : reason;
        return false;
    }

    // What stands where a facet should begin.
    scan_stop why_no_facet()
    {
        constexpr std::string_view last_word = "endsolid";
        std::string word;
        while (in_.peek() != byte_source::end && !is_blank(in_.peek()) && word.size() <= last_word.size())
            word += static_cast<char>(lower_case(in_.next()));
        if (word == last_word) return scan_stop::end_of_solid;
        const bool cut = in_.peek() == byte_source::end && last_word.starts_with(word);
        return cut ? scan_stop::end_of_file : scan_stop::no_facet;
    }

    // As fgets into 256 bytes: false when the line goes on.
    bool skip_line()
    {
        for (int taken = 0; taken < longest_line; ++taken) {
            const int c = in_.next();
            if (c == '\n' || c == byte_source::end) return true;
        }
        return false;
    }

    // As a word of a scan format: letter by letter, no blank needed behind it.
    bool take_word(std::string_view word)
    {
        for (const char letter : word) {
            if (in_.peek() != letter) return false;
            in_.next();
        }
        return true;
    }

    bool take_separated_word(std::string_view word)
    {
        in_.skip_blanks();
        return take_word(word);
    }

    // Three numbers and the white space behind them.
    bool take_triple(double* to)
    {
        for (int k = 0; k < 3; ++k) {
            in_.skip_blanks();
            letters_.clear();
            if (!take_number()) return false;
            if (take_) to[k] = value_of(letters_);
        }
        in_.skip_blanks();
        return true;
    }

    void take_letter() { letters_ += static_cast<char>(in_.next()); }

    // Takes the letters of `word` in either case.
    bool take_letters(std::string_view word)
    {
        for (const char letter : word) {
            if (lower_case(in_.peek()) != letter) return false;
            take_letter();
        }
        return true;
    }

    // What the formatted scan of the C runtime takes for "%lg" in the C locale. It collects whatever may belong to a
    // number and converts the longest beginning that is one, so "1e" and "1e+" are numbers and "0x" is none.
    bool take_number()
    {
        if (in_.peek() == '+' || in_.peek() == '-') take_letter();
        if (lower_case(in_.peek()) == 'n') return take_letters("nan");
        if (lower_case(in_.peek()) == 'i')
            return take_letters("inf") && (lower_case(in_.peek()) != 'i' || take_letters("inity"));
        bool zero = false;
        if (in_.peek() == '0') {
            take_letter();
            zero = true;
            if (lower_case(in_.peek()) == 'x') {
                take_letter();
                return take_digits<true>(false).any;
            }
        }
        return take_digits<false>(zero).digit;
    }

    struct digits {
        bool any;    // at least one character was taken
        bool digit;  // a digit was among them or before them
    };

    template <bool Hexadecimal>
    digits take_digits(bool digit)
    {
        bool any = false;
        bool point = false;
        bool exponent = false;
        bool sign_may_follow = false;
        for (int c = in_.peek();; any = true, take_letter(), c = in_.peek()) {
            if (is_digit(c) || (Hexadecimal && !exponent && is_hexadecimal(c))) {
                digit = true;
                sign_may_follow = false;
            } else if (sign_may_follow && (c == '+' || c == '-')) {
                sign_may_follow = false;
            } else if (digit && !exponent && lower_case(c) == (Hexadecimal ? 'p' : 'e')) {
                exponent = point = sign_may_follow = true;
            } else if (!point && c == '.') {
                point = true;
                sign_may_follow = false;
            } else {
                return {any, digit};
            }
        }
    }

    byte_source& in_;
    const std::function<void(const double*)>& take_;
    text_scan scan_;
    std::array<double, 9> corners_{};
    std::string letters_;  // of the number that is being read
};

}  // namespace

text_scan scan_text(byte_source& in, const std::function<void(const double*)>& take)
{
    return text_reader(in, take).run();
}

}  // namespace tool
