#include "formats/obj_read.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

#include "errors.h"
#include "formats/cursor.h"
#include "formats/number_stream.h"
#include "mesh/builder.h"
#include "mesh/polygon.h"
#include "words.h"

namespace tool {
namespace {

constexpr std::string_view keywords[] = {"v", "vn", "vt",     "vp",     "f",    "l",    "p",   "g",   "o",
                                         "s", "mg", "mtllib", "usemtl", "curv", "surf", "end", "deg", "cstype"};

// What a file names a group without a name of its own.
constexpr std::string_view nameless = "group_";

class obj_reader {
public:
    explicit obj_reader(const source& from) : in_(from) {}

    mesh run()
    {
        while (in_.skip_blanks(), !in_.at_end()) {
            if (in_.peek() == '#') {
                in_.skip_line();
                continue;
            }
            take_line(in_.word());
            while (more_on_line()) {
                if (in_.peek() == '#') {
                    in_.skip_line();
                    break;
                }
                in_.word();
            }
        }
        result_.pos = pos_.take();
        result_.node_numbers = numbering(1, result_.pos.cols);
        result_.blocks = elements_.take();
        add_field("normals", normals_, 3);
        add_field("uv", uvs_, 2);
        if (has_colours_) result_.notes.emplace_back("colours of nodes left out");
        if (has_materials_) result_.notes.emplace_back("materials left out");
        if (polygons_ != 0)
            result_.notes.push_back(counted(polygons_, "polygon", "polygons") +
                                    " of five and more corners cut into triangles");
        return std::move(result_);
    }

private:
    // Values that belong to nodes as long as every corner has the number of its node there too.
    struct attribute {
        std::vector<double> values;
        bool on_nodes = true;
    };

    void take_line(std::string_view word)
    {
        if (word == "v") {
            take_node();
        } else if (word == "f") {
            take_face();
        } else if (word == "vn") {
            take_values(normals_, 3, 3);
        } else if (word == "vt") {
            take_values(uvs_, 1, 2);
        } else if (word == "l") {
            take_lines();
        } else if (word == "p") {
            take_corners();
            for (const unsigned int node : corners_) add(zeb::EL_NODE, {&node, 1});
        } else if (word == "g" || word == "o") {
            take_group(word == "g");
        } else if (word == "usemtl" || word == "mtllib") {
            has_materials_ = true;
        }
    }

    // False at the end of the line; a backslash before it joins the next one on.
    bool more_on_line()
    {
        while (!in_.at_line_end()) {
            const int c = in_.peek();
            if (c != '\\') return true;
            in_.skip_one();
            if (!in_.at_line_end()) in_.fail("a backslash within a line");
            if (in_.at_end()) return false;
            in_.skip_one();
        }
        return false;
    }

    // Behind the coordinates may stand a weight, and a colour of three numbers.
    void take_node()
    {
        double p[3];
        for (double& x : p) x = real("a coordinate");
        std::copy_n(p, 3, pos_.append());
        unsigned int further = 0;
        for (; more_on_line() && in_.peek() != '#'; ++further) in_.word();
        has_colours_ = has_colours_ || further >= 3;
        if (pos_.size() >= zeb::NONE_INDEX) in_.fail("more nodes than a mesh can hold");
    }

    double real(const char* what)
    {
        if (!more_on_line()) in_.fail("the line ends where " + std::string(what) + " should be");
        return in_.real(what);
    }

    void take_values(attribute& to, unsigned int wanted, unsigned int width)
    {
        for (unsigned int k = 0; k < width; ++k)
            to.values.push_back(k < wanted || more_on_line() ? real("a number") : 0.0);
    }

    // "7", "7/2", "7/2/9", "7//9". Negative numbers count back from what has been read.
    void take_corner(std::string_view word)
    {
        std::int64_t numbers[3] = {0, 0, 0};
        const std::string_view whole = word;
        for (std::int64_t& number : numbers) {
            const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
            if (error == std::errc::result_out_of_range || (&number == numbers && error != std::errc()))
                in_.fail(quoted(whole.substr(0, 40)) + " is no corner of an element");
            word.remove_prefix(static_cast<std::size_t>(end - word.data()));
            if (word.empty()) break;
            if (word.front() != '/' || &number == &numbers[2])
                in_.fail(quoted(whole.substr(0, 40)) + " is no corner of an element");
            word.remove_prefix(1);
        }
        const auto nodes = static_cast<std::int64_t>(pos_.size());
        if (numbers[0] < 0) numbers[0] += nodes + 1;
        corners_.push_back(node_index(numbers[0], 1));
        follow(uvs_, 2, numbers[1], numbers[0]);
        follow(normals_, 3, numbers[2], numbers[0]);
    }

