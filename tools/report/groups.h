#ifndef TOOLS_REPORT_GROUPS_H
#define TOOLS_REPORT_GROUPS_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "findings/face_list.h"
#include "mesh/mesh.h"

namespace tool {

// The groups that elements of a mesh are in, by dimension and number.
class group_list {
public:
    struct group {
        int dimension;
        std::int32_t number;
        std::string name;  // empty where the file has none
        std::uint64_t elements;
    };
    static constexpr std::uint16_t none = 0xFFFF;

    explicit group_list(const mesh& m);

    const std::vector<group>& groups() const { return groups_; }
    // Which group the element at this place is in: none where the mesh has none, and for those beyond 65534.
    std::uint16_t index_of(std::uint64_t place) const;

private:
    const mesh& m_;
    element_places places_;
    std::vector<group> groups_;
    std::map<std::pair<int, std::int32_t>, std::size_t> index_;
};

}  // namespace tool

#endif
