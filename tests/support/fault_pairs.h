#ifndef TESTS_SUPPORT_FAULT_PAIRS_H
#define TESTS_SUPPORT_FAULT_PAIRS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// Which of several faults a function finds first.

namespace test {

// A fault that can be put into the arguments of a call, and the code that it gives.
template <class Call>
struct fault {
    const char* name;
    int code;
    std::function<void(Call&)> put_into;
};

template <class Call>
using fault_table = std::vector<fault<Call>>;

// One table behind another.
template <class Call>
fault_table<Call> operator+(fault_table<Call> first, const fault_table<Call>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Makes the call with each fault and with each pair of faults of different codes, listed in the order in which they
// must be found: the code is that of the first of them. `make(call)` gives the code and looks at what the call left
// behind; where nothing is to be done, that is a fault of code 0.
template <class Call, class Make>
void expect_codes_in_order(const fault_table<Call>& faults, Make make)
{
    for (std::size_t i = 0; i < faults.size(); ++i)
        for (std::size_t k = i; k < faults.size(); ++k) {
            if (k != i && faults[k].code == faults[i].code) continue;
            SCOPED_TRACE(std::string(faults[i].name) + (k != i ? std::string(" and ") + faults[k].name : ""));
            Call call;
            faults[k].put_into(call);
            faults[i].put_into(call);
            EXPECT_EQ(make(call), faults[i].code);
        }
}

}  // namespace test

#endif
