// Both files are one object of JSON; of it are read
//   profile.content_settings.exceptions.PERMISSION.PATTERN = {setting, last_modified, ...}
//   profile.content_settings.pattern_pairs.PATTERN         = {PERMISSION: setting}  up to 2014
//   partition.per_host_zoom_levels.PARTITION.HOST          = {zoom_level, last_modified} or a level
//   profile.per_host_zoom_levels.HOST                      = level                  up to 2014
//   account_info[]                                         = {email, full_name, gaia, ...}
//   profile.info_cache.FOLDER                              = {name, user_name, gaia_name, ...}
// and the single values of kValues.

#include "readers/chrome/profile/SettingsWalk.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <span>

namespace nv {

namespace {

constexpr std::string_view kAny = "*";

/// A place where an entry stands. `named` of its names, from the end, tell entries apart.
struct EntryPlace {
    SettingsEntry::Kind kind{};
    std::size_t length = 0;
    std::array<std::string_view, 5> path;
    std::size_t named = 0;
    bool mayBeValue = false;
};

constexpr std::array<EntryPlace, 6> kPlaces = {{
    {SettingsEntry::Kind::sitePermission,
     5,
     {"profile", "content_settings", "exceptions", kAny, kAny},
     2,
     false},
    {SettingsEntry::Kind::sitePermissions,
     4,
     {"profile", "content_settings", "pattern_pairs", kAny},
     1,
     false},
    {SettingsEntry::Kind::siteZoom, 4, {"partition", "per_host_zoom_levels", kAny, kAny}, 1, true},
    {SettingsEntry::Kind::siteZoom, 3, {"profile", "per_host_zoom_levels", kAny}, 1, true},
    {SettingsEntry::Kind::account, 2, {"account_info", kAny}, 0, false},
    {SettingsEntry::Kind::profile, 3, {"profile", "info_cache", kAny}, 1, false},
}};

constexpr std::array<std::string_view, 9> kValues = {
    "extensions.last_chrome_version",
    "profile.created_by_version",
    "profile.creation_time",
    "profile.name",
    "google.services.last_username",
    "google.services.last_signed_in_username",
    "google.services.username",
    "google.services.account_id",
    "user_experience_metrics.stability.stats_version"};

/// Of one entry; browsers write some ten.
constexpr std::size_t kMostValues = 500;

using Names = std::span<const std::string>;

bool fits(const EntryPlace &place, Names path) {
    if (path.size() != place.length)
        return false;
    for (std::size_t i = 0; i < place.length; ++i)
        if (place.path[i] != kAny && place.path[i] != path[i])
            return false;
    return true;
}

const EntryPlace *entryPlace(Names path) {
    const auto *found =
        std::ranges::find_if(kPlaces, [&](const EntryPlace &place) { return fits(place, path); });
    return found == kPlaces.end() ? nullptr : found;
}

std::string joined(Names names) {
    return fmt::format("{}", fmt::join(names, "."));
}

SettingsEntry entryAt(const EntryPlace &place, const JsonPlace &at) {
    const Names named = at.path.last(place.named);
    return {place.kind, {named.begin(), named.end()}, at.offset, {}};
}

} // namespace

const JsonScalar *SettingsEntry::find(std::string_view name) const {
    const auto found = std::ranges::find(
        values, name, [](const auto &each) { return std::string_view(each.first); });
    return found == values.end() ? nullptr : &found->second;
}

std::string SettingsEntry::text(std::string_view name) const {
    const JsonScalar *value = find(name);
    return value ? scalarText(*value) : std::string();
}

std::optional<std::int64_t> SettingsEntry::number(std::string_view name) const {
    const JsonScalar *value = find(name);
    return value ? numberOf(*value) : std::nullopt;
}

SettingsWalk::SettingsWalk(std::function<void(const SettingsEntry &)> take)
    : m_take(std::move(take)) {}

void SettingsWalk::opened(const JsonPlace &place, bool isArray) {
    if (m_entry || isArray)
        return;
    if (const EntryPlace *found = entryPlace(place.path)) {
        m_entry = entryAt(*found, place);
        m_depth = place.path.size();
    }
}

void SettingsWalk::closed(const JsonPlace &place) {
    if (!m_entry || place.path.size() != m_depth)
        return;
    m_take(*m_entry);
    m_entry.reset();
}

void SettingsWalk::scalar(const JsonPlace &place, JsonScalar value) {
    if (m_entry) {
        if (m_entry->values.size() < kMostValues)
            m_entry->values.emplace_back(joined(place.path.subspan(m_depth)), std::move(value));
        return;
    }
    if (const EntryPlace *found = entryPlace(place.path); found && found->mayBeValue) {
        SettingsEntry entry = entryAt(*found, place);
        entry.values.emplace_back("", std::move(value));
        m_take(entry);
        return;
    }
    constexpr std::size_t kDeepest = 3; // names of kValues
    if (place.path.size() > kDeepest)
        return;
    if (std::string name = joined(place.path); std::ranges::find(kValues, name) != kValues.end())
        m_values.insert_or_assign(std::move(name), std::move(value));
}

} // namespace nv
