#ifndef TESTS_SUPPORT_FAILING_MEMORY_H
#define TESTS_SUPPORT_FAILING_MEMORY_H

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "support/open_files.h"

// Exhausted memory on demand. A test program that is built with failing_memory.cpp takes every block of the library and
// of the standard containers from there.

namespace test {

// While it lives, the nth request for memory fails, counted from 1 at its construction; with `from_then_on` all later
// ones too. 0 lets none fail. One at a time.
struct failing_memory {
    explicit failing_memory(long nth, bool from_then_on);
    ~failing_memory();
    failing_memory(const failing_memory&) = delete;
    failing_memory& operator=(const failing_memory&) = delete;

    bool triggered() const;               // whether a request has failed
    std::size_t largest_request() const;  // bytes of the largest so far
};

// Blocks that were handed out and not given back.
long live_blocks();

// One run of an operation under failing memory. Only what operator() calls is exposed to it: arguments are prepared and
// results are looked at in peace.
class attempt {
public:
    attempt(long nth, bool from_then_on) : nth_(nth), from_then_on_(from_then_on) {}

    template <class Operation>
    auto operator()(Operation operation)
    {
        const failing_memory memory(nth_, from_then_on_);
        if constexpr (std::is_void_v<decltype(operation())>) {
            operation();
            failed_ = memory.triggered();
        } else {
            auto result = operation();
            failed_ = memory.triggered();
            return result;
        }
    }

    bool failed() const { return failed_; }  // whether a request has failed; the operation may have got around it

private:
    long nth_;
    bool from_then_on_;
    bool failed_ = false;
};

// Runs call(attempt) first with all the memory it wants, then with the nth request failing for every n that it comes
// to, once and from then on. The call prepares its arguments anew each time, runs the operation through the attempt and
// expects what belongs to attempt.failed(). Expects besides that nothing is leaked, no file is left open and that a
// request was refused at all.
//
//     test::for_each_failure([](test::attempt& attempt) {
//         dense1D<unsigned> out = indices({3});
//         const int code = attempt([&] { return unique_indices(out, connect); });
//         EXPECT_EQ(code, attempt.failed() ? -199 : 0);
//     });
template <class Call>
void for_each_failure(Call call)
{
    const auto leaves_nothing = [&](attempt& run) {
        const auto files = open_files();
        const long before = live_blocks();
        call(run);
        if (!testing::Test::HasFailure()) {
            EXPECT_EQ(live_blocks(), before) << "blocks were leaked or freed twice";
            EXPECT_EQ(open_files(), files) << "a file was left open";
        }
    };
    attempt in_peace(0, false);
    call(in_peace);
    for (const bool from_then_on : {false, true}) {
        for (long nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message()
                         << "request " << nth << (from_then_on ? " and later ones" : "") << " refused");
            attempt run(nth, from_then_on);
            leaves_nothing(run);
            if (!run.failed()) {
                EXPECT_GT(nth, 1) << "no request was refused";
                break;
            }
            if (testing::Test::HasFailure()) return;
        }
    }
}

}  // namespace test

#endif
