#include "formats/stl_read.h"

#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <utility>

#include "errors.h"
#include "formats/cursor.h"
#include "formats/scalar_type.h"
#include "mesh/weld.h"
#include "stl/stl_notes.h"
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

    mesh finish()
    {
        result.blocks = elements_.take();
        result.pos = pool_.take();
        result.node_numbers = numbering(1, result.pos.cols);
        weld_triangles(result, height_.weld_tolerance());
        if (counts.read != 0 && result.pos.cols == 3 * counts.read)
            result.notes.emplace_back("no corners coincide: nothing was welded");
        const std::uint64_t unread = counts.in_file - counts.read;
        if (unread == 0) counts.why_not_read.clear();
        result.facets = counts;
        if (unread != 0) result.faults.push_back(unread_facets(counts));
        return std::move(result);
    }

    mesh result;
    facet_counts counts;

private:
    mesh_builder elements_;
    node_pool pool_;
    least_height height_;
};

bool begins_with_solid(const std::array<char, binary_layout::header_bytes>& header)
{
    return std::string_view(header.data(), header.size()).starts_with("solid");
}

mesh read_binary(const source& from)
{
    if (from.size() < binary_layout::header_bytes)
        throw unreadable("is no binary STL file: " + counted(from.size(), "byte", "bytes") +
                         ", the header alone has 84");
    const binary_layout layout = layout_of(from.file());
    const std::uint64_t whole = std::min(layout.announced, layout.room);
    cursor in(from);
    std::array<char, binary_layout::header_bytes> header;
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
    facets.counts.why_not_read = "the file is cut short at " + counted(from.size(), "byte", "bytes");
    if (begins_with_solid(header))
        facets.result.notes.emplace_back("the header begins with 'solid' like that of a text file");
    const std::uint64_t used = binary_layout::header_bytes + binary_layout::facet_bytes * layout.announced;
    if (from.size() > used)
        facets.result.notes.push_back(counted(from.size() - used, "byte", "bytes") + " after the end");
    return facets.finish();
}

// Every facet of a text, in however many solids; what is none is counted and passed over. Notices where the library
// might read something else: `is_plain` is left for lines and numbers as every writer puts them.
class text_stl_reader {
public:
    explicit text_stl_reader(const source& from) : in_(from) { facets.counts.ascii = true; }

    void run()
    {
        is_plain_ = in_.peek() == 's';
        while (in_.skip_blanks(), !in_.at_end()) take_line();
        if (solids_ > 1) facets.result.notes.push_back(std::to_string(solids_) + " solids in the file");
        if (!ended_) facets.result.notes.emplace_back("no 'endsolid' at the end");
    }

    bool is_plain() const { return is_plain_; }
    std::uint64_t ends() const { return ends_; }

    facet_collector facets;

private:
    static constexpr std::uint64_t short_line = 255;  // what the library takes of a line at once

    void take_line()
    {
        const std::string_view word = in_.word();
        if (equal_words(word, "facet")) {
            is_plain_ = is_plain_ && word == "facet" && !ended_;
            take_facet();
        } else if (equal_words(word, "solid")) {
            take_solid();
        } else if (equal_words(word, "endsolid")) {
            ++ends_;
            ended_ = true;
            in_.skip_line();
        } else {
            is_plain_ = false;  // of a facet that could not be read, or of no meaning
            if (ended_ || !std::exchange(first_word_, false)) in_.skip_line();
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
            is_plain_ = is_plain_ && !equal_words(std::string_view(word).substr(0, 5), "facet");
            in_facet = equal_words(word, "facet") && at_normal();
            if (!in_facet) append_word(name, word);
        }
        is_plain_ = is_plain_ && (solids_ > 1 || in_.offset() < short_line);
        if (solids_ == 1) facets.result.title = name;
        facets.result.group_names.push_back({2, static_cast<std::int32_t>(solids_), name});
        if (in_facet) take_facet();
    }

