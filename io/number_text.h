#ifndef TESSOLV_IO_NUMBER_TEXT_H
#define TESSOLV_IO_NUMBER_TEXT_H

#include <cstddef>
#include <cstdint>
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

char* put_unsigned(char* to, unsigned int n);     // %u
char* put_signed(char* to, unsigned int n);       // %d of the same 32 bits: from 2^31 on a negative number
char* put_signed_wide(char* to, unsigned int n);  // %8d of the same 32 bits

// Puts %d of the lowest 32 bits of a count, and a text behind it.
inline void put_count(block_writer& out, std::uint64_t count, std::string_view after)
{
    out.advance(put_signed(out.room(number_room), static_cast<unsigned int>(count)));
    out.put(after);
}

}  // namespace zeb::tessolv

#endif
