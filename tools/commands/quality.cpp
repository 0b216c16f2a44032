#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "findings/measures.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

struct quality_options {
    shared_options shared;
    std::vector<double> range{0, 1};
    unsigned int bins = 10;
};

constexpr std::array<double, 5> quantile_places{0.05, 0.25, 0.5, 0.75, 0.95};

struct kind_numbers {
    const kind_info* kind;
    std::uint64_t count = 0;
    std::uint64_t inverted = 0;
    double min = 0;
    double max = 0;
    double mean = 0;
    std::array<double, quantile_places.size()> quantiles{};
    std::vector<std::uint64_t> histogram;
    std::uint64_t below = 0;
    std::uint64_t above = 0;
};

void fill_histogram(kind_numbers& n, const std::vector<double>& values, const quality_options& options)
{
    const double lower = options.range[0];
    const double upper = options.range[1];
    zeb::misc::histogram h(lower, upper, options.bins);
    for (const double q : values) h.process(q);
    const zeb::dense1D<unsigned int> bins = h.bins();
    n.histogram.assign(bins.begin(), bins.end());
    n.below = h.below();
    n.above = h.above();
    n.mean = h.mean();
}

// Quantile p is the value that a share p of the elements does not exceed.
kind_numbers numbers_of(const element_block& block, std::vector<double> values, const quality_options& options)
{
    kind_numbers n;
    n.kind = &info_of(block.type);
    n.count = values.size();
    fill_histogram(n, values, options);
    std::ranges::sort(values);
    n.inverted = static_cast<std::uint64_t>(std::ranges::lower_bound(values, 0.0) - values.begin());
    n.min = values.front();
    n.max = values.back();
    for (std::size_t i = 0; i < quantile_places.size(); ++i) {
        const auto rank = static_cast<std::size_t>(std::ceil(quantile_places[i] * static_cast<double>(values.size())));
        n.quantiles[i] = values[std::max<std::size_t>(rank, 1) - 1];
    }
    return n;
}

json json_of(const kind_numbers& n)
{
    json quantiles = json::array();
    for (std::size_t i = 0; i < quantile_places.size(); ++i)
        quantiles.push_back({{"share", quantile_places[i]}, {"value", n.quantiles[i]}});
    return {{"kind", n.kind->name}, {"count", n.count}, {"inverted", n.inverted}, {"min", n.min},
            {"mean", n.mean},       {"max", n.max},     {"quantiles", quantiles}, {"histogram", n.histogram},
            {"below", n.below},     {"above", n.above}};
}

std::string text_of(const kind_numbers& n, const quality_options& options)
{
    std::string text = std::string("  ") + n.kind->many + '\n';
    text += "  " + table_line("elements", std::to_string(n.count));
    text += "  " + table_line("inverted", std::to_string(n.inverted));
    text += "  " + table_line("minimum", short_number(n.min));
    for (std::size_t i = 0; i < quantile_places.size(); ++i)
        text += "  " + table_line(short_number(100 * quantile_places[i]) + " % below", short_number(n.quantiles[i]));
    text += "  " + table_line("mean", short_number(n.mean)) + "  " + table_line("maximum", short_number(n.max));
    const std::uint64_t most = std::max<std::uint64_t>(1, *std::ranges::max_element(n.histogram));
    const double width = (options.range[1] - options.range[0]) / options.bins;
    if (n.below != 0) text += "  " + table_line("below the range", std::to_string(n.below));
    for (std::size_t k = 0; k < n.histogram.size(); ++k) {
        const double lower = options.range[0] + width * static_cast<double>(k);
        std::string bar(static_cast<std::size_t>(40 * n.histogram[k] / most), '#');
        if (bar.empty() && n.histogram[k] != 0) bar = "#";
        std::string count = std::to_string(n.histogram[k]);
        count.resize(std::max<std::size_t>(count.size(), 10), ' ');
        text += "  " + table_line(short_number(lower) + " to " + short_number(lower + width),
                                  bar.empty() ? std::to_string(n.histogram[k]) : count + bar);
    }
    if (n.above != 0) text += "  " + table_line("above the range", std::to_string(n.above));
    return text;
}

exit_status quality(const std::string& path, const quality_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    field values{"quality", 1, number_kind::real64, {}};
    json kinds = json::array();
    std::string text = path + '\n';
    for (const element_block& block : m.blocks) {
        const std::vector<double> of_block = qualities_of(m, block);
        values.values.insert(values.values.end(), of_block.begin(), of_block.end());
        if (info_of(block.type).dimension < 2) continue;
        const kind_numbers n = numbers_of(block, of_block, options);
        kinds.push_back(json_of(n));
        text += text_of(n, options);
    }
    set_cell_field(m, std::move(values));
    if (options.shared.output) save(m, options.shared);
    if (options.shared.json)
        print_json({{"file", path}, {"range", options.range}, {"kinds", kinds}});
    else if (!options.shared.quiet)
        tell(options.shared, text);
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_quality(CLI::App& app)
{
    const auto options = std::make_shared<quality_options>();
    declare_files(app, options->shared);
    declare_solution(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    app.add_option("--range", options->range, "ends of the histogram, 0 1 unless given")->expected(2);
    app.add_option("--bins", options->bins, "bins of the histogram, 10 unless given")->check(CLI::Range(1, 1000));
    app.parse_complete_callback([options] {
        require_one_file(options->shared, "--output", options->shared.output.has_value());
        require_one_file(options->shared, "--sol", options->shared.solution.has_value());
        require_finite("--range", options->range);
        if (!(options->range[0] < options->range[1])) throw CLI::ValidationError("--range", "does not ascend");
        require_finite("--range", {options->range[1] - options->range[0]});
    });
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return quality(path, *options); });
    };
}

}  // namespace tool
