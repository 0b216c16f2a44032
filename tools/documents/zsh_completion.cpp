#include "documents/documents.h"

namespace tool {
namespace {

constexpr const char* middle = R"(    )
    local context state state_descr line
    typeset -A opt_args
)";

constexpr const char* dispatch = R"(    case $state in
    command) _describe command commands ;;
    argument)
        case $words[1] in
)";

constexpr const char* end = R"(        esac ;;
    esac
}
_tessolv "$@"
)";

// Within single quotes, where brackets and colons have a meaning.
std::string quoted_text(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
        result += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return result;
}

std::string action_of(const option_entry& option)
{
    if (option.takes_file() || option.is_operand) return "_files";
    std::string words;
    for (const std::string& choice : option.choices) words += (words.empty() ? "" : " ") + choice;
    return words.empty() ? " " : '(' + words + ')';
}

std::string argument_of(const option_entry& option)
{
    if (option.is_operand) return (option.repeats ? "'*:" : "'1:") + option.names.front() + ":_files'";
    std::string text;
    for (const std::string& name : option.names) {
        text += (text.empty() ? "'" : " '") + name + (option.values == 1 && name[1] == '-' ? "=" : "") + '[' +
                quoted_text(option.description) + ']';
        for (int i = 0; i < option.values; ++i)
            text += ':' + std::string(option.choices.empty() ? quoted_text(option.value) : "choice") + ':' +
                    action_of(option);
        text += '\'';
    }
    return text;
}

std::string arguments_of(const command_entry& command)
{
    std::string text;
    for (const option_entry& option : command.options) text += " \\\n            " + argument_of(option);
    return text;
}

}  // namespace

std::string zsh_completion(const std::vector<command_entry>& entries)
{
    std::string text =
        "#compdef tessolv\n# Completion of tessolv for zsh, made by the program from its options.\n"
        "_tessolv()\n{\n    local -a commands\n    commands=(\n";
    for (std::size_t i = 1; i < entries.size(); ++i)
        text += "        '" + entries[i].name + ':' + quoted_text(entries[i].summary) + "'\n";
    text += std::string(middle) + "    _arguments -C" + arguments_of(entries.front()) +
            " \\\n            '1:command:->command' '*::argument:->argument'\n" + dispatch;
    for (std::size_t i = 1; i < entries.size(); ++i)
        text += "        " + entries[i].name + ") _arguments" + arguments_of(entries[i]) + " ;;\n";
    return text + end;
}

}  // namespace tool
