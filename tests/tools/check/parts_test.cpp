#include <string>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/program.h"

// The parts of examples/parts. Counts worked out from the way they are made: see make_parts.py.

namespace {

nlohmann::json check(const std::string& name, int status)
{
    const test::run_result result = test::tessolv({"check", "--json", std::string(TESSOLV_PARTS) + '/' + name});
    EXPECT_EQ(result.status, status) << result.err;
    return nlohmann::json::parse(result.out);
}

// A body with seven holes through it: nodes - edges + triangles = 2 - 2 * 7, with three edges for two triangles.
TEST(Parts, TheFlangeIsClean)
{
    const auto flange = check("flange.stl", 0);
    EXPECT_EQ(flange["verdict"], "clean");
    EXPECT_EQ(flange["triangles"], 4992);
    EXPECT_EQ(flange["nodes"], 4992 / 2 - 12);
    EXPECT_EQ(flange["parts"], 1);
    EXPECT_EQ(flange["bounding_box"]["max"], nlohmann::json({60.0, 60.0, 48.400001525878906}));
    EXPECT_GT(flange["quality"]["min"], 0.15);
}

TEST(Parts, TheFaultyFlangeHasTheFaultsThatWereMade)
{
    const auto flange = check("flange-faulty.stl", 1);
    EXPECT_EQ(flange["facets_in_file"], 4992 + 2 + 1 + 1 - 1);  // slivers, line, twice written, lost
    EXPECT_EQ(flange["facets_read"], flange["facets_in_file"]);
    EXPECT_EQ(flange["degenerate"], 1);
    EXPECT_EQ(flange["duplicates"], 1);
    EXPECT_EQ(flange["nodes"], 2484 + 5 + 1);    // the other side of the seam, the point too many
    EXPECT_EQ(flange["free_edges"], 2 * 6 + 3);  // the seam, the hole
    EXPECT_EQ(flange["nonmanifold_edges"], 3);
    EXPECT_EQ(flange["parts"], 1);
    EXPECT_LT(flange["quality"]["min"], 0.05);
}

}  // namespace
