#include "formats/medit_read.h"

#include <algorithm>
#include <limits>

#include "errors.h"
#include "formats/cursor.h"
#include "formats/medit_sections.h"
#include "formats/node_orders.h"
#include "formats/number_stream.h"
#include "mesh/builder.h"
#include "words.h"

namespace tool {
namespace {

// The words of a MEDIT file: a # makes the rest of its line a comment.
class medit_words {
public:
    explicit medit_words(const source& from) : in(from) {}

    // The next keyword; empty at the end of the file. Numbers on the way belong to a section that is left out.
    std::string keyword()
    {
        for (std::string_view word = in.word(); !word.empty(); word = in.word()) {
            if (word.front() == '#') {
                in.skip_line();
            } else if (is_letter(word.front())) {
                return std::string(word);
            } else if (double value = 0; !parse_real(word, value)) {
                in.fail(quoted(word.substr(0, 40)) + " where a section should begin");
            }
        }
        return {};
    }

    void read_header()
    {
        if (!equal_words(keyword(), "MeshVersionFormatted")) in.fail("no MEDIT file");
        in.integer("the version");
    }

    std::uint64_t read_dimension()
    {
        const std::uint64_t dimension = in.count("the dimension");
        if (dimension != 2 && dimension != 3) in.fail("a dimension of " + std::to_string(dimension));
        return dimension;
    }

    // A number of items with so many numbers each.
    std::uint64_t count(std::uint64_t numbers, const char* what)
    {
        const std::uint64_t announced = in.count(what);
        if (announced > in.left() / (2 * numbers) + 1)
            in.fail("the file is too short for " + std::to_string(announced) + " items");
        return announced;
    }

    // Whether the numbers of a section are not over yet.
    bool more_numbers()
    {
        in.skip_blanks();
        return !in.at_end() && in.peek() != '#' && !is_letter(static_cast<char>(in.peek()));
    }

    void end_section()
    {
        if (more_numbers()) in.fail("more numbers than the section should have");
    }

    // Some programs write elements with more nodes into the section of those with corners alone.
    void end_elements(std::string_view section, std::uint64_t items, std::uint64_t nodes)
    {
        if (items == 0 || !more_numbers()) return end_section();
        const std::string place = in.place();
        std::uint64_t numbers = items * (nodes + 1);
        for (; more_numbers(); ++numbers) in.word();
        const std::uint64_t found = numbers / items - 1;
        if (numbers % items != 0) throw unreadable(place + ": more numbers than the section should have");
        throw unreadable(place + ": " + std::string(section) + " of " + std::to_string(found) +
                         " nodes are not supported, of " + std::to_string(nodes) + " they are");
    }

    cursor in;

private:
    static bool is_letter(char c) { return lower_case(c) >= 'a' && lower_case(c) <= 'z'; }
};

class medit_reader {
public:
    explicit medit_reader(const source& from) : words_(from) {}

    mesh run()
    {
        words_.read_header();
        for (std::string word = words_.keyword(); !equal_words(word, "End"); word = words_.keyword()) {
            if (word.empty()) in().fail("the file ends before the word End");
            take_section(word);
        }
        if (!has_nodes_) in().fail("the file has no Vertices");
        result_.blocks = elements_.take();
        for (element_block& block : result_.blocks)
            if (block.type != zeb::EL_WEDGE6)
                to_library_order(node_order::vtk, block.type, &block.connect(0, 0), block.size());
        return std::move(result_);
    }

private:
    cursor& in() { return words_.in; }

    void take_section(const std::string& word)
    {
        if (equal_words(word, "Dimension")) {
            dimension_ = words_.read_dimension();
        } else if (equal_words(word, "Vertices")) {
            read_nodes();
        } else {
            for (const medit_section& section : medit_sections)
                if (equal_words(section.keyword, word)) return read_elements(section);
            refuse_foreign(word);
            leave_out(word);
        }
    }

    // Sections of elements that are not read.
    void refuse_foreign(const std::string& word)
    {
        static constexpr struct {
            std::string_view word;
            const char* kind;
        } foreign[] = {{"QuadrilateralsQ2", "quadrangles of 9 nodes"},
                       {"HexahedraQ2", "hexahedra of 27 nodes"},
                       {"PrismsP2", "wedges of 18 nodes"},
                       {"PyramidsP2", "pyramids of 14 nodes"}};
        for (const auto& section : foreign)
            if (equal_words(section.word, word))
                in().fail(std::string(section.kind) + " (section " + word + ") are not supported in MEDIT files");
    }

    // A section without a use here, as of corners and ridges, or with a misspelt name.
    void leave_out(const std::string& word)
    {
        constexpr std::size_t enough = 8;
        const std::string note = "section " + quoted(word.substr(0, 40)) + " left out";
        if (result_.notes.size() < enough && std::ranges::find(result_.notes, note) == result_.notes.end())
            result_.notes.push_back(note);
    }

    void read_nodes()
    {
        if (has_nodes_) in().fail("a second section of Vertices");
        has_nodes_ = true;
        const std::uint64_t count = words_.count(dimension_ + 1, "the number of vertices");
        resize(result_.pos, dimension_, count);
        field references{"medit:ref", 1, number_kind::integer, {}};
        for (std::uint64_t j = 0; j < count; ++j) {
            in().reals(&result_.pos(0, j), dimension_, "a coordinate");
            const std::int64_t reference = in().integer("a reference");
            if (reference != 0 && references.values.empty()) references.values.resize(count);
            if (reference != 0) references.values[j] = static_cast<double>(reference);
        }
        result_.node_numbers = numbering(1, count);
        if (!references.values.empty()) result_.point_fields.push_back(std::move(references));
        words_.end_section();
    }

