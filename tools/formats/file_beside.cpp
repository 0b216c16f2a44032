#include "formats/file_beside.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "errors.h"

namespace tool {
namespace {

[[noreturn]] void throw_last_error()
{
    throw unwritable(std::generic_category().message(errno));
}

// The files that a signal would leave half-written. A handler may touch nothing but such plain memory.
constexpr std::size_t most_at_once = 4;
std::array<std::array<char, PATH_MAX>, most_at_once> unfinished{};

char* free_note()
{
    for (auto& name : unfinished)
        if (name[0] == '\0') return name.data();
    throw internal_error("more outputs at once than a signal would remove");
}

extern "C" void remove_unfinished_and_die(int signal)
{
    for (const auto& name : unfinished)
        if (name[0] != '\0') unlink(name.data());
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

// A link stays a link: what it leads to is written, or made where it leads to nothing yet.
std::string resolved(std::string path)
{
    std::array<char, PATH_MAX> buffer{};
    constexpr int most_links = 40;
    for (int links = 0; links <= most_links; ++links) {
        if (realpath(path.c_str(), buffer.data()) != nullptr) return buffer.data();
        std::error_code no_link;
        const std::filesystem::path target = std::filesystem::read_symlink(path, no_link);
        if (no_link) return path;
        path = std::filesystem::path(path).parent_path() / target;
    }
    throw unwritable(std::generic_category().message(ELOOP));
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
    if (name.size() >= PATH_MAX) throw unwritable("the name is too long");
    remove_on_signals();
    char* const note = free_note();
    const signals_held until_its_name_is_noted;
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) throw_last_error();
    name_ = name;
    noted_ = note;
    noted_[name.copy(noted_, name.size())] = '\0';
    fchmod(descriptor, exists ? status.st_mode & 07777 : usual_mode());
    close(descriptor);
}

file_beside::~file_beside()
{
    if (name_.empty() || in_place_) return;
    unlink(name_.c_str());
    noted_[0] = '\0';
}

void file_beside::commit()
{
    if (in_place_) return;
    if (rename(name_.c_str(), path_.c_str()) != 0) throw_last_error();
    noted_[0] = '\0';
    name_.clear();
}

}  // namespace tool
