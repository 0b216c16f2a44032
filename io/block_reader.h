#ifndef TESSOLV_IO_BLOCK_READER_H
#define TESSOLV_IO_BLOCK_READER_H

#include <cstddef>
#include <cstdint>

#include "core/scratch.h"

namespace zeb::tessolv {

constexpr int end_of_file = -1;

// A file read from front to back in blocks. Whatever its size, only one block is in memory: a window of unread bytes
// that moves on. Nothing is decided here about text, lines or numbers.
class block_reader {
public:
    static constexpr std::size_t most_ahead = 512;  // what ensure may be asked for

    block_reader() = default;
    block_reader(const block_reader&) = delete;
    block_reader& operator=(const block_reader&) = delete;
    ~block_reader();

    // success; bad_argument(1) when there is no such file, or nothing that bytes can be read from: a directory, a FIFO
    // that nobody writes to; out_of_memory. Never waits for a writer to come.
    [[nodiscard]] int open(const char* filename);

    // The unread bytes at hand. Eight zeros stand behind the last one, so that loops may stop at them and whole words
    // may be loaded.
    const char* begin() const { return next_; }
    const char* end() const { return end_; }
    std::size_t size() const { return static_cast<std::size_t>(end_ - next_); }
    void move_to(const char* p) { next_ = p; }
    void skip(std::size_t n) { next_ += n; }

    // Brings at least n unread bytes to hand, n <= most_ahead. Fewer are left only at the end of the file.
    std::size_t ensure(std::size_t n)
    {
        if (size() < n) refill(n);
        return size();
    }

    // Brings whole lines to hand and returns where the last of them ends, behind its newline. This is begin() where the
    // next line is longer than a block, or where the file ends without a newline or at all.
    const char* ensure_lines();

    // The next byte as an unsigned char, or end_of_file.
    int peek() { return ensure(1) != 0 ? static_cast<unsigned char>(*next_) : end_of_file; }

    // Passes over the bytes that `belongs` is true for, and stops before the first other one.
    template <class Belongs>
    void pass_while(Belongs belongs)
    {
        while (ensure(1) != 0) {
            const char* p = next_;
            while (p != end_ && belongs(*p)) ++p;
            next_ = p;
            if (p != end_) return;
        }
    }

    // Bytes that were passed over, and bytes still to come as far as the file system tells: of anything but a regular
    // file only those at hand.
    std::uint64_t passed() const { return taken_ - size(); }
    std::uint64_t remaining() const { return size() + (file_size_ > taken_ ? file_size_ - taken_ : 0); }

    // Whether reading came to its end because the system reported an error.
    bool broke_off() const { return broken_; }

private:
    void refill(std::size_t n);
    bool read_some();

    scratch<char> block_;
    const char* next_ = nullptr;
    char* end_ = nullptr;
    int file_ = -1;
    std::uint64_t file_size_ = 0;
    std::uint64_t taken_ = 0;  // bytes that were brought to hand so far
    bool finished_ = true;
    bool broken_ = false;
};

// A line that lies in the block as a whole, newline included; read by the same words. Its end need not be looked for:
// nothing that is read goes beyond the newline.
class line_at_hand {
public:
    explicit line_at_hand(const char* first) : next_(first) {}

    const char* begin() const { return next_; }
    void move_to(const char* p) { next_ = p; }
    void skip(std::size_t n) { next_ += n; }
    int peek() const { return static_cast<unsigned char>(*next_); }

    template <class Belongs>
    void pass_while(Belongs belongs)
    {
        while (belongs(*next_)) ++next_;
    }

private:
    const char* next_;
};

}  // namespace zeb::tessolv

#endif
