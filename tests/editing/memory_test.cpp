#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::points;

// Every request for memory that an operation makes is refused in turn.
namespace {

TEST(UniqueIndices, WithoutMemoryReportsItAndLeavesTheListAsItWas)
{
    const dense2D<unsigned> matrices[] = {columns({{5, 2, 5}, {2, test::N, 7}}), columns({{4000000000, 9}})};
    test::for_each_failure([&](test::attempt& attempt) {
        auto out = indices({8});
        const int code = attempt([&] { return unique_indices(out, matrices, matrices + 2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(out, attempt.failed() ? indices({8}) : indices({8, 5, 2, 7, 4000000000, 9}));
    });
}

}  // namespace
