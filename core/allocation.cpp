#include <cstdlib>

#include <zeb/dense_buffer.h>

// Alone in this file: a compiler that sees definition and call together may bind them for good, and a program could no
// longer put its own functions in the place of these.
namespace zeb {

char* __vector_num_alloc(std::size_t bytes)
{
    return static_cast<char*>(std::malloc(bytes));
}

void __vector_num_free(char* block)
{
    std::free(block);
}

}  // namespace zeb
