#ifndef ZEB_DENSE_BUFFER_H
#define ZEB_DENSE_BUFFER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include <tessolv/export.h>

namespace zeb {

/// A raw block of `bytes` bytes, or null when there is no memory. Every container block and all large working storage
/// of the library comes from here, so a program may define both functions itself and have them take the place of these.
TESSOLV_API char* __vector_num_alloc(std::size_t bytes);

/// Frees a block of __vector_num_alloc; null is allowed.
TESSOLV_API void __vector_num_free(char* block);

/// One block of memory and the number of containers that look into it. Made by `new`, freed by `delete`.
/// A host hands over memory of its own in a record with `external` 1 and `ref_count` 0, raised by the container that
/// takes it; such memory is never freed by the library. The counter is not atomic: containers that share a record
/// belong to one thread at a time.
template <class T>
struct dense_buffer {
    static_assert(std::is_trivially_copyable<T>::value, "entries are moved as bytes");

    T* data;                   ///< first usable entry, aligned to 8 bytes
    std::int32_t ref_count;    ///< containers that share the record
    std::uint64_t capacity;    ///< usable entries from `data` on
    std::uint8_t align_shift;  ///< bytes between the start of the raw block and `data`, 0 to 7
    std::uint8_t external;     ///< non-zero: the memory belongs to somebody else
};

namespace detail {

/// Product of two counts; false when it does not fit in 64 bits.
inline bool multiply(std::uint64_t a, std::uint64_t b, std::uint64_t& product) noexcept
{
    if (b != 0 && a > std::numeric_limits<std::uint64_t>::max() / b) return false;
    product = a * b;
    return true;
}

template <class T>
void copy_entries(T* to, const T* from, std::uint64_t count) noexcept
{
    if (count != 0) std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(T));
}

/// Takes one more reference. A record that a host handed over without counting its first container counts it here.
template <class T>
void retain(dense_buffer<T>* buffer) noexcept
{
    if (buffer != nullptr) buffer->ref_count = std::max(buffer->ref_count, std::int32_t{1}) + 1;
}

template <class T>
void free_block(const dense_buffer<T>& buffer) noexcept
{
    if (buffer.data != nullptr && buffer.external == 0)
        __vector_num_free(reinterpret_cast<char*>(buffer.data) - buffer.align_shift);
}

/// Frees block and record. Out of line: it is rare, and compilers that see the deletion but not the count believe that
/// every view outlives its buffer, and warn.
template <class T>
[[gnu::noinline]] void destroy(dense_buffer<T>* buffer) noexcept
{
    free_block(*buffer);
    delete buffer;
}

/// Gives one reference back; the last one takes block and record with it.
template <class T>
void release(dense_buffer<T>* buffer) noexcept
{
    if (buffer != nullptr && --buffer->ref_count <= 0) destroy(buffer);
}

template <class T>
bool has_one_owner(const dense_buffer<T>* buffer) noexcept
{
    return buffer != nullptr && buffer->ref_count <= 1;
}

/// The one growth routine: room for `needed` entries, the first `keep` of them preserved. The new capacity is
/// max(capacity x factor, 4, needed + the slack that aligning to 8 bytes may cost). Whoever shares the record sees the
/// new block. False, and nothing changed, without memory.
template <class T>
bool grow(dense_buffer<T>& buffer, std::uint64_t needed, std::uint64_t keep, std::uint64_t factor) noexcept
{
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    constexpr std::uint64_t slack = (7 + sizeof(T) - 1) / sizeof(T);
    std::uint64_t scaled = 0;
    std::uint64_t bytes = 0;
    if (!multiply(buffer.capacity, factor, scaled) || needed > most - slack) return false;
    const std::uint64_t wanted = std::max({scaled, std::uint64_t{4}, needed + slack});
    if (!multiply(wanted, sizeof(T), bytes) || bytes > std::numeric_limits<std::size_t>::max()) return false;

    char* block = __vector_num_alloc(static_cast<std::size_t>(bytes));
    if (block == nullptr) return false;
    const auto shift = static_cast<std::uint8_t>((~reinterpret_cast<std::uintptr_t>(block) + 1) % 8);
    T* data = reinterpret_cast<T*>(block + shift);
    if (buffer.data != nullptr) copy_entries(data, buffer.data, keep);
    free_block(buffer);
    buffer.data = data;
    buffer.capacity = (bytes - shift) / sizeof(T);
    buffer.align_shift = shift;
    buffer.external = 0;
    return true;
}

/// A record of one owner with room for `capacity` entries, or null.
template <class T>
dense_buffer<T>* make_buffer(std::uint64_t capacity) noexcept
{
    auto* buffer = new (std::nothrow) dense_buffer<T>{nullptr, 1, 0, 0, 0};
    if (buffer != nullptr && !grow(*buffer, capacity, 0, 1)) {
        delete buffer;
        buffer = nullptr;
    }
    return buffer;
}

}  // namespace detail
}  // namespace zeb

#endif
