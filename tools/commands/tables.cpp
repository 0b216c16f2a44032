#include "commands/tables.h"

#include <cstdio>

#include "commands/files.h"
#include "progress.h"

namespace tool {

void print_json(const json& object)
{
    print(object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n');
}

std::string table_line(std::string_view name, const std::string& value)
{
    constexpr std::size_t width = 34;
    std::string line(name);
    line.resize(std::max(width, line.size() + 1), ' ');
    return "  " + line + value + '\n';
}

std::string short_number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

std::uint64_t node_number(const mesh& m, std::uint64_t node)
{
    return node < m.node_numbers.size() ? m.node_numbers[node] : node + 1;
}

void save_some(const mesh& m, const shared_options& options)
{
    if (m.element_count() == 0) throw failure(exit_unwritable, options.output.value(), "no element is left to write");
    save(m, options);
}

void tell(const shared_options& options, const std::string& text)
{
    if (options.output != "-" && options.table != "-") return print(text);
    progress::erase();
    std::fputs(text.c_str(), stderr);
}

}  // namespace tool
