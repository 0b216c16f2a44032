#include "commands/command.h"

namespace tool {

std::span<const command> all_commands()
{
    static constexpr command commands[] = {
        {"info", "tells what a mesh file holds", declare_info},
        {"check", "says whether a mesh is sound, and what is wrong with it", declare_check},
        {"report", "writes a page about a mesh: the verdict, tables, its surface in 3-D", declare_report},
        {"quality", "measures the shapes of the elements", declare_quality},
        {"weld", "makes one node of those that coincide", declare_weld},
        {"clean", "removes degenerate and duplicate elements and unused nodes", declare_clean},
        {"boundary", "writes the faces of one element as a mesh", declare_boundary},
        {"edges", "writes the edges between corners as a mesh", declare_edges},
        {"neighbors", "tells which elements share a face", declare_neighbors},
        {"parts", "tells connected parts apart", declare_parts},
        {"transform", "scales, turns and moves a mesh", declare_transform},
        {"clip", "keeps the elements on one side of a plane", declare_clip},
        {"convert", "writes a mesh in another format", declare_convert},
    };
    return commands;
}

}  // namespace tool
