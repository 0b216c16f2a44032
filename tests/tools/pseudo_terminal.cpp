#include "tools/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "tools/program.h"
#include "tools/stl_files.h"

namespace test {
namespace {

using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;
using milliseconds = std::chrono::milliseconds;

[[noreturn]] void become_tessolv(std::vector<std::string>& arguments, const terminal_options& options, int input,
                                 const std::string& out)
{
    if (dup2(input, STDIN_FILENO) < 0) _exit(127);
    const int file = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || (!options.output_on_terminal && dup2(file, STDOUT_FILENO) < 0)) _exit(127);
    std::vector<std::string> environment = options.environment;  // the first entry of a name counts
    for (const char* entry : {"LC_ALL=C", "TERM=xterm"}) environment.emplace_back(entry);
    arguments.insert(arguments.begin(), "tessolv");
    execve(TESSOLV_PROGRAM, pointers(arguments).data(), pointers(environment).data());
    _exit(127);
}

// Appends what the terminal gets within the time; false once nobody is left to write to it.
bool read_screen(int terminal, std::string& screen, milliseconds within)
{
    pollfd waiting{terminal, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(within.count())) == 0) return true;
    std::array<char, 4096> bytes{};
    const ssize_t got = read(terminal, bytes.data(), bytes.size());
    if (got > 0) screen.append(bytes.data(), static_cast<std::size_t>(got));
    return got > 0;
}

milliseconds since(clock::time_point start)
{
    return std::chrono::duration_cast<milliseconds>(clock::now() - start);
}

}  // namespace

terminal_result tessolv_on_terminal(std::vector<std::string> arguments, const terminal_options& options)
{
    const temporary_folder folder;
    std::array<int, 2> input{};
    if (pipe2(input.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    int terminal = -1;
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 80;
    const clock::time_point start = clock::now();
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child < 0) throw std::runtime_error("no terminal");
    if (child == 0) become_tessolv(arguments, options, input[0], folder.path("out"));
    close(input[0]);

    terminal_result result;
    constexpr milliseconds most = 20s;
    bool open = true;
    while (open && since(start) < (options.until.empty() ? options.held : most) &&
           (options.until.empty() || result.screen.find(options.until) == std::string::npos))
        open = read_screen(terminal, result.screen, 10ms);
    result.waited = since(start);
    [[maybe_unused]] const ssize_t given = write(input[1], options.input.data(), options.input.size());
    close(input[1]);
    while (open) open = read_screen(terminal, result.screen, 100ms);
    int state = 0;
    waitpid(child, &state, 0);
    close(terminal);
    result.whole = since(start);
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    result.out = read_file(folder.path("out"));
    return result;
}

}  // namespace test
