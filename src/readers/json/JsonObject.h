#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// Members of a small JSON object from evidence, such as a value of a database, where each may be
/// there or not and be of any kind. Files, which may be large and damaged, are walked: JsonWalk.h.
class JsonObject {
  public:
    explicit JsonObject(nlohmann::json value) : m_value(std::move(value)) {}
    /// What is no JSON, or no object, has no members. Bytes that aren't UTF-8 are Windows-1252.
    static JsonObject parsed(std::string_view text);

    bool isObject() const { return m_value.is_object(); }
    /// A zero character is shown as U+2400. Empty for what is no text.
    std::string text(const char *name) const;
    /// Nothing for what is no number. Fractions are dropped, and what 64 bits can't hold is none.
    std::optional<std::int64_t> number(const char *name) const;
    std::optional<bool> truth(const char *name) const;
    /// Null where there is none.
    const nlohmann::json *array(const char *name) const;

  private:
    const nlohmann::json *member(const char *name) const;

    nlohmann::json m_value;
};

} // namespace nv
