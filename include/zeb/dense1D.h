#ifndef ZEB_DENSE1D_H
#define ZEB_DENSE1D_H

#include <utility>

#include <zeb/dense_buffer.h>

namespace zeb {

/// A vector over a counted buffer. Entry i is buffer->data[offset + i]. Views (sub_vector, dense2D::col) and shallow
/// copies share the buffer and see each other's writes; copies are deep. Access is not checked.
/// The fields are public: loops may work on them directly.
/// @code
/// dense1D<double> v(3, 0.5);
/// v.push_back(2);
/// dense1D<double> copy(v), view = v.sub_vector(1, 2);
/// view[0] = -1;
/// v;     // -> (0.5, -1, 0.5, 2)
/// copy;  // -> (0.5, 0.5, 0.5, 2)
/// @endcode
template <class T>
class dense1D {
public:
    dense_buffer<T>* buffer = nullptr;  ///< null when nothing was ever stored
    std::uint64_t size = 0;             ///< number of entries
    std::uint64_t offset = 0;           ///< index in the buffer of entry 0

    /// Empty, without a buffer.
    dense1D() noexcept = default;

    /// n entries of unspecified value; empty when there is no memory.
    explicit dense1D(std::uint64_t n) noexcept { resize(n); }

    /// n entries of one value; empty when there is no memory.
    dense1D(std::uint64_t n, const T& value) noexcept { resize(n, value); }

    /// Deep copy; empty when there is no memory.
    dense1D(const dense1D& other) noexcept { copy(other); }

    /// Takes over what `other` looks into, view or not, and leaves it empty.
    dense1D(dense1D&& other) noexcept { swap(other); }

    /// Gives its reference back; the last container that looks into a buffer frees it.
    ~dense1D() { detail::release(buffer); }

    /// Deep; the target stays as it was when there is no memory.
    dense1D& operator=(const dense1D& other) noexcept
    {
        copy(other);
        return *this;
    }

    /// Steals from the only owner of a whole block; otherwise copies, so that no view is handed on unnoticed.
    dense1D& operator=(dense1D&& other) noexcept
    {
        if (other.offset == 0 && detail::has_one_owner(other.buffer)) {
            dense1D taken(std::move(other));
            swap(taken);
        } else {
            copy(other);
        }
        return *this;
    }

    /// @name Entries
    /// @{

    /// Entry i; not checked.
    T& operator[](std::uint64_t i) noexcept { return buffer->data[offset + i]; }
    const T& operator[](std::uint64_t i) const noexcept { return buffer->data[offset + i]; }
    T& operator()(std::uint64_t i) noexcept { return buffer->data[offset + i]; }
    const T& operator()(std::uint64_t i) const noexcept { return buffer->data[offset + i]; }

    /// @}

    /// @name Contiguous entries
    /// @{

    /// The entries as an array; null when there is no buffer.
    T* data() noexcept { return buffer != nullptr ? buffer->data + offset : nullptr; }
    const T* data() const noexcept { return buffer != nullptr ? buffer->data + offset : nullptr; }
    T* begin() noexcept { return data(); }
    const T* begin() const noexcept { return data(); }
    T* end() noexcept { return data() + size; }
    const T* end() const noexcept { return data() + size; }
    /// @}

    /// Whether there is no entry.
    bool empty() const noexcept { return size == 0; }

    /// Size 0; the buffer stays.
    void clear() noexcept { size = 0; }

    /// Sets the size and keeps the entries; new ones are unspecified. Growing with other owners around moves this
    /// vector to a buffer of its own. False, and nothing changed, without memory.
    bool resize(std::uint64_t n) noexcept
    {
        if (n > size && !provide(n, 1)) return false;
        size = n;
        return true;
    }

    /// The same; new entries take `value`.
    bool resize(std::uint64_t n, const T& value) noexcept
    {
        const std::uint64_t before = size;
        const T filling = value;  // `value` may lie in the block that is given up
        if (!resize(n)) return false;
        if (n > before) std::fill(begin() + before, end(), filling);
        return true;
    }

    /// Room for n entries, or for the present capacity times `factor` where growing gives more. Never shrinks.
    bool reserve(std::uint64_t n, std::uint64_t factor = 1) noexcept { return n <= size || provide(n, factor); }

    /// Appends one value. The growth is that of detail::grow with factor 2 and keeps sharing alive; a value that finds
    /// no memory is dropped and the size stays: callers that must know compare sizes.
    void push_back(const T& value) noexcept
    {
        const T kept = value;
        const std::uint64_t end_index = offset + size;
        if (buffer == nullptr && (buffer = detail::make_buffer<T>(end_index + 1)) == nullptr) return;
        if (buffer->capacity <= end_index && !detail::grow(*buffer, end_index + 1, buffer->capacity, 2)) return;
        buffer->data[end_index] = kept;
        ++size;
    }

    /// Deep copy into a buffer of its own, offset 0. False, and nothing changed, without memory.
    bool copy(const dense1D& other) noexcept
    {
        if (this == &other) return true;
        dense1D fresh;
        if (!fresh.resize(other.size)) return false;
        detail::copy_entries(fresh.data(), other.data(), other.size);
        swap(fresh);
        return true;
    }

    /// Looks into the buffer of `other` from now on. Never fails.
    bool shallow_copy(const dense1D& other) noexcept
    {
        dense1D view = other.sub_vector(0, other.size);
        swap(view);
        return true;
    }

    /// View of `count` entries from `first` on.
    dense1D sub_vector(std::uint64_t first, std::uint64_t count) const noexcept
    {
        dense1D view;
        detail::retain(buffer);
        view.buffer = buffer;
        view.size = count;
        view.offset = offset + first;
        return view;
    }

    /// Exchanges what the two look into.
    void swap(dense1D& other) noexcept
    {
        std::swap(buffer, other.buffer);
        std::swap(size, other.size);
        std::swap(offset, other.offset);
    }

    /// Same size and equal entries.
    friend bool operator==(const dense1D& a, const dense1D& b) noexcept
    {
        return a.size == b.size && std::equal(a.begin(), a.end(), b.begin());
    }
    /// Not equal.
    friend bool operator!=(const dense1D& a, const dense1D& b) noexcept { return !(a == b); }

private:
    // Room for n entries in a buffer that nobody else looks into.
    bool provide(std::uint64_t n, std::uint64_t factor) noexcept
    {
        if (detail::has_one_owner(buffer)) {
            if (n > std::numeric_limits<std::uint64_t>::max() - offset) return false;
            return buffer->capacity >= offset + n || detail::grow(*buffer, offset + n, offset + size, factor);
        }
        auto* fresh = detail::make_buffer<T>(n);
        if (fresh == nullptr) return false;
        detail::copy_entries(fresh->data, data(), size);
        detail::release(buffer);
        buffer = fresh;
        offset = 0;
        return true;
    }
};

extern template class TESSOLV_API dense1D<unsigned int>;
extern template class TESSOLV_API dense1D<int>;
extern template class TESSOLV_API dense1D<float>;
extern template class TESSOLV_API dense1D<double>;

}  // namespace zeb

#endif
