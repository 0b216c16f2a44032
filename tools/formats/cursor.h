#ifndef TOOLS_FORMATS_CURSOR_H
#define TOOLS_FORMATS_CURSOR_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/source.h"
#include "input/byte_source.h"

namespace tool {

// Goes through an input from front to back by words, numbers, lines or raw bytes. The bytes pass through one block of
// memory, whatever the size. Whatever is not as it should be is `unreadable` with the line, or the byte in a binary
// part.
class cursor {
public:
    explicit cursor(const source& from, std::uint64_t begin = 0, std::uint64_t end = ~std::uint64_t{0});
    cursor(const cursor&) = delete;
    cursor& operator=(const cursor&) = delete;

    bool at_end() { return at_ == limit_ && !refill(); }
    int peek() { return at_end() ? -1 : static_cast<unsigned char>(*at_); }
    void skip_one() { ++at_; }  // after peek()

    // Passes over white space, line ends included.
    void skip_blanks();
    // Passes over blanks within the line; true when the line or the input ends there.
    bool at_line_end();
    // Passes over the rest of the line and its end.
    void skip_line();

    // The next word; empty at the end. Valid until the next call.
    std::string_view word();
    // The rest of the line without its end; at most longest_line bytes. Valid until the next call.
    std::string_view line();
    // The word that must come next, in any case of letters, as it stands there.
    std::string_view take_expected(std::string_view word);
    void expect(std::string_view word) { take_expected(word); }

    // The next number; `what` names it in the message.
    double real(const char* what);
    // The next number if every reader takes it for the same: decimal, finite, without a plus. Otherwise nothing is taken.
    bool plain_real(double& value);
    std::int64_t integer(const char* what);
    std::uint64_t count(const char* what);  // not negative
    // `n` numbers.
    void reals(double* to, std::uint64_t n, const char* what)
    {
        for (std::uint64_t i = 0; i < n; ++i) to[i] = real(what);
    }

    // Goes on to the next such letter, or the end, and hands what lies before it over. Whether that is more than white
    // space.
    bool copy_until(char letter, std::string* passed);

    // Exactly `n` bytes.
    void raw(void* to, std::uint64_t n, const char* what);

    // As many items of at least `bytes` bytes each as the rest of the input can hold, at most `announced`.
    std::uint64_t room_for(std::uint64_t announced, std::uint64_t bytes) const;

    std::uint64_t offset() const { return offset_ - static_cast<std::uint64_t>(limit_ - at_); }
    std::uint64_t left() const { return end_ - offset(); }
    std::uint64_t line_number() const;

    // From now on messages give the byte instead of the line, or the line again.
    void set_binary(bool binary) { binary_ = binary; }
    bool is_binary() const { return binary_; }
    // Keeps counting lines elsewhere: for a part of a file that begins on this line.
    void set_first_line(std::uint64_t line) { lines_ = line; }

    // "line 7", or "byte 312" in a binary part.
    std::string place() const;
    [[noreturn]] void fail(const std::string& reason) const;
    // What follows instead of something that is wanted.
    [[noreturn]] void fail_at_word(const std::string& wanted);

    static constexpr std::size_t longest_line = std::size_t{1} << 16;

private:
    static constexpr std::size_t block_size = std::size_t{1} << 18;
    static constexpr std::size_t margin = 512;  // longest word and number

    bool refill();
    // A zero byte within the input is a part of its word.
    bool ends_word(const char* at) const { return is_blank(static_cast<unsigned char>(*at)) || at == limit_; }
    void ensure(std::size_t bytes)
    {
        while (static_cast<std::size_t>(limit_ - at_) < bytes && refill()) {
        }
    }

    const source& from_;
    std::vector<char> block_;
    const char* at_ = nullptr;
    const char* limit_ = nullptr;  // a zero byte stands there, so that no scan runs over it
    std::uint64_t offset_ = 0;     // of `limit_` in the input
    std::uint64_t end_ = 0;
    std::uint64_t lines_ = 1;  // up to the beginning of the block
    bool binary_ = false;
};

// The number that a whole word is, or nothing. Takes what the C runtime takes in the C locale, and the exponents of
// Fortran.
bool parse_real(std::string_view word, double& value);
bool parse_integer(std::string_view word, std::int64_t& value);

bool equal_words(std::string_view a, std::string_view b);  // whatever the case of letters

}  // namespace tool

#endif
