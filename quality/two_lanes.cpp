// For every processor.
#include "quality/score_table.h"

namespace zeb::tessolv::quality {

const score_functions two_at_a_time = score_table;

}  // namespace zeb::tessolv::quality
