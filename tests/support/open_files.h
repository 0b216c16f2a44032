#ifndef TESTS_SUPPORT_OPEN_FILES_H
#define TESTS_SUPPORT_OPEN_FILES_H

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace test {

// Files, pipes and so on that the process has open.
inline std::ptrdiff_t open_files()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

}  // namespace test

#endif
