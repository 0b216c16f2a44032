#ifndef TOOLS_FORMATS_GMSH_WRITE_H
#define TOOLS_FORMATS_GMSH_WRITE_H

#include "formats/format.h"

namespace tool {

// Gmsh files of the versions 4.1 and 2.2, as binary or as text. Groups become physical groups with their names. Nodes
// and elements keep their numbers where these are positive and distinct.
void write_gmsh41(const mesh& m, sink& to, const write_options& options);
void write_gmsh22(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