    static void follow(attribute& a, std::size_t width, std::int64_t number, std::int64_t node)
    {
        if (number < 0) number += static_cast<std::int64_t>(a.values.size() / width) + 1;
        a.on_nodes = a.on_nodes && number == node;
    }

    void take_corners()
    {
        corners_.clear();
        while (more_on_line() && in_.peek() != '#') take_corner(in_.word());
        ++number_;
    }

    void add(zeb::element_type type, std::span<const unsigned int> nodes)
    {
        std::ranges::copy(nodes, elements_.add(type, group_, number_));
    }

    void take_face()
    {
        take_corners();
        const std::size_t n = corners_.size();
        if (n < 3) in_.fail("a face of " + counted(n, "corner", "corners"));
        if (n <= 4) return add(n == 3 ? zeb::EL_TRIA3 : zeb::EL_QUAD4, corners_);
        ++polygons_;
        const auto position = [&](unsigned int node) { return node < pos_.size() ? pos_.column(node) : nullptr; };
        for (const auto& triangle : cut_polygon(corners_, position)) add(zeb::EL_TRIA3, triangle);
    }

    void take_lines()
    {
        take_corners();
        if (corners_.size() < 2) in_.fail("a line of one node");
        for (std::size_t i = 1; i < corners_.size(); ++i) add(zeb::EL_EDGE2, {&corners_[i - 1], 2});
    }

    // A name of the form that a nameless group is written with stands for its number.
    void take_group(bool is_group)
    {
        if (!is_group && has_groups_) return;
        has_groups_ = has_groups_ || is_group;
        std::string name;
        while (more_on_line()) append_word(name, in_.word());
        const auto [entry, is_new] = groups_.try_emplace(name, 0);
        if (is_new) {
            entry->second = number_in(name);
            if (entry->second == 0) {
                while (used_.contains(next_group_)) ++next_group_;
                entry->second = next_group_++;
                result_.group_names.push_back({-1, entry->second, name});
            }
        }
        used_.insert(entry->second);
        group_ = entry->second;
    }

    static std::int32_t number_in(const std::string& name)
    {
        std::int32_t number = 0;
        if (!name.starts_with(nameless)) return 0;
        const char* last = name.data() + name.size();
        return std::from_chars(name.data() + nameless.size(), last, number).ptr == last ? number : 0;
    }

    void add_field(const char* name, attribute& a, unsigned int width)
    {
        if (a.values.empty()) return;
        if (a.on_nodes && a.values.size() == width * result_.pos.cols) {
            result_.point_fields.push_back({name, width, number_kind::real64, std::move(a.values)});
        } else {
            result_.notes.push_back(std::string(name) + " of corners left out");
        }
    }

    cursor in_;
    mesh result_;
    growing_matrix<double> pos_{3};
    mesh_builder elements_;
    attribute normals_;
    attribute uvs_;
    std::vector<unsigned int> corners_;
    std::map<std::string, std::int32_t> groups_;
    std::set<std::int32_t> used_;  // their numbers
    std::int32_t group_ = 0;
    std::int32_t next_group_ = 1;
    bool has_groups_ = false;
    bool has_colours_ = false;
    bool has_materials_ = false;
    std::uint64_t number_ = 0;
    std::uint64_t polygons_ = 0;
};

}  // namespace

bool is_obj(std::string_view head)
{
    while (!head.empty()) {
        const std::size_t end = std::min(head.find('\n'), head.size());
        std::string_view line = head.substr(0, end);
        head.remove_prefix(std::min(end + 1, head.size()));
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == line.npos || line[first] == '#') continue;
        line.remove_prefix(first);
        return std::ranges::find(keywords, line.substr(0, line.find_first_of(" \t\r"))) != std::end(keywords);
    }
    return false;
}

mesh read_obj(const source& from)
{
    return obj_reader(from).run();
}

}  // namespace tool
