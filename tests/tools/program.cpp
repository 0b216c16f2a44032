#include "tools/program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <stdexcept>

#include "tools/stl_files.h"

namespace test {

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> all(texts.size() + 1, nullptr);
    std::ranges::transform(texts, all.begin(), [](std::string& text) { return text.data(); });
    return all;
}

namespace {

void redirect(const std::string& path, int descriptor)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || dup2(file, descriptor) < 0) _exit(127);
}

[[noreturn]] void become_tessolv(std::vector<std::string> arguments, const run_options& options, const std::string& out,
                                 const std::string& err)
{
    redirect(out, STDOUT_FILENO);
    redirect(err, STDERR_FILENO);
    if (!options.standard_input.empty()) {
        const int file = open(options.standard_input.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0 || dup2(file, STDIN_FILENO) < 0) _exit(127);
    }
    if (options.working_directory && chdir(options.working_directory->c_str()) != 0) _exit(127);
    if (options.memory) {
        const rlimit limit{*options.memory, *options.memory};
        if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(127);
    }
    if (options.file_size) {
        const rlimit limit{*options.file_size, *options.file_size};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(127);
    }
    std::vector<std::string> environment = options.environment;  // the first entry of a name counts
    for (const char* entry : {"LC_ALL=C", "TERM=xterm", "ASAN_OPTIONS=allocator_may_return_null=1"})
        environment.emplace_back(entry);
    arguments.insert(arguments.begin(), "tessolv");
    execve(TESSOLV_PROGRAM, pointers(arguments).data(), pointers(environment).data());
    _exit(127);
}

bool grows_in(const std::string& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().find(".part-") != std::string::npos) return true;
    return false;
}

// Leaves the child to be waited for.
void interrupt_while_writing(pid_t child, const std::string& folder)
{
    siginfo_t ended{};
    while (waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid == 0) {
        if (grows_in(folder)) {
            kill(child, SIGINT);
            return;
        }
        usleep(500);
    }
}

}  // namespace

run_result tessolv(const std::vector<std::string>& arguments, const run_options& options)
{
    const temporary_folder folder;
    const std::string out = options.standard_output.empty() ? folder.path("out") : options.standard_output;
    const std::string err = folder.path("err");
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) become_tessolv(arguments, options, out, err);
    if (!options.interrupted_in.empty()) interrupt_while_writing(child, options.interrupted_in);

    int state = 0;
    waitpid(child, &state, 0);
    run_result result;
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    if (options.standard_output.empty()) result.out = read_file(out);
    result.err = read_file(err);
    return result;
}

}  // namespace test
