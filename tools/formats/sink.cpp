#include "formats/sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <system_error>

#include "errors.h"
#include "formats/file_beside.h"

namespace tool {
namespace {

[[noreturn]] void throw_last_error()
{
    throw unwritable(std::generic_category().message(errno));
}

}  // namespace

// A file descriptor: of standard output, of a device that is written in place, or of a file beside its place.
class sink::target {
public:
    explicit target(const std::string& path)
    {
        struct stat status {};
        if (path == "-") {
            descriptor_ = dup(STDOUT_FILENO);
        } else if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
            descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        } else {
            file_.emplace(path);
            descriptor_ = open(file_->name().c_str(), O_WRONLY | O_CLOEXEC);
        }
        if (descriptor_ < 0) throw_last_error();
    }

    target(const target&) = delete;
    target& operator=(const target&) = delete;

    ~target()
    {
        if (descriptor_ >= 0) close(descriptor_);
    }

    void write_out(const char* bytes, std::size_t count) const
    {
        while (count != 0) {
            const ssize_t done = write(descriptor_, bytes, count);
            if (done < 0 && errno != EINTR) throw_last_error();
            if (done <= 0) continue;
            bytes += done;
            count -= static_cast<std::size_t>(done);
        }
    }

    void finish()
    {
        if (descriptor_ < 0) return;
        const int closed = close(descriptor_);
        descriptor_ = -1;
        if (closed != 0) throw_last_error();
    }

    void commit()
    {
        finish();
        if (file_) file_->commit();
    }

private:
    std::optional<file_beside> file_;
    int descriptor_ = -1;
};

sink::sink(const std::string& path) : target_(std::make_unique<target>(path)), block_(block_size)
{
    at_ = block_.data();
    limit_ = at_ + block_.size();
}

sink::sink(std::string& memory) : memory_(&memory), block_(block_size)
{
    at_ = block_.data();
    limit_ = at_ + block_.size();
}

sink::~sink() = default;

void sink::write_out(const char* bytes, std::size_t count)
{
    if (memory_ != nullptr) {
        memory_->append(bytes, count);
    } else {
        target_->write_out(bytes, count);
    }
}

void sink::flush()
{
    write_out(block_.data(), static_cast<std::size_t>(at_ - block_.data()));
    at_ = block_.data();
}

void sink::raw(const void* bytes, std::size_t count)
{
    if (static_cast<std::size_t>(limit_ - at_) < count) flush();
    if (count >= block_size) {
        write_out(static_cast<const char*>(bytes), count);
    } else if (count != 0) {
        std::memcpy(at_, bytes, count);
        at_ += count;
    }
}

void sink::finish()
{
    flush();
    if (target_) target_->finish();
}

void sink::commit()
{
    finish();
    if (target_) target_->commit();
}

}  // namespace tool
