#include "check/check.h"

#include <memory>

#include "commands/command.h"

namespace tool {

std::function<exit_status()> declare_check(CLI::App& app)
{
    const auto options = std::make_shared<check_options>();
    shared_options& shared = options->shared;
    declare_files(app, shared);
    declare_input_format(app, shared);
    declare_json(app, shared);
    declare_quiet(app, shared);
    app.add_option("--profile", options->profile, "judge by these rules: default, solver, shell or closed");
    app.add_option("--rules", options->rules_file, "judge by the rules of this JSON file");
    app.add_flag("--ids", options->ids, "name all nodes and elements at fault, not the first ones alone");
    app.add_option("--extract", options->extract, "write the elements and nodes at fault to this file");
    app.add_flag("--force", shared.force, "an input may be overwritten by --extract");
    app.add_option("--output", shared.output, "write the welded surface of one STL file");
    const auto read_as = [options](stl_format format) { return [options, format] { options->stl = format; }; };
    CLI::Option* ascii = app.add_flag_callback("--ascii", read_as(stl_format::ascii), "read as text STL");
    app.add_flag_callback("--binary", read_as(stl_format::binary), "read as binary STL")->excludes(ascii);
    app.parse_complete_callback([options] {
        for (const auto& [name, given] : {std::pair{"--output", options->shared.output.has_value()},
                                          std::pair{"--extract", options->extract.has_value()}})
            if (given && options->shared.files.size() > 1) throw CLI::ValidationError(name, "takes one FILE only");
    });
    return [options] { return check(*options); };
}

}  // namespace tool
