#ifndef TESSOLV_IO_C_FILE_H
#define TESSOLV_IO_C_FILE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {

// Bytes that are handed to a stream, or taken from it, at a time.
constexpr std::size_t file_block = 262144;  // 256 KiB

// A C stream that the library opened itself; closed with the object, so on every return. It has no buffer of its own:
// whoever reads or writes it does so in blocks.
class c_file {
public:
    c_file(const char* name, const char* mode) : stream_(name != nullptr ? std::fopen(name, mode) : nullptr)
    {
        if (stream_ != nullptr) std::setvbuf(stream_, nullptr, _IONBF, 0);
    }
    c_file(const c_file&) = delete;
    c_file& operator=(const c_file&) = delete;
    ~c_file() { close(); }

    bool is_open() const { return stream_ != nullptr; }
    std::FILE* stream() const { return stream_; }

    // False when the system reports that what was written did not arrive.
    bool close()
    {
        std::FILE* f = std::exchange(stream_, nullptr);
        return f == nullptr || std::fclose(f) == 0;
    }

private:
    std::FILE* stream_;
};

// Collects bytes in one block and hands them to a stream when it is full. The first write that fails is kept in mind,
// what follows it is dropped.
class block_writer {
public:
    explicit block_writer(std::FILE* stream = nullptr) : stream_(stream) {}

    // For writers that want to have their memory before they create a file.
    void set_stream(std::FILE* stream) { stream_ = stream; }

    // To be called once, before anything is put. False without memory.
    [[nodiscard]] bool allocate()
    {
        if (!block_.allocate(file_block)) return false;
        at_ = block_.data();
        return true;
    }

    // Room for `most` bytes, at most file_block. What is written there counts once advance has been told its end.
    char* room(std::size_t most)
    {
        if (static_cast<std::size_t>(block_.end() - at_) < most) send();
        return at_;
    }
    void advance(char* end) { at_ = end; }

    // Text of at most file_block bytes.
    void put(std::string_view text)
    {
        std::memcpy(room(text.size()), text.data(), text.size());
        at_ += text.size();
    }

    // The same text `count` times.
    void put_repeated(std::string_view text, std::uint64_t count)
    {
        while (count != 0) {
            char* at = room(text.size());
            const auto fitting = static_cast<std::uint64_t>(block_.end() - at) / text.size();
            const std::uint64_t times = std::min(count, fitting);
            for (std::uint64_t k = 0; k < times; ++k, at += text.size()) std::memcpy(at, text.data(), text.size());
            advance(at);
            count -= times;
        }
    }

    // Hands over what is left. False when this or an earlier write failed.
    [[nodiscard]] bool finish()
    {
        send();
        return !failed_;
    }

private:
    void send()
    {
        const auto count = static_cast<std::size_t>(at_ - block_.data());
        failed_ = failed_ || std::fwrite(block_.data(), 1, count, stream_) != count;
        at_ = block_.data();
    }

    std::FILE* stream_;
    scratch<char> block_;
    char* at_ = nullptr;
    bool failed_ = false;
};

// The end of a writer: hands over what is left and closes the file, whose name is the first argument of every writer.
inline int finish(block_writer& out, c_file& file)
{
    const bool written = out.finish();
    return file.close() && written ? success : bad_argument(1);
}

}  // namespace zeb::tessolv

#endif
