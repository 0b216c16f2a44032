#include "formats/cursor.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "errors.h"
#include "words.h"

namespace tool {
namespace {

// from_chars gives no value beyond the range of doubles: the exponent, or the place of the first digit, tells which way.
double beyond_range(std::string_view word)
{
    const std::size_t exponent = word.find_first_of("eE");
    const bool small = exponent != word.npos ? word.substr(exponent + 1).starts_with('-')
                                             : word.find_first_of("123456789") > word.find('.');
    const double size = small ? 0.0 : std::numeric_limits<double>::infinity();
    return word.front() == '-' ? -size : size;
}

std::string_view without_plus(std::string_view word)
{
    if (word.size() > 1 && word.front() == '+' && word[1] != '-') word.remove_prefix(1);
    return word;
}

}  // namespace

bool equal_words(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, [](char x, char y) { return lower_case(x) == lower_case(y); });
}

bool parse_real(std::string_view word, double& value)
{
    word = without_plus(word);
    if (word.empty()) return false;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error == std::errc::result_out_of_range) value = beyond_range(word);
    if (error == std::errc::invalid_argument) return false;
    if (end == word.data() + word.size()) return true;
    if (*end != 'd' && *end != 'D') return false;
    std::string fortran(word);
    std::ranges::replace(fortran, *end, 'e');
    return fortran.find_first_of("dD") == fortran.npos && parse_real(fortran, value);
}

bool parse_integer(std::string_view word, std::int64_t& value)
{
    word = without_plus(word);
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size();
}

cursor::cursor(const source& from, std::uint64_t begin, std::uint64_t end)
    : from_(from),
      block_(block_size + 1),
      at_(block_.data()),
      limit_(at_),
      offset_(begin),
      end_(std::min(end, from.size()))
{
    block_[0] = '\0';
    refill();
    if (begin == 0 && std::string_view(at_).starts_with("\xEF\xBB\xBF")) at_ += 3;
}

bool cursor::refill()
{
    const auto kept = static_cast<std::size_t>(limit_ - at_);
    if (offset_ >= end_ || kept == block_size) return false;
    lines_ += static_cast<std::uint64_t>(std::count(static_cast<const char*>(block_.data()), at_, '\n'));
    std::memmove(block_.data(), at_, kept);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(block_size - kept, end_ - offset_));
    const std::size_t got = from_.read_at(offset_, block_.data() + kept, wanted);
    at_ = block_.data();
    limit_ = at_ + kept + got;
    block_[kept + got] = '\0';
    offset_ += got;
    if (got == 0) end_ = offset_;  // the file was cut meanwhile
    return got != 0;
}

void cursor::skip_blanks()
{
    do {
        while (is_blank(static_cast<unsigned char>(*at_))) ++at_;
    } while (at_ == limit_ && refill());
}

bool cursor::at_line_end()
{
    do {
        while (*at_ != '\n' && is_blank(static_cast<unsigned char>(*at_))) ++at_;
    } while (at_ == limit_ && refill());
    return at_ == limit_ || *at_ == '\n';
}

void cursor::skip_line()
{
    for (;;) {
        const auto* end = static_cast<const char*>(std::memchr(at_, '\n', static_cast<std::size_t>(limit_ - at_)));
        at_ = end != nullptr ? end + 1 : limit_;
        if (end != nullptr || !refill()) return;
    }
}

std::string_view cursor::word()
{
    skip_blanks();
    ensure(margin);
    const char* end = at_;
    while (!ends_word(end)) ++end;
    if (static_cast<std::size_t>(end - at_) >= margin) fail("a word of more than 500 letters");
    const std::string_view found(at_, static_cast<std::size_t>(end - at_));
    at_ = end;
    return found;
}

std::string_view cursor::line()
{
    ensure(longest_line);
    const auto seen = std::min<std::size_t>(static_cast<std::size_t>(limit_ - at_), longest_line);
    const auto* end = static_cast<const char*>(std::memchr(at_, '\n', seen));
    if (end == nullptr && seen == longest_line) fail("a line of more than 65000 letters");
    const char* stop = end != nullptr ? end : at_ + seen;
    std::string_view found(at_, static_cast<std::size_t>(stop - at_));
    at_ = end != nullptr ? end + 1 : stop;
    if (found.ends_with('\r')) found.remove_suffix(1);
    return found;
}

