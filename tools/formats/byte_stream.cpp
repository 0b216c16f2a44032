#include "formats/byte_stream.h"

#include <libdeflate.h>

#include <cstring>
#include <new>
#include <string_view>

namespace tool {
namespace {

constexpr unsigned char no_digit = 0xFF;

const std::array<unsigned char, 256>& base64_digits()
{
    static const auto table = [] {
        constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::array<unsigned char, 256> made;
        made.fill(no_digit);
        for (std::size_t i = 0; i < letters.size(); ++i)
            made[static_cast<unsigned char>(letters[i])] = static_cast<unsigned char>(i);
        return made;
    }();
    return table;
}

}  // namespace

void base64_bytes::decode_group()
{
    const auto& digits = base64_digits();
    unsigned int bits = 0;
    unsigned int padding = 0;
    in_.skip_blanks();
    for (int k = 0; k < 4; ++k) {
        const int c = in_.peek();
        if (c < 0) in_.fail("the file ends within the data");
        const unsigned char digit = digits[static_cast<std::size_t>(c)];
        if (c == '=') {
            ++padding;
        } else if (digit == no_digit || padding != 0) {
            in_.fail("what is no base64 text");
        }
        in_.skip_one();
        bits = bits << 6 | (c == '=' ? 0u : digit);
    }
    if (padding > 2) in_.fail("what is no base64 text");
    for (unsigned int k = 0; k < 3; ++k) group_[k] = static_cast<char>(bits >> (16 - 8 * k));
    used_ = 0;
    held_ = 3 - padding;
}

void base64_bytes::read(char* to, std::uint64_t count)
{
    for (; count != 0; --count) {
        if (used_ == held_) decode_group();
        *to++ = group_[used_++];
    }
}

void inflated_bytes::free_decompressor::operator()(libdeflate_decompressor* d) const
{
    libdeflate_free_decompressor(d);
}

inflated_bytes::inflated_bytes(byte_stream& in, cursor& where, bool wide, bool reversed)
    : in_(in), where_(where), decompressor_(libdeflate_alloc_decompressor())
{
    if (!decompressor_) throw std::bad_alloc();
    const scalar_type word = wide ? scalar_type::uint64 : scalar_type::uint32;
    decoded_numbers words(in, word, reversed);
    std::array<std::int64_t, 3> header;
    words.read(header.data(), 3);
    const auto blocks = static_cast<std::uint64_t>(header[0]);
    if (blocks > in.most()) where.fail("the file is too short for " + std::to_string(blocks) + " blocks");
    block_size_ = static_cast<std::uint64_t>(header[1]);
    last_size_ = header[2] != 0 ? static_cast<std::uint64_t>(header[2]) : block_size_;
    compressed_sizes_.resize(blocks);
    words.read(compressed_sizes_.data(), blocks);
    // zlib makes at most a thousand bytes out of one.
    constexpr std::uint64_t most_expansion = 1100;
    for (std::size_t k = 0; k < blocks; ++k) {
        const std::uint64_t plain = k + 1 == blocks ? last_size_ : block_size_;
        const auto packed = static_cast<std::uint64_t>(compressed_sizes_[k]);
        if (packed > in.most() || plain / most_expansion > packed) where.fail("sizes of blocks that cannot be");
        total_ += plain;
    }
}

void inflated_bytes::next_block()
{
    if (block_ == compressed_sizes_.size()) where_.fail("the data end too early");
    packed_.resize(static_cast<std::size_t>(compressed_sizes_[block_]));
    in_.read(packed_.data(), packed_.size());
    ++block_;
    plain_.resize(static_cast<std::size_t>(block_ == compressed_sizes_.size() ? last_size_ : block_size_));
    // Without a place for the number of bytes all of them must come.
    if (libdeflate_zlib_decompress(decompressor_.get(), packed_.data(), packed_.size(), plain_.data(), plain_.size(),
                                   nullptr) != LIBDEFLATE_SUCCESS)
        where_.fail("compressed data that cannot be read");
    used_ = 0;
}

void inflated_bytes::read(char* to, std::uint64_t count)
{
    while (count != 0) {
        if (used_ == plain_.size()) next_block();
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(count, plain_.size() - used_));
        std::memcpy(to, plain_.data() + used_, n);
        used_ += n;
        to += n;
        count -= n;
    }
}

}  // namespace tool
