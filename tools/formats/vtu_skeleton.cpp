#include "formats/vtu_skeleton.h"

#include <algorithm>
#include <string_view>

#include "errors.h"
#include "formats/cursor.h"
#include "input/byte_source.h"

namespace tool {
namespace {

class skeleton_cutter {
public:
    explicit skeleton_cutter(const source& from) : from_(from), in_(from) { in_.set_binary(true); }

    vtu_skeleton run()
    {
        require_end();
        while (!in_.at_end() && result_.appended == 0) {
            take_text();
            if (!in_.at_end()) take_tag();
        }
        return std::move(result_);
    }

private:
    // A file that was cut lacks its last tag, wherever that was.
    void require_end() const
    {
        std::string tail(1024, '\0');
        const std::uint64_t begin = from_.size() - std::min<std::uint64_t>(from_.size(), tail.size());
        tail.resize(from_.read_at(begin, tail.data(), tail.size()));
        if (tail.find("</VTKFile>") == tail.npos)
            throw unreadable("byte " + std::to_string(from_.size()) + ": the file ends before </VTKFile>");
    }

    // The text of an array, without that of elements within it, is left where it is.
    void take_text()
    {
        const std::uint64_t begin = in_.offset();
        const bool of_array = depth_ == 1;
        if (!of_array) begin_stretch(begin);
        const bool has_words = in_.copy_until('<', of_array ? nullptr : &result_.xml);
        if (of_array && has_words) result_.contents.back() = {begin, in_.offset()};
    }

    void take_tag()
    {
        const std::uint64_t begin = in_.offset();
        std::string tag;
        char quote = '\0';  // within a value, where a bracket ends nothing
        constexpr std::size_t longest = std::size_t{1} << 16;
        do {
            const char c = static_cast<char>(in_.peek());
            tag.push_back(c);
            in_.skip_one();
            if (quote != '\0' ? c == quote : (c == '"' || c == '\'') && !tag.starts_with("<!--"))
                quote = quote != '\0' ? '\0' : c;
        } while ((quote != '\0' || !ends(tag)) && !in_.at_end() && tag.size() < longest);
        if (quote != '\0' || !ends(tag)) throw unreadable("byte " + std::to_string(begin) + ": a tag without an end");
        if (tag.starts_with("<!--")) return;
        const bool alone = tag.ends_with("/>");
        begin_stretch(begin);
        if (tag.starts_with("</")) {
            depth_ -= depth_ > 0;
        } else if (depth_ > 0) {
            depth_ += !alone;
        } else if (tag.starts_with("<DataArray")) {
            const std::string part = " part=\"" + std::to_string(result_.contents.size()) + '"';
            tag.insert(10, part);
            result_.stretches.push_back({result_.xml.size() + 10 + part.size(), begin + 10});
            result_.contents.emplace_back();
            depth_ = !alone;
        } else if (tag.starts_with("<AppendedData")) {
            begin_appended();
            tag += "</AppendedData></VTKFile>";
        }
        result_.xml += tag;
    }

    void begin_stretch(std::uint64_t in_file) { result_.stretches.push_back({result_.xml.size(), in_file}); }

    static bool ends(std::string_view tag)
    {
        return tag.starts_with("<!--") ? tag.size() >= 7 && tag.ends_with("-->") : tag.ends_with('>');
    }

    void begin_appended()
    {
        in_.skip_blanks();
        if (in_.peek() != '_') in_.fail("appended data without an underscore");
        in_.skip_one();
        result_.appended = in_.offset();
    }

    const source& from_;
    cursor in_;
    vtu_skeleton result_;
    int depth_ = 0;  // 1 within a DataArray, more within what it contains
};

}  // namespace

std::uint64_t vtu_skeleton::place_of(std::uint64_t xml_byte) const
{
    const auto behind = std::ranges::upper_bound(stretches, xml_byte, {}, &stretch::in_xml);
    return behind == stretches.begin() ? 0 : xml_byte - behind[-1].in_xml + behind[-1].in_file;
}

vtu_skeleton cut_skeleton(const source& from)
{
    return skeleton_cutter(from).run();
}

}  // namespace tool
