#include "reports/exports/FactsJson.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <type_traits>
#include <utility>

namespace nv {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const FactValue &value) {
    return std::visit(
        [](const auto &held) -> Json {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
                return nullptr;
            else
                return held;
        },
        value);
}

void put(Json &object, const std::string &name, Json value) {
    if (!object.contains(name)) {
        object[name] = std::move(value);
        return;
    }
    Json &there = object[name];
    if (!there.is_array())
        there = Json::array({there});
    there.push_back(std::move(value));
}

std::string textOf(const char *name, const Json &object) {
    return fmt::format("\"{}\":{}", name,
                       object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace

std::string factMembers(const FactList &facts) {
    Json values, raw;
    for (const RecordFact &fact : facts) {
        put(values, fact.name, jsonOf(fact.value));
        if (!std::holds_alternative<std::monostate>(fact.raw))
            put(raw, fact.name, jsonOf(fact.raw));
    }
    if (values.is_null())
        return {};
    return textOf("facts", values) + (raw.is_null() ? "" : "," + textOf("facts_raw", raw));
}

std::string tagMember(const std::vector<RowTag> &tags) {
    Json names = Json::array();
    for (const RowTag &each : tags)
        names.push_back(each.tag.name);
    return names.empty() ? "" : textOf("tag_names", names);
}

} // namespace nv
