#include "formats/stl_write.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>

#include "errors.h"
#include "formats/capability.h"
#include "words.h"

namespace tool {
namespace {

using point = std::array<double, 3>;

bool stl_holds(zeb::element_type type)
{
    return type == zeb::EL_TRIA3 || type == zeb::EL_QUAD4;
}

point position(const coordinates& pos, unsigned int node)
{
    return {pos(0, node), pos(1, node), pos.rows > 2 ? pos(2, node) : 0.0};
}

point normal_of(const point* p)
{
    point a;
    point b;
    for (std::size_t i = 0; i < 3; ++i) {
        a[i] = p[1][i] - p[0][i];
        b[i] = p[2][i] - p[0][i];
    }
    point n{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (!(length > 0) || !std::isfinite(length)) return {0, 0, 0};
    for (double& x : n) x = x / length + 0.0;
    return n;
}

class stl_writer {
public:
    stl_writer(const mesh& m, sink& to, const write_options& options)
        : mesh_(m), to_(to), blocks_(writable_blocks(m, "STL", stl_holds, options))
    {
        note_fields(m, "STL", options);
        for (const writable_block& b : blocks_)
            if (b.type == zeb::EL_QUAD4) options.note(counted(b.size(), "quadrangle", "quadrangles") + " cut in two");
        if (!options.ascii && m.has_groups()) options.note("a binary STL file holds one solid: groups left out");
    }

    void write_text()
    {
        make_lines();
        const auto text = [this](const point* p, const unsigned int* n) { text_facet(p, n); };
        if (blocks_.empty()) return to_.text("solid\nendsolid\n");
        if (has_one_group()) {
            const std::string title = begin_solid(blocks_.front().block->group(0), false);
            for (const writable_block& b : blocks_)
                for (std::uint64_t e = 0; e < b.size(); ++e) write_element(b, e, text);
            return to_.text("endsolid" + title);
        }
        // Each group in turn: the elements of every block, in order.
        std::map<std::int32_t, std::vector<element>> groups;
        for (const writable_block& b : blocks_)
            for (std::uint32_t e = 0; e < b.size(); ++e) groups[b.block->group(e)].push_back({&b, e});
        for (const auto& [group, elements] : groups) {
            const std::string title = begin_solid(group, true);
            for (const element& e : elements) write_element(*e.block, e.number, text);
            to_.text("endsolid" + title);
        }
    }

    void write_binary()
    {
        std::array<char, 80> header{};
        constexpr std::string_view text = "binary STL written by tessolv";
        text.copy(header.data(), text.size());
        to_.raw(header.data(), header.size());
        std::uint64_t facets = 0;
        for (const writable_block& b : blocks_) facets += b.size() * (b.type == zeb::EL_QUAD4 ? 2 : 1);
        if (facets > std::numeric_limits<std::uint32_t>::max())
            throw unwritable("too many triangles for a binary STL file");
        little_endian(static_cast<std::uint32_t>(facets));
        for (const writable_block& b : blocks_)
            for (std::uint64_t e = 0; e < b.size(); ++e)
                write_element(b, e, [&](const point* p, const unsigned int*) { binary_facet(p); });
    }

private:
    template <class Write>
    void write_element(const writable_block& b, std::uint64_t e, Write write)
    {
        const unsigned int* n = b.nodes(e);
        point p[3] = {position(mesh_.pos, n[0]), position(mesh_.pos, n[1]), position(mesh_.pos, n[2])};
        write(p, n);
        if (b.type != zeb::EL_QUAD4) return;
        const unsigned int second[3] = {n[0], n[2], n[3]};
        p[1] = p[2];
        p[2] = position(mesh_.pos, n[3]);
        write(p, second);
    }

    struct element {
        const writable_block* block;
        std::uint32_t number;
    };

    bool has_one_group() const
    {
        const std::int32_t first = blocks_.front().block->group(0);
        return std::ranges::all_of(blocks_, [&](const writable_block& b) {
            const std::vector<std::int32_t>& groups = b.block->groups;
            return groups.empty() ? first == 0 : std::ranges::count(groups, first) == std::ssize(groups);
        });
    }

    // The first line; what stands behind "solid" there and behind "endsolid" in the last one is returned.
    std::string begin_solid(std::int32_t group, bool several)
    {
        const group_name* named = find_group_name(mesh_, 2, group);
        std::string name = named != nullptr ? named->name : several ? "group_" + std::to_string(group) : "";
        for (char& c : name)
            if (c == '\n' || c == '\r') c = ' ';
        const std::string title = name.empty() ? "\n" : ' ' + name + '\n';
        to_.text("solid" + title);
        return title;
    }

    // The lines of all corners, made once: every node is written by some six facets.
    void make_lines()
    {
        const coordinates& pos = mesh_.pos;
        pages_.resize(pos.cols / page_nodes + 1);
        ends_.reserve(pos.cols);
        std::string page;
        for (std::uint64_t j = 0; j < pos.cols; ++j) {
            char line[120];
            char* at = line + std::string_view("\n  vertex").copy(line, 9);
            for (const double x : position(pos, static_cast<unsigned int>(j))) {
                *at++ = ' ';
                at = std::to_chars(at, line + sizeof line, x).ptr;
            }
            page.append(line, at);
            ends_.push_back(static_cast<std::uint32_t>(page.size()));
            if ((j + 1) % page_nodes != 0 && j + 1 != pos.cols) continue;
            pages_[j / page_nodes] = std::string(page);
            page.clear();
        }
    }

    void write_line(unsigned int node)
    {
        const std::uint32_t begin = node % page_nodes == 0 ? 0 : ends_[node - 1];
        to_.raw(pages_[node / page_nodes].data() + begin, ends_[node] - begin);
    }

    void text_facet(const point* p, const unsigned int* nodes)
    {
        // Of a normal seven digits are plenty.
        to_.text("facet normal");
        for (const double x : normal_of(p)) {
            to_.put(' ');
            to_.real(static_cast<float>(x));
        }
        to_.text("\n outer loop");
        for (int k = 0; k < 3; ++k) write_line(nodes[k]);
        to_.text("\n endloop\nendfacet\n");
    }

    // Normal, corners, and two bytes without a meaning.
    void binary_facet(const point* p)
    {
        char* at = to_.take(50);
        put(at, normal_of(p));
        for (int k = 0; k < 3; ++k) put(at, p[k]);
        std::memset(at, 0, 2);
    }

    static void put(char*& at, const point& p)
    {
        constexpr double most = std::numeric_limits<float>::max();
        for (const double x : p) {
            if (std::fabs(x) > most) throw unwritable("a coordinate is beyond the 32 bits of a binary STL file");
            auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(x));
            if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap32(bits);
            std::memcpy(at, &bits, sizeof bits);
            at += sizeof bits;
        }
    }

    void little_endian(std::uint32_t value)
    {
        if constexpr (std::endian::native == std::endian::big) value = __builtin_bswap32(value);
        to_.value(value);
    }

    const mesh& mesh_;
    sink& to_;
    std::vector<writable_block> blocks_;
    static constexpr unsigned int page_nodes = 4096;
    std::vector<std::string> pages_;   // the lines of so many nodes each
    std::vector<std::uint32_t> ends_;  // of the line of each node in its page
};

}  // namespace

void write_stl(const mesh& m, sink& to, const write_options& options)
{
    stl_writer writer(m, to, options);
    options.ascii ? writer.write_text() : writer.write_binary();
}

}  // namespace tool
