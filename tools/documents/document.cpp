#include <map>
#include <memory>

#include "commands/files.h"
#include "documents/documents.h"

namespace tool {

void declare_document(CLI::App& program, std::function<exit_status()>& chosen)
{
    using maker = std::string (*)(const std::vector<command_entry>&);
    static const std::map<std::string, maker> makers{
        {"man", man_page}, {"bash", bash_completion}, {"zsh", zsh_completion}};
    CLI::App* app = program.add_subcommand("document", "writes the manual page or a completion")->group("");
    const auto kind = std::make_shared<std::string>();
    app->add_option("KIND", *kind)->required()->check(CLI::IsMember({"man", "bash", "zsh"}));
    app->callback([&program, &chosen, kind] {
        chosen = [&program, kind] {
            print(makers.at(*kind)(entries_of(program)));
            return exit_clean;
        };
    });
}

}  // namespace tool
