#ifndef TOOLS_FORMATS_CAPABILITY_H
#define TOOLS_FORMATS_CAPABILITY_H

#include <vector>

#include "formats/format.h"

namespace tool {

// A block as a format can take it: whole, or its corners alone.
struct writable_block {
    const element_block* block;
    zeb::element_type type;  // as which it is written
    std::uint64_t first;     // elements in the written blocks before it

    std::uint64_t size() const { return block->size(); }
    const unsigned int* nodes(std::uint64_t e) const { return &block->connect(0, e); }
};

// The blocks that a format can hold: holds(type) says so. Others are `unwritable`, but for two cases, in which their
// corners are written, or nothing, with a note: lossy writing, and elements of a lower dimension than the mesh has,
// which many programs add for their own ends.
std::vector<writable_block> writable_blocks(const mesh& m, std::string_view format, bool (*holds)(zeb::element_type),
                                            const write_options& options);

// Notes what a format has no place for.
void note_fields(const mesh& m, std::string_view format, const write_options& options);
void note_groups(const mesh& m, std::string_view format, const write_options& options);
void note_group_names(const mesh& m, std::string_view format, const write_options& options);

// The values of a cell field on one block.
std::uint64_t first_value(const mesh& m, const element_block& block);

}  // namespace tool

#endif
