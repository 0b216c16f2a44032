#ifndef TOOLS_FINDINGS_LOOKED_AT_H
#define TOOLS_FINDINGS_LOOKED_AT_H

#include <cstdint>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// What of a mesh is looked at: not the elements that name a node that is not there, and of an STL file neither the
// facets that collapsed nor the nodes that these alone have.
class looked_at {
public:
    looked_at(const mesh& m, const mesh_faults& faults);
    looked_at(const looked_at&) = delete;
    looked_at& operator=(const looked_at&) = delete;

    const mesh& content() const { return *content_; }
    // Place, in the mesh that was asked for, of an element of `content`.
    std::uint64_t origin_of(std::uint64_t place) const { return origin_.empty() ? place : origin_[place]; }
    bool has_node(std::uint64_t node) const { return left_out_.empty() || !left_out_[node]; }
    std::uint64_t node_count() const { return nodes_; }

    const std::vector<std::uint64_t>& bad_indices() const { return bad_; }
    const std::vector<std::uint64_t>& collapsed() const { return collapsed_; }

private:
    void find_collapsed(const mesh& m, std::vector<bool>& keep);
    void leave_out_nodes_of_collapsed(const mesh& m);

    const mesh* content_;
    mesh rest_;  // unless it is all
    std::vector<std::uint64_t> origin_;
    std::vector<bool> left_out_;  // by node; empty for none
    std::uint64_t nodes_;
    std::vector<std::uint64_t> bad_;
    std::vector<std::uint64_t> collapsed_;
};

}  // namespace tool

#endif
