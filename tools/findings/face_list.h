#ifndef TOOLS_FINDINGS_FACE_LIST_H
#define TOOLS_FINDINGS_FACE_LIST_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// Place of an element: in all blocks, one after the other.
class element_places {
public:
    explicit element_places(const mesh& m);

    std::uint64_t size() const { return first_.back(); }
    std::uint64_t first(std::size_t block) const { return first_[block]; }
    std::size_t block_of(std::uint64_t place) const;
    std::uint64_t column_of(std::uint64_t place) const { return place - first_[block_of(place)]; }

private:
    std::vector<std::uint64_t> first_;
};

// The highest dimension of the elements: 0 to 3; 0 without any.
int dimension_of(const mesh& m);

// A face as one element has it.
struct face_side {
    std::array<unsigned int, 4> nodes;  // ascending; NONE_INDEX behind the last
    std::uint32_t element;              // its place
    unsigned char face;                 // local number
    bool turned;                        // from its lowest node on the higher of the two next ones comes first
};

// The faces of all elements of one dimension, whatever their kinds: equal ones together, in the order of the elements.
// Faces that collapsed into less are left out.
class face_list {
public:
    face_list(const mesh& m, int dimension);

    std::span<const face_side> sides() const { return sides_; }

    // visit(sides of one face), by ascending lowest nodes.
    template <class Visit>
    void for_each(Visit visit) const
    {
        for (std::size_t first = 0, last = 0; first < sides_.size(); first = last) {
            do ++last;
            while (last < sides_.size() && sides_[last].nodes == sides_[first].nodes);
            visit(std::span<const face_side>(sides_.data() + first, last - first));
        }
    }

private:
    std::vector<face_side> sides_;
};

// Connected parts of the elements of the mesh's highest dimension: linked across every common face. Others, and
// those that collapsed so far that no face is left, belong to the first part that has one of their nodes.
struct mesh_parts {
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    std::vector<std::uint32_t> part_of;  // by place of the element; none where nothing touches it
    std::uint32_t count = 0;
};

mesh_parts parts_of(const mesh& m, const face_list& faces);

}  // namespace tool

#endif
