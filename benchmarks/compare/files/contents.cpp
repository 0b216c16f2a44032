#include <cstring>
#include <fstream>

#include "files/input.h"

namespace compare {
namespace {

double sum_of_numbers(const char* text, int count)
{
    double sum = 0.0;
    for (int i = 0; i < count; ++i) {
        char* end = nullptr;
        sum += std::strtod(text, &end);
        text = end;
    }
    return sum;
}

// Lines that start with `keyword`, after blanks, and the sum of the three numbers that follow it.
std::vector<double> lines_of(const std::string& name, const std::string& keyword)
{
    std::ifstream file(name);
    double count = 0.0;
    double sum = 0.0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos || line.compare(start, keyword.size(), keyword) != 0) continue;
        ++count;
        sum += sum_of_numbers(line.c_str() + start + keyword.size(), 3);
    }
    return {count, sum};
}

// The numbers of nodes behind a line that starts with `keyword`; each is followed by `more` numbers.
std::vector<double> nodes_behind(const std::string& name, const std::string& keyword, int more)
{
    std::ifstream file(name);
    std::string word;
    while (file >> word && word != keyword) {
    }
    std::uint64_t count = 0;
    file >> count;
    if (keyword == "POINTS") file >> word;
    double sum = 0.0;
    for (std::uint64_t n = 0; n < count; ++n) {
        double x = 0.0;
        for (int i = 0; i < 3 && file >> word; ++i) sum += std::strtod(word.c_str(), nullptr);
        for (int i = 0; i < more; ++i) file >> x;
    }
    return {file ? double(count) : -1.0, sum};
}

}  // namespace

std::vector<double> in_stl_text(const std::string& name)
{
    auto found = lines_of(name, "vertex ");
    found[0] /= 3;
    return found;
}

std::vector<double> in_stl_binary(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    file.ignore(80);
    std::uint32_t count = 0;
    file.read(reinterpret_cast<char*>(&count), 4);
    double sum = 0.0;
    char facet[50];
    for (std::uint32_t f = 0; f < count && file.read(facet, 50); ++f) {
        float corners[9];
        std::memcpy(corners, facet + 12, sizeof corners);
        for (const float x : corners) sum += x;
    }
    return {file ? double(count) : -1.0, sum};
}

std::vector<double> in_obj(const std::string& name)
{
    const auto nodes = lines_of(name, "v ");
    return {nodes[0], lines_of(name, "f ")[0], nodes[1]};
}

std::vector<double> in_vtk(const std::string& name)
{
    return nodes_behind(name, "POINTS", 0);
}

std::vector<double> in_medit(const std::string& name)
{
    return nodes_behind(name, "Vertices", 1);
}

}  // namespace compare
