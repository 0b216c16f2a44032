#include "stl/stl_words.h"

#include <string_view>

namespace tool {
namespace {

class word_counter {
public:
    explicit word_counter(byte_source& in) : in_(in) {}

    text_words run()
    {
        for (const int byte : {0xEF, 0xBB, 0xBF})  // a byte order mark
            if (in_.peek() == byte) in_.next();
        while (next_word()) take_word();
        if (words_.last_solid_ends && first_after_end_ != nowhere)
            words_.bytes_after_end = in_.offset() - first_after_end_;
        return words_;
    }

private:
    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};
    static constexpr std::size_t longest = 11;  // "facetnormal", which the reader takes for two words

    // Takes as much of the next word as matters, of numbers next to nothing. False at the end of the file.
    bool next_word()
    {
        int c = in_.next();
        for (; is_blank(c); c = in_.next()) first_of_line_ |= c == '\n' || c == '\r';
        if (c == byte_source::end) return false;
        begin_ = in_.offset() - 1;
        letters_[0] = static_cast<char>(lower_case(c));
        const std::size_t wanted = c >= 'A' ? longest : 1;
        for (length_ = 1; length_ < wanted && in_.peek() != byte_source::end && !is_blank(in_.peek()); ++length_)
            letters_[length_] = static_cast<char>(lower_case(in_.next()));
        in_.skip_word();
        return true;
    }

    void take_word()
    {
        const std::string_view word(letters_, length_);
        if (first_of_line_) take_first_of_line(word);
        words_.facets += (word == "facet" && first_of_line_) || word == "facetnormal" ||
                         (after_inner_facet_ && word.starts_with("normal"));
        after_inner_facet_ = word == "facet" && !first_of_line_;
        first_of_line_ = false;
    }

    void take_first_of_line(std::string_view word)
    {
        words_.is_one_line = words_.is_one_line && !any_;
        if (!any_) words_.begins_with_solid = word == "solid";
        any_ = true;
        if (word == "solid") {
            ++words_.solids;
            words_.last_solid_ends = false;
        } else if (word == "endsolid") {
            ++words_.ends;
            words_.last_solid_ends = true;
            first_after_end_ = nowhere;
        } else if (words_.last_solid_ends && first_after_end_ == nowhere) {
            first_after_end_ = begin_;
        }
    }

    byte_source& in_;
    text_words words_;
    char letters_[longest] = {};
    std::size_t length_ = 0;
    std::uint64_t begin_ = 0;
    std::uint64_t first_after_end_ = nowhere;
    bool any_ = false;
    bool first_of_line_ = true;
    bool after_inner_facet_ = false;
};

}  // namespace

text_words count_words(byte_source& in)
{
    return word_counter(in).run();
}

}  // namespace tool
