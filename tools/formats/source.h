#ifndef TOOLS_FORMATS_SOURCE_H
#define TOOLS_FORMATS_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "input/input_file.h"

namespace tool {

// The bytes of an input: of a regular file, read where and when they are wanted, or of standard input or a block in
// memory, kept whole. Failures are `unreadable`.
class source {
public:
    // A file, or standard input for "-".
    static source open(const std::string& path);
    // Bytes in memory under a name.
    static source of_bytes(std::string bytes, std::string name = "-");

    const std::string& name() const { return name_; }
    std::uint64_t size() const { return file_->size(); }

    // Up to `count` bytes from `offset` on; fewer only at the end.
    std::size_t read_at(std::uint64_t offset, char* to, std::size_t count) const
    {
        return file_->read_at(offset, reinterpret_cast<unsigned char*>(to), count);
    }

    // The first bytes, by which a format is told.
    std::string head() const;

    // Whether a path leads to this very file.
    bool is_same_file(const std::string& path) const { return file_->is_same_file(path); }

    const input_file& file() const { return *file_; }

private:
    source(std::string name, std::shared_ptr<const input_file> file) : name_(std::move(name)), file_(std::move(file)) {}

    std::string name_;
    std::shared_ptr<const input_file> file_;
};

}  // namespace tool

#endif
