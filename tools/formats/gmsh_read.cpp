#include "formats/gmsh_read.h"

#include <cmath>
#include <limits>

#include "errors.h"
#include "formats/gmsh_input.h"
#include "formats/node_orders.h"
#include "words.h"

namespace tool {
namespace {

class gmsh_reader {
public:
    explicit gmsh_reader(const source& from) : input_(from) {}

    mesh run()
    {
        input_.in.expect("$MeshFormat");
        read_format();
        for (std::string_view word = in().word(); !word.empty(); word = in().word()) take_section(std::string(word));
        if (!input_.has_nodes) in().fail("the file ends before $Nodes");
        if (!input_.has_elements) in().fail("the file ends before $Elements");
        return std::move(input_.result);
    }

private:
    cursor& in() { return input_.in; }

    void read_format()
    {
        const std::string version(in().word());
        is_version_4_ = version == "4.1";
        if (!is_version_4_ && !version.starts_with("2"))
            in().fail("version " + version + ", where 2.2 or 4.1 should be");
        input_.binary = in().integer("the kind of the file") == 1;
        in().set_binary(input_.binary);
        in().integer("the size of numbers");
        in().skip_line();
        if (input_.binary) {
            std::int32_t one = 0;
            in().raw(&one, sizeof one, "the header");
            if (one != 1 && one != 0x01000000) in().fail("the order of the bytes cannot be told");
            input_.reversed = one != 1;
        }
        in().expect("$EndMeshFormat");
    }

    void take_section(const std::string& word)
    {
        static constexpr struct {
            std::string_view word;
            void (gmsh_reader::*take)();
        } sections[] = {{"$PhysicalNames", &gmsh_reader::take_names}, {"$Entities", &gmsh_reader::take_entities},
                        {"$Nodes", &gmsh_reader::take_nodes},         {"$Elements", &gmsh_reader::take_elements},
                        {"$NodeData", &gmsh_reader::take_data<true>}, {"$ElementData", &gmsh_reader::take_data<false>}};
        if (word[0] != '$') in().fail(quoted(word.substr(0, 40)) + " where a section should begin");
        const std::string end = "$End" + word.substr(1);
        for (const auto& section : sections) {
            if (word != section.word) continue;
            (this->*section.take)();
            return in().expect(end);
        }
        skip_section(end);
    }

    // Goes on line by line, in bytes too: no section that is left out has its own end within.
    void skip_section(const std::string& end)
    {
        for (;;) {
            if (in().at_end()) in().fail("the file ends where " + end + " should be");
            if (in().peek() == '$' && in().word() == end) return;
            in().skip_line();
        }
    }

    void take_names()
    {
        const std::uint64_t count = in().room_for(in().count("the number of names"), 4);
        for (std::uint64_t k = 0; k < count; ++k) {
            const std::int64_t dimension = in().integer("the dimension of a group");
            const std::int64_t number = in().integer("the number of a group");
            in().skip_blanks();
            const std::string_view text = in().line();
            const std::size_t first = text.find('"');
            const std::size_t last = text.rfind('"');
            if (dimension < 0 || dimension > 3 || std::llabs(number) > std::numeric_limits<std::int32_t>::max() ||
                first == last)
                in().fail("this is no group with its name");
            input_.result.group_names.push_back({static_cast<int>(dimension), static_cast<std::int32_t>(number),
                                                 std::string(text.substr(first + 1, last - first - 1))});
        }
    }

    void take_entities()
    {
        if (!is_version_4_) in().fail("entities in a file of version 2");
        read_gmsh4_entities(input_, entities_);
    }

    void take_nodes()
    {
        if (input_.has_nodes) in().fail("a second section of $Nodes");
        is_version_4_ ? read_gmsh4_nodes(input_) : read_gmsh2_nodes(input_);
    }

    void take_elements()
    {
        if (input_.has_elements) in().fail("a second section of $Elements");
        if (!input_.has_nodes) in().fail("the elements stand before the nodes");
        is_version_4_ ? read_gmsh4_elements(input_, entities_) : read_gmsh2_elements(input_);
        input_.has_elements = true;
        input_.result.blocks = input_.elements.take();
        for (element_block& block : input_.result.blocks)
            to_library_order(node_order::gmsh, block.type, &block.connect(0, 0), block.size());
    }

    std::string quoted_name()
    {
        in().skip_blanks();
        std::string name(in().line());
        while (!name.empty() && (name.back() == ' ' || name.back() == '"')) name.pop_back();
        if (!name.empty() && name.front() == '"') name.erase(0, 1);
        return name;
    }

    // Texts, the first of which is the name; reals; integers: the step, the components, the number of items.
    template <bool OfNodes>
    void take_data()
    {
        field f;
        const std::uint64_t texts = in().room_for(in().count("a number of texts"), 1);
        for (std::uint64_t k = 0; k < texts; ++k) {
            const std::string text = quoted_name();
            if (k == 0) f.name = text;
        }
        const std::uint64_t reals = in().room_for(in().count("a number of values"), 1);
        for (std::uint64_t k = 0; k < reals; ++k) in().real("a value");
        const std::uint64_t integers = in().count("a number of integers");
        if (integers < 3 || integers > 100) in().fail("data without a number of items");
        std::array<std::int64_t, 100> numbers;
        for (std::uint64_t k = 0; k < integers; ++k) numbers[k] = in().integer("an integer");
        if (numbers[1] < 1 || numbers[1] > 100) in().fail("data of " + std::to_string(numbers[1]) + " components");
        f.components = static_cast<unsigned int>(numbers[1]);
        in().skip_line();
        take_values(f, numbers[2], OfNodes);
    }

    void take_values(field& f, std::int64_t announced, bool of_nodes)
    {
        if (!(of_nodes ? input_.has_nodes : input_.has_elements)) in().fail("data of what is not there yet");
        const std::uint64_t count =
            input_.count(announced, 1 + f.components, 4 + 8 * std::uint64_t{f.components}, "values");
        const number_index index(of_nodes ? input_.result.node_numbers : element_numbers());
        const std::uint64_t items = of_nodes ? input_.result.pos.cols : input_.result.element_count();
        f.values.assign(items * f.components, std::numeric_limits<double>::quiet_NaN());
        std::array<double, 100> value;
        for (std::uint64_t k = 0; k < count; ++k) {
            const std::uint64_t item = index.find(static_cast<std::uint64_t>(input_.integer("a number")));
            input_.reals(value.data(), f.components, "a value");
            if (item != number_index::none) std::copy_n(value.data(), f.components, &f.values[item * f.components]);
        }
        (of_nodes ? input_.result.point_fields : input_.result.cell_fields).push_back(std::move(f));
    }

    numbering element_numbers() const
    {
        numbering all;
        for (const element_block& block : input_.result.blocks)
            for (std::uint64_t e = 0; e < block.size(); ++e) all.push_back(block.numbers[e]);
        return all;
    }

    gmsh_input input_;
    gmsh_entities entities_;
    bool is_version_4_ = false;
};

}  // namespace

bool is_gmsh(std::string_view head)
{
    return head.starts_with("$MeshFormat");
}

mesh read_gmsh(const source& from)
{
    return gmsh_reader(from).run();
}

}  // namespace tool
