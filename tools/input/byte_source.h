#ifndef TOOLS_INPUT_BYTE_SOURCE_H
#define TOOLS_INPUT_BYTE_SOURCE_H

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "input/input_file.h"

namespace tool {

// White space as the C locale has it.
inline bool is_blank(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline int lower_case(int c)
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

// The bytes of a file, or of a block in memory, one after the other. A file passes through one block of memory,
// whatever its size.
class byte_source {
public:
    static constexpr int end = -1;

    explicit byte_source(const input_file& file) : file_(&file), block_(block_size) {}
    explicit byte_source(std::span<const unsigned char> bytes)
        : begin_(bytes.data()), at_(begin_), limit_(begin_ + bytes.size()), offset_(bytes.size())
    {
    }
    byte_source(const byte_source&) = delete;
    byte_source& operator=(const byte_source&) = delete;

    int peek() { return at_ != limit_ || refill() ? *at_ : end; }
    int next() { return at_ != limit_ || refill() ? *at_++ : end; }

    // Passes over bytes as long as they are, or are not, blank.
    void skip_blanks()
    {
        while (is_blank(peek())) ++at_;
    }
    void skip_word()
    {
        do {
            while (at_ != limit_ && !is_blank(*at_)) ++at_;
        } while (at_ == limit_ && refill());
    }

    std::uint64_t offset() const { return offset_ - static_cast<std::uint64_t>(limit_ - at_); }

    // Number of the line in which the next byte stands, from 1 on. The lines are counted here, block by block.
    std::uint64_t line()
    {
        count_lines();
        return line_;
    }

private:
    static constexpr std::size_t block_size = std::size_t{1} << 18;

    void count_lines()
    {
        line_ += static_cast<std::uint64_t>(std::count(begin_, at_, '\n'));
        begin_ = at_;
    }

    bool refill()
    {
        if (file_ == nullptr) return false;
        count_lines();
        const std::size_t got = file_->read_at(offset_, block_.data(), block_.size());
        offset_ += got;
        begin_ = at_ = block_.data();
        limit_ = at_ + got;
        return got != 0;
    }

    const input_file* file_ = nullptr;
    std::vector<unsigned char> block_;
    const unsigned char* begin_ = nullptr;  // of the bytes whose lines are not counted yet
    const unsigned char* at_ = nullptr;
    const unsigned char* limit_ = nullptr;
    std::uint64_t offset_ = 0;  // of `limit_` in the file
    std::uint64_t line_ = 1;
};

}  // namespace tool

#endif
