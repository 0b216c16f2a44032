#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "io/stl_model.h"
#include "io/wavefront_obj_model.h"
#include "support/open_files.h"

// Files that come in small pieces, with interruptions, or not to their end: the library's calls of read() end up here.

namespace {

struct reading {
    std::size_t most_at_once = SIZE_MAX;
    std::size_t breaks_behind = SIZE_MAX;  // bytes
    bool interrupted = false;              // every other call is
};

const reading* in_effect = nullptr;
std::size_t delivered = 0;
std::size_t calls = 0;

// While it lives, files are read like this.
class read_like {
public:
    explicit read_like(const reading& how) : how_(how)
    {
        delivered = calls = 0;
        in_effect = &how_;
    }
    read_like(const read_like&) = delete;
    read_like& operator=(const read_like&) = delete;
    ~read_like() { in_effect = nullptr; }

private:
    reading how_;
};

ssize_t failed_read(int error)
{
    errno = error;
    return -1;
}

}  // namespace

extern "C" ssize_t read(int file, void* to, std::size_t count)
{
    if (in_effect == nullptr) return syscall(SYS_read, file, to, count);
    if (in_effect->interrupted && ++calls % 2 == 0) return failed_read(EINTR);
    if (delivered >= in_effect->breaks_behind) return failed_read(EIO);
    count = std::min({count, in_effect->most_at_once, in_effect->breaks_behind - delivered});
    const ssize_t got = syscall(SYS_read, file, to, count);
    delivered += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    return got;
}

using namespace test;

namespace {

stl_mesh read_stl_like(const reading& how, const std::string& bytes, bool ascii)
{
    const temporary_file file(bytes);
    const read_like now(how);
    return read_stl_file(file.name(), ascii);
}

obj_mesh read_obj_like(const reading& how, const std::string& text)
{
    const temporary_file file(text);
    const read_like now(how);
    return read_file(file.name());
}

}  // namespace

TEST(BrokenReading, GivesTheSameInPiecesOfAnySizeAndWithInterruptions)
{
    const obj_mesh obj = read_text(every_form);
    for (std::size_t most = 1; most < 40; most += 3)
        for (const bool interrupted : {false, true}) {
            const reading how{most, SIZE_MAX, interrupted};
            EXPECT_EQ(read_obj_like(how, every_form), obj);
            EXPECT_GT(delivered, 0U);
            for (const bool ascii : {true, false}) {
                const std::string bytes = stl_bytes(cube_facets(1), ascii);
                EXPECT_EQ(read_stl_like(how, bytes, ascii), read_stl(bytes, ascii));
            }
        }
}

TEST(BrokenReading, KeepsTheWholeLinesOfAWavefrontOBJFile)
{
    const std::string text = std::string(every_form) + "\n";
    for (std::size_t n = 0; n < text.size(); ++n) {
        obj_mesh expected = read_text(
            text.substr(0, text.rfind('\n', n) == std::string::npos || n == 0 ? 0 : text.rfind('\n', n - 1) + 1));
        expected.code = -1;
        EXPECT_EQ(read_obj_like({SIZE_MAX, n}, text), expected) << "broken behind byte " << n;
        EXPECT_EQ(read_obj_like({1, n}, text), expected) << "broken behind byte " << n;
    }
    EXPECT_EQ(read_obj_like({SIZE_MAX, text.size()}, text).code, -1) << "the end is not known to be the end";
}

TEST(BrokenReading, CountsAsTheEndOfAnSTLFile)
{
    for (const bool ascii : {true, false}) {
        const std::string bytes = stl_bytes(cube_facets(1), ascii);
        for (std::size_t n = 0; n <= bytes.size(); n += 3)
            EXPECT_EQ(read_stl_like({SIZE_MAX, n}, bytes, ascii), stl_model_of(bytes.substr(0, n), ascii))
                << "broken behind byte " << n;
    }
}

TEST(BrokenReading, ClosesTheFile)
{
    const std::ptrdiff_t before = open_files();
    read_obj_like({SIZE_MAX, 20}, every_form);
    read_stl_like({SIZE_MAX, 100}, stl_bytes(cube_facets(1), true), true);
    EXPECT_EQ(open_files(), before);
}
