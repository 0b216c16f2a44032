#include "formats/sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "errors.h"

namespace tool {
namespace {

[[noreturn]] void throw_last_error()
{
    throw unwritable(std::generic_category().message(errno));
}

// The file that a signal would leave half-written. A handler may touch nothing but such plain memory.
std::array<char, PATH_MAX> unfinished{};

extern "C" void remove_unfinished_and_die(int signal)
{
    if (unfinished[0] != '\0') unlink(unfinished.data());
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(signal, &standard, nullptr);
    raise(signal);
}

// Signals that the caller's shell has switched off stay so.
void remove_on_signals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = remove_unfinished_and_die;
        action.sa_flags = static_cast<int>(SA_NODEFER);
        sigaction(signal, &action, nullptr);
    }
}

// A link stays a link: what it leads to is written.
std::string resolved(const std::string& path)
{
    std::array<char, PATH_MAX> buffer{};
    return realpath(path.c_str(), buffer.data()) != nullptr ? std::string(buffer.data()) : path;
}

mode_t usual_mode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

// A file descriptor, and for a regular file the name under which it grows.
class sink::target {
public:
    explicit target(const std::string& path)
    {
        if (path == "-") {
            descriptor_ = dup(STDOUT_FILENO);
            if (descriptor_ < 0) throw_last_error();
            return;
        }
        path_ = resolved(path);
        struct stat status {};
        const bool exists = stat(path_.c_str(), &status) == 0;
        if (exists && S_ISDIR(status.st_mode)) throw unwritable("is a directory");
        if (exists && access(path_.c_str(), W_OK) != 0) throw_last_error();
        if (exists && !S_ISREG(status.st_mode)) {
            open_in_place();
        } else {
            open_beside(exists ? status.st_mode & 07777 : usual_mode());
        }
    }

    target(const target&) = delete;
    target& operator=(const target&) = delete;

    ~target()
    {
        if (descriptor_ >= 0) close(descriptor_);
        discard();
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

    void commit()
    {
        const int closed = close(descriptor_);
        descriptor_ = -1;
        if (closed != 0) throw_last_error();
        if (beside_.empty()) return;
        if (rename(beside_.c_str(), path_.c_str()) != 0) throw_last_error();
        unfinished[0] = '\0';
        beside_.clear();
    }

private:
    void open_in_place()
    {
        descriptor_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor_ < 0) throw_last_error();
    }

    void open_beside(mode_t mode)
    {
        std::string name = path_ + ".part-XXXXXX";
        if (name.size() >= unfinished.size()) throw unwritable("the name is too long");
        remove_on_signals();
        descriptor_ = mkostemp(name.data(), O_CLOEXEC);
        if (descriptor_ < 0) throw_last_error();
        beside_ = name;
        name.copy(unfinished.data(), name.size());
        unfinished[name.size()] = '\0';
        fchmod(descriptor_, mode);
    }

    void discard()
    {
        if (beside_.empty()) return;
        unlink(beside_.c_str());
        unfinished[0] = '\0';
    }

    std::string path_;
    std::string beside_;
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

void sink::commit()
{
    flush();
    if (target_) target_->commit();
}

}  // namespace tool
