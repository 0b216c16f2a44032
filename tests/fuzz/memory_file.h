#ifndef TESTS_FUZZ_MEMORY_FILE_H
#define TESTS_FUZZ_MEMORY_FILE_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace test {

// A file in memory that has a name, so that a function which takes names can open it.
class memory_file {
public:
    memory_file(const std::uint8_t* bytes, std::size_t count) : file_(memfd_create("fuzz", 0))
    {
        if (file_ < 0 || write(file_, bytes, count) != static_cast<ssize_t>(count)) std::abort();
        name_ = "/proc/self/fd/" + std::to_string(file_);
    }
    memory_file(const memory_file&) = delete;
    memory_file& operator=(const memory_file&) = delete;
    ~memory_file() { close(file_); }

    const char* name() const { return name_.c_str(); }

private:
    int file_;
    std::string name_;
};

}  // namespace test

#endif
