#include "io/block_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/return_codes.h"

namespace zeb::tessolv {
namespace {

constexpr std::size_t block_size = std::size_t{1} << 18;
constexpr std::size_t zeros_behind = 8;

bool wait_for_data(int file)
{
    return fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK) == 0;
}

}  // namespace

block_reader::~block_reader()
{
    if (file_ >= 0) close(file_);
}

int block_reader::open(const char* filename)
{
    struct stat status;
    // Opened without waiting: a FIFO would hold up the caller until somebody writes to it.
    if (filename != nullptr) file_ = ::open(filename, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file_ < 0 || fstat(file_, &status) != 0 || S_ISDIR(status.st_mode)) return bad_argument(1);

    if (S_ISREG(status.st_mode)) file_size_ = static_cast<std::uint64_t>(status.st_size);
    if (!block_.allocate(block_size + zeros_behind)) return out_of_memory;
    next_ = end_ = block_.data();
    finished_ = false;
    if (S_ISFIFO(status.st_mode)) {
        // Still without waiting, this tells a writer that takes its time from none at all.
        const bool has_writer = read_some() || errno == EAGAIN;
        if (!has_writer) return bad_argument(1);
        finished_ = broken_ = false;
    }
    return wait_for_data(file_) ? success : bad_argument(1);
}

void block_reader::refill(std::size_t n)
{
    if (finished_) return;
    const std::size_t kept = size();
    std::memmove(block_.data(), next_, kept);
    next_ = block_.data();
    end_ = block_.data() + kept;
    while (size() < n && read_some()) continue;
}

const char* block_reader::ensure_lines()
{
    for (;;) {
        if (const void* newline = memrchr(next_, '\n', size())) return static_cast<const char*>(newline) + 1;
        const std::size_t before = size();
        refill(std::min(before + 1, block_size));
        if (size() == before) return next_;
    }
}

// Appends what one read gives to the bytes at hand; false at the end.
bool block_reader::read_some()
{
    const std::size_t room = block_size - static_cast<std::size_t>(end_ - block_.data());
    ssize_t got = 0;
    do {
        errno = 0;
        got = read(file_, end_, room);
    } while (got < 0 && errno == EINTR);

    finished_ = got <= 0;
    broken_ = got < 0;
    if (got > 0) {
        end_ += got;
        taken_ += static_cast<std::uint64_t>(got);
    }
    std::memset(end_, 0, zeros_behind);
    return got > 0;
}

}  // namespace zeb::tessolv