    bool at_normal() { return !in_.at_line_end() && lower_case(in_.peek()) == 'n'; }

    // The rest of a facet behind its first word. What is not one is counted and left.
    void take_facet()
    {
        first_word_ = ended_ = false;
        std::array<double, 9> corners;
        try {
            take_word("normal");
            take_reals(corners.data(), "a number of the normal");
            take_word("outer");
            take_word("loop");
            is_plain_ = is_plain_ && in_.at_line_end();
            for (std::size_t k = 0; k < 3; ++k) {
                take_word("vertex");
                take_reals(&corners[3 * k], "a coordinate");
            }
            take_ends();
        } catch (const unreadable& reason) {
            is_plain_ = false;
            ++facets.counts.in_file;
            if (facets.counts.why_not_read.empty()) facets.counts.why_not_read = reason.what();
            return;
        }
        facets.add(corners.data(), static_cast<std::int32_t>(solids_));
    }

    void take_word(std::string_view word)
    {
        const bool same = in_.take_expected(word) == word;
        is_plain_ = is_plain_ && same;
    }

    void take_reals(double* to, const char* what)
    {
        for (int k = 0; k < 3; ++k) {
            if (in_.plain_real(to[k])) continue;
            is_plain_ = false;
            to[k] = in_.real(what);
        }
    }

    // The library passes over two lines, whatever they hold.
    void take_ends()
    {
        take_word("endloop");
        const std::uint64_t begin = in_.offset();
        bool two_lines = in_.at_line_end();
        if (two_lines && !in_.at_end()) in_.skip_one();
        two_lines = two_lines && !in_.at_line_end();
        take_word("endfacet");
        is_plain_ = is_plain_ && two_lines && in_.at_line_end() && in_.offset() - begin < short_line / 2;
    }

    cursor in_;
    std::uint64_t solids_ = 0;
    std::uint64_t ends_ = 0;
    bool ended_ = false;
    bool first_word_ = true;
    bool is_plain_ = true;
};

// By the library's own rule, letter by letter.
facet_collector read_one_solid(const source& from, const text_words& words, mesh names)
{
    facet_collector facets;
    facets.result = std::move(names);
    facets.result.notes = notes_on(words);
    facets.counts.ascii = true;
    const std::int32_t group = facets.result.group_names.empty() ? 0 : 1;
    byte_source in(from.file());
    const text_scan scan = scan_text(in, [&](const double* corners) { facets.add(corners, group); });
    facets.counts.in_file = std::max(words.facets, scan.facets);
    facets.counts.why_not_read = why_reading_stopped(scan);
    return facets;
}

mesh mesh_of(facet_collector facets, std::uint64_t ends)
{
    if (facets.counts.read == 0 && ends == 0) throw unreadable("is no STL file: no whole facet and no end");
    return facets.finish();
}

// Most texts are plain and read at once. Of the others the words tell how they are to be read.
mesh read_text(const source& from)
{
    std::optional<text_stl_reader> all(from);
    std::exception_ptr failed;
    try {
        all->run();
    } catch (const unreadable&) {
        failed = std::current_exception();
    }
    if (!failed && all->is_plain()) return mesh_of(std::move(all->facets), all->ends());

    byte_source in(from.file());
    const text_words words = count_words(in);
    mesh names;
    names.title = all->facets.result.title;
    names.group_names = all->facets.result.group_names;
    if (words.solids < 2) {
        all.reset();
        return mesh_of(read_one_solid(from, words, std::move(names)), words.ends);
    }
    if (failed) std::rethrow_exception(failed);
    all->facets.result.notes = notes_on(words);
    return mesh_of(std::move(all->facets), words.ends);
}

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
    return read_stl_as(from, detect_format(from.file()));
}

mesh read_stl_as(const source& from, stl_format format)
{
    return format == stl_format::ascii ? read_text(from) : read_binary(from);
}

}  // namespace tool
