#include "check.h"

#include <memory>

#include "commands/command.h"

namespace tool {

std::function<exit_status()> declare_check(CLI::App& app)
{
    const auto options = std::make_shared<check_options>();
    app.add_option("FILE", options->files)->required();
    app.add_option("--output", options->output);
    app.add_flag("--json", options->json);
    app.add_flag("--quiet", options->quiet);
    const auto read_as = [options](stl_format format) { return [options, format] { options->format = format; }; };
    CLI::Option* ascii = app.add_flag_callback("--ascii", read_as(stl_format::ascii));
    app.add_flag_callback("--binary", read_as(stl_format::binary))->excludes(ascii);
    app.parse_complete_callback([options] {
        if (options->output && options->files.size() > 1) throw CLI::ValidationError("--output", "takes one FILE only");
    });
    return [options] { return check(*options); };
}

}  // namespace tool
