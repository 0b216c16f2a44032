#include "formats/stl_read.h"

#include <algorithm>
#include <array>
#include <optional>

#include "errors.h"
#include "formats/cursor.h"
#include "formats/scalar_type.h"
#include "mesh/weld.h"
#include "stl/stl_format.h"
#include "words.h"

namespace tool {
namespace {

// What text and binary files fill.
class facet_collector {
public:
    void reserve(std::uint64_t facets) { elements_.reserve(zeb::EL_TRIA3, facets); }

    void add(const double* corners, std::int32_t group)
    {
        unsigned int* nodes = elements_.add(zeb::EL_TRIA3, group, ++counts.in_file);
        for (int k = 0; k < 3; ++k) nodes[k] = pool_.node_at(corners + 3 * k);
        height_.add(corners, corners + 3, corners + 6);
        ++counts.read;
    }

    mesh finish(const std::string& why_not_read)
    {
        result.blocks = elements_.take();
        result.pos = pool_.take();
        result.node_numbers = numbering(1, result.pos.cols);
        weld_triangles(result, height_.weld_tolerance());
        result.facets = counts;
        const std::uint64_t unread = counts.in_file - counts.read;
        if (unread != 0) {
            result.facets->why_not_read = why_not_read;
            result.faults.push_back(
                {"facets_not_read", unread, counted(unread, "facet", "facets") + " not read (" + why_not_read + ')'});
        }
        return std::move(result);
    }

    mesh result;
    facet_counts counts;

private:
    mesh_builder elements_;
    node_pool pool_;
    least_height height_;
};

mesh read_binary(const source& from)
{
    if (from.size() < binary_layout::header_bytes)
        throw unreadable("is no binary STL file: " + counted(from.size(), "byte", "bytes") +
                         ", the header alone has 84");
    const binary_layout layout = layout_of(from.file());
    const std::uint64_t whole = std::min(layout.announced, layout.room);
    cursor in(from);
    std::array<char, 84> header;
    in.set_binary(true);
    in.raw(header.data(), header.size(), "the header");
    facet_collector facets;
    facets.result.title.assign(header.data(), std::find(header.data(), header.data() + 80, '\0'));
    facets.reserve(whole);
    std::array<char, 1024 * binary_layout::facet_bytes> block;
    for (std::uint64_t done = 0; done < whole;) {
        const std::uint64_t n = std::min<std::uint64_t>(1024, whole - done);
        in.raw(block.data(), n * binary_layout::facet_bytes, "the facets");
        for (std::uint64_t i = 0; i < n; ++i) {
            std::array<double, 9> corners;
            constexpr std::uint64_t behind_normal = 12;
            decode(scalar_type::real32, std::endian::native == std::endian::big,
                   block.data() + i * binary_layout::facet_bytes + behind_normal, corners.data(), 9);
            facets.add(corners.data(), 0);
        }
        done += n;
    }
    facets.counts.in_file = layout.announced;
    const std::uint64_t used = binary_layout::header_bytes + binary_layout::facet_bytes * layout.announced;
    if (from.size() > used)
        facets.result.notes.push_back(counted(from.size() - used, "byte", "bytes") + " after the end");
    return facets.finish("the file is cut short at " + counted(from.size(), "byte", "bytes"));
}

class text_stl_reader {
public:
    explicit text_stl_reader(const source& from) : in_(from) {}

    mesh run()
    {
        facets_.counts.ascii = true;
        while (in_.skip_blanks(), !in_.at_end()) take_line();
        if (facets_.counts.read == 0 && ends_ == 0) throw unreadable("is no STL file: no whole facet and no end");
        if (!ended_) facets_.result.notes.emplace_back("no 'endsolid' at the end");
        if (solids_ > 1) facets_.result.notes.push_back(std::to_string(solids_) + " solids in the file");
        return facets_.finish(why_not_read_);
    }

private:
    void take_line()
    {
        const std::string_view word = in_.word();
        if (equal_words(word, "facet")) {
            take_facet();
        } else if (equal_words(word, "solid")) {
            take_solid();
        } else if (equal_words(word, "endsolid")) {
            ++ends_;
            ended_ = true;
            in_.skip_line();
        } else if (ended_) {
            if (!std::exchange(told_, true)) facets_.result.notes.emplace_back("text after the end");
            in_.skip_line();
        } else if (!std::exchange(first_word_, false)) {
            in_.skip_line();  // of a facet that could not be read, or of no meaning
        }
    }

    // The name is the rest of the line, unless a whole file stands in one.
    void take_solid()
    {
        first_word_ = ended_ = false;
        ++solids_;
        std::string name;
        bool in_facet = false;
        while (!in_facet && !in_.at_line_end()) {
            const std::string word(in_.word());
            in_facet = equal_words(word, "facet");
            if (in_facet && !at_normal()) {
                in_facet = false;
                append_word(name, word);
            } else if (!in_facet) {
                append_word(name, word);
            }
        }
        if (solids_ == 1) facets_.result.title = name;
        facets_.result.group_names.push_back({2, static_cast<std::int32_t>(solids_), name});
        if (in_facet) take_facet();
    }

    bool at_normal() { return !in_.at_line_end() && lower_case(in_.peek()) == 'n'; }

    // The rest of a facet behind its first word. What is not one is counted and left.
    void take_facet()
    {
        first_word_ = ended_ = false;
        std::array<double, 9> corners;
        try {
            in_.expect("normal");
            std::array<double, 3> normal;
            in_.reals(normal.data(), 3, "a number of the normal");
            in_.expect("outer");
            in_.expect("loop");
            for (std::size_t k = 0; k < 3; ++k) {
                in_.expect("vertex");
                in_.reals(&corners[3 * k], 3, "a coordinate");
            }
            in_.expect("endloop");
            in_.expect("endfacet");
        } catch (const unreadable& reason) {
            ++facets_.counts.in_file;
            if (why_not_read_.empty()) why_not_read_ = reason.what();
            return;
        }
        facets_.add(corners.data(), static_cast<std::int32_t>(solids_));
    }

    cursor in_;
    facet_collector facets_;
    std::string why_not_read_;
    std::uint64_t solids_ = 0;
    std::uint64_t ends_ = 0;
    bool ended_ = false;
    bool told_ = false;
    bool first_word_ = true;
};

}  // namespace

bool is_stl(const source& from)
{
    try {
        detect_format(from.file());
        return true;
    } catch (const unreadable&) {
        return false;
    }
}

mesh read_stl(const source& from)
{
    return detect_format(from.file()) == stl_format::ascii ? text_stl_reader(from).run() : read_binary(from);
}

}  // namespace tool
