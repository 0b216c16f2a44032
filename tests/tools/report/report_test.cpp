#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/format.h"
#include "mesh/kinds.h"
#include "tools/findings/mesh_by_hand.h"
#include "tools/formats/every_kind.h"
#include "tools/program.h"
#include "tools/report/report_page.h"
#include "tools/stl_files.h"

// Black-box tests of `tessolv report`: a mesh in, a page out. What a browser makes of the page is in tests/browser.
namespace {

using nlohmann::json;
using test::mesh_by_hand;
using test::place;
using test::report_page;
using test::run_result;
using test::temporary_folder;
using test::tessolv;

using strings = std::vector<std::string>;

const place O{0, 0, 0}, X{1, 0, 0}, Y{0, 1, 0}, XY{1, 1, 0};

struct report : testing::Test {
    temporary_folder folder;

    std::string file(const tool::mesh& m, const std::string& name = "in.vtu") const
    {
        write_mesh(m, folder.path(name));
        return folder.path(name);
    }
    std::string page() const { return folder.path("page.html"); }

    run_result run(const std::string& mesh, const strings& more = {}) const
    {
        strings arguments{"report", mesh, "--output", page()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return tessolv(arguments);
    }

    // The page, whose status, JSON and numbers are those of `check` with the same options.
    report_page like_check(const std::string& mesh, const strings& more = {}, const strings& page_only = {}) const
    {
        strings options = more;
        options.insert(options.end(), page_only.begin(), page_only.end());
        options.emplace_back("--json");
        const run_result result = run(mesh, options);
        strings check{"check", mesh, "--json"};
        check.insert(check.end(), more.begin(), more.end());
        const run_result wanted = tessolv(check);
        EXPECT_EQ(result.status, wanted.status);
        EXPECT_EQ(result.out, wanted.out);
        EXPECT_EQ(result.err, wanted.err);
        report_page made(test::read_file(page()));
        EXPECT_EQ(made.check, json::parse(wanted.out));
        EXPECT_EQ(disagreeing(made), strings());
        return made;
    }

    static strings disagreeing(const report_page& p)
    {
        strings paths;
        for (const report_page::number& n : p.numbers()) {
            std::string pointer = '/' + n.path;
            std::ranges::replace(pointer, '.', '/');
            const bool agrees = p.check.contains(json::json_pointer(pointer)) &&
                                p.check.at(json::json_pointer(pointer)) == json::parse(n.value);
            if (!agrees) paths.push_back(n.path + " is " + n.value);
        }
        return paths;
    }
};

// A block of hexahedra with the groups 3 below and 4 above, and a quadrangle of group 5 on the floor.
tool::mesh block(unsigned int x, unsigned int y, unsigned int z)
{
    std::vector<place> places;
    for (unsigned int k = 0; k <= z; ++k)
        for (unsigned int j = 0; j <= y; ++j)
            for (unsigned int i = 0; i <= x; ++i) places.push_back({1.0 * i, 1.0 * j, 1.0 * k});
    const auto node = [&](unsigned int i, unsigned int j, unsigned int k) { return i + (x + 1) * (j + (y + 1) * k); };
    std::vector<test::nodes> hexahedra;
    for (unsigned int k = 0; k < z; ++k)
        for (unsigned int j = 0; j < y; ++j)
            for (unsigned int i = 0; i < x; ++i)
                hexahedra.push_back({node(i, j, k), node(i + 1, j, k), node(i + 1, j + 1, k), node(i, j + 1, k),
                                     node(i, j, k + 1), node(i + 1, j, k + 1), node(i + 1, j + 1, k + 1),
                                     node(i, j + 1, k + 1)});
    tool::mesh m = mesh_by_hand(places)
                       .with(zeb::EL_HEXA8, hexahedra, 4)
                       .with(zeb::EL_QUAD4, {{node(0, 0, 0), node(0, 1, 0), node(1, 1, 0), node(1, 0, 0)}}, 5);
    m.blocks.back().groups[0] = 3;
    return m;
}

TEST_F(report, HasTheStatusAndTheNumbersOfCheck)
{
    EXPECT_EQ(like_check(folder.write("part.stl", test::binary_stl(test::tetrahedron))).check["verdict"], "clean");
    EXPECT_EQ(like_check(folder.write("book.stl", test::text_stl(test::book))).check["free_edges"], 6);
    EXPECT_GT(like_check(file(block(2, 2, 2))).numbers().size(), 40u);
    like_check(file(mesh_by_hand({O, X, Y, XY}, 2).with(zeb::EL_TRIA3, {{0, 1, 2}, {1, 2, 3}}), "plane.mesh"));
    like_check(file(mesh_by_hand({O, X, Y}).with(zeb::EL_EDGE2, {{0, 1}, {1, 2}})));
}

TEST_F(report, JudgesByTheSameRulesAsCheck)
{
    const std::string stl = folder.write("part.stl", test::binary_stl(test::tetrahedron));
    EXPECT_EQ(like_check(stl, {"--profile", "closed"}).check["rules"]["profile"], "closed");
    const std::string rules =
        folder.write("rules.json", R"({"quality": {"all": {"good": 1, "warning": 1, "bad": 1}}})");
    EXPECT_EQ(like_check(stl, {"--rules", rules}).check["faults"][0]["code"], "bad_quality");
    const run_result wrong = run(stl, {"--profile", "none"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_NE(wrong.err.find("default, solver, shell, closed"), std::string::npos) << wrong.err;
}

TEST_F(report, TellsTheVerdictUnlessQuiet)
{
    const std::string book = folder.write("book.stl", test::text_stl(test::book));
    const run_result result = run(book);
    EXPECT_EQ(result.out, tessolv({"check", "--quiet", book}).out);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(run(book, {"--quiet"}).out, "");
}

TEST_F(report, GoesToStandardOutputWhenAsked)
{
    const std::string part = folder.write("part.stl", test::binary_stl(test::tetrahedron));
    const run_result result = tessolv({"report", part, "--output", "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.substr(0, 15), "<!DOCTYPE html>");
    EXPECT_NE(result.err.find("CLEAN"), std::string::npos);
    run(part);
    EXPECT_EQ(result.out, test::read_file(page()));
}

TEST_F(report, IsTheSameFromRunToRunUnlessItTellsTheTime)
{
    const std::string mesh = file(block(3, 2, 2));
    run(mesh);
    const std::string first = test::read_file(page());
    run(mesh);
    EXPECT_EQ(test::read_file(page()), first);
    EXPECT_NE(first.find("Made by tessolv " + std::string(zeb::tessolv::version()) + "."), std::string::npos);
    EXPECT_EQ(first.find(" UTC"), std::string::npos);
    run(mesh, {"--time"});
    EXPECT_NE(test::read_file(page()).find(" UTC"), std::string::npos);
}

TEST_F(report, RefersToNothingOutside)
{
    run(file(block(2, 2, 2)));
    const std::string html = test::read_file(page());
    for (const char* const reference : {"http:", "https:", " src=", "url(", "@import", "import(", "fetch(", "<link"})
        EXPECT_EQ(html.find(reference), std::string::npos) << reference;
    for (std::size_t at = 0; (at = html.find("href=\"", at)) != std::string::npos; ++at) EXPECT_EQ(html[at + 6], '#');
}

TEST_F(report, TakesNamesForTextWhateverIsInThem)
{
    tool::mesh m = block(1, 1, 1);
    const std::string hostile = "</script><script>alert(1)</script><!-- & \"'";
    m.group_names = {{3, 3, hostile}};
    const std::string name = "<b onclick='x'>&amp;\xFF.msh";
    const report_page p = like_check(file(m, name));
    EXPECT_EQ(p.html.find("<script>alert"), std::string::npos);
    EXPECT_EQ(p.html.find("<!-- &"), std::string::npos);
    EXPECT_NE(p.html.find("&lt;/script&gt;&lt;script&gt;alert(1)"), std::string::npos);
    EXPECT_NE(p.html.find("<h1><bdi>&lt;b onclick=&#39;x&#39;&gt;&amp;amp;\uFFFD.msh</bdi></h1>"), std::string::npos);
    EXPECT_NE(p.data["groups"].dump().find("alert(1)"), std::string::npos);
}

TEST_F(report, DrawsTheOuterFacesOfSolidsAndWhatLiesOnThem)
{
    const report_page p = like_check(file(block(2, 2, 2), "in.msh"));
    const json& t = p.data["triangles"];
    EXPECT_EQ(t["count"], 48);  // 24 faces; the quadrangle lies on one of them
    const auto patches = report_page::unpacked<std::uint16_t>(t["patch"]);
    const auto groups = report_page::unpacked<std::uint16_t>(t["group"]);
    EXPECT_EQ(std::ranges::count_if(patches, [](auto g) { return g != 0xFFFF; }), 2);
    EXPECT_EQ(p.data["groups"], json::array({"5", "3", "4"}));
    EXPECT_EQ(std::ranges::count(groups, 1), 6);  // three faces of the first hexahedron
    EXPECT_EQ(std::ranges::count(groups, 2), 42);
    for (const float q : report_page::unpacked<float>(t["quality"])) EXPECT_NEAR(q, 1, 1e-6);
    for (const std::uint32_t part : report_page::unpacked<std::uint32_t>(t["part"])) EXPECT_EQ(part, 0u);
    for (const std::uint8_t sides : report_page::unpacked<std::uint8_t>(t["sides"]))
        EXPECT_TRUE(sides == 3 || sides == 6) << int{sides};  // a diagonal is no edge
    const auto places = report_page::unpacked<float>(p.data["places"]);
    EXPECT_EQ(places.size(), 3u * 26);  // not the node in the middle
    const double half_diagonal = std::sqrt(3.0);
    EXPECT_NEAR(p.data["scale"].get<double>(), half_diagonal, 1e-12);
    for (const float x : places) EXPECT_LE(std::abs(x), 1 / half_diagonal + 1e-6);
}

TEST_F(report, NumbersElementsAsTheFileDoes)
{
    const auto mesh = [&](const std::string& number) {
        return folder.write("in.msh",
                            "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Nodes\n3\n1 0 0 0\n2 1 0 0\n3 0 1 0\n"
                            "$EndNodes\n$Elements\n2\n70 2 0 1 2 3\n" +
                                number + " 2 0 3 2 2\n$EndElements\n");
    };
    const report_page p = like_check(mesh("4000000000"));
    EXPECT_NE(p.html.find("<span>triangle </span>4000000000</a>"), std::string::npos);
    const auto numbers = report_page::unpacked<std::uint32_t>(p.data["triangles"]["number"]);
    EXPECT_EQ(numbers, (std::vector<std::uint32_t>{70, 4'000'000'000}));
    const report_page longer = like_check(mesh("50000000000"));
    EXPECT_EQ(report_page::unpacked<double>(longer.data["triangles"]["long number"]), (std::vector<double>{70, 5e10}));
}

TEST_F(report, DrawsALargeSurfaceCoarserAndSaysSo)
{
    const std::string mesh = file(block(20, 20, 20));
    const report_page p = like_check(mesh, {}, {"--triangles", "500"});
    const json& t = p.data["triangles"];
    EXPECT_LE(t["count"], 500);
    EXPECT_GE(t["count"], 300);
    EXPECT_NE(p.html.find("instead of 4\u202F800"), std::string::npos);
    // It is closed still: every edge has two triangles.
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    const auto corners = report_page::unpacked<std::uint32_t>(t["corners"]);
    const std::size_t nodes = report_page::unpacked<float>(p.data["places"]).size() / 3;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        ASSERT_LT(corners[i], nodes);
        ++edges[std::minmax(corners[i], corners[i % 3 == 2 ? i - 2 : i + 1])];
    }
    for (const auto& [edge, triangles] : edges) EXPECT_EQ(triangles % 2, 0) << edge.first << ' ' << edge.second;
    EXPECT_EQ(like_check(mesh, {}, {"--triangles", "0"}).data["triangles"]["count"], 0);
    EXPECT_EQ(like_check(mesh, {}, {"--triangles", "4800"}).data["triangles"]["count"], 4800);
    EXPECT_EQ(run(mesh, {"--triangles", "-1"}).status, 2);
}

TEST_F(report, ListsAsManyElementsAsIsSaidOrAll)
{
    std::vector<test::nodes> inverted;
    for (unsigned int i = 0; i < 600; ++i) inverted.push_back({i, i + 1 + i % 2, i + 2 - i % 2});  // clockwise
    std::vector<place> places;
    for (unsigned int i = 0; i < 602; ++i) places.push_back({1.0 * i, i % 2 * 1.0, 0});
    const std::string mesh = file(mesh_by_hand(places, 2).with(zeb::EL_TRIA3, inverted), "in.mesh");
    const report_page some = like_check(mesh);
    const report_page all = like_check(mesh, {"--ids"});
    ASSERT_EQ(all.check["faults"][0]["code"], "inverted");
    const auto listed = [](const report_page& p) {
        int count = 0;
        for (const json& mark : p.data["marks"]["list"])
            for (const json& fault : mark["faults"]) count += fault == 0;
        return count;
    };
    EXPECT_EQ(listed(some), 500);
    EXPECT_EQ(listed(all), 600);
    EXPECT_NE(some.html.find("<summary>490 more</summary>"), std::string::npos);
    EXPECT_NE(some.html.find("100 are not listed"), std::string::npos);
}

TEST_F(report, TakesMeshesOfEveryKind)
{
    std::vector<zeb::element_type> types;
    for (const tool::kind_info& kind : tool::all_kinds()) types.push_back(kind.type);
    const report_page p = like_check(file(test::mesh_of(types), "in.msh"));
    EXPECT_EQ(p.data["kinds"].size(), types.size());
    EXPECT_GT(p.data["triangles"]["count"], 20);
    EXPECT_GE(p.data["lines"]["count"], 1);
    EXPECT_GE(p.data["points"]["count"], 1);
    EXPECT_NE(p.html.find("Elements of higher order are drawn by their corners."), std::string::npos);
}

TEST_F(report, DrawsWhatCanBeDrawnOfABrokenMesh)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const report_page p =
        like_check(file(mesh_by_hand({O, X, Y, {infinity, 0, 0}})
                            .with(zeb::EL_TRIA3, {{0, 1, 99}, {0, 1, 2}, {1, 2, 3}, {0, 0xFFFFFFFE, 1}})));
    EXPECT_EQ(p.data["triangles"]["count"], 1);
    EXPECT_EQ(report_page::unpacked<std::uint32_t>(p.data["triangles"]["number"]), (std::vector<std::uint32_t>{1}));
    EXPECT_NE(p.html.find("cannot be drawn"), std::string::npos);
    EXPECT_EQ(p.data["marks"]["list"][0]["name"], "triangle 0");
    like_check(file(mesh_by_hand({{1e308, 0, 0}, {-1e308, 1e308, 0}, O}).with(zeb::EL_TRIA3, {{0, 1, 2}})));
}

TEST_F(report, TakesTheEmptyMesh)
{
    for (const tool::mesh& m : {mesh_by_hand({}).mesh(), mesh_by_hand({O, X}).mesh()}) {
        const report_page p = like_check(file(m));
        EXPECT_EQ(p.data["triangles"]["count"], 0);
        EXPECT_NE(p.html.find("There is nothing to draw."), std::string::npos);
    }
    EXPECT_EQ(like_check(folder.write("none.stl", "solid none\nendsolid none\n")).check["triangles"], 0);
}

TEST_F(report, WritesNoPageOfAFileThatCannotBeRead)
{
    const run_result result = run(folder.write("in.msh", "no mesh"));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(std::filesystem::exists(page()));
    EXPECT_EQ(run(folder.path("missing.msh")).status, 3);
}

TEST_F(report, HasALineOfJsonAlsoForAFileThatCannotBeJudged)
{
    const run_result cut = run(folder.write("in.msh", "no mesh"), {"--json"});
    EXPECT_EQ(cut.status, 3);
    EXPECT_EQ(json::parse(cut.out)["verdict"], "unreadable");
    const run_result unwritten =
        tessolv({"report", file(block(1, 1, 1)), "--json", "--output", folder.path("none/page.html")});
    EXPECT_EQ(unwritten.status, 4);
    EXPECT_EQ(json::parse(unwritten.out)["verdict"], "failed");
}

TEST_F(report, TellsOfAnStlFileWhatCheckTells)
{
    std::vector<test::facet> all = test::book;
    all.insert(all.begin(), test::facet{test::V, test::V, test::O});
    const report_page p = like_check(folder.write("book.stl", test::binary_stl(all)));
    EXPECT_EQ(p.check["nodes"], 5);
    EXPECT_NE(p.html.find("1 degenerate triangle"), std::string::npos);
    EXPECT_NE(p.html.find("1 edge of three or more triangles"), std::string::npos);
    EXPECT_NE(p.html.find("Limits of quality"), std::string::npos);
    const float infinity = std::numeric_limits<float>::infinity();
    like_check(folder.write("far.stl", test::binary_stl({{test::O, test::X, test::corner{infinity, 0, 0}}})));
}

TEST_F(report, OverwritesAnInputWhenForcedOnly)
{
    const std::string mesh = file(block(1, 1, 1));
    const std::string before = test::read_file(mesh);
    std::filesystem::create_symlink(mesh, page());
    const run_result refused = run(mesh);
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("--force"), std::string::npos);
    EXPECT_EQ(test::read_file(mesh), before);
    EXPECT_EQ(run(mesh, {"--force"}).status, 0);
    EXPECT_EQ(test::read_file(mesh).substr(0, 15), "<!DOCTYPE html>");
}

TEST_F(report, TellsWhatCannotBeWritten)
{
    const std::string mesh = file(block(1, 1, 1));
    EXPECT_EQ(tessolv({"report", mesh, "--output", folder.path("none/page.html")}).status, 4);
    EXPECT_EQ(tessolv({"report", mesh, "--output", "/dev/full"}).status, 4);
    EXPECT_EQ(tessolv({"report", mesh}).status, 2);
    const auto left = std::distance(std::filesystem::directory_iterator(std::filesystem::path(mesh).parent_path()), {});
    EXPECT_EQ(left, 1);
}

TEST_F(report, ExplainsItsOptions)
{
    const run_result help = tessolv({"report", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* const word : {"--output", "--triangles", "--profile", "--force", "--ids", "--time", "Exit status"})
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
}

}  // namespace
