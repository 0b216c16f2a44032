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
    source opened;
    opened.name_ = path;
    opened.file_ = std::make_shared<const input_file>(path);
    return opened;
}

source source::of_bytes(std::string bytes, std::string name)
{
    source made;
    made.name_ = std::move(name);
    made.bytes_ = std::move(bytes);
    return made;
}

std::size_t source::read_at(std::uint64_t offset, char* to, std::size_t count) const
{
    if (file_) return file_->read_at(offset, reinterpret_cast<unsigned char*>(to), count);
    if (offset >= bytes_.size()) return 0;
    return bytes_.copy(to, count, static_cast<std::size_t>(offset));
}

std::string source::head() const
{
    std::string bytes(std::size_t{1} << 14, '\0');
    bytes.resize(read_at(0, bytes.data(), bytes.size()));
    return bytes;
}

}  // namespace tool