    void read_elements(const medit_section& section)
    {
        const zeb::element_type type = section.type;
        const unsigned int size = zeb::NODES_PER_ELEMENT[type];
        const std::uint64_t count = words_.count(size + 1, "the number of elements");
        std::uint64_t& number = counts_[static_cast<std::size_t>(type)];
        elements_.reserve(type, number + count);
        for (std::uint64_t e = 0; e < count; ++e) {
            std::int64_t nodes[27];
            for (unsigned int k = 0; k < size; ++k) nodes[k] = in().integer("a node of an element");
            const std::int64_t reference = in().integer("a reference");
            if (reference < std::numeric_limits<std::int32_t>::min() ||
                reference > std::numeric_limits<std::int32_t>::max())
                in().fail("a reference of " + std::to_string(reference));
            unsigned int* column = elements_.add(type, static_cast<std::int32_t>(reference), ++number);
            for (unsigned int k = 0; k < size; ++k) column[k] = node_index(nodes[k], 1);
        }
        words_.end_elements(section.keyword, count, size);
    }

    medit_words words_;
    mesh result_;
    mesh_builder elements_;
    std::uint64_t dimension_ = 3;
    std::uint64_t counts_[21] = {};
    bool has_nodes_ = false;
};

class solution_reader {
public:
    solution_reader(const source& from, mesh& m) : words_(from), mesh_(m) {}

    void run()
    {
        words_.read_header();
        for (std::string word = words_.keyword(); !equal_words(word, "End"); word = words_.keyword()) {
            if (word.empty()) in().fail("the file ends before the word End");
            if (equal_words(word, "Dimension")) dimension_ = words_.read_dimension();
            if (equal_words(word, "SolAtVertices")) read_values(mesh_.pos.cols, nullptr);
            for (const medit_section& section : medit_sections)
                if (equal_words(section.solution, word)) read_on_elements(section.type);
        }
    }

private:
    cursor& in() { return words_.in; }

    void read_on_elements(zeb::element_type type)
    {
        for (const element_block& block : mesh_.blocks)
            if (block.type == type) return read_values(block.size(), &block);
        in().fail("values on elements that the mesh does not have");
    }

    // Several fields stand side by side: the kinds come first, then the values of item after item.
    void read_values(std::uint64_t items, const element_block* block)
    {
        const std::uint64_t announced = words_.count(1, "the number of values");
        if (announced != items)
            in().fail("values for " + std::to_string(announced) + " items, where the mesh has " +
                      std::to_string(items));
        const std::uint64_t fields = in().room_for(in().count("the number of fields"), 2);
        std::vector<field> read(fields);
        std::uint64_t numbers = 0;
        for (std::uint64_t k = 0; k < fields; ++k) {
            const std::uint64_t kind = in().count("the kind of a field");
            if (kind < 1 || kind > 3) in().fail("a field of kind " + std::to_string(kind));
            const std::uint64_t d = dimension_;
            read[k].components = static_cast<unsigned int>(kind == 1 ? 1 : kind == 2 ? d : d * (d + 1) / 2);
            read[k].name = fields == 1 ? "medit:solution" : "medit:solution" + std::to_string(k + 1);
            numbers += read[k].components;
        }
        if (items * numbers > in().left() / 2 + 1)
            in().fail("the file is too short for the values of " + std::to_string(items) + " items");
        for (field& f : read) place(f, items, block);
        for (std::uint64_t i = 0; i < items; ++i)
            for (field& f : read) in().reals(&f.values[(first_ + i) * f.components], f.components, "a value");
        auto& to = block == nullptr ? mesh_.point_fields : mesh_.cell_fields;
        for (field& f : read) to.push_back(std::move(f));
    }

    // Room for the values; elements of other kinds have none.
    void place(field& f, std::uint64_t items, const element_block* block)
    {
        first_ = 0;
        for (const element_block& before : mesh_.blocks) {
            if (block == nullptr || &before == block) break;
            first_ += before.size();
        }
        const std::uint64_t all = block == nullptr ? items : mesh_.element_count();
        f.values.assign(all * f.components, std::numeric_limits<double>::quiet_NaN());
    }

    medit_words words_;
    mesh& mesh_;
    std::uint64_t dimension_ = 3;
    std::uint64_t first_ = 0;
};

bool begins_as_medit(std::string_view head)
{
    while (!head.empty() && (is_blank(static_cast<unsigned char>(head.front())) || head.front() == '#')) {
        const std::size_t end = head.front() == '#' ? head.find('\n') : 0;
        if (end == head.npos) return false;
        head.remove_prefix(end + 1);
    }
    constexpr std::string_view keyword = "MeshVersionFormatted";
    return equal_words(head.substr(0, keyword.size()), keyword);
}

}  // namespace

bool is_medit(std::string_view head)
{
    return begins_as_medit(head) && head.find("SolAt") == head.npos;
}

mesh read_medit(const source& from)
{
    return medit_reader(from).run();
}

bool is_medit_solution(std::string_view head)
{
    return begins_as_medit(head) && head.find("SolAt") != head.npos;
}

void read_medit_solution(const source& from, mesh& m)
{
    solution_reader(from, m).run();
}

mesh refuse_medit_solution(const source&)
{
    throw unreadable("holds values for a mesh and no mesh: 'convert', among others, takes it by --sol beside its mesh");
}

}  // namespace tool
