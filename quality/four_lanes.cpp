// Compiled with four lanes for processors with AVX2; elsewhere with two like everything else, and not called.
#include "quality/score_table.h"

namespace zeb::tessolv::quality {

const score_functions four_at_a_time = score_table;

}  // namespace zeb::tessolv::quality
