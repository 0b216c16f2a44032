#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "support/matrices.h"
#include "support/random_meshes.h"

// Matrices that share buffers, through random sequences of operations, against a model in which a buffer is a shared
// list and an unspecified entry is none.

using namespace zeb::tessolv;
using test::dice;

namespace {

using block = std::vector<std::optional<unsigned>>;

struct model_matrix {
    std::shared_ptr<block> entries;
    std::size_t offset = 0, rows = 0, cols = 0, ld = 0;

    std::optional<unsigned>& operator()(std::size_t i, std::size_t j) { return (*entries)[ld * j + offset + i]; }
    bool empty() const { return rows * cols == 0; }

    // A compact buffer of its own, with the common part of the old entries.
    void move_to_own(std::size_t new_rows, std::size_t new_cols, std::optional<unsigned> value)
    {
        auto own = std::make_shared<block>(new_rows * new_cols, value);
        for (std::size_t j = 0; j < cols && j < new_cols; ++j)
            for (std::size_t i = 0; i < rows && i < new_rows; ++i) (*own)[j * new_rows + i] = (*this)(i, j);
        *this = {own, 0, new_rows, new_cols, new_rows};
    }

    void resize(std::size_t new_rows, std::size_t new_cols, std::optional<unsigned> value)
    {
        const bool in_place = new_rows * new_cols == 0 || (new_rows == rows && new_cols <= cols);
        if (!in_place) move_to_own(new_rows, new_cols, value);
        rows = new_rows;
        cols = new_cols;
    }

    void reserve(std::size_t new_rows, std::size_t new_cols)
    {
        if (new_rows * new_cols <= rows * cols || entries.use_count() == 1) return;
        const auto [r, c] = std::pair(rows, cols);
        empty() ? void(entries = std::make_shared<block>()) : move_to_own(r, c, {});
        rows = r;
        cols = c;
    }

    void copy(model_matrix other)
    {
        other.empty() ? void(other.entries = nullptr) : other.move_to_own(other.rows, other.cols, {});
        *this = other;
    }

    bool push_back(const std::vector<unsigned>& column)
    {
        if (!empty() && column.size() != rows) return false;
        resize(column.size(), cols + 1, {});
        for (std::size_t i = 0; i < rows; ++i) (*this)(i, cols - 1) = column[i];
        return true;
    }

    model_matrix part(std::size_t i0, std::size_t j0, std::size_t r, std::size_t c) const
    {
        return {entries, offset + ld * j0 + i0, r, c, ld};
    }
};

template <class T>
class MatrixSequence : public testing::Test {
protected:
    static constexpr unsigned count = 4;
    dense2D<T> real[count];
    model_matrix model[count];

    void take_one_step(dice& random)
    {
        const unsigned a = random.below(count), b = random.below(count), value = random.below(1000);
        auto& v = real[a];
        auto& m = model[a];
        const std::size_t r = random.below(5), c = random.below(6);
        const auto below = [&](std::uint64_t n) { return random.below(unsigned(n)); };
        const std::size_t i0 = below(real[b].rows + 1), j0 = below(real[b].cols + 1);
        const std::size_t i1 = below(real[b].rows - i0 + 1), j1 = below(real[b].cols - j0 + 1);
        bool done = true;
        switch (random.below(12)) {
            case 0:
                push(v, m, random.one_in(3) ? r : v.rows, value);
                break;
            case 1:
                push(v, m, v.rows, value);
                break;
            case 2:
                done = v.resize(r, c);
                m.resize(r, c, {});
                break;
            case 3:
                done = v.resize(r, c, T(value));
                m.resize(r, c, value);
                break;
            case 4:
                done = v.reserve(r, 3 * c);
                m.reserve(r, 3 * c);
                break;
            case 5:
                done = v.copy(real[b]);
                if (a != b) m.copy(model[b]);
                break;
            case 6:
                v = real[b];
                if (a != b) m.copy(model[b]);
                break;
            case 7:
                done = v.shallow_copy(real[b]);
                m = model[b];
                break;
            case 8:
                v.shallow_copy(real[b].sub_matrix(i0, j0, i1, j1));
                m = model[b].part(i0, j0, i1, j1);
                break;
            case 9:
                v = real[b].sub_matrix(i0, j0, i1, j1);
                m.copy(model[b].part(i0, j0, i1, j1));
                break;
            case 10:
                v.clear();
                m.rows = m.cols = 0;
                break;
            default:
                if (v.empty()) break;
                v(r % v.rows, c % v.cols) = T(value);
                m(r % m.rows, c % m.cols) = value;
                v.col(0)[r % v.rows] = T(value + 1);
                m(r % m.rows, 0) = value + 1;
        }
        EXPECT_TRUE(done);
    }

    void push(dense2D<T>& v, model_matrix& m, std::size_t length, unsigned value)
    {
        std::vector<unsigned> column(length);
        dense1D<T> pushed(length);
        for (std::size_t i = 0; i < length; ++i) pushed[i] = T(column[i] = value + unsigned(i));
        EXPECT_EQ(v.push_back(pushed), m.push_back(column));
    }

    void expect_equal()
    {
        for (unsigned a = 0; a < count; ++a) {
            ASSERT_EQ(real[a].rows, model[a].rows);
            ASSERT_EQ(real[a].cols, model[a].cols);
            ASSERT_EQ(real[a].size, real[a].rows * real[a].cols);
            ASSERT_GE(real[a].ld, model[a].empty() ? 0 : real[a].rows);
            for (std::size_t j = 0; !model[a].empty() && j < real[a].cols; ++j)
                for (std::size_t i = 0; i < real[a].rows; ++i) {
                    if (model[a](i, j).has_value()) {
                        ASSERT_EQ(real[a](i, j), T(*model[a](i, j))) << a << ": " << i << ", " << j;
                    }
                }
            for (unsigned b = 0; b < a; ++b)
                ASSERT_EQ(real[a].buffer == real[b].buffer, model[a].entries == model[b].entries) << a << " " << b;
            if (model[a].entries != nullptr) {
                ASSERT_NE(real[a].buffer, nullptr);
                ASSERT_EQ(real[a].buffer->ref_count, model[a].entries.use_count());
            }
        }
    }
};
using entry_types = testing::Types<unsigned, float, double>;
TYPED_TEST_SUITE(MatrixSequence, entry_types, );

TYPED_TEST(MatrixSequence, KeepsShapesValuesAndSharingAsTheModel)
{
    dice random(62);
    for (int sequence = 0; sequence < 2000; ++sequence) {
        SCOPED_TRACE(sequence);
        for (auto& v : this->real) v.shallow_copy(dense2D<TypeParam>());
        for (auto& m : this->model) m = {};
        for (int step = 0; step < 25; ++step) {
            this->take_one_step(random);
            this->expect_equal();
            if (this->HasFatalFailure()) return;
        }
    }
}

}  // namespace
