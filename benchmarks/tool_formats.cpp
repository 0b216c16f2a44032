// Reads a mesh with the readers of the program, and writes it: tool_formats INPUT [OUTPUT text|bytes]. Prints the seconds of
// processor time of both calls and the greatest size of the process in MiB during each, beyond what it was before.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>

#include "formats/format.h"

namespace {

double mebibytes(const char* entry)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(entry)) return std::stod(line.substr(std::strlen(entry))) / 1024;
    return 0;
}

double processor_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

struct cost {
    double seconds;
    double memory;
};

template <class Work>
cost measured(Work work)
{
    std::ofstream("/proc/self/clear_refs") << 5;  // the greatest size begins anew
    const double before = mebibytes("VmRSS:");
    const double start = processor_seconds();
    work();
    return {processor_seconds() - start, mebibytes("VmHWM:") - before};
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2 && count != 4) return 2;
    tool::mesh m;
    const cost reading = measured([&] { m = tool::read_mesh(tool::source::open(arguments[1])); });
    cost writing{0, 0};
    if (count == 4) {
        tool::write_options options;
        options.ascii = std::strcmp(arguments[3], "text") == 0;
        writing = measured([&] { tool::write_mesh(m, arguments[2], {}, options); });
    }
    std::printf("[%.4f, %.4f, %.1f, %.1f]\n", reading.seconds, writing.seconds, reading.memory, writing.memory);
    return m.element_count() == 0;
}
