#include <cstdlib>
#include <string>

#include "errors.h"
#include "formats/format.h"
#include "formats/medit_read.h"

// Any bytes are read as the mesh that they seem to be, or refused; what is read is written and comes back the same.

namespace {

using namespace tool;

mesh one_triangle()
{
    mesh m;
    resize(m.pos, 3, 3);
    for (std::uint64_t j = 0; j < 3; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) m.pos(i, j) = i == j ? 1 : 0;
    m.node_numbers = numbering(1, 3);
    element_block& block = m.blocks.emplace_back();
    block.type = zeb::EL_TRIA3;
    block.connect = connectivity(3, 1);
    for (unsigned int k = 0; k < 3; ++k) block.connect(k, 0) = k;
    block.numbers = numbering(1, 1);
    return m;
}

// All kinds of elements and fields fit into this one.
void expect_same_again(const mesh& m)
{
    const format& gmsh = format_named("gmsh");
    std::string bytes;
    sink to(bytes);
    gmsh.write(m, to, {});
    to.commit();
    const mesh again = gmsh.read(source::of_bytes(std::move(bytes)));
    if (again.element_count() != m.element_count() || again.blocks.size() != m.blocks.size()) std::abort();
    for (std::size_t b = 0; b < m.blocks.size(); ++b)
        if (!(again.blocks[b].connect.cols == m.blocks[b].connect.cols)) std::abort();
    if (again.pos.cols != m.pos.cols || again.point_fields.size() > m.point_fields.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    const source from = source::of_bytes(std::string(reinterpret_cast<const char*>(bytes), count));
    try {
        if (is_medit_solution(from.head())) {
            mesh m = one_triangle();
            read_medit_solution(from, m);
            expect_same_again(m);
            return 0;
        }
        const mesh m = read_mesh(from);
        if (!faults_of(m).any()) expect_same_again(m);
    } catch (const unreadable& reason) {
        if (*reason.what() == '\0') std::abort();
    } catch (const unwritable&) {
    }
    return 0;
}
