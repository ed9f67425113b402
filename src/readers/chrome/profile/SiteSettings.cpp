// PATTERN = site "," site        of the page, and of the page around it; "*" is any

#include "readers/chrome/profile/SiteSettings.h"

#include "base/Text.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/sqlite/HistoryRow.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace nv {

namespace {

/// The number of a setting is the same for all permissions.
std::string_view settingWord(std::int64_t setting) {
    constexpr std::array<std::string_view, 6> kWords = {
        "default", "allowed", "blocked", "ask", "session only", "important content"};
    return setting >= 0 && setting < static_cast<std::int64_t>(kWords.size())
               ? kWords[static_cast<std::size_t>(setting)]
               : std::string_view();
}

UrlRecord siteRecord(const ReadContext &ctx, const std::string &pattern, std::uint64_t offset) {
    UrlRecord record = profileRecord(ctx, kChromeSiteSetting, "Saved", "Site Setting");
    const std::size_t comma = pattern.find(',');
    record.URLRawValue = pattern;
    // "[*.]" stands for all hosts of a domain, and is no part of a host's name.
    setUrl(record, replaceAll(pattern.substr(0, comma), "[*.]", ""));
    if (record.host.empty() && comma != std::string::npos)
        record.host = record.URL.find_first_of(":/*") == std::string::npos ? record.URL : "";
    record.MapFileOffset = static_cast<std::int64_t>(offset);
    const std::string around = comma == std::string::npos ? "" : pattern.substr(comma + 1);
    if (around != "*")
        record.facts.add("embedded_in", around);
    return record;
}

void addSetting(FactList &facts, const JsonScalar &setting) {
    const auto *number = std::get_if<std::int64_t>(&setting);
    if (number)
        facts.add("setting", std::string(settingWord(*number)), *number);
    else
        facts.add("setting", scalarText(setting));
}

/// What a permission keeps besides a number: "visits=1; hasHighScore=no"
void addSettingParts(FactList &facts, const SettingsEntry &entry) {
    constexpr std::string_view kBegin = "setting.";
    constexpr std::size_t kLongest = 2000;
    std::string text;
    for (const auto &[name, value] : entry.values)
        if (name.starts_with(kBegin) && text.size() < kLongest)
            text += fmt::format("{}{}={}", text.empty() ? "" : "; ", name.substr(kBegin.size()),
                                scalarText(value));
    facts.add("setting", text);
    addStamp(facts, "last_used", entry.number("setting.lastEngagementTime"));
    addStamp(facts, "last_used", entry.number("setting.lastMediaPlaybackTime"));
    addStamp(facts, "last_used", entry.number("last_visit"));
}

void savePermission(ReadContext &ctx, const SettingsEntry &entry) {
    UrlRecord record = siteRecord(ctx, entry.path[1], entry.offset);
    setEvent(record, stampDate(entry.number("last_modified")), ctx.clock);
    record.ExpiryDate = stampDate(entry.number("expiration"));
    record.facts.add("permission", entry.path[0]);
    if (const JsonScalar *setting = entry.find("setting"))
        addSetting(record.facts, *setting);
    addSettingParts(record.facts, entry);
    addStamp(record.facts, "last_modified", entry.number("last_modified"));
    record.facts.add("source_offset", static_cast<std::int64_t>(entry.offset));
    ctx.sink.save(record);
}

void savePermissions(ReadContext &ctx, const SettingsEntry &entry) {
    for (const auto &[name, value] : entry.values) {
        UrlRecord record = siteRecord(ctx, entry.path[0], entry.offset);
        record.facts.add("permission", name);
        addSetting(record.facts, value);
        record.facts.add("source_offset", static_cast<std::int64_t>(entry.offset));
        ctx.sink.save(record);
    }
}

/// Each level makes the page a fifth larger. Two figures do: 1.2 to the power of 1.2239 is 125 %.
double zoomFactor(double level) {
    constexpr double kStep = 1.2;
    constexpr double kFigures = 100;
    return std::round(std::pow(kStep, level) * kFigures) / kFigures;
}

void saveZoom(ReadContext &ctx, const SettingsEntry &entry) {
    UrlRecord record = siteRecord(ctx, entry.path[0], entry.offset);
    if (record.host.empty())
        record.host = entry.path[0];
    setEvent(record, stampDate(entry.number("last_modified")), ctx.clock);
    const JsonScalar *stored = entry.find(entry.find("") ? "" : "zoom_level");
    constexpr double kMost = 100; // levels; browsers go from -8 to 9
    const auto level = stored ? realOf(*stored) : std::nullopt;
    if (level && std::abs(*level) < kMost)
        record.facts.add("zoom", zoomFactor(*level), *level);
    else if (stored)
        record.facts.add("zoom", scalarText(*stored));
    addStamp(record.facts, "last_modified", entry.number("last_modified"));
    record.facts.add("source_offset", static_cast<std::int64_t>(entry.offset));
    ctx.sink.save(record);
}

} // namespace

void saveSiteSetting(ReadContext &ctx, const SettingsEntry &entry) {
    using Kind = SettingsEntry::Kind;
    if (entry.kind == Kind::sitePermission)
        savePermission(ctx, entry);
    else if (entry.kind == Kind::sitePermissions)
        savePermissions(ctx, entry);
    else if (entry.kind == Kind::siteZoom)
        saveZoom(ctx, entry);
}

} // namespace nv