bool cursor::copy_until(char letter, std::string* passed)
{
    bool words = false;
    while (!at_end()) {
        const auto seen = static_cast<std::size_t>(limit_ - at_);
        const auto* found = static_cast<const char*>(std::memchr(at_, letter, seen));
        const char* end = found != nullptr ? found : limit_;
        words = words || std::any_of(at_, end, [](char c) { return !is_blank(static_cast<unsigned char>(c)); });
        if (passed != nullptr) passed->append(at_, end);
        at_ = end;
        if (found != nullptr) break;
    }
    return words;
}

std::string_view cursor::take_expected(std::string_view wanted)
{
    const std::string_view found = word();
    if (equal_words(found, wanted)) return found;
    at_ -= found.size();
    fail_at_word(quoted(wanted));
}

bool cursor::plain_real(double& value)
{
    skip_blanks();
    ensure(margin);
    const auto [end, error] = std::from_chars(at_, limit_, value);
    if (error != std::errc() || !ends_word(end) || !std::isfinite(value)) return false;
    at_ = end;
    return true;
}

double cursor::real(const char* what)
{
    double value = 0;
    if (plain_real(value)) return value;
    const char* begin = at_;
    const std::string_view rest = word();
    if (!parse_real(rest, value)) {
        at_ = begin;
        fail_at_word(what);
    }
    return value;
}

std::int64_t cursor::integer(const char* what)
{
    skip_blanks();
    ensure(margin);
    const char* s = at_;
    std::int64_t value = 0;
    while (static_cast<unsigned char>(*s - '0') <= 9 && s - at_ < 18) value = value * 10 + (*s++ - '0');
    if (s != at_ && ends_word(s)) {
        at_ = s;
        return value;
    }
    const char* begin = at_;
    const std::string_view rest = word();
    if (!parse_integer(rest, value)) {
        at_ = begin;
        fail_at_word(what);
    }
    return value;
}

std::uint64_t cursor::count(const char* what)
{
    const std::int64_t value = integer(what);
    if (value < 0) fail(std::string(what) + " is negative: " + std::to_string(value));
    return static_cast<std::uint64_t>(value);
}

void cursor::raw(void* to, std::uint64_t n, const char* what)
{
    if (n == 0) return;  // of an empty section there is no place either
    if (n > left()) {
        at_ = limit_;
        offset_ = end_;
        fail(std::string("the file ends within ") + what);
    }
    auto* bytes = static_cast<char*>(to);
    const auto kept = static_cast<std::size_t>(std::min<std::uint64_t>(n, static_cast<std::uint64_t>(limit_ - at_)));
    std::memcpy(bytes, at_, kept);
    at_ += kept;
    if (n == kept) return;
    // Past the block: straight to where it is wanted.
    lines_ += static_cast<std::uint64_t>(std::count(static_cast<const char*>(block_.data()), at_, '\n'));
    const std::size_t got = from_.read_at(offset_, bytes + kept, static_cast<std::size_t>(n - kept));
    offset_ += got;
    at_ = limit_ = block_.data();
    block_[0] = '\0';
    if (got != n - kept) fail(std::string("the file ends within ") + what);
}

std::uint64_t cursor::room_for(std::uint64_t announced, std::uint64_t bytes) const
{
    return std::min(announced, left() / bytes + 1);
}

std::uint64_t cursor::line_number() const
{
    return lines_ + static_cast<std::uint64_t>(std::count(static_cast<const char*>(block_.data()), at_, '\n'));
}

std::string cursor::place() const
{
    return binary_ ? "byte " + std::to_string(offset()) : "line " + std::to_string(line_number());
}

void cursor::fail(const std::string& reason) const
{
    throw unreadable(place() + ": " + reason);
}

void cursor::fail_at_word(const std::string& wanted)
{
    skip_blanks();
    if (at_end()) fail("the file ends where " + wanted + " should be");
    std::string found(word().substr(0, 40));
    std::ranges::replace_if(
        found, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, '?');
    fail(quoted(found) + " where " + wanted + " should be");
}

}  // namespace tool
