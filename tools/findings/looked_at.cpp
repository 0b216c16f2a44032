#include "findings/looked_at.h"

#include <algorithm>
#include <new>

#include "findings/duplicates.h"
#include "findings/face_list.h"
#include "mesh/edit.h"

namespace tool {

looked_at::looked_at(const mesh& m, const mesh_faults& faults) : content_(&m), nodes_(m.pos.cols)
{
    const element_places all(m);
    for (const mesh_faults::element& e : faults.bad_indices) bad_.push_back(all.first(e.block) + e.column);
    std::vector<bool> keep(all.size(), true);
    for (const std::uint64_t e : bad_) keep[e] = false;
    if (m.facets) find_collapsed(m, keep);
    if (bad_.empty() && collapsed_.empty()) return;

    rest_ = m;
    // The matrices tell exhausted memory by being empty.
    if (rest_.pos.cols != m.pos.cols || rest_.element_count() != m.element_count()) throw std::bad_alloc();
    content_ = &rest_;
    keep_elements(rest_, keep);
    for (std::uint64_t e = 0; e < keep.size(); ++e)
        if (keep[e]) origin_.push_back(e);
    if (!collapsed_.empty()) leave_out_nodes_of_collapsed(m);
}

void looked_at::find_collapsed(const mesh& m, std::vector<bool>& keep)
{
    std::uint64_t place = 0;
    for (const element_block& block : m.blocks) {
        for (std::uint64_t e = 0; e < block.size(); ++e, ++place) {
            if (!keep[place] || !names_a_node_twice(&block.connect(0, e), block.connect.rows)) continue;
            collapsed_.push_back(place);
            keep[place] = false;
        }
    }
}

void looked_at::leave_out_nodes_of_collapsed(const mesh& m)
{
    left_out_ = used_nodes(m);
    const std::vector<bool> used = used_nodes(rest_);
    for (std::size_t node = 0; node < used.size(); ++node)
        if (used[node]) left_out_[node] = false;
    nodes_ -= static_cast<std::uint64_t>(std::ranges::count(left_out_, true));
}

}  // namespace tool
