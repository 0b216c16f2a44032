#include <cstdlib>
#include <string>

#include "fuzz/memory_file.h"
#include "io/wavefront_obj_model.h"

// WavefrontOBJ_input gives what reading by lines and streams gives, whatever the file holds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    const test::memory_file file(bytes, count);
    const test::obj_mesh found = test::read_file(file.name());
    if (!(found == test::model_of(std::string(reinterpret_cast<const char*>(bytes), count)))) std::abort();
    return 0;
}
