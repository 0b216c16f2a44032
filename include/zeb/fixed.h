#ifndef ZEB_FIXED_H
#define ZEB_FIXED_H

#include <cstddef>
#include <type_traits>

namespace zeb {
namespace detail {

/// N values side by side and nothing else: what the fixed-size types share. Zero by default; otherwise made from
/// exactly N values of any arithmetic type, in storage order. Copied whole.
template <class T, std::size_t N>
class fixed_storage {
public:
    constexpr fixed_storage() noexcept : values_{} {}

    template <class... V, class = std::enable_if_t<sizeof...(V) == N && (std::is_arithmetic<V>::value && ...)>>
    constexpr fixed_storage(V... values) noexcept : values_{static_cast<T>(values)...}
    {
    }

    constexpr T& operator[](std::size_t i) noexcept { return values_[i]; }
    constexpr const T& operator[](std::size_t i) const noexcept { return values_[i]; }
    constexpr T* data() noexcept { return values_; }
    constexpr const T* data() const noexcept { return values_; }
    constexpr T* begin() noexcept { return values_; }
    constexpr const T* begin() const noexcept { return values_; }
    constexpr T* end() noexcept { return values_ + N; }
    constexpr const T* end() const noexcept { return values_ + N; }

    friend constexpr bool operator==(const fixed_storage& a, const fixed_storage& b) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
            if (!(a.values_[i] == b.values_[i])) return false;
        return true;
    }
    friend constexpr bool operator!=(const fixed_storage& a, const fixed_storage& b) noexcept { return !(a == b); }

private:
    T values_[N];
};

}  // namespace detail

/// Walks over the entries of one column.
template <class T>
class segment_iterator {
public:
    /// @name Iterator traits
    /// @{

    /// As standard algorithms want them.
    using value_type = std::remove_const_t<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;
    /// @}

    /// Nowhere.
    constexpr segment_iterator() noexcept = default;

    /// At one entry.
    constexpr explicit segment_iterator(T* position) noexcept : position_(position) {}

    /// @name Access
    /// @{

    /// The entry where the iterator stands, or i entries on.
    constexpr T& operator*() const noexcept { return *position_; }
    constexpr T* operator->() const noexcept { return position_; }
    constexpr T& operator[](std::ptrdiff_t i) const noexcept { return position_[i]; }
    /// @}

    /// @name Steps
    /// @{

    /// Forward, backward, by n entries.
    constexpr segment_iterator& operator++() noexcept
    {
        ++position_;
        return *this;
    }
    constexpr segment_iterator& operator--() noexcept
    {
        --position_;
        return *this;
    }
    constexpr segment_iterator operator++(int) noexcept { return segment_iterator(position_++); }
    constexpr segment_iterator operator--(int) noexcept { return segment_iterator(position_--); }
    constexpr segment_iterator& operator+=(std::ptrdiff_t n) noexcept
    {
        position_ += n;
        return *this;
    }
    constexpr segment_iterator& operator-=(std::ptrdiff_t n) noexcept
    {
        position_ -= n;
        return *this;
    }
    /// @}

    /// @name Distances and comparison
    /// @{

    /// Between iterators of one column.
    friend constexpr segment_iterator operator+(segment_iterator a, std::ptrdiff_t n) noexcept { return a += n; }
    friend constexpr segment_iterator operator+(std::ptrdiff_t n, segment_iterator a) noexcept { return a += n; }
    friend constexpr segment_iterator operator-(segment_iterator a, std::ptrdiff_t n) noexcept { return a -= n; }
    friend constexpr std::ptrdiff_t operator-(segment_iterator a, segment_iterator b) noexcept
    {
        return a.position_ - b.position_;
    }
    friend constexpr bool operator==(segment_iterator a, segment_iterator b) noexcept
    {
        return a.position_ == b.position_;
    }
    friend constexpr bool operator!=(segment_iterator a, segment_iterator b) noexcept { return !(a == b); }
    friend constexpr bool operator<(segment_iterator a, segment_iterator b) noexcept
    {
        return a.position_ < b.position_;
    }
    /// @}

private:
    T* position_ = nullptr;
};

/// N values, index 0 to N - 1.
template <class T, std::size_t N>
class vector_fixed : public detail::fixed_storage<T, N> {
public:
    using detail::fixed_storage<T, N>::fixed_storage;

    /// @name Values
    /// @{

    /// Value i; not checked.
    constexpr T& operator()(std::size_t i) noexcept { return (*this)[i]; }
    constexpr const T& operator()(std::size_t i) const noexcept { return (*this)[i]; }
    /// @}
};

/// R x C values, stored column by column.
template <class T, std::size_t R, std::size_t C>
class matrix_fixed : public detail::fixed_storage<T, R * C> {
public:
    using detail::fixed_storage<T, R * C>::fixed_storage;

    /// @name Entries
    /// @{

    /// Entry (i, j); not checked.
    constexpr T& operator()(std::size_t i, std::size_t j) noexcept { return (*this)[R * j + i]; }
    constexpr const T& operator()(std::size_t i, std::size_t j) const noexcept { return (*this)[R * j + i]; }
    /// @}

    /// @name Columns
    /// @{

    /// The R entries of column j, written through.
    constexpr segment_iterator<T> col(std::size_t j) noexcept { return segment_iterator<T>(this->data() + R * j); }
    constexpr segment_iterator<const T> col(std::size_t j) const noexcept
    {
        return segment_iterator<const T>(this->data() + R * j);
    }
    /// @}
};

/// A symmetric N x N matrix by its upper triangle, packed column by column as LAPACK packs "U" storage: (0,0), (0,1),
/// (1,1), (0,2), ... Entry (i, j) with i <= j is value j(j+1)/2 + i; (j, i) is the same entry.
/// @code
/// symmetric_fixed<double, 3> m(1, 2, 3, 4, 5, 6);
/// m(0, 2);  // -> 4
/// m(2, 0);  // -> 4
/// m[5];     // -> 6
/// @endcode
template <class T, std::size_t N>
class symmetric_fixed : public detail::fixed_storage<T, N*(N + 1) / 2> {
public:
    using detail::fixed_storage<T, N*(N + 1) / 2>::fixed_storage;

    /// @name Entries
    /// @{

    /// Entry (i, j), which is also (j, i); not checked.
    constexpr T& operator()(std::size_t i, std::size_t j) noexcept { return (*this)[packed(i, j)]; }
    constexpr const T& operator()(std::size_t i, std::size_t j) const noexcept { return (*this)[packed(i, j)]; }
    /// @}

private:
    static constexpr std::size_t packed(std::size_t i, std::size_t j) noexcept
    {
        return i <= j ? j * (j + 1) / 2 + i : i * (i + 1) / 2 + j;
    }
};

}  // namespace zeb

#endif
