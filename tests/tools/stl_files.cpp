#include "tools/stl_files.h"
#include "support/classic_locale.h"

#include <bit>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace test {
namespace {

std::string little_endian(std::uint32_t value)
{
    std::string bytes;
    for (int k = 0; k < 4; ++k) bytes += static_cast<char>(value >> (8 * k) & 0xFF);
    return bytes;
}

}  // namespace

std::string text_facet(const facet& f)
{
    const classic_locale classic;
    std::ostringstream text;
    text << "  facet normal 0 0 1\n    outer loop\n";
    for (const corner& c : f) text << "      vertex " << c[0] << ' ' << c[1] << ' ' << c[2] << '\n';
    text << "    endloop\n  endfacet\n";
    return text.str();
}

std::string text_facets(const std::vector<facet>& facets)
{
    std::string text;
    for (const facet& f : facets) text += text_facet(f);
    return text;
}

std::string text_stl(const std::vector<facet>& facets)
{
    return "solid part\n" + text_facets(facets) + "endsolid part\n";
}

std::string binary_header(const std::string& title, std::uint32_t announced)
{
    std::string header = title;
    header.resize(80, '\0');
    return header + little_endian(announced);
}

std::string binary_facets(const std::vector<facet>& facets)
{
    std::string bytes;
    for (const facet& f : facets) {
        bytes.append(12, '\0');
        for (const corner& c : f)
            for (const float number : c) bytes += little_endian(std::bit_cast<std::uint32_t>(number));
        bytes.append(2, '\0');
    }
    return bytes;
}

std::string binary_stl(const std::vector<facet>& facets, const std::string& title)
{
    return binary_header(title, static_cast<std::uint32_t>(facets.size())) + binary_facets(facets);
}

temporary_folder::temporary_folder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "tessolv-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
}

temporary_folder::~temporary_folder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string temporary_folder::write(const std::string& name, const std::string& bytes) const
{
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::string read_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace test
