#include "stl_format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <span>
#include <vector>

#include "byte_source.h"
#include "errors.h"
#include "stl_words.h"

namespace tool {
namespace {

using bytes = std::span<const unsigned char>;

constexpr std::size_t head_bytes = std::size_t{1} << 16;

std::uint32_t little_endian(const unsigned char* b)
{
    return b[0] | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 | std::uint32_t{b[3]} << 24;
}

bool has_control_characters(bytes head)
{
    return std::ranges::any_of(head, [](unsigned char c) { return (c < ' ' && !is_blank(c)) || c == 0x7F; });
}

// With "solid" in front and a facet behind it stray bytes do not matter; otherwise it must be text all through.
bool looks_like_text(bytes head)
{
    byte_source in(head);
    const text_words words = count_words(in);
    if (words.begins_with_solid && words.facets != 0) return true;
    if (has_control_characters(head)) return false;
    return words.begins_with_solid ? words.ends != 0 || words.is_one_line : words.facets != 0;
}

// As a coordinate or a component of a normal in some unit: random bytes and small integers rarely are.
bool is_plausible(float value)
{
    const float size = std::fabs(value);
    return size == 0 || (size > 1e-20f && size < 1e20f);
}

// Whether most of the numbers that follow the header could be facets. `seen` is false when there are none to look at.
bool looks_like_facets(bytes records, bool& seen)
{
    std::size_t numbers = 0;
    std::size_t plausible = 0;
    std::size_t zeros = 0;
    for (std::size_t at = 0; at + 4 <= records.size(); at += at % 50 == 44 ? 6 : 4) {
        const auto value = std::bit_cast<float>(little_endian(&records[at]));
        ++numbers;
        plausible += is_plausible(value);
        zeros += value == 0;
    }
    seen = numbers != 0;
    return plausible * 10 >= numbers * 9 && zeros < numbers;
}

// A binary file that was cut, or one with bytes behind its facets: told from other files by the numbers in it.
bool looks_like_binary(const input_file& file, bytes head)
{
    constexpr std::uint64_t most_facets = std::uint64_t{1} << 28;  // 13 gigabytes
    const binary_layout layout = layout_of(file);
    if (layout.announced > most_facets) return false;
    bool seen = false;
    bytes records = head.subspan(binary_layout::header_bytes);
    if (layout.announced != 0 && layout.announced < layout.room)
        records = records.first(std::min(records.size(), layout.announced * binary_layout::facet_bytes));
    const bool facets = looks_like_facets(records, seen);
    if (layout.announced == 0) return facets || layout.room == 0;
    return facets || !seen;
}

}  // namespace

const char* name_of(stl_format format)
{
    return format == stl_format::ascii ? "ascii" : "binary";
}

binary_layout layout_of(const input_file& file)
{
    unsigned char count[4] = {};
    file.read_at(80, count, sizeof count);
    binary_layout layout;
    layout.announced = little_endian(count);
    layout.room = (file.size() - binary_layout::header_bytes) / binary_layout::facet_bytes;
    layout.fits = file.size() == binary_layout::header_bytes + binary_layout::facet_bytes * layout.announced;
    return layout;
}

stl_format detect_format(const input_file& file)
{
    if (file.size() == 0) throw unreadable("is empty");
    const bool has_header = file.size() >= binary_layout::header_bytes;
    if (has_header && layout_of(file).fits) return stl_format::binary;

    std::vector<unsigned char> head(head_bytes);
    head.resize(file.read_at(0, head.data(), head.size()));
    if (looks_like_text(head)) return stl_format::ascii;
    if (has_header && looks_like_binary(file, head)) return stl_format::binary;
    throw unreadable("is no STL file: neither text with facets nor a binary header with facets behind it");
}

}  // namespace tool
