#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "findings/rules.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

constexpr std::array<const char*, 3> names_of_severities{"finding", "note", "off"};

template <class Value>
Value value_of(const json& from, const std::string& name)
{
    try {
        return from.get<Value>();
    } catch (const json::exception&) {
        throw wrong_usage("the rules: '" + name + "' has a value of another type");
    }
}

double number_of(const json& from, const std::string& name, double least, double most)
{
    if (!from.is_number()) throw wrong_usage("the rules: '" + name + "' is no number");
    const double value = from.get<double>();
    if (!(value >= least && value <= most))
        throw wrong_usage("the rules: '" + name + "' is " + from.dump() + ", not from " + json(least).dump() + " to " +
                          json(most).dump());
    return value;
}

const json& object_of(const json& from, const std::string& name)
{
    if (!from.is_object()) throw wrong_usage("the rules: '" + name + "' is no object");
    return from;
}

void take_severities(const json& from, rules& r)
{
    for (const auto& [code, value] : object_of(from, "faults").items()) {
        const auto known = std::ranges::find(all_faults(), code, &fault_info::code);
        if (known == all_faults().end()) throw wrong_usage("the rules: no fault '" + code + "'");
        const auto word = value_of<std::string>(value, code);
        const auto* found = std::ranges::find(names_of_severities, word);
        if (found == names_of_severities.end())
            throw wrong_usage("the rules: '" + code + "' is finding, note or off, not '" + word + "'");
        r.severities[static_cast<std::size_t>(known->which)] =
            static_cast<severity>(found - names_of_severities.begin());
    }
}

std::string words_of(double limit)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, limit).ptr};
}

void take_limits(const json& from, const std::string& kind, quality_limits& limits)
{
    for (const auto& [name, value] : object_of(from, kind).items()) {
        const std::string full = kind + '.' + name;
        double* to = name == "good"      ? &limits.good
                     : name == "warning" ? &limits.warning
                     : name == "bad"     ? &limits.bad
                                         : nullptr;
        if (to == nullptr) throw wrong_usage("the rules: no limit '" + full + "': there are good, warning, bad");
        *to = number_of(value, full, -1, 1);
    }
    if (!(limits.bad <= limits.warning && limits.warning <= limits.good))
        throw wrong_usage("the rules: the limits of '" + kind + "' do not ascend: bad " + words_of(limits.bad) +
                          ", warning " + words_of(limits.warning) + ", good " + words_of(limits.good));
}

void take_quality(const json& from, rules& r)
{
    for (const auto& [key, value] : object_of(from, "quality").items()) {
        const std::string& name = key;
        if (name == "all") {
            for (const zeb::element_type type : kinds_with_limits())
                take_limits(value, name, r.limits[static_cast<std::size_t>(type)]);
            continue;
        }
        const auto known = std::ranges::find_if(kinds_with_limits(),
                                                [&](zeb::element_type type) { return name == info_of(type).name; });
        if (known == kinds_with_limits().end()) throw wrong_usage("the rules: no kind '" + name + "' with a quality");
        take_limits(value, name, r.limits[static_cast<std::size_t>(*known)]);
    }
}

}  // namespace

rules rules_from_json(std::string_view text, const rules& base, bool profile_is_chosen)
{
    const json object = json::parse(text, nullptr, false);
    if (object.is_discarded() || !object.is_object()) throw wrong_usage("the rules are no JSON object");
    rules r = base;
    if (object.contains("profile")) {
        const rules named = rules_of_profile(value_of<std::string>(object["profile"], "profile"));
        if (!profile_is_chosen) r = named;
    }
    for (const auto& [name, value] : object.items()) {
        if (name == "faults")
            take_severities(value, r);
        else if (name == "quality")
            take_quality(value, r);
        else if (name == "coincident")
            r.coincident = number_of(value, name, 0, 1);
        else if (name == "short_edge")
            r.short_edge = number_of(value, name, 0, 1);
        else if (name != "profile")
            throw wrong_usage("the rules: no entry '" + name + "'");
    }
    return r;
}

std::string to_json(const rules& r)
{
    json faults = json::object();
    for (const fault_info& f : all_faults())
        faults[f.code] = names_of_severities[static_cast<std::size_t>(r.of(f.which))];
    json quality = json::object();
    for (const zeb::element_type type : kinds_with_limits()) {
        const quality_limits& l = r.limits_of(type);
        quality[info_of(type).name] = {{"good", l.good}, {"warning", l.warning}, {"bad", l.bad}};
    }
    const json object = {{"profile", r.profile},
                         {"coincident", r.coincident},
                         {"short_edge", r.short_edge},
                         {"faults", faults},
                         {"quality", quality}};
    return object.dump();
}

}  // namespace tool
