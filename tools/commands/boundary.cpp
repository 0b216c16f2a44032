#include <algorithm>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "findings/element_faces.h"
#include "findings/face_list.h"
#include "mesh/builder.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

struct boundary_options {
    shared_options shared;
    bool nonmanifold = false;
};

const char* faces_word(int dimension)
{
    return dimension == 1 ? "ends" : dimension == 2 ? "edges" : "faces";
}

// Faces of the elements of the highest dimension, in the order of these: of one element, or of three or more.
std::vector<face_side> chosen_faces(const mesh& m, bool nonmanifold)
{
    const face_list faces(m, dimension_of(m));
    std::vector<face_side> chosen;
    faces.for_each([&](std::span<const face_side> sides) {
        if (nonmanifold ? sides.size() > 2 : sides.size() == 1) chosen.push_back(sides.front());
    });
    std::ranges::sort(chosen, {}, [](const face_side& s) { return std::pair(s.element, s.face); });
    return chosen;
}

// The corners of a face, each once: of an element that collapsed a quadrangle may be a triangle.
std::vector<unsigned int> corners_of(const element_block& block, std::uint64_t e, const local_face& face)
{
    std::vector<unsigned int> corners;
    for (unsigned int i = 0; i < face.width; ++i) {
        const unsigned int node = block.connect(face.nodes[i], e);
        if (std::ranges::find(corners, node) == corners.end()) corners.push_back(node);
    }
    return corners;
}

// A mesh of these faces on the same nodes, turned like the elements that they belong to, with their groups, their
// fields and their numbers in the field "element". Counts the quadrangles that collapsed.
mesh mesh_of_faces(const mesh& m, const std::vector<face_side>& faces, std::uint64_t& collapsed)
{
    const element_places places(m);
    mesh_builder builder;
    std::uint64_t item = 0;
    for (const face_side& side : faces) {
        const element_block& block = m.blocks[places.block_of(side.element)];
        const std::uint64_t e = side.element - places.first(places.block_of(side.element));
        const local_face& face = faces_of(block.type)[side.face];
        const std::vector<unsigned int> corners = corners_of(block, e, face);
        const auto width = static_cast<unsigned int>(corners.size());
        std::ranges::copy(corners, builder.add(type_of_face(width), block.group(e), item++));
        collapsed += width < face.width;
    }
    mesh result = m;
    result.facets.reset();
    result.blocks = builder.take();
    set_cell_field(result, {"element", 1, number_kind::integer, element_number_field(m).values});
    for (field& f : result.cell_fields) {
        std::vector<double> of_faces;
        for (const face_side& side : faces)
            of_faces.insert(of_faces.end(), f.values.begin() + std::ptrdiff_t{side.element} * f.components,
                            f.values.begin() + (std::ptrdiff_t{side.element} + 1) * f.components);
        f.values = gathered(result.blocks, of_faces, f.components, 0);
    }
    const int dimension = dimension_of(m);
    std::erase_if(result.group_names,
                  [&](const group_name& g) { return g.dimension >= 0 && g.dimension != dimension; });
    for (group_name& g : result.group_names)
        if (g.dimension >= 0) --g.dimension;
    keep_nodes(result, used_nodes(result));
    number_anew(result);
    return result;
}

exit_status boundary(const std::string& path, const boundary_options& options)
{
    const loaded input = load_sound(path, options.shared);
    const mesh& m = input.content;
    const int dimension = dimension_of(m);
    std::uint64_t collapsed = 0;
    const mesh faces = mesh_of_faces(m, chosen_faces(m, options.nonmanifold), collapsed);
    if (collapsed != 0 && !options.shared.quiet)
        remark(path, counted(collapsed, "quadrangle with a node twice is a triangle",
                             "quadrangles with a node twice are triangles"));
    if (options.shared.output) save_some(faces, options.shared);
    if (options.shared.json) {
        json kinds = json::object();
        for (const element_block& block : faces.blocks) kinds[info_of(block.type).name] = block.size();
        print_json({{"file", path},
                    {"dimension", dimension - 1},
                    {"faces", faces.element_count()},
                    {"kinds", kinds},
                    {"nodes", faces.pos.cols}});
    } else if (!options.shared.quiet) {
        tell(options.shared, path + ": " + std::to_string(faces.element_count()) + ' ' + faces_word(dimension) +
                                 (options.nonmanifold ? " of three or more elements" : " of one element") + ", " +
                                 counted(faces.pos.cols, "node", "nodes") + '\n');
    }
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_boundary(CLI::App& app)
{
    const auto options = std::make_shared<boundary_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    app.add_flag("--nonmanifold", options->nonmanifold, "faces of three or more elements instead");
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return boundary(path, *options); });
    };
}

}  // namespace tool
