#include "readers/json/JsonObject.h"

#include "base/Text.h"
#include "readers/json/JsonWalk.h"

#include <utility>

namespace nv {

using nlohmann::json;

JsonObject JsonObject::parsed(std::string_view text) {
    return JsonObject(json::parse(decodeText(text), nullptr, false));
}

const json *JsonObject::member(const char *name) const {
    if (!m_value.is_object())
        return nullptr;
    const auto found = m_value.find(name);
    return found == m_value.end() ? nullptr : &*found;
}

std::string JsonObject::text(const char *name) const {
    const json *found = member(name);
    if (!found || !found->is_string())
        return {};
    return replaceAll(found->get_ref<const std::string &>(), std::string_view("\0", 1), "\u2400");
}

std::optional<std::int64_t> JsonObject::number(const char *name) const {
    const json *found = member(name);
    if (!found || !found->is_number())
        return std::nullopt;
    if (found->is_number_unsigned()) {
        const auto value = found->get<std::uint64_t>();
        return std::in_range<std::int64_t>(value) ? std::optional(static_cast<std::int64_t>(value))
                                                  : std::nullopt;
    }
    if (found->is_number_integer())
        return found->get<std::int64_t>();
    return numberOf(JsonScalar(found->get<double>()));
}

std::optional<bool> JsonObject::truth(const char *name) const {
    const json *found = member(name);
    return found && found->is_boolean() ? std::optional(found->get<bool>()) : std::nullopt;
}

const json *JsonObject::array(const char *name) const {
    const json *found = member(name);
    return found && found->is_array() ? found : nullptr;
}

} // namespace nv
