#ifndef TOOLS_FORMATS_NUMBER_STREAM_H
#define TOOLS_FORMATS_NUMBER_STREAM_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "formats/cursor.h"
#include "formats/scalar_type.h"

namespace tool {

// A node number of a file that counts from `base`; what no mesh can hold names no node.
inline unsigned int node_index(std::int64_t number, std::int64_t base)
{
    const std::int64_t index = number - base;
    return number < base || index >= std::int64_t{zeb::NONE_INDEX} ? zeb::NONE_INDEX : static_cast<unsigned int>(index);
}

// Numbers one after the other, however they are encoded. What runs out or is no number is `unreadable`.
class number_stream {
public:
    virtual ~number_stream() = default;
    virtual void read(double* to, std::uint64_t count) = 0;
    virtual void read(std::int64_t* to, std::uint64_t count) = 0;
    // Nodes by numbers that count from 0.
    virtual void read(unsigned int* to, std::uint64_t count) = 0;

    // Calls visit(pointer, count) for `total` integers, some thousands at a time.
    template <class Visit>
    void for_each_block(std::uint64_t total, Visit visit)
    {
        std::array<std::int64_t, 4096> block;
        for (std::uint64_t done = 0; done < total;) {
            const std::uint64_t n = std::min<std::uint64_t>(block.size(), total - done);
            read(block.data(), n);
            visit(static_cast<const std::int64_t*>(block.data()), n);
            done += n;
        }
    }
};

// Numbers as words.
class text_numbers : public number_stream {
public:
    explicit text_numbers(cursor& in, const char* what) : in_(in), what_(what) {}
    void read(double* to, std::uint64_t count) override { in_.reals(to, count, what_); }
    void read(std::int64_t* to, std::uint64_t count) override
    {
        for (std::uint64_t i = 0; i < count; ++i) to[i] = in_.integer(what_);
    }
    void read(unsigned int* to, std::uint64_t count) override
    {
        for (std::uint64_t i = 0; i < count; ++i) to[i] = node_index(in_.integer(what_), 0);
    }

private:
    cursor& in_;
    const char* what_;
};

// Numbers as bytes of an input; single bits only in one call.
class binary_numbers : public number_stream {
public:
    binary_numbers(cursor& in, scalar_type type, bool reversed, const char* what)
        : in_(in), type_(type), reversed_(reversed), what_(what)
    {
    }
    void read(double* to, std::uint64_t count) override { read_as(to, count); }
    void read(std::int64_t* to, std::uint64_t count) override { read_as(to, count); }
    void read(unsigned int* to, std::uint64_t count) override { read_as(to, count); }

private:
    template <class To>
    void read_as(To* to, std::uint64_t count)
    {
        if (type_ == scalar_type::real64 && !reversed_ && sizeof(To) == 8 && std::is_floating_point_v<To>)
            return in_.raw(to, count * 8, what_);
        const std::uint64_t bytes = info_of(type_).bytes;
        std::array<char, 32768> block;
        for (std::uint64_t done = 0; done < count;) {
            const std::uint64_t most = bytes == 0 ? block.size() * 8 : block.size() / bytes;
            const std::uint64_t n = std::min(most, count - done);
            in_.raw(block.data(), bytes == 0 ? (n + 7) / 8 : n * bytes, what_);
            decode(type_, reversed_, block.data(), to + done, n);
            done += n;
        }
    }

    cursor& in_;
    scalar_type type_;
    bool reversed_;
    const char* what_;
};

}  // namespace tool

#endif
