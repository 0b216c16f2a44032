#include "documents/documents.h"
#include "words.h"

namespace tool {
namespace {

constexpr const char* head = R"(# Completion of tessolv for bash, made by the program from its options.
_tessolv()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= words= files= i
    # bash takes the sign of --option=value for a word of its own
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD-2]}
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            command=${COMP_WORDS[i]}
            break
        fi
    done
    case "$command $before" in
)";

constexpr const char* tail = R"(    esac
    if [[ -z $words$files && ( -z $command || $word == -* ) ]]; then
        case $command in
)";

constexpr const char* end = R"(        esac
    fi
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F _tessolv tessolv
)";

std::string pattern(const command_entry& command, const option_entry& option)
{
    std::string text;
    for (const std::string& name : option.names)
        text += (text.empty() ? "\"" : "|\"") + command.name + ' ' + name + '"';
    return text;
}

// What may follow an option that takes a value: one of its choices, a file, or nothing that could be known.
std::string values_case(const command_entry& command)
{
    std::string text;
    for (const option_entry& option : command.options) {
        if (option.is_operand || option.value.empty() || option.takes_file()) continue;
        std::string words;
        for (const std::string& choice : option.choices) append_word(words, choice);
        text += "        " + pattern(command, option) + ") " +
                (words.empty() ? "COMPREPLY=(); return" : "words=\"" + words + '"') + " ;;\n";
    }
    return text;
}

std::string files_case(const command_entry& command)
{
    std::string patterns;
    for (const option_entry& option : command.options)
        if (!option.is_operand && option.takes_file())
            patterns += (patterns.empty() ? "" : "|") + pattern(command, option);
    return patterns.empty() ? patterns : "        " + patterns + ") files=yes ;;\n";
}

std::string names_case(const command_entry& command, const std::string& more)
{
    std::string names = more;
    for (const option_entry& option : command.options)
        for (const std::string& name : option.names)
            if (!option.is_operand) append_word(names, name);
    return "        \"" + command.name + "\") words=\"" + names + "\" ;;\n";
}

}  // namespace

std::string bash_completion(const std::vector<command_entry>& entries)
{
    std::string commands;
    std::string values;
    std::string names;
    for (const command_entry& command : entries) {
        append_word(commands, command.name);
        values += values_case(command) + files_case(command);
    }
    for (const command_entry& command : entries) names += names_case(command, command.name.empty() ? commands : "");
    return head + values + tail + names + end;
}

}  // namespace tool
