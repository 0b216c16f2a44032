#include "core/index_runs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include <tessolv/element_type.h>

#include "support/random_meshes.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

constexpr unsigned near_the_end[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFD, 0xFFFFFFFE, NONE_INDEX};

// A run that begins anywhere in memory, of up to three thousand entries: small numbers, or any with NONE_INDEX among them.
struct run {
    std::vector<unsigned> memory;
    std::size_t begin;

    explicit run(dice& random) : memory(random.below(random.one_in(2) ? 40 : 3000)), begin(0)
    {
        const bool small = random.one_in(2);
        for (unsigned& v : memory) v = small ? random.below(1000) : random.one_of(near_the_end);
        begin = std::min<std::size_t>(random.below(9), memory.size());
    }

    const unsigned* data() const { return memory.data() + begin; }
    std::uint64_t count() const { return memory.size() - begin; }
};

}  // namespace

TEST(IndexRuns, AreComparedWithABoundLikeTheirEntries)
{
    dice random(1);
    for (int trial = 0; trial < 2000; ++trial) {
        const run r(random);
        const unsigned* const end = r.data() + r.count();
        const unsigned n = random.one_in(2) ? 990 + random.below(12) : random.one_of(near_the_end);
        const auto below = [n](unsigned v) { return v < n; };
        const auto below_or_none = [n](unsigned v) { return v < n || v == NONE_INDEX; };
        ASSERT_EQ(run_is_below(r.data(), r.count(), n), std::all_of(r.data(), end, below)) << n;
        ASSERT_EQ(run_is_below_or_none(r.data(), r.count(), n), std::all_of(r.data(), end, below_or_none)) << n;
    }
}

TEST(IndexRuns, KnowABadEntryAtEveryPlace)
{
    for (const unsigned length : {1u, 7u, 16u, 1023u, 1024u, 1025u, 2100u}) {
        std::vector<unsigned> entries(length, 3);
        for (unsigned i = 0; i < length; ++i) {
            entries[i] = 4;
            ASSERT_FALSE(run_is_below(entries.data(), length, 4)) << i << " of " << length;
            ASSERT_FALSE(run_is_below_or_none(entries.data(), length, 4)) << i << " of " << length;
            entries[i] = 3;
        }
        EXPECT_TRUE(run_is_below(entries.data(), length, 4));
    }
}

TEST(IndexRuns, HaveALeastAndALargestIndexAndMissingOnes)
{
    dice random(2);
    for (int trial = 0; trial < 2000; ++trial) {
        const run r(random);
        unsigned least = random.one_in(2) ? NONE_INDEX : 500, beyond = random.one_in(2) ? 0 : 501;
        unsigned expected_least = least, expected_beyond = beyond;
        std::uint64_t missing = 0;
        for (const unsigned* v = r.data(); v != r.data() + r.count(); ++v) {
            missing += *v == NONE_INDEX;
            if (*v == NONE_INDEX) continue;
            expected_least = std::min(expected_least, *v);
            expected_beyond = std::max(expected_beyond, *v + 1);
        }
        widen_by_run(r.data(), r.count(), least, beyond);
        ASSERT_EQ(least, expected_least);
        ASSERT_EQ(beyond, expected_beyond);
        ASSERT_EQ(missing_in_run(r.data(), r.count()), missing);
    }
}
