#include "formats/file_beside.h"

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

constexpr std::array<int, 5> deadly{SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};

// Signals that the caller's shell has switched off stay so.
void remove_on_signals()
{
    for (const int signal : deadly) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = remove_unfinished_and_die;
        action.sa_flags = static_cast<int>(SA_NODEFER);
        sigaction(signal, &action, nullptr);
    }
}

// Signals wait as long as this lives.
class signals_held {
public:
    signals_held()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : deadly) sigaddset(&signals, signal);
        pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    ~signals_held() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    signals_held(const signals_held&) = delete;
    signals_held& operator=(const signals_held&) = delete;

private:
    sigset_t before_{};
};

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

file_beside::file_beside(const std::string& path) : path_(resolved(path))
{
    struct stat status {};
    const bool exists = stat(path_.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) throw unwritable("is a directory");
    if (exists && access(path_.c_str(), W_OK) != 0) throw_last_error();
    in_place_ = exists && !S_ISREG(status.st_mode);
    if (in_place_) {
        name_ = path_;
        return;
    }
    std::string name = path_ + ".part-XXXXXX";
    if (name.size() >= unfinished.size()) throw unwritable("the name is too long");
    remove_on_signals();
    const signals_held until_its_name_is_noted;
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) throw_last_error();
    name_ = name;
    name.copy(unfinished.data(), name.size());
    unfinished[name.size()] = '\0';
    fchmod(descriptor, exists ? status.st_mode & 07777 : usual_mode());
    close(descriptor);
}

file_beside::~file_beside()
{
    if (name_.empty() || in_place_) return;
    unlink(name_.c_str());
    unfinished[0] = '\0';
}

void file_beside::commit()
{
    if (in_place_) return;
    if (rename(name_.c_str(), path_.c_str()) != 0) throw_last_error();
    unfinished[0] = '\0';
    name_.clear();
}

}  // namespace tool
