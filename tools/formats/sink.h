#ifndef TOOLS_FORMATS_SINK_H
#define TOOLS_FORMATS_SINK_H

#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Where an output goes: a file that is written beside its place and takes it when it is whole, standard output, or a
// string. Failures are `unwritable`. What is not committed leaves nothing behind, after a signal neither.
class sink {
public:
    // A file, or standard output for "-".
    explicit sink(const std::string& path);
    // A string in memory.
    explicit sink(std::string& memory);
    ~sink();
    sink(const sink&) = delete;
    sink& operator=(const sink&) = delete;

    void text(std::string_view text) { raw(text.data(), text.size()); }
    void put(char c)
    {
        make_room(1);
        *at_++ = c;
    }
    // The shortest digits that read back to the very number.
    void real(double value)
    {
        make_room(number_room);
        at_ = std::to_chars(at_, limit_, value).ptr;
    }
    void real(float value)
    {
        make_room(number_room);
        at_ = std::to_chars(at_, limit_, value).ptr;
    }
    template <class Integer>
    void integer(Integer value)
    {
        make_room(number_room);
        at_ = std::to_chars(at_, limit_, value).ptr;
    }
    void raw(const void* bytes, std::size_t count);
    // The bytes of a number.
    template <class Value>
    void value(Value value)
    {
        make_room(sizeof value);
        std::memcpy(at_, &value, sizeof value);
        at_ += sizeof value;
    }

    // Place for so many bytes of the output, at most `largest_take` at a time, to be filled at once.
    char* take(std::size_t bytes)
    {
        make_room(bytes);
        char* place = at_;
        at_ += bytes;
        return place;
    }
    static constexpr std::size_t largest_take = std::size_t{1} << 18;

    // Writes what is left, so that nothing but the place of the file can fail afterwards.
    void finish();
    // The same, and puts the file into its place.
    void commit();

private:
    static constexpr std::size_t block_size = largest_take;
    static constexpr std::size_t number_room = 40;

    void make_room(std::size_t bytes)
    {
        if (static_cast<std::size_t>(limit_ - at_) < bytes) flush();
    }
    void flush();
    void write_out(const char* bytes, std::size_t count);

    class target;
    std::unique_ptr<target> target_;  // null for memory
    std::string* memory_ = nullptr;
    std::vector<char> block_;
    char* at_ = nullptr;
    char* limit_ = nullptr;
};

}  // namespace tool

#endif
