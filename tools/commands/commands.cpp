#include "commands/command.h"

namespace tool {

std::span<const command> all_commands()
{
    static constexpr command commands[] = {
        {"info", "tells what a mesh file holds", declare_info},
        {"check", "says whether a mesh is sound, and what is wrong with it", declare_check},
        {"convert", "writes a mesh in another format", declare_convert},
    };
    return commands;
}

}  // namespace tool
