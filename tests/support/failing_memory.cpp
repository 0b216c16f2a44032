#include "support/failing_memory.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <zeb/dense_buffer.h>

namespace {

long requests_left = 0;  // until the one that fails; 0: none will
bool all_later_fail = false;
bool has_failed = false;
std::size_t largest = 0;
long blocks = 0;

bool refuses()
{
    if (has_failed && all_later_fail) return true;
    if (requests_left == 0 || --requests_left != 0) return false;
    has_failed = true;
    return true;
}

void* obtain(std::size_t bytes)
{
    largest = std::max(largest, bytes);
    void* block = refuses() ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
    blocks += block != nullptr;
    return block;
}

void give_back(void* block)
{
    blocks -= block != nullptr;
    std::free(block);
}

void* obtain_or_throw(std::size_t bytes)
{
    void* block = obtain(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

namespace test {

failing_memory::failing_memory(long nth, bool from_then_on)
{
    requests_left = nth;
    all_later_fail = from_then_on;
    has_failed = false;
    largest = 0;
}

failing_memory::~failing_memory()
{
    requests_left = 0;
    all_later_fail = false;
}

bool failing_memory::triggered() const
{
    return has_failed;
}

std::size_t failing_memory::largest_request() const
{
    return largest;
}

long live_blocks()
{
    return blocks;
}

}  // namespace test

// They take the place of those of the library.
char* zeb::__vector_num_alloc(std::size_t bytes)
{
    return static_cast<char*>(obtain(bytes));
}

void zeb::__vector_num_free(char* block)
{
    give_back(block);
}

void* operator new(std::size_t bytes)
{
    return obtain_or_throw(bytes);
}

void* operator new[](std::size_t bytes)
{
    return obtain_or_throw(bytes);
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return obtain(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return obtain(bytes);
}

void operator delete(void* block) noexcept
{
    give_back(block);
}

void operator delete[](void* block) noexcept
{
    give_back(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    give_back(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    give_back(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept
{
    give_back(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    give_back(block);
}
