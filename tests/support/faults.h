#ifndef TESTS_SUPPORT_FAULTS_H
#define TESTS_SUPPORT_FAULTS_H

#include <gtest/gtest.h>

#include <vector>

namespace test {

enum class outputs { kept, emptied };

// Something wrong with the arguments of a call, or nothing for it to do: what the call then gives, what becomes of its
// outputs, and how to bring it about.
template <class Arguments>
struct fault {
    int code;
    outputs state;
    void (*inflict)(Arguments&);
};

// Calls expect(arguments, first) for every set of faults of a good call, with the first in the order of the checks, or
// null for no fault. They are inflicted from the last to the first: where two exclude each other the first one holds.
template <class Arguments, class Expect>
void for_every_set_of_faults(const Arguments& good, const std::vector<fault<Arguments>>& in_order, Expect expect)
{
    for (unsigned set = 0; set < 1u << in_order.size(); ++set) {
        SCOPED_TRACE(testing::Message() << "set of faults " << set);
        Arguments arguments = good;
        const fault<Arguments>* first = nullptr;
        for (std::size_t k = in_order.size(); k-- > 0;) {
            if ((set >> k & 1) == 0) continue;
            first = &in_order[k];
            first->inflict(arguments);
        }
        expect(arguments, first);
    }
}

}  // namespace test

#endif
