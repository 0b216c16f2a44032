#ifndef TESSOLV_CORE_SCRATCH_H
#define TESSOLV_CORE_SCRATCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include <zeb/dense_buffer.h>

#include "core/large_pages.h"

namespace zeb::tessolv {

// Working storage of one call: n values of a trivial type, not initialised, so that nothing is written twice. Freed
// with the object. Unlike a standard container it reports missing memory and keeps its block when asked for less.
template <class T>
class scratch {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    scratch() = default;
    scratch(const scratch&) = delete;
    scratch& operator=(const scratch&) = delete;
    scratch(scratch&& other) noexcept { swap(other); }
    scratch& operator=(scratch&& other) noexcept
    {
        scratch taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~scratch() { __vector_num_free(block_); }

    // Room for n values, what was there is lost. False without memory.
    [[nodiscard]] bool allocate(std::size_t n)
    {
        if (n > capacity_ && !replace_block(n)) return false;
        size_ = n;
        return true;
    }

    [[nodiscard]] bool allocate(std::size_t n, const T& value)
    {
        if (!allocate(n)) return false;
        std::fill(begin(), end(), value);
        return true;
    }

    // Appends a value; the room doubles. False, and nothing changed, without memory.
    [[nodiscard]] bool push_back(const T& value)
    {
        const T kept = value;
        if (size_ == capacity_ && !grow(std::max<std::size_t>(16, 2 * capacity_))) return false;
        values_[size_++] = kept;
        return true;
    }

    void clear() { size_ = 0; }
    void truncate(std::size_t n) { size_ = std::min(n, size_); }

    T& operator[](std::size_t i) { return values_[i]; }
    const T& operator[](std::size_t i) const { return values_[i]; }
    T& back() { return values_[size_ - 1]; }
    void pop_back() { --size_; }
    T* data() { return values_; }
    const T* data() const { return values_; }
    T* begin() { return values_; }
    const T* begin() const { return values_; }
    T* end() { return values_ + size_; }
    const T* end() const { return values_ + size_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    void swap(scratch& other) noexcept
    {
        std::swap(block_, other.block_);
        std::swap(values_, other.values_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

private:
    // A program may have its own allocation functions, whose blocks begin anywhere: the values begin where their type
    // may stand.
    bool replace_block(std::size_t n)
    {
        constexpr std::size_t slack = alignof(T) - 1;
        __vector_num_free(block_);
        block_ = nullptr;
        values_ = nullptr;
        size_ = capacity_ = 0;
        if (n > (std::numeric_limits<std::size_t>::max() - slack) / sizeof(T)) return false;
        block_ = __vector_num_alloc(n * sizeof(T) + slack);
        if (block_ == nullptr) return false;
        values_ = reinterpret_cast<T*>(block_ + (~reinterpret_cast<std::uintptr_t>(block_) + 1) % alignof(T));
        prefer_large_pages(values_, n * sizeof(T));
        capacity_ = n;
        return true;
    }

    bool grow(std::size_t capacity)
    {
        scratch larger;
        if (!larger.allocate(capacity)) return false;
        std::copy(begin(), end(), larger.begin());
        larger.size_ = size_;
        swap(larger);
        return true;
    }

    char* block_ = nullptr;
    T* values_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace zeb::tessolv

#endif
