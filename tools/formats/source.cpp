#include "formats/source.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "errors.h"

namespace tool {
namespace {

std::string all_of_standard_input()
{
    constexpr std::size_t block = std::size_t{1} << 18;
    std::string bytes;
    for (std::size_t used = 0;;) {
        if (bytes.size() < used + block) bytes.resize(std::max(used + block, used + used / 2));
        const ssize_t got = read(STDIN_FILENO, bytes.data() + used, bytes.size() - used);
        if (got < 0 && errno != EINTR) throw unreadable(std::generic_category().message(errno));
        if (got > 0) used += static_cast<std::size_t>(got);
        if (got == 0) {
            bytes.resize(used);
            return bytes;
        }
    }
}

}  // namespace

source source::open(const std::string& path)
{
    if (path == "-") return of_bytes(all_of_standard_input(), path);
    return {path, std::make_shared<const input_file>(path)};
}

source source::of_bytes(std::string bytes, std::string name)
{
    return {std::move(name), std::make_shared<const input_file>(input_file::in_memory{std::move(bytes)})};
}

std::string source::head() const
{
    std::string bytes(std::size_t{1} << 14, '\0');
    bytes.resize(read_at(0, bytes.data(), bytes.size()));
    return bytes;
}

}  // namespace tool
