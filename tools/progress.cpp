#include "progress.h"

#include <sys/ioctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "input/input_file.h"
#include "terminal.h"

namespace tool {
namespace {

// What the timer's signal draws. A handler may touch nothing but such plain memory; while it changes, `verb` is null.
struct drawing {
    std::atomic<const char*> verb = nullptr;
    std::array<char, 200> file{};
    std::atomic<std::uint64_t> position = 0;
    std::atomic<std::uint64_t> size = 0;
    std::atomic<bool> shown = false;
    std::size_t width = 80;
};
drawing line;

constexpr std::string_view erasing = "\r\033[K";
constexpr suseconds_t first_delay = 500'000;
constexpr suseconds_t delay = 100'000;

// Room for the name of the program, a verb, a file name and a percentage.
struct line_text {
    std::array<char, 256> bytes{};
    std::size_t length = 0;

    void add(std::string_view text) { length += text.copy(bytes.data() + length, bytes.size() - length); }
    void add(std::uint64_t number)
    {
        std::array<char, 20> digits{};
        std::size_t at = digits.size();
        do digits[--at] = static_cast<char>('0' + number % 10);
        while ((number /= 10) != 0);
        add({digits.data() + at, digits.size() - at});
    }
    // A line that wrapped could not be erased.
    void cut(std::size_t width)
    {
        if (length <= width) return;
        for (length = width; length != 0 && (static_cast<unsigned char>(bytes[length]) & 0xC0) == 0x80;) --length;
    }
};

void put(std::string_view text)
{
    [[maybe_unused]] const ssize_t done = write(STDERR_FILENO, text.data(), text.size());
}

extern "C" void draw_progress(int)
{
    const char* const verb = line.verb;
    if (verb == nullptr) return;
    const int error = errno;
    line_text text;
    text.add("tessolv: ");
    text.add(verb);
    text.add(" ");
    text.add(line.file.data());
    if (const std::uint64_t size = line.size; size != 0) {
        text.add(" ");
        text.add(std::min<std::uint64_t>(100, 100 * (line.position / (size / 100 + 1)) / 100));
        text.add(" %");
    }
    text.cut(line.width);
    line.shown = true;
    put(erasing);
    put({text.bytes.data(), text.length});
    errno = error;
}

void observe_reading(std::uint64_t position, std::uint64_t size)
{
    line.position = position;
    line.size = size;
}

void set_timer(suseconds_t first, suseconds_t next)
{
    const itimerval times{{0, next}, {0, first}};
    setitimer(ITIMER_REAL, &times, nullptr);
}

bool can_be_shown()
{
    const char* kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) != 0 && kind != nullptr && std::string_view(kind) != "dumb";
}

}  // namespace

progress::progress(bool wanted, const std::string& file) : running_(wanted && can_be_shown())
{
    if (!running_) return;
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1) line.width = size.ws_col - 1u;
    stage("working on", file);
    on_read = observe_reading;
    struct sigaction action {};
    action.sa_handler = draw_progress;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    set_timer(first_delay, delay);
}

progress::~progress()
{
    if (!running_) return;
    set_timer(0, 0);
    line.verb = nullptr;
    on_read = nullptr;
    erase();
}

void progress::stage(const char* verb, const std::string& file)
{
    line.verb = nullptr;
    line.position = 0;
    line.size = 0;
    line.file.fill('\0');
    printable(file == "-" ? "standard input or output" : file).copy(line.file.data(), line.file.size() - 1);
    line.verb = verb;
}

void progress::erase()
{
    if (!line.shown.exchange(false)) return;
    put(erasing);
}

}  // namespace tool
