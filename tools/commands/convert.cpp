#include <memory>

#include "commands/command.h"
#include "commands/files.h"

namespace tool {

std::function<exit_status()> declare_convert(CLI::App& app)
{
    const auto options = std::make_shared<shared_options>();
    declare_file(app, *options);
    declare_output(app, *options)->required();
    declare_quiet(app, *options);
    return [options] {
        return for_each_file(*options, [&](const std::string& path) {
            const loaded input = load_sound(path, *options);
            if (!options->quiet)
                for (const std::string& note : input.content.notes) remark(path, note);
            save(input.content, *options);
            return exit_clean;
        });
    };
}

}  // namespace tool
