#include "formats/scalar_type.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "formats/cursor.h"
#include "input/byte_source.h"

namespace tool {
namespace {

constexpr std::array<scalar_info, 20> scalars{{
    {scalar_type::bit, 0, "bit", "Bit", number_kind::integer},
    {scalar_type::int8, 1, "char", "Int8", number_kind::integer},
    {scalar_type::uint8, 1, "unsigned_char", "UInt8", number_kind::integer},
    {scalar_type::int16, 2, "short", "Int16", number_kind::integer},
    {scalar_type::uint16, 2, "unsigned_short", "UInt16", number_kind::integer},
    {scalar_type::int32, 4, "int", "Int32", number_kind::integer},
    {scalar_type::uint32, 4, "unsigned_int", "UInt32", number_kind::integer},
    {scalar_type::int64, 8, "vtktypeint64", "Int64", number_kind::integer},
    {scalar_type::uint64, 8, "vtktypeuint64", "UInt64", number_kind::integer},
    {scalar_type::real32, 4, "float", "Float32", number_kind::real32},
    {scalar_type::real64, 8, "double", "Float64", number_kind::real64},
    {scalar_type::int64, 8, "long", "Int64", number_kind::integer},
    {scalar_type::uint64, 8, "unsigned_long", "UInt64", number_kind::integer},
    {scalar_type::int64, 8, "vtkIdType", "Int64", number_kind::integer},
    {scalar_type::int32, 4, "vtktypeint32", "Int32", number_kind::integer},
    {scalar_type::uint32, 4, "vtktypeuint32", "UInt32", number_kind::integer},
    {scalar_type::int16, 2, "vtktypeint16", "Int16", number_kind::integer},
    {scalar_type::uint16, 2, "vtktypeuint16", "UInt16", number_kind::integer},
    {scalar_type::int8, 1, "vtktypeint8", "Int8", number_kind::integer},
    {scalar_type::uint8, 1, "vtktypeuint8", "UInt8", number_kind::integer},
}};

template <class Stored>
Stored load(const char* bytes, bool reversed)
{
    using plain =
        std::conditional_t<sizeof(Stored) == 8, std::uint64_t,
                           std::conditional_t<sizeof(Stored) == 4, std::uint32_t,
                                              std::conditional_t<sizeof(Stored) == 2, std::uint16_t, std::uint8_t>>>;
    plain value;
    std::memcpy(&value, bytes, sizeof value);
    if (reversed) {
        if constexpr (sizeof value == 8) value = __builtin_bswap64(value);
        if constexpr (sizeof value == 4) value = __builtin_bswap32(value);
        if constexpr (sizeof value == 2) value = __builtin_bswap16(value);
    }
    return std::bit_cast<Stored>(value);
}

template <class To, class Stored>
To converted(Stored value)
{
    if constexpr (std::is_same_v<To, unsigned int>) {
        const auto index = converted<std::int64_t>(value);
        return index < 0 || index >= std::int64_t{zeb::NONE_INDEX} ? zeb::NONE_INDEX : static_cast<unsigned int>(index);
    } else if constexpr (std::is_floating_point_v<Stored> && std::is_integral_v<To>) {
        constexpr double limit = 9.2e18;
        if (std::isnan(value)) return std::numeric_limits<To>::max();
        return static_cast<To>(std::clamp(static_cast<double>(value), -limit, limit));
    } else if constexpr (std::is_same_v<Stored, std::uint64_t> && std::is_integral_v<To>) {
        return static_cast<To>(std::min<std::uint64_t>(value, std::numeric_limits<To>::max()));
    } else {
        return static_cast<To>(value);
    }
}

template <class Stored, class To>
void decode_all(bool reversed, const char* bytes, To* to, std::uint64_t count)
{
    if (reversed) {
        for (std::uint64_t i = 0; i < count; ++i) to[i] = converted<To>(load<Stored>(bytes + i * sizeof(Stored), true));
    } else {
        for (std::uint64_t i = 0; i < count; ++i)
            to[i] = converted<To>(load<Stored>(bytes + i * sizeof(Stored), false));
    }
}

template <class To>
void decode_bits(const char* bytes, To* to, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
        to[i] = static_cast<To>(static_cast<unsigned char>(bytes[i / 8]) >> (7 - i % 8) & 1);
}

template <class To>
void decode_as(scalar_type type, bool reversed, const char* bytes, To* to, std::uint64_t count)
{
    switch (type) {
        case scalar_type::bit:
            return decode_bits(bytes, to, count);
        case scalar_type::int8:
            return decode_all<std::int8_t>(reversed, bytes, to, count);
        case scalar_type::uint8:
            return decode_all<std::uint8_t>(reversed, bytes, to, count);
        case scalar_type::int16:
            return decode_all<std::int16_t>(reversed, bytes, to, count);
        case scalar_type::uint16:
            return decode_all<std::uint16_t>(reversed, bytes, to, count);
        case scalar_type::int32:
            return decode_all<std::int32_t>(reversed, bytes, to, count);
        case scalar_type::uint32:
            return decode_all<std::uint32_t>(reversed, bytes, to, count);
        case scalar_type::int64:
            return decode_all<std::int64_t>(reversed, bytes, to, count);
        case scalar_type::uint64:
            return decode_all<std::uint64_t>(reversed, bytes, to, count);
        case scalar_type::real32:
            return decode_all<float>(reversed, bytes, to, count);
        case scalar_type::real64:
            return decode_all<double>(reversed, bytes, to, count);
    }
}

}  // namespace

const scalar_info* scalar_named(std::string_view name)
{
    const auto* found = std::ranges::find_if(
        scalars, [&](const scalar_info& s) { return equal_words(s.legacy, name) || equal_words(s.xml, name); });
    return found == scalars.end() ? nullptr : found;
}

const scalar_info& info_of(scalar_type type)
{
    return *std::ranges::find(scalars, type, &scalar_info::type);
}

void decode(scalar_type type, bool reversed, const char* bytes, double* to, std::uint64_t count)
{
    decode_as(type, reversed, bytes, to, count);
}

void decode(scalar_type type, bool reversed, const char* bytes, std::int64_t* to, std::uint64_t count)
{
    decode_as(type, reversed, bytes, to, count);
}

void decode(scalar_type type, bool reversed, const char* bytes, unsigned int* to, std::uint64_t count)
{
    decode_as(type, reversed, bytes, to, count);
}

}  // namespace tool
