#include "stl/stl_format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <span>
#include <vector>

#include "errors.h"
#include "input/byte_source.h"
#include "stl/stl_words.h"

namespace tool {
namespace {

using bytes = std::span<const unsigned char>;

constexpr std::size_t head_bytes = std::size_t{1} << 16;

std::uint32_t little_endian(const unsigned char* b)
{
    return b[0] | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 | std::uint32_t{b[3]} << 24;
}

bool is_control_character(unsigned char c)
{
    return (c < ' ' && !is_blank(c)) || c == 0x7F;
}

bool has_control_characters(bytes head)
{
    return std::ranges::any_of(head, is_control_character);
}

// With "solid" in front and a facet or an end behind it stray bytes do not matter; otherwise it must be text all
// through.
bool looks_like_text(bytes head)
{
    byte_source in(head);
    const text_words words = count_words(in);
    if (words.begins_with_solid && words.facets + words.ends != 0) return true;
    return !has_control_characters(head) && (words.facets != 0 || (words.begins_with_solid && words.is_one_line));
}

// As a coordinate or a component of a normal in some unit: random bytes and small integers rarely are.
bool is_plausible(float value)
{
    const float size = std::fabs(value);
    return size > 1e-20f && size < 1e20f;
}

enum class evidence { none, facets, others };

// Whether nearly all of the numbers behind a header could be those of facets. Zeros say nothing.
evidence evidence_of(bytes records)
{
    std::size_t numbers = 0;
    std::size_t plausible = 0;
    for (std::size_t at = 0; at + 4 <= records.size(); at += at % 50 == 44 ? 6 : 4) {
        const auto value = std::bit_cast<float>(little_endian(&records[at]));
        numbers += value != 0;
        plausible += is_plausible(value);
    }
    if (numbers == 0) return records.size() < binary_layout::facet_bytes ? evidence::none : evidence::others;
    return plausible * 10 >= numbers * 9 ? evidence::facets : evidence::others;
}

// Text in any encoding, filled up with zeros.
bool is_plain_header(bytes header)
{
    return std::ranges::none_of(header, [](unsigned char c) { return c != 0 && is_control_character(c); });
}

// A binary file that was cut, or one with bytes behind its facets: told from other files by its numbers, or by its
// header where it has none.
bool looks_like_binary(const input_file& file, bytes head)
{
    constexpr std::uint64_t most_facets = std::uint64_t{1} << 28;  // 13 gigabytes
    const binary_layout layout = layout_of(file);
    if (layout.announced > most_facets || !has_control_characters(head)) return false;

    bytes records = head.subspan(binary_layout::header_bytes);
    if (layout.announced <= layout.room && layout.announced != 0)
        records = records.first(std::min(records.size(), layout.announced * binary_layout::facet_bytes));
    const bool no_facet = layout.announced == 0 && layout.room == 0;
    const evidence found = no_facet ? evidence::none : evidence_of(records);
    return found == evidence::none ? is_plain_header(head.first(80)) : found == evidence::facets;
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
