#ifndef TESSOLV_IO_WAVEFRONT_OBJ_LINE_H
#define TESSOLV_IO_WAVEFRONT_OBJ_LINE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "io/number_scan.h"

// The parts of a line of a Wavefront OBJ file, taken from a block_reader or a line_at_hand. Nothing is kept here.
namespace zeb::tessolv::obj {

enum class keyword { other, v, vt, vn, f };

// One corner of a face: the number of its node as written, and which other numbers it has.
struct corner {
    std::uint64_t node = 0;
    bool counts_back = false;  // the number is negative
    bool has_texture = false;
    bool has_normal = false;
};

// Passes over blanks; whether nothing but the end of the line is left.
template <class Text>
bool at_line_end(Text& text)
{
    text.pass_while([](char c) { return is_space(c) && c != '\n'; });
    const int c = text.peek();
    return c == '\n' || c == end_of_file;
}

// Passes over what is left of the line, but for its newline.
template <class Text>
void pass_rest(Text& text)
{
    text.pass_while([](char c) { return c != '\n'; });
}

// Goes to the beginning of the next line.
template <class Text>
void pass_line(Text& text)
{
    pass_rest(text);
    if (text.peek() == '\n') text.skip(1);
}

// The first word of the line, as a whole; what follows is left to be read.
template <class Text>
keyword read_keyword(Text& text)
{
    if (at_line_end(text)) return keyword::other;
    keyword word = keyword::other;
    const int initial = text.peek();
    if (initial == 'f' || initial == 'v') {
        word = initial == 'f' ? keyword::f : keyword::v;
        text.skip(1);
        const int second = text.peek();
        if (initial == 'v' && (second == 'n' || second == 't')) {
            word = second == 'n' ? keyword::vn : keyword::vt;
            text.skip(1);
        }
    }
    const int behind = text.peek();
    return behind == end_of_file || is_space(static_cast<char>(behind)) ? word : keyword::other;
}

// Reads the numbers of the line up to the first word that is none, as many as there is room for, and gives their
// count. The others become 0. What follows them is passed over.
template <class Text, std::size_t Room>
std::size_t read_numbers(Text& text, std::array<double, Room>& numbers)
{
    std::size_t count = 0;
    while (count < Room && !at_line_end(text) && read_number(text, number_rules::stream, numbers[count])) ++count;
    std::fill(numbers.begin() + count, numbers.end(), 0.0);
    pass_rest(text);
    return count;
}

// Reads digits and the sign before them, if there is either. False if there is no more than a sign, or if the number
// is above 32 bits; negative ones of any size are taken, they reach before the first node.
template <class Text>
bool read_integer(Text& text, std::uint64_t& magnitude, bool& negative, bool& present)
{
    constexpr std::uint64_t most = 0xFFFFFFFF;
    const int sign = text.peek();
    const bool has_sign = sign == '-' || sign == '+';
    if (has_sign) text.skip(1);
    std::uint64_t number = 0;
    bool has_digit = false;
    text.pass_while([&](char c) {
        if (!is_digit(c)) return false;
        if (number <= most) number = number * 10 + static_cast<std::uint64_t>(c - '0');
        return has_digit = true;
    });
    magnitude = number;
    negative = sign == '-';
    present = has_digit;
    return has_digit ? negative || number <= most : !has_sign;
}

// Reads one of the forms k, k/t, k/t/n and k//n, where the number behind a slash may be missing; false if it is none.
// Whatever follows belongs to the next corner, which must not begin with a third slash either.
template <class Text>
bool read_corner(Text& text, corner& read)
{
    bool present = false;
    if (!read_integer(text, read.node, read.counts_back, present) || !present) return false;
    for (bool corner::*field : {&corner::has_texture, &corner::has_normal}) {
        if (text.peek() != '/') return true;
        text.skip(1);
        std::uint64_t dropped = 0;
        bool negative = false;
        if (!read_integer(text, dropped, negative, read.*field)) return false;
    }
    return true;
}

}  // namespace zeb::tessolv::obj

#endif
