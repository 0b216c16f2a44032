#include "findings/words_of_ids.h"

#include <algorithm>
#include <cstdio>

#include "findings/face_list.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {

std::vector<numbered_items> items_of(const mesh& m, const found& f, std::size_t most)
{
    std::vector<numbered_items> items;
    const element_places places(m);
    const bool of_nodes = info_of(f.which).place == fault_place::node;
    for (std::size_t i = 0; i < std::min(most, f.ids.size()); ++i) {
        const std::uint64_t id = f.ids[i];
        std::string kind = "node";
        std::uint64_t number = id < m.node_numbers.size() ? m.node_numbers[id] : id + 1;
        if (!of_nodes) {
            const std::size_t b = places.block_of(id);
            kind = info_of(m.blocks[b].type).name;
            number = m.blocks[b].numbers[id - places.first(b)];
        }
        if (items.empty() || items.back().kind != kind) items.push_back({kind, {}});
        items.back().numbers.push_back(number);
    }
    return items;
}

std::string words_of(const mesh& m, const found& f, std::size_t most)
{
    std::string text;
    for (const numbered_items& items : items_of(m, f, most)) {
        text += (text.empty() ? "" : ", ") + items.kind;
        for (const std::uint64_t number : items.numbers) text += ' ' + std::to_string(number);
    }
    return text + (f.ids.size() > most ? " ..." : "");
}

std::string words_of(const lost_edges& lost)
{
    char spacing[32];
    std::snprintf(spacing, sizeof spacing, "%.3g", lost.spacing);
    return counted(lost.count, "edge", "edges") + " below " + spacing + ", which " + lost.writer->name + " (" +
           lost.writer->words + ") does not keep apart";
}

std::string percent_of(const found& f)
{
    if (f.of == 0) return {};
    const double percent = 100 * static_cast<double>(f.count) / static_cast<double>(f.of);
    char text[32];
    std::snprintf(text, sizeof text, percent < 99.5 ? "%.2g" : "%.0f", percent);
    return text;
}

}  // namespace tool
