#include "tools/other_programs/program.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>

namespace test {
namespace {

const char* const python = "/usr/bin/python3";

[[noreturn]] void become(const std::vector<std::string>& words, const std::string& folder, const std::string& output)
{
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const int to = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int from = open("/dev/null", O_RDONLY);
    if (to < 0 || from < 0 || dup2(from, 0) < 0 || dup2(to, 1) < 0 || dup2(to, 2) < 0 || chdir(folder.c_str()) != 0)
        _exit(126);
    setenv("HOME", folder.c_str(), 1);
    alarm(60);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

outcome run(const std::vector<std::string>& words, const temporary_folder& folder)
{
    const std::string output = folder.path("output of " + std::filesystem::path(words[0]).filename().string());
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process");
    if (child == 0) become(words, folder.path(""), output);
    int status = 0;
    if (waitpid(child, &status, 0) != child) throw std::runtime_error("the process is lost");
    outcome result{WIFEXITED(status) ? WEXITSTATUS(status) : 0, WIFSIGNALED(status) ? WTERMSIG(status) : 0, {}};
    for (const std::string& word : words) result.said += word + ' ';
    result.said += "\nended with status " + std::to_string(result.status) + ", signal " +
                   std::to_string(result.signal) + ", and said\n" + read_file(output);
    return result;
}

bool has_gmsh()
{
    return run({"gmsh", "--version"}, temporary_folder()).succeeded();
}

bool has_module(const std::string& module)
{
    return run({python, "-c", "import " + module}, temporary_folder()).succeeded();
}

outcome run_script(const std::string& script, const std::vector<std::string>& words, const temporary_folder& folder)
{
    std::vector<std::string> all{python, TESTS_SCRIPTS "/" + script};
    all.insert(all.end(), words.begin(), words.end());
    return run(all, folder);
}

}  // namespace test
