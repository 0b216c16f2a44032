#ifndef TOOLS_REPORT_JUDGEMENT_H
#define TOOLS_REPORT_JUDGEMENT_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/check.h"
#include "findings/examine.h"
#include "mesh/mesh.h"

namespace tool {

// What `check` says about one file with the mesh that it is said of. The paths lead into the JSON of `check`: names
// and indices with dots between them.
struct judgement {
    struct count {
        std::string name;  // "triangles"
        std::uint64_t value;
        std::string path;
    };
    struct fault {
        std::string code;
        bool is_finding;
        std::string text;  // "3 inverted elements"
        std::uint64_t count;
        std::uint64_t of;  // what was looked at; 0 where there is no such number
        std::string count_path;
        std::string of_path;
        std::vector<std::uint64_t> ids;  // columns of nodes or places of elements
        bool of_nodes;
    };
    struct quality {
        std::string name;  // of the kind, for people
        std::string path;  // to the object
        std::uint64_t count;
        double min, mean, max;
        std::array<std::uint64_t, 5> bands;  // inverted, bad, poor, fair, good
        std::array<std::uint64_t, 10> histogram;
    };

    std::string file;
    std::string format;  // for people
    bool is_clean = true;
    std::string verdict;  // the line of `check --quiet`
    std::string reasons;  // of it, behind the colon
    std::string json;     // the line of `check --json`
    rules by;
    std::vector<count> counts;
    std::vector<fault> faults;
    std::vector<std::string> notes;                           // besides the faults
    std::vector<quality> qualities;                           // of each kind that has one
    std::optional<std::array<std::array<double, 3>, 2>> box;  // least and greatest coordinates
    double shortest_edge = 0;
    mesh content;
    examination verdict_on;  // of the mesh
};

// Throws `failure`, and whatever else goes wrong.
judgement judge(const std::string& path, const check_options& options);

}  // namespace tool

#endif
