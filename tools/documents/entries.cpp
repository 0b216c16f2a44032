#include "documents/entries.h"

#include <algorithm>

namespace tool {
namespace {

std::vector<std::string> choices_of(const std::string& value)
{
    std::vector<std::string> choices;
    if (value.empty() || value.front() != '{') return choices;
    for (std::size_t from = 1; from < value.size();) {
        const std::size_t to = value.find_first_of(",}", from);
        choices.push_back(value.substr(from, to - from));
        from = to + 1;
    }
    return choices;
}

// "TEXT:{a,b}" is a choice, "UINT:INT in [1 - 1000]" a number.
std::string value_of(const CLI::Option& option)
{
    const std::string type = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
    if (const std::size_t brace = type.find('{'); brace != std::string::npos) return type.substr(brace);
    return type.substr(0, type.find(':'));
}

option_entry entry_of(const CLI::Option& option)
{
    option_entry entry;
    entry.is_operand = option.get_positional();
    if (entry.is_operand) entry.names.push_back(option.get_name(true));
    for (const std::string& name : option.get_snames()) entry.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames()) entry.names.push_back("--" + name);
    entry.value = value_of(option);
    entry.choices = choices_of(entry.value);
    entry.description = option.get_description();
    entry.values = entry.value.empty() ? 0 : option.get_items_expected_min();
    entry.repeats = entry.is_operand && option.get_items_expected_max() > 1;
    return entry;
}

command_entry entry_of(const CLI::App& app)
{
    command_entry entry;
    entry.name = app.get_parent() == nullptr ? "" : app.get_name();
    const std::string text = app.get_description();
    const std::size_t end = std::min(text.find('\n'), text.size());
    entry.summary = text.substr(0, end);
    entry.description = text.substr(std::min(text.find_first_not_of('\n', end), text.size()));
    entry.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options()) entry.options.push_back(entry_of(*option));
    return entry;
}

}  // namespace

std::vector<command_entry> entries_of(const CLI::App& program)
{
    std::vector<command_entry> entries{entry_of(program)};
    for (const CLI::App* app : program.get_subcommands([](const CLI::App* a) { return !a->get_group().empty(); }))
        entries.push_back(entry_of(*app));
    return entries;
}

}  // namespace tool
