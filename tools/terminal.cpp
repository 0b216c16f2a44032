#include "terminal.h"

#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace tool {
namespace {

bool locale_is_utf8()
{
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) return false;
    const std::string_view codeset = nl_langinfo_l(CODESET, locale);
    const bool utf8 = codeset == "UTF-8";
    freelocale(locale);
    return utf8;
}

unsigned width_of_output()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
    const char* columns = std::getenv("COLUMNS");
    const long width = columns != nullptr ? std::strtol(columns, nullptr, 10) : 0;
    return width > 0 && width < 10000 ? static_cast<unsigned>(width) : terminal().width;
}

colours chosen_colours = colours::automatic;

bool colours_wanted()
{
    if (chosen_colours != colours::automatic) return chosen_colours == colours::always;
    const char* no_colour = std::getenv("NO_COLOR");
    const char* kind = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && (no_colour == nullptr || *no_colour == '\0') && kind != nullptr &&
           std::string_view(kind) != "dumb";
}

}  // namespace

void use_colours(colours when)
{
    chosen_colours = when;
}

terminal standard_output_terminal()
{
    constexpr unsigned wide_enough = 60;
    terminal out;
    out.width = width_of_output();
    out.blocks = locale_is_utf8() && out.width >= wide_enough;
    out.colour = colours_wanted();
    return out;
}

std::string printable(const std::string& text)
{
    std::string shown = text;
    std::ranges::replace_if(
        shown, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return shown;
}

}  // namespace tool
