#ifndef TOOLS_COMMANDS_TABLES_H
#define TOOLS_COMMANDS_TABLES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "commands/options.h"
#include "mesh/mesh.h"

namespace tool {

using json = nlohmann::ordered_json;

// A result of a command in one line of JSON. Bytes that are no UTF-8 become U+FFFD, what is no number null.
void print_json(const json& object);

// "  name                 value".
std::string table_line(std::string_view name, const std::string& value);

// Four significant digits.
std::string short_number(double value);

// The number of a node in its file.
std::uint64_t node_number(const mesh& m, std::uint64_t node);

// Writes the mesh like `save`; one without any element is refused.
void save_some(const mesh& m, const shared_options& options);

// Where results and words go: standard output, or standard error when a mesh or table goes to standard output.
void tell(const shared_options& options, const std::string& text);

}  // namespace tool

#endif
