#ifndef PYTHON_REFUSALS_H
#define PYTHON_REFUSALS_H

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace binding {

// What one negative result of one form of an operation means.
struct refusal {
    std::string_view form;  // name of the operation, behind a slash the overload where overloads differ
    int code;
    std::string_view argument;
    std::string_view reason;
};

// All of them. A code that the table does not hold is exhausted memory.
const std::vector<refusal>& refusals();

const refusal* find_refusal(std::string_view form, int code);

// Becomes tessolv.Error. Without a code the library was not called at all.
struct refused : std::exception {
    refused(std::string_view form, std::optional<int> result, std::string_view name, std::string why);
    const char* what() const noexcept override { return reason.c_str(); }

    std::string function;
    std::optional<int> code;
    std::string argument;
    std::string reason;
};

}  // namespace binding

#endif
