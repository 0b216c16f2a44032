#ifndef TOOLS_INPUT_INPUT_FILE_H
#define TOOLS_INPUT_INPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace tool {

// Told of each piece that is read: where it ends, and the size of the input. Whoever shows progress sets it.
inline void (*on_read)(std::uint64_t position, std::uint64_t size) = nullptr;

// A regular file open for reading, or bytes that take its place. Every failure is an `unreadable` with the reason in
// words.
class input_file {
public:
    struct in_memory {
        std::string bytes;
    };

    explicit input_file(const std::string& path);
    explicit input_file(in_memory content);
    ~input_file();
    input_file(const input_file&) = delete;
    input_file& operator=(const input_file&) = delete;

    std::uint64_t size() const { return size_; }

    // Up to `count` bytes from `offset` on; fewer only at the end of the file.
    std::size_t read_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const;

    // Whether `path` leads to this very file, by whatever name or link.
    bool is_same_file(const std::string& path) const;

private:
    std::size_t copy_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const;
    std::size_t read_file_at(std::uint64_t offset, unsigned char* bytes, std::size_t count) const;

    int descriptor_ = -1;  // -1 for bytes in memory
    std::string bytes_;
    std::uint64_t size_ = 0;
};

}  // namespace tool

#endif
