#ifndef TESTS_SUPPORT_STORED_CALL_H
#define TESTS_SUPPORT_STORED_CALL_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/matrices.h"

// Calls of the library, written down once to be made under many circumstances: with arguments in buffers of their own,
// in views of larger matrices, in shared buffers and in the host's memory; and with memory that fails.

namespace test {

enum class storage { own_buffer, view, shared_buffer, host_memory };
constexpr storage every_storage[] = {storage::own_buffer, storage::view, storage::shared_buffer, storage::host_memory};

// Everything that can be seen of a buffer from outside the matrix that was placed in it.
template <class T>
struct surroundings {
    std::vector<T> host;
    zeb::dense2D<T> whole, before;
    std::uint64_t i0 = 0, j0 = 0;  // where in the whole the matrix begins
    std::uint64_t rows, cols;      // and its shape

    bool are_as_before(bool but_the_matrix) const
    {
        for (std::uint64_t j = 0; j < before.cols; ++j)
            for (std::uint64_t i = 0; i < before.rows; ++i) {
                const bool inside = i - i0 < rows && j - j0 < cols;
                if (!(inside && but_the_matrix) && !(whole(i, j) == before(i, j))) return false;
            }
        return true;
    }
};

// Makes `slot` a matrix of these values, stored in this way. What surrounds it are ones: indices like any other.
template <class T>
std::shared_ptr<surroundings<T>> place(const zeb::dense2D<T>& values, storage form, zeb::dense2D<T>& slot)
{
    auto around = std::make_shared<surroundings<T>>();
    const std::uint64_t rows = around->rows = values.rows;
    const std::uint64_t cols = around->cols = values.cols;
    auto& whole = around->whole;
    switch (form) {
        case storage::own_buffer:
            slot.copy(values);
            return around;
        case storage::view:
            whole = zeb::dense2D<T>(rows + 3, cols + 2, T{1});
            around->i0 = 2;
            around->j0 = 1;
            break;
        case storage::shared_buffer:
            whole.resize(rows, cols, T{1});
            break;
        case storage::host_memory:
            around->host.assign((rows + 1) * cols + 1, T{1});
            whole.buffer = new zeb::dense_buffer<T>{around->host.data(), 0, around->host.size(), 0, 1};
            whole.resize(rows + 1, cols);
            around->i0 = 1;
            break;
    }
    slot.shallow_copy(whole.sub_matrix(around->i0, around->j0, rows, cols));
    for (std::uint64_t j = 0; j < cols; ++j)
        for (std::uint64_t i = 0; i < rows; ++i) slot(i, j) = values(i, j);
    around->before.copy(whole);
    return around;
}

template <class T>
std::shared_ptr<surroundings<T>> place(const zeb::dense1D<T>& values, storage form, zeb::dense1D<T>& slot)
{
    zeb::dense2D<T> column(values.size, 1), placed;
    for (std::uint64_t i = 0; i < values.size; ++i) column(i, 0) = values[i];
    auto around = place(column, form, placed);
    form == storage::own_buffer ? slot.copy(values) : slot.shallow_copy(placed.col(0));
    return around;
}

// Keeps what the buffers of its matrices and lists belong to: lives longer than they do.
class storeroom {
public:
    template <class Container>
    Container hold(const Container& values, storage form)
    {
        Container slot;
        around_.push_back(place(values, form, slot));
        return slot;
    }

private:
    std::vector<std::shared_ptr<void>> around_;
};

template <class T>
bool is_empty_throughout(const zeb::dense1D<T>& v)
{
    return v.size == 0;
}

template <class T>
bool is_empty_throughout(const zeb::dense2D<T>& m)
{
    return m.size == 0 && m.rows == 0 && m.cols == 0;
}

// The circumstances of one call: hands out its arguments, makes it, and gathers what came of it.
class setting {
public:
    using operation = std::function<long()>;
    // Makes a call; true if it was refused memory.
    using maker = std::function<bool(const operation& call, long& code)>;

    setting(storage inputs, storage outputs, maker make = {})
        : inputs_(inputs), outputs_(outputs), make_(std::move(make))
    {
    }
    setting(const setting&) = delete;
    setting& operator=(const setting&) = delete;

    // An argument that is only read.
    template <class Container>
    const Container& input(const Container& values)
    {
        auto& slot = placed(values, inputs_, [values](const Container& c, const auto& around) {
            EXPECT_EQ(c, values) << "an input has changed";
            EXPECT_TRUE(around.are_as_before(false)) << "the surroundings of an input have changed";
        });
        return slot;
    }

    // A result in a buffer of its own, whatever it is where memory ends.
    template <class Container>
    Container& replaced(const Container& values)
    {
        return result(values);
    }

    // A result in a buffer of its own, empty where memory ends.
    template <class Container>
    Container& emptied(const Container& values)
    {
        auto& slot = result(values);
        after_failure_.push_back([&slot] { EXPECT_TRUE(is_empty_throughout(slot)) << testing::PrintToString(slot); });
        return slot;
    }

