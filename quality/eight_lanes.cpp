// Compiled with eight lanes for processors with AVX-512; elsewhere with two like everything else, and not called.
#include "quality/score_table.h"

namespace zeb::tessolv::quality {

const score_functions eight_at_a_time = score_table;

}  // namespace zeb::tessolv::quality
