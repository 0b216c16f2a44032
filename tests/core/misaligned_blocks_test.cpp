// What containers and working storage do when the blocks of the allocation function are not aligned to 8 bytes. The two functions below take
// the place of the library's own for this program.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

#include "core/scratch.h"
#include "support/matrices.h"

namespace {

std::size_t misalignment = 0;
std::map<char*, void*> blocks;  // handed out -> allocated

}  // namespace

char* zeb::__vector_num_alloc(std::size_t bytes)
{
    void* whole = std::malloc(bytes + 16);
    char* block = static_cast<char*>(whole) + misalignment;
    blocks[block] = whole;
    return block;
}

void zeb::__vector_num_free(char* block)
{
    if (block == nullptr) return;
    const auto found = blocks.find(block);
    ASSERT_NE(found, blocks.end()) << "freed something else than the block";
    std::free(found->second);
    blocks.erase(found);
}

namespace {

using namespace zeb::tessolv;

TEST(MisalignedBlocks, DataIsAlignedAndTheShiftRemembered)
{
    for (misalignment = 0; misalignment < 8; ++misalignment) {
        dense1D<unsigned> v;
        v.push_back(1);
        EXPECT_EQ(v.buffer->align_shift, (8 - misalignment) % 8);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(v.data()) % 8, 0u);
        EXPECT_EQ(v.buffer->capacity, (16 - v.buffer->align_shift) / 4);
        for (unsigned i = 2; i < 100; ++i) v.push_back(i);
        dense2D<double> m(3, 7, 0.5);
        EXPECT_GE(m.buffer->capacity, 21u);
        ASSERT_TRUE(m.push_back(dense1D<double>(3, 2.0)));
        EXPECT_EQ(m(2, 7), 2.0);
        EXPECT_EQ(m(2, 6), 0.5);
    }
    misalignment = 0;
    EXPECT_TRUE(blocks.empty());
}

TEST(MisalignedBlocks, WorkingStorageIsAligned)
{
    for (misalignment = 0; misalignment < 8; ++misalignment) {
        SCOPED_TRACE(misalignment);
        scratch<double> numbers;
        scratch<unsigned> indices;
        ASSERT_TRUE(numbers.allocate(2, 0.5) && indices.allocate(3));
        for (unsigned i = 0; i < 100; ++i) ASSERT_TRUE(numbers.push_back(i) && indices.push_back(i));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(numbers.data()) % alignof(double), 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(indices.data()) % alignof(unsigned), 0u);
        EXPECT_EQ(numbers[1], 0.5);
        EXPECT_EQ(numbers.back(), 99.0);
        EXPECT_EQ(indices.back(), 99u);
    }
    misalignment = 0;
    EXPECT_TRUE(blocks.empty());
}

}  // namespace
