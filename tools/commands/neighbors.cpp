#include <algorithm>
#include <array>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "errors.h"
#include "findings/element_faces.h"
#include "findings/face_list.h"
#include "formats/sink.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

struct neighbors_options {
    shared_options shared;
};

// The only element across each face: the place of that element, or none on the border and at faces of three or more.
struct adjacency {
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    std::vector<std::array<std::uint32_t, 6>> across;  // by place of the element and local face
    std::uint64_t links = 0;
    std::uint64_t free = 0;
    std::uint64_t branching = 0;
};

adjacency adjacency_of(const mesh& m)
{
    adjacency a;
    std::array<std::uint32_t, 6> nobody{};
    nobody.fill(adjacency::none);
    a.across.assign(m.element_count(), nobody);
    face_list(m, dimension_of(m)).for_each([&](std::span<const face_side> sides) {
        a.free += sides.size() == 1;
        a.branching += sides.size() > 2;
        if (sides.size() != 2) return;
        ++a.links;
        a.across[sides[0].element][sides[0].face] = sides[1].element;
        a.across[sides[1].element][sides[1].face] = sides[0].element;
    });
    return a;
}

// A line for each element: its kind and number, then those of its neighbours across the faces in the library's order.
void write_list(sink& to, const mesh& m, const adjacency& a)
{
    const element_places places(m);
    const auto name = [&](std::uint64_t place) {
        const element_block& block = m.blocks[places.block_of(place)];
        to.text(info_of(block.type).name);
        to.put(' ');
        to.integer(block.numbers[place - places.first(places.block_of(place))]);
    };
    to.text("element,neighbours across its faces\n");
    for (std::uint64_t place = 0; place < places.size(); ++place) {
        const element_block& block = m.blocks[places.block_of(place)];
        if (info_of(block.type).dimension != dimension_of(m)) continue;
        name(place);
        for (std::size_t k = 0; k < faces_of(block.type).size(); ++k) {
            to.put(',');
            if (a.across[place][k] != adjacency::none) name(a.across[place][k]);
        }
        to.put('\n');
    }
}

exit_status neighbors(const std::string& path, const neighbors_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const adjacency a = adjacency_of(m);
    field counts{"neighbours", 1, number_kind::integer, {}};
    for (const auto& across : a.across)
        counts.values.push_back(static_cast<double>(6 - std::count(across.begin(), across.end(), adjacency::none)));
    set_cell_field(m, std::move(counts));
    save_with_table(m, options.shared, [&](sink& to) { write_list(to, m, a); });
    if (options.shared.json)
        print_json({{"file", path}, {"links", a.links}, {"free_faces", a.free}, {"nonmanifold_faces", a.branching}});
    else if (!options.shared.quiet)
        tell(options.shared, path + ": " + counted(a.links, "face", "faces") + " of two elements, " +
                                 std::to_string(a.free) + " of one, " + std::to_string(a.branching) +
                                 " of three or more\n");
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_neighbors(CLI::App& app)
{
    const auto options = std::make_shared<neighbors_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    declare_table(app, options->shared, "--list", "write the neighbours of each element as CSV");
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return neighbors(path, *options); });
    };
}

}  // namespace tool
