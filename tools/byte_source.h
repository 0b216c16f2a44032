#ifndef TOOLS_BYTE_SOURCE_H
#define TOOLS_BYTE_SOURCE_H

#include <cstdint>
#include <span>
#include <vector>

#include "input_file.h"

namespace tool {

// The bytes of a file, or of a block in memory, one after the other, with the number of the line. A file passes through
// one block of memory, whatever its size.
class byte_source {
public:
    static constexpr int end = -1;

    explicit byte_source(const input_file& file) : file_(&file), block_(block_size) {}
    explicit byte_source(std::span<const unsigned char> bytes)
        : at_(bytes.data()), limit_(at_ + bytes.size()), offset_(bytes.size())
    {
    }
    byte_source(const byte_source&) = delete;
    byte_source& operator=(const byte_source&) = delete;

    int peek() { return at_ != limit_ || refill() ? *at_ : end; }

    int next()
    {
        if (at_ == limit_ && !refill()) return end;
        line_ += *at_ == '\n';
        return *at_++;
    }

    std::uint64_t line() const { return line_; }  // of the byte that comes next, from 1 on
    std::uint64_t offset() const { return offset_ - static_cast<std::uint64_t>(limit_ - at_); }

private:
    static constexpr std::size_t block_size = std::size_t{1} << 18;

    bool refill()
    {
        if (file_ == nullptr) return false;
        const std::size_t got = file_->read_at(offset_, block_.data(), block_.size());
        offset_ += got;
        at_ = block_.data();
        limit_ = at_ + got;
        return got != 0;
    }

    const input_file* file_ = nullptr;
    std::vector<unsigned char> block_;
    const unsigned char* at_ = nullptr;
    const unsigned char* limit_ = nullptr;
    std::uint64_t offset_ = 0;  // of `limit_` in the file
    std::uint64_t line_ = 1;
};

// White space as the C locale has it.
inline bool is_blank(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline int lower_case(int c)
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

}  // namespace tool

#endif
