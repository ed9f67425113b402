#pragma once

#include "readers/json/JsonWalk.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// A part of "Preferences" or "Local State" that records are made of.
struct SettingsEntry {
    enum class Kind {
        sitePermission,  ///< path: permission, pattern
        sitePermissions, ///< path: pattern; up to 2014, a value a permission
        siteZoom,        ///< path: host
        account,         ///< of account_info
        profile,         ///< path: the profile's folder
    };
    Kind kind;
    std::vector<std::string> path; ///< names that tell it from others of its kind
    std::uint64_t offset = 0;      ///< in the file
    /// Members by name, those of objects below with "." between; "" for an entry that is a value.
    std::vector<std::pair<std::string, JsonScalar>> values;

    /// Null when there is none.
    const JsonScalar *find(std::string_view name) const;
    std::string text(std::string_view name) const;
    std::optional<std::int64_t> number(std::string_view name) const;
};

/// Single values that say something of the whole, by their names with "." between.
using SettingsValues = std::map<std::string, JsonScalar, std::less<>>;

/// Finds the entries of settings and hands them on, each when it has ended.
class SettingsWalk final : public JsonReceiver {
  public:
    explicit SettingsWalk(std::function<void(const SettingsEntry &)> take);

    void opened(const JsonPlace &place, bool isArray) override;
    void closed(const JsonPlace &place) override;
    void scalar(const JsonPlace &place, JsonScalar value) override;

    const SettingsValues &values() const { return m_values; }

  private:
    std::function<void(const SettingsEntry &)> m_take;
    std::optional<SettingsEntry> m_entry; ///< the one that is open
    std::size_t m_depth = 0;              ///< of its place
    SettingsValues m_values;
};

} // namespace nv
