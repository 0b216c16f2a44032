#include <tessolv/tessolv.h>

#include "documents/documents.h"
#include "help.h"

namespace tool {
namespace {

// Text as roff takes it: hyphens that can be copied, no request at the beginning of a line.
std::string roff(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins_line = i == 0 || text[i - 1] == '\n';
        if (begins_line && (text[i] == '.' || text[i] == '\'')) result += "\\&";
        if (text[i] == '\\')
            result += "\\e";
        else if (text[i] == '-')
            result += "\\-";
        else if (text[i] == '\'')
            result += "\\(aq";
        else
            result += text[i];
    }
    return result;
}

std::string paragraphs(const std::string& text)
{
    std::string result = roff(text);
    for (std::size_t at = 0; (at = result.find("\n\n", at)) != std::string::npos;) result.replace(at, 2, "\n.PP\n");
    return result.empty() ? result : result + '\n';
}

std::string verbatim(const std::string& text)
{
    return ".nf\n" + roff(text) + "\n.fi\n";
}

std::string option_lines(const option_entry& option)
{
    std::string names;
    for (const std::string& name : option.names)
        names +=
            (names.empty() ? "" : ", ") + (option.is_operand ? "\\fI" : "\\fB" + std::string()) + roff(name) + "\\fR";
    if (option.repeats) names += " ...";
    for (int i = 0; i < option.values && !option.is_operand; ++i) names += " \\fI" + roff(option.value) + "\\fR";
    return ".TP\n" + names + '\n' + roff(option.description) + '\n';
}

std::string command_lines(const command_entry& command)
{
    std::string text = ".SS " + roff(command.name) + '\n' + roff(command.summary) + ".\n";
    if (!command.description.empty()) text += ".PP\n" + paragraphs(command.description);
    for (const option_entry& option : command.options) text += option_lines(option);
    if (!command.footer.empty()) text += ".PP\n" + verbatim(command.footer);
    return text;
}

}  // namespace

std::string man_page(const std::vector<command_entry>& entries)
{
    std::string text = ".TH TESSOLV 1 \"\" \"tessolv " + std::string(zeb::tessolv::version()) +
                       "\" \"User Commands\"\n"
                       ".SH NAME\ntessolv \\- look at finite\\-element meshes, convert and mend them\n"
                       ".SH SYNOPSIS\n.B tessolv\n.I COMMAND FILE\n\\&... [\\fIOPTIONS\\fR]\n.br\n"
                       ".B tessolv\n.I COMMAND\n.B \\-\\-help\n"
                       ".SH DESCRIPTION\nResults go to standard output, all else to standard error. Nothing is mended\n"
                       "unless asked for, and no input is overwritten without\n.BR \\-\\-force .\n";
    for (const option_entry& option : entries.front().options) text += option_lines(option);
    text += ".SH COMMANDS\n";
    for (std::size_t i = 1; i < entries.size(); ++i) text += command_lines(entries[i]);
    text += ".SH EXIT STATUS\n" + verbatim(exit_table());
    text +=
        ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\nno colours, unless empty or\n.B \\-\\-color\nis given\n"
        ".TP\n\\fBTERM\\fR\nno colours and no progress if it is \"dumb\"\n"
        ".TP\n\\fBCOLUMNS\\fR\nthe width of what is drawn, where there is no terminal\n";
    return text;
}

}  // namespace tool
