#ifndef TESTS_SUPPORT_RECOVERY_H
#define TESTS_SUPPORT_RECOVERY_H

#include <string>

#include "support/failing_memory.h"
#include "support/stored_call.h"

namespace test {

// Whatever request for memory is refused, the call says so with its outputs as stated, or gets around it; the same call
// on the same arguments then gives what it gives in peace.
inline void expect_recovery(const stored_call& call)
{
    const std::string expected = outcome_of(call, storage::own_buffer, storage::own_buffer);
    for (const storage outputs : every_storage) {
        const auto expect = [&](attempt& run) {
            const auto make = [&run](const setting::operation& operation, long& code) {
                code = run([&] { return operation(); });
                return run.failed();
            };
            EXPECT_EQ(outcome_of(call, storage::own_buffer, outputs, make), expected) << "outputs " << int(outputs);
        };
        if (call.asks_for_memory) {
            for_each_failure(expect);
        } else {
            attempt first_refused(1, true);
            expect(first_refused);
            EXPECT_FALSE(first_refused.failed());
        }
    }
}

}  // namespace test

#endif
