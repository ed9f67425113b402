#include "reports/FactsJson.h"

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

} // namespace

void addFacts(Json &record, const FactList &facts) {
    for (const RecordFact &fact : facts) {
        put(record["facts"], fact.name, jsonOf(fact.value));
        if (!std::holds_alternative<std::monostate>(fact.raw))
            put(record["facts_raw"], fact.name, jsonOf(fact.raw));
    }
}

} // namespace nv
