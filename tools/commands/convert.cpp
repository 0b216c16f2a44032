#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"

namespace tool {

std::function<exit_status()> declare_convert(CLI::App& app)
{
    const auto options = std::make_shared<shared_options>();
    declare_file(app, *options);
    declare_output(app, *options)->required();
    declare_json(app, *options);
    declare_quiet(app, *options);
    return [options] {
        return for_each_file(*options, [&](const std::string& path) {
            const loaded input = load_sound(path, *options);
            if (!options->quiet)
                for (const std::string& note : input.content.notes) remark(path, note);
            save(input.content, *options);
            if (options->json)
                print_json({{"file", path},
                            {"format", std::string(input.as->name)},
                            {"output", *options->output},
                            {"nodes", input.content.pos.cols},
                            {"elements", input.content.element_count()}});
            return exit_clean;
        });
    };
}

}  // namespace tool
