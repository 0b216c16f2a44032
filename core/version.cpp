#include <tessolv/core.h>

namespace zeb::tessolv {

const char* version()
{
    return "3.9.3";
}

}  // namespace zeb::tessolv