    // A result in a buffer of its own, as it was where memory ends.
    template <class Container>
    Container& kept(const Container& values)
    {
        auto& slot = result(values);
        after_failure_.push_back([&slot, values] { EXPECT_EQ(slot, values); });
        return slot;
    }

    // An argument whose entries are changed where they are, as it was where memory ends.
    template <class Container>
    Container& written(const Container& values)
    {
        auto& slot = placed(values, outputs_, [this](const Container& c, const auto& around) {
            EXPECT_TRUE(around.are_as_before(true)) << "what surrounds a result has changed";
            EXPECT_TRUE(outputs_ == storage::own_buffer || c.buffer == around.whole.buffer) << "the buffer is another";
        });
        after_failure_.push_back([&slot, values] { EXPECT_EQ(slot, values); });
        print(slot);
        return slot;
    }

    // A range of matrices that are read, or changed where they are.
    template <class T>
    const zeb::dense2D<T>* input_range(const std::vector<zeb::dense2D<T>>& matrices)
    {
        return range(
            matrices, [this](const auto& m) -> auto& { return this->input(m); });
    }
    template <class T>
    zeb::dense2D<T>* written_range(const std::vector<zeb::dense2D<T>>& matrices)
    {
        return range(
            matrices, [this](const auto& m) -> auto& { return this->written(m); });
    }

    // Makes the call. Where it is refused memory it must give `failure`, and succeed when it is made again.
    template <class Operation>
    void run(Operation call, long failure = -199)
    {
        const operation made = [&call]() -> long {
            if constexpr (std::is_void_v<decltype(call())>) {
                call();
                return 0;
            } else {
                return static_cast<long>(call());
            }
        };
        long code = 0;
        const bool refused = make_ ? make_(made, code) : (code = made(), false);
        if (refused && code == failure) {
            for (const auto& expect : after_failure_) expect();
            code = made();
        }
        outcome_ << code;
    }

    // Adds something else that the call has changed to the outcome.
    template <class Value>
    void note(const Value& value)
    {
        outcome_ << "; " << testing::PrintToString(value);
    }

    // The result of the call and all that it wrote.
    std::string outcome()
    {
        for (const auto& print_one : prints_) print_one(outcome_);
        for (const auto& expect : at_end_) expect();
        return outcome_.str();
    }

private:
    template <class Container, class Expect>
    Container& placed(const Container& values, storage form, Expect expect)
    {
        auto slot = std::make_shared<Container>();
        const auto around = place(values, form, *slot);
        at_end_.push_back([slot, around, expect] { expect(*slot, *around); });
        return *slot;
    }

    template <class Container>
    Container& result(const Container& values)
    {
        auto& slot = placed(values, outputs_, [](const Container& c, const auto& around) {
            EXPECT_TRUE(around.are_as_before(false)) << "the former buffer of a result has changed";
            if (c.size != 0 && c.buffer != around.whole.buffer) {
                EXPECT_EQ(c.buffer->ref_count, 1) << "a result shares its buffer";
            }
        });
        print(slot);
        return slot;
    }

    template <class Container>
    void print(const Container& slot)
    {
        prints_.push_back([&slot](std::ostream& out) { out << "; " << testing::PrintToString(slot); });
    }

    template <class T, class Hold>
    zeb::dense2D<T>* range(const std::vector<zeb::dense2D<T>>& matrices, Hold hold)
    {
        auto held = std::make_shared<std::vector<zeb::dense2D<T>>>(matrices.size());
        for (std::size_t k = 0; k < matrices.size(); ++k) {
            const auto& slot = hold(matrices[k]);
            (*held)[k].shallow_copy(slot);
            at_end_.push_back([held, k, &slot] {
                EXPECT_EQ((*held)[k], slot);
                EXPECT_EQ((*held)[k].buffer, slot.buffer) << "the buffer is another";
            });
        }
        return held->data();
    }

    storage inputs_, outputs_;
    maker make_;
    std::vector<std::function<void()>> after_failure_, at_end_;
    std::vector<std::function<void(std::ostream&)>> prints_;
    std::ostringstream outcome_;
};

struct stored_call {
    const char* name;
    void (*make)(setting&);
    bool asks_for_memory = true;
};

inline void PrintTo(const stored_call& call, std::ostream* out)
{
    *out << call.name;
}

inline std::string outcome_of(const stored_call& call, storage inputs, storage outputs, setting::maker make = {})
{
    setting circumstances(inputs, outputs, std::move(make));
    call.make(circumstances);
    return circumstances.outcome();
}

// The outcome is the same however inputs and outputs are stored.
inline void expect_one_outcome(const stored_call& call)
{
    const std::string expected = outcome_of(call, storage::own_buffer, storage::own_buffer);
    EXPECT_NE(expected.front(), '-') << "the call does not succeed";
    for (const storage inputs : every_storage)
        for (const storage outputs : every_storage) {
            SCOPED_TRACE(testing::Message() << "inputs " << int(inputs) << ", outputs " << int(outputs));
            EXPECT_EQ(outcome_of(call, inputs, outputs), expected);
        }
}

}  // namespace test

#endif
