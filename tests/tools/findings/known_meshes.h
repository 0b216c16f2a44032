#ifndef TESTS_TOOLS_FINDINGS_KNOWN_MESHES_H
#define TESTS_TOOLS_FINDINGS_KNOWN_MESHES_H

#include <ostream>
#include <vector>

#include "mesh/mesh.h"

namespace test {

// A mesh of which it is written down what is wrong with it. In one line: the codes of findings with their counts and
// the items at fault by their numbers from 1 on, a ~ before a note, then the number of parts. "ok" stands for no fault.
struct known_mesh {
    const char* name;
    tool::mesh content;
    const char* expected;
};
inline void PrintTo(const known_mesh& known, std::ostream* out)
{
    *out << known.name;
}

std::vector<known_mesh> known_solids();
std::vector<known_mesh> known_surfaces();
std::vector<known_mesh> known_other_meshes();

}  // namespace test

#endif
