#include "process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

extern char** environ;

namespace compare {
namespace {

// The kernel's account of a child begins with the size of its parent, so the child itself is watched.
double watch(pid_t child, int& status)
{
    const std::string file = "/proc/" + std::to_string(child) + "/status";
    double greatest = 0.0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        std::ifstream lines(file);
        for (std::string line; std::getline(lines, line);)
            if (line.rfind("VmHWM:", 0) == 0) greatest = 1024.0 * std::strtod(line.c_str() + 6, nullptr);
        usleep(1000);
    }
    return greatest;
}

}  // namespace

std::string program(const std::string& name)
{
    std::istringstream folders(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/" + name).c_str(), X_OK) == 0) return folder + "/" + name;
    return {};
}

bool run_process(const std::vector<std::string>& command, lap& l)
{
    std::vector<char*> arguments;
    for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t silent;
    posix_spawn_file_actions_init(&silent);
    posix_spawn_file_actions_addopen(&silent, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&silent, 2, "/dev/null", O_WRONLY, 0);
    int status = -1;
    double greatest = 0.0;
    bool started = false;
    l.timed([&] {
        pid_t child = 0;
        started = posix_spawn(&child, command.front().c_str(), &silent, nullptr, arguments.data(), environ) == 0;
        if (!started) return;
        if (l.with_memory())
            greatest = watch(child, status);
        else
            waitpid(child, &status, 0);
    });
    posix_spawn_file_actions_destroy(&silent);
    if (l.with_memory()) l.peak = greatest;
    return started && status == 0;
}

std::string output_of(const std::string& command)
{
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return text;
    char block[256];
    while (std::fgets(block, sizeof block, pipe) != nullptr) text += block;
    pclose(pipe);
    return text;
}

}  // namespace compare
