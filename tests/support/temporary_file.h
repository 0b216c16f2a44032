#ifndef TESTS_SUPPORT_TEMPORARY_FILE_H
#define TESTS_SUPPORT_TEMPORARY_FILE_H

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

namespace test {

// A file of its own name that goes with the object.
class temporary_file {
public:
    // Only the name: there is no file yet.
    temporary_file()
    {
        static int count = 0;
        const char* folder = std::getenv("TMPDIR");
        name_ = std::string(folder != nullptr ? folder : "/tmp") + "/tessolv_test." + std::to_string(getpid()) + "." +
                std::to_string(count++);
    }

    explicit temporary_file(const std::string& bytes) : temporary_file() { write(bytes); }

    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;
    ~temporary_file() { std::remove(name()); }

    const char* name() const { return name_.c_str(); }

    void write(const std::string& bytes) const
    {
        std::ofstream file(name_, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::string bytes() const
    {
        std::ifstream file(name_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::string name_;
};

}  // namespace test

#endif
