#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "process.h"
#include "topology/input.h"

namespace compare {
namespace {

// The elements as plain numbers in a file that goes with the object.
struct raw_file {
    std::string name =
        (std::filesystem::temp_directory_path() / ("tessolv_compare_" + std::to_string(getpid()))).string();
    explicit raw_file(const mesh& m)
    {
        std::ofstream(name, std::ios::binary)
            .write(reinterpret_cast<const char*>(entries(m.connect)),
                   static_cast<std::streamsize>(4 * m.connect.rows * m.connect.cols));
    }
    ~raw_file() { std::filesystem::remove(name); }
    raw_file(const raw_file&) = delete;
    raw_file& operator=(const raw_file&) = delete;
};

void sort_faces(const topology_input& m, lap& l)
{
    static const bool installed = std::system("/usr/bin/python3 -c 'import numpy' 2>/dev/null") == 0;
    if (!installed || m.type == EL_HEXA8) return l.decline();  // four nodes do not fit in 64 bits
    const raw_file file(m);
    std::istringstream told(output_of("/usr/bin/python3 " COMPARE_SOURCES "/topology/numpy_neighbors.py " + file.name +
                                      " " + std::to_string(m.connect.rows)));
    double seconds = 0.0, peak = 0.0, links = 0.0, sum = 0.0;
    told >> seconds >> peak >> links >> sum;
    l.measured(seconds, peak);
    l.answer({links, sum});
}

const bool entered = enter<topology_input>({
    {"neighbours", "NumPy", "argsort of the packed nodes of the faces", "timed by the script itself", sort_faces},
});

}  // namespace
}  // namespace compare
