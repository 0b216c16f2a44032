#include "formats/readable.h"

#include <string>
#include <utility>

#include "errors.h"

namespace tool {

std::string_view without_mark(std::string_view head)
{
    if (head.starts_with("\xEF\xBB\xBF")) head.remove_prefix(3);
    if (head.starts_with("\xFE\xFF") || head.starts_with("\xFF\xFE"))
        throw unreadable("is a text in UTF-16, which is not supported");
    return head;
}

void refuse_packed(std::string_view head)
{
    constexpr std::pair<std::string_view, const char*> packers[] = {{"\x1F\x8B", "gzip"},
                                                                    {"BZh", "bzip2"},
                                                                    {"\xFD\x37zXZ", "xz"},
                                                                    {"\x28\xB5\x2F\xFD", "zstd"},
                                                                    {"PK\x03\x04", "zip"}};
    for (const auto& [begin, packer] : packers)
        if (head.starts_with(begin)) throw unreadable(std::string("is packed by ") + packer + ": unpack it first");
}

}  // namespace tool
