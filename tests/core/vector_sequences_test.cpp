#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "support/matrices.h"
#include "support/random_meshes.h"

// Vectors that share buffers, through random sequences of operations, against a model in which a buffer is a shared
// list and an unspecified entry is none.

using namespace zeb::tessolv;
using test::dice;

namespace {

using block = std::vector<std::optional<unsigned>>;

struct model_vector {
    std::shared_ptr<block> entries;
    std::size_t offset = 0, size = 0;

    std::optional<unsigned>& operator[](std::size_t i) { return (*entries)[offset + i]; }

    void detach()
    {
        auto own = std::make_shared<block>();
        for (std::size_t i = 0; i < size; ++i) own->push_back((*this)[i]);
        entries = own;
        offset = 0;
    }

    void copy(model_vector other)
    {
        other.size != 0 ? other.detach() : void(other = {});
        *this = other;
    }

    void provide(std::size_t n)
    {
        if (n <= size) return;
        if (entries.use_count() != 1) detach();
    }

    void resize(std::size_t n, std::optional<unsigned> value)
    {
        provide(n);
        if (n > size) entries->resize(std::max(entries->size(), offset + n));
        for (; size < n; ++size) (*this)[size] = value;
        size = n;
    }

    void push_back(std::optional<unsigned> value)
    {
        if (entries == nullptr) detach();
        entries->resize(std::max(entries->size(), offset + size + 1));
        (*this)[size++] = value;
    }
};

template <class T>
class VectorSequence : public testing::Test {
protected:
    static constexpr unsigned count = 4;
    dense1D<T> real[count];
    model_vector model[count];

    void take_one_step(dice& random)
    {
        const unsigned a = random.below(count), b = random.below(count), value = random.below(1000);
        const std::size_t n = random.below(12);
        auto& v = real[a];
        auto& m = model[a];
        const std::size_t first = random.below(unsigned(real[b].size) + 1);
        const std::size_t length = random.below(unsigned(real[b].size - first) + 1);
        const auto part = [&] { return model_vector{model[b].entries, model[b].offset + first, length}; };
        bool done = true;
        switch (random.below(13)) {
            case 0:
                v.push_back(T(value));
                m.push_back(value);
                break;
            case 1:
                v.push_back(T(value));
                m.push_back(value);
                break;
            case 2:
                done = v.resize(n);
                m.resize(n, {});
                break;
            case 3:
                done = v.resize(n, T(value));
                m.resize(n, value);
                break;
            case 4:
                done = v.reserve(n);
                m.provide(n);
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
                v.shallow_copy(real[b].sub_vector(first, length));
                m = part();
                break;
            case 9:
                v = real[b].sub_vector(first, length);
                m.copy(part());
                break;
            case 10:
                v.clear();
                m.size = 0;
                break;
            case 11:
                move(a, b);
                break;
            default:
                if (v.size == 0) break;
                v[n % v.size] = T(value);
                m[n % m.size] = value;
                if (random.one_in(2)) break;
                v.push_back(v[n % v.size]);
                m.push_back(value);
        }
        EXPECT_TRUE(done);
    }

    // Steals from the only owner of a whole block, and copies from others.
    void move(unsigned a, unsigned b)
    {
        const bool steals = model[b].entries.use_count() == 1 && model[b].offset == 0;
        real[a] = std::move(real[b]);
        if (a == b) return;
        steals ? void(model[a] = std::exchange(model[b], {})) : model[a].copy(model[b]);
    }

    void expect_equal()
    {
        for (unsigned a = 0; a < count; ++a) {
            ASSERT_EQ(real[a].size, model[a].size);
            for (std::size_t i = 0; i < real[a].size; ++i) {
                if (model[a][i].has_value()) {
                    ASSERT_EQ(real[a][i], T(*model[a][i])) << a << " " << i;
                }
            }
            if (model[a].entries != nullptr) {
                ASSERT_NE(real[a].buffer, nullptr);
                ASSERT_EQ(real[a].buffer->ref_count, model[a].entries.use_count());
                ASSERT_GE(real[a].buffer->capacity, real[a].offset + real[a].size);
            }
            for (unsigned b = 0; b < a; ++b)
                ASSERT_EQ(real[a].buffer == real[b].buffer, model[a].entries == model[b].entries) << a << " " << b;
        }
    }
};
using entry_types = testing::Types<unsigned, int, float, double>;
TYPED_TEST_SUITE(VectorSequence, entry_types, );

TYPED_TEST(VectorSequence, KeepsValuesAndSharingAsTheModel)
{
    dice random(61);
    for (int sequence = 0; sequence < 2000; ++sequence) {
        SCOPED_TRACE(sequence);
        for (auto& v : this->real) v.shallow_copy(dense1D<TypeParam>());
        for (auto& m : this->model) m = {};
        for (int step = 0; step < 25; ++step) {
            this->take_one_step(random);
            this->expect_equal();
            if (this->HasFatalFailure()) return;
        }
    }
}

}  // namespace
