#ifndef TOOLS_FORMATS_FILE_BESIDE_H
#define TOOLS_FORMATS_FILE_BESIDE_H

#include <string>

namespace tool {

// A file that grows beside its place and takes it when it is whole. What is not committed leaves nothing behind, after
// a signal neither. A device or pipe is written in its place. A few at a time. Failures are `unwritable`.
class file_beside {
public:
    explicit file_beside(const std::string& path);
    ~file_beside();
    file_beside(const file_beside&) = delete;
    file_beside& operator=(const file_beside&) = delete;

    // The name under which it grows; the file is there, and empty.
    const std::string& name() const { return name_; }

    void commit();

private:
    std::string path_;
    std::string name_;       // empty once it is committed
    char* noted_ = nullptr;  // for signals
    bool in_place_ = false;
};

}  // namespace tool

#endif
