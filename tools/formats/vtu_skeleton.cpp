#include "formats/vtu_skeleton.h"

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
        const bool has_words = in_.copy_until('<', of_array ? nullptr : &result_.xml);
        if (of_array && has_words) result_.contents.back() = {begin, in_.offset()};
    }

    void take_tag()
    {
        std::string tag;
        constexpr std::size_t longest = std::size_t{1} << 16;
        do {
            tag.push_back(static_cast<char>(in_.peek()));
            in_.skip_one();
        } while (!ends(tag) && !in_.at_end() && tag.size() < longest);
        if (!ends(tag)) in_.fail("a tag without an end");
        if (tag.starts_with("<!--")) return;
        const bool alone = tag.ends_with("/>");
        if (tag.starts_with("</")) {
            depth_ -= depth_ > 0;
        } else if (depth_ > 0) {
            depth_ += !alone;
        } else if (tag.starts_with("<DataArray")) {
            tag.insert(10, " part=\"" + std::to_string(result_.contents.size()) + '"');
            result_.contents.emplace_back();
            depth_ = !alone;
        } else if (tag.starts_with("<AppendedData")) {
            begin_appended();
            tag += "</AppendedData></VTKFile>";
        }
        result_.xml += tag;
    }

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

vtu_skeleton cut_skeleton(const source& from)
{
    return skeleton_cutter(from).run();
}

}  // namespace tool
