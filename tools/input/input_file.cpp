#include "input/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "errors.h"

namespace tool {
namespace {

std::string last_error()
{
    return std::generic_category().message(errno);
}

// Pipes and devices are refused: the file is read twice, once by this program and once by the library.
struct stat status_of_regular_file(int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) throw unreadable(last_error());
    if (S_ISDIR(status.st_mode)) throw unreadable("is a directory");
    if (!S_ISREG(status.st_mode)) throw unreadable("is not a regular file");
    return status;
}

}  // namespace

input_file::input_file(const std::string& path)
{
    // Without O_NONBLOCK the opening of a pipe would wait for a writer.
    descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0) throw unreadable(last_error());
    try {
        size_ = static_cast<std::uint64_t>(status_of_regular_file(descriptor_).st_size);
    } catch (...) {
        close(descriptor_);
        throw;
    }
}

input_file::input_file(in_memory content) : bytes_(std::move(content.bytes)), size_(bytes_.size()) {}

input_file::~input_file()
{
    if (descriptor_ >= 0) close(descriptor_);
}

std::size_t input_file::read_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const
{
    const std::size_t done = descriptor_ < 0 ? copy_at(offset, bytes, count) : read_file_at(offset, bytes, count);
    if (on_read != nullptr) on_read(offset + done, size_);
    return done;
}

std::size_t input_file::copy_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const
{
    if (offset >= size_) return 0;
    return bytes_.copy(reinterpret_cast<char*>(bytes), count, static_cast<std::size_t>(offset));
}

std::size_t input_file::read_file_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const
{
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = pread(descriptor_, bytes + done, count - done, static_cast<off_t>(offset + done));
        if (got == 0) break;
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        } else if (errno != EINTR) {
            throw unreadable(last_error());
        }
    }
    return done;
}

bool input_file::is_same_file(const std::string& path) const
{
    struct stat mine {};
    struct stat other {};
    return descriptor_ >= 0 && fstat(descriptor_, &mine) == 0 && stat(path.c_str(), &other) == 0 &&
           mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

}  // namespace tool
