#include <cstdio>
#include <cstdlib>

#include "fuzz/memory_file.h"
#include "io/stl_model.h"

// STL_input gives what the streams of the C runtime give, whatever the file holds, as text and as binary.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    const test::memory_file file(bytes, count);
    for (const bool ascii : {true, false}) {
        const test::stl_mesh found = test::read_stl_file(file.name(), ascii);
        std::FILE* f = std::fopen(file.name(), ascii ? "rt" : "rb");
        test::stl_model model;
        const int code = ascii ? model.read_text(f) : model.read_binary(f);
        std::fclose(f);
        if (!(found == (code < 0 ? test::stl_mesh{code} : model.welded()))) std::abort();
    }
    return 0;
}
