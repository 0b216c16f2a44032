#ifndef TOOLS_FORMATS_SCALAR_TYPE_H
#define TOOLS_FORMATS_SCALAR_TYPE_H

#include <cstdint>
#include <span>
#include <string_view>

#include "mesh/mesh.h"

namespace tool {

// How numbers are stored in binary parts of files.
enum class scalar_type { bit, int8, uint8, int16, uint16, int32, uint32, int64, uint64, real32, real64 };

struct scalar_info {
    scalar_type type;
    unsigned int bytes;       // 0 for single bits
    std::string_view legacy;  // name in VTK legacy files
    std::string_view xml;     // name in VTU files
    number_kind kind;
};

// By either name; null for an unknown one.
const scalar_info* scalar_named(std::string_view name);
const scalar_info& info_of(scalar_type type);

// `count` numbers of a binary block, with the bytes reversed or not, converted. Integers that no int64 holds, and reals
// that no integer is, become the nearest one.
void decode(scalar_type type, bool reversed, const char* bytes, double* to, std::uint64_t count);
void decode(scalar_type type, bool reversed, const char* bytes, std::int64_t* to, std::uint64_t count);
// Node numbers that count from 0; what no mesh can hold becomes NONE_INDEX.
void decode(scalar_type type, bool reversed, const char* bytes, unsigned int* to, std::uint64_t count);

}  // namespace tool

#endif
