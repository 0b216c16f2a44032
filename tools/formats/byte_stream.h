#ifndef TOOLS_FORMATS_BYTE_STREAM_H
#define TOOLS_FORMATS_BYTE_STREAM_H

#include <array>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "formats/cursor.h"
#include "formats/number_stream.h"

struct libdeflate_decompressor;

namespace tool {

// The bytes of an array of a VTU file, as they are or behind an encoding.
class byte_stream {
public:
    virtual ~byte_stream() = default;
    virtual void read(char* to, std::uint64_t count) = 0;
    // How many bytes there may still be at most, as far as the file can hold them.
    virtual std::uint64_t most() const = 0;
};

class raw_bytes : public byte_stream {
public:
    explicit raw_bytes(cursor& in) : in_(in) {}
    void read(char* to, std::uint64_t count) override { in_.raw(to, count, "the data"); }
    std::uint64_t most() const override { return in_.left(); }

private:
    cursor& in_;
};

// Text of 64 letters, in which a group with padding may stand anywhere.
class base64_bytes : public byte_stream {
public:
    explicit base64_bytes(cursor& in) : in_(in) {}
    void read(char* to, std::uint64_t count) override;
    std::uint64_t most() const override { return in_.left() / 4 * 3 + 3; }

private:
    void decode_group();

    cursor& in_;
    std::array<char, 3> group_{};
    unsigned int used_ = 0;
    unsigned int held_ = 0;
};

// What stands behind a header of block sizes, each block compressed by zlib.
class inflated_bytes : public byte_stream {
public:
    // The header consists of words of four or eight bytes.
    inflated_bytes(byte_stream& in, cursor& where, bool wide, bool reversed);
    void read(char* to, std::uint64_t count) override;
    std::uint64_t most() const override { return total_; }

private:
    struct free_decompressor {
        void operator()(libdeflate_decompressor* d) const;
    };

    void next_block();

    byte_stream& in_;
    cursor& where_;
    std::unique_ptr<libdeflate_decompressor, free_decompressor> decompressor_;
    std::vector<std::int64_t> compressed_sizes_;
    std::uint64_t block_size_ = 0;
    std::uint64_t last_size_ = 0;
    std::uint64_t total_ = 0;
    std::size_t block_ = 0;
    std::vector<char> packed_;
    std::vector<char> plain_;
    std::size_t used_ = 0;
};

// Numbers out of such bytes.
class decoded_numbers : public number_stream {
public:
    decoded_numbers(byte_stream& in, scalar_type type, bool reversed) : in_(in), type_(type), reversed_(reversed) {}
    void read(double* to, std::uint64_t count) override { read_as(to, count); }
    void read(std::int64_t* to, std::uint64_t count) override { read_as(to, count); }
    void read(unsigned int* to, std::uint64_t count) override { read_as(to, count); }

private:
    template <class To>
    void read_as(To* to, std::uint64_t count)
    {
        if (type_ == scalar_type::real64 && !reversed_ && std::is_floating_point_v<To>)
            return in_.read(reinterpret_cast<char*>(to), count * sizeof(double));
        const std::uint64_t bytes = info_of(type_).bytes;
        std::array<char, 32768> block;
        for (std::uint64_t done = 0; done < count;) {
            const std::uint64_t n = std::min<std::uint64_t>(block.size() / bytes, count - done);
            in_.read(block.data(), n * bytes);
            decode(type_, reversed_, block.data(), to + done, n);
            done += n;
        }
    }

    byte_stream& in_;
    scalar_type type_;
    bool reversed_;
};

}  // namespace tool

#endif
