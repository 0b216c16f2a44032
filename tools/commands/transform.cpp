#include <array>
#include <cmath>
#include <memory>
#include <numbers>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "errors.h"
#include "findings/measures.h"
#include "words.h"

namespace tool {
namespace {

using vector = zeb::vector_fixed<double, 3>;
namespace library = zeb::tessolv;

struct transform_options {
    shared_options shared;
    std::vector<double> axis;
    std::vector<double> centre{0, 0, 0};
    std::vector<double> shift;
    std::optional<double> angle;
    std::optional<double> scale;
};

vector vector_of(const std::vector<double>& v)
{
    return {v[0], v[1], v[2]};
}

// The axis in the length of the angle in radians.
vector rotation_of(const transform_options& options)
{
    const vector axis = vector_of(options.axis);
    const double length = std::hypot(axis[0], axis[1], axis[2]);
    const double angle = std::fmod(*options.angle, 360) * std::numbers::pi / 180 / length;
    return {axis[0] * angle, axis[1] * angle, axis[2] * angle};
}

// The library gives a third coordinate to a plane mesh; one that stayed in its plane does without.
void flatten(mesh& m)
{
    for (std::uint64_t j = 0; j < m.pos.cols; ++j)
        if (m.pos(2, j) != 0) return;
    resize(m.pos, 2, m.pos.cols);
}

void transform_nodes(mesh& m, const transform_options& options)
{
    const bool plane = m.pos.rows == 2;
    const vector centre = vector_of(options.centre);
    if (options.scale) checked(library::zoom(m.pos, centre, *options.scale), "zoom");
    if (options.angle) checked(library::rotate(m.pos, centre, rotation_of(options)), "rotate");
    if (!options.shift.empty()) checked(library::translate(m.pos, vector_of(options.shift)), "translate");
    if (plane && m.pos.rows == 3) flatten(m);
}

// Numbers as large or as small as doubles do not hold.
void require_a_mesh_left(const mesh& m, double diagonal_before)
{
    const std::vector<std::uint64_t> lost = faults_of(m).not_finite;
    if (!lost.empty())
        throw wrong_usage("node " + std::to_string(node_number(m, lost.front())) +
                          " would be moved beyond the range of numbers");
    if (diagonal_before > 0 && !(box_of(m).diagonal() > 0)) throw wrong_usage("the mesh would become a point");
}

exit_status transform(const std::string& path, const transform_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const int rows = static_cast<int>(m.pos.rows);
    const double diagonal = box_of(m).diagonal();
    transform_nodes(m, options);
    require_a_mesh_left(m, diagonal);
    if (options.scale && *options.scale < 0 && rows == 3 && !options.shared.quiet)
        remark(path, "the mesh is mirrored: its elements are inverted");
    if (options.shared.output) save(m, options.shared);
    if (options.shared.json)
        print_json({{"file", path}, {"nodes", m.pos.cols}, {"dimension", m.pos.rows}});
    else if (!options.shared.quiet)
        tell(options.shared, path + ": " + counted(m.pos.cols, "node", "nodes") + " moved\n");
    return exit_clean;
}

void check_together(transform_options& options)
{
    if (options.angle.has_value() == options.axis.empty())
        throw CLI::ValidationError("--angle", "and --axis go together");
    if (options.angle) take_direction("--axis", options.axis);
    require_finite("--centre", options.centre);
    require_finite("--translate", options.shift);
    require_finite("--angle", {options.angle.value_or(0)});
    require_finite("--scale", {options.scale.value_or(1)});
    if (options.scale == 0.0) throw CLI::ValidationError("--scale", "would leave a point");
}

}  // namespace

std::function<exit_status()> declare_transform(CLI::App& app)
{
    const auto options = std::make_shared<transform_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    app.add_option("--scale", options->scale, "first: scale by this factor about the centre");
    app.add_option("--angle", options->angle, "then: turn by so many degrees about the axis, right-handed");
    app.add_option("--axis", options->axis, "direction of the axis through the centre")->expected(3);
    app.add_option("--centre", options->centre, "the point that stays; the origin unless given")->expected(3);
    app.add_option("--translate", options->shift, "last: move by this vector")->expected(3);
    app.parse_complete_callback([options] { check_together(*options); });
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return transform(path, *options); });
    };
}

}  // namespace tool
