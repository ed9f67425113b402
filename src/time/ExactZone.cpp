#include "time/ExactZone.h"

#include "base/ByteView.h"
#include "base/Files.h"
#include "base/Text.h"
#include "time/TimeZone.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <date/tz.h>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestFile =
    std::size_t{1024} * 1024; // bytes; the largest of them have 4 KB

// No zone of the world: "no zone was chosen", and the machine's own.
constexpr std::string_view kNoZones[] = {"Factory", "localtime", "posixrules"};

/// After all dates that there are.
const date::sys_days kNever = date::year(10000) / 1 / 1;

date::sys_seconds instantOf(Date utc) {
    return date::sys_seconds(std::chrono::seconds(utc.unixSeconds()));
}

std::string textHead(const fs::path &file, std::size_t count) {
    const Bytes bytes = readHead(file, count);
    return std::string(ByteView(bytes).raw());
}

/// What stands after the word `word` on the first line.
std::string versionIn(const fs::path &file, std::string_view word) {
    std::error_code notThere;
    if (!fs::is_regular_file(file, notThere))
        return {};
    const std::string head = textHead(file, 100);
    const std::string_view first = trim(std::string_view(head).substr(0, head.find('\n')));
    return first.starts_with(word) ? std::string(trim(first.substr(word.size()))) : std::string();
}

} // namespace

ExactZone::ExactZone(std::string name, std::string version, const date::time_zone &law,
                     std::optional<ZoneFooter> footer)
    : m_name(std::move(name)), m_version(std::move(version)), m_law(law),
      m_footer(std::move(footer)) {}

ZoneMoment ExactZone::at(Date utc) const {
    date::sys_info info = m_law.get_info(instantOf(utc));
    // Files list changes until 2037 mostly.
    if (m_footer && info.end > kNever)
        return m_footer->at(utc.unixSeconds());
    return {info.offset, std::move(info.abbrev)};
}

std::vector<std::string> ExactZone::abbreviations() const {
    std::vector<std::string> all =
        m_footer ? m_footer->abbreviations() : std::vector<std::string>();
    date::sys_seconds at = instantOf(Date::fromCivil({100, 1, 1}));
    while (at < kNever) {
        const date::sys_info info = m_law.get_info(at);
        all.push_back(info.abbrev);
        at = info.end;
    }
    std::ranges::sort(all);
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

bool ExactZones::areThere() const {
    std::error_code notThere;
    return fs::is_directory(m_folder, notThere);
}

void ExactZones::require() const {
    if (!areThere())
        throw ZoneFailure(
            fmt::format("exact time zones are read from \"{}\", which this system doesn't have: "
                        "install its package tzdata",
                        textOf(m_folder)));
}

std::vector<std::string> ExactZones::names() const {
    std::vector<std::string> names;
    if (!areThere())
        return names;
    for (const date::time_zone &zone : date::get_tzdb().zones)
        if (std::ranges::find(kNoZones, zone.name()) == std::end(kNoZones))
            names.push_back(zone.name());
    std::ranges::sort(names);
    return names;
}

std::shared_ptr<const ExactZone> ExactZones::find(std::string_view name) const {
    require();
    const auto all = names();
    const auto found = std::ranges::find_if(
        all, [name](const std::string &each) { return equalsNoCase(each, name); });
    if (found == all.end())
        return nullptr;
    ZoneFooter footer = footerOf(*found);
    return std::make_shared<ExactZone>(*found, version(), *date::locate_zone(*found),
                                       std::move(footer));
}

/// The library trusts the files that it reads: what is none of them must not reach it.
ZoneFooter ExactZones::footerOf(const std::string &name) const {
    const fs::path file = m_folder / name;
    const auto refuse = [&file](std::string_view why) {
        throw ZoneFailure(fmt::format("the time zone's file \"{}\" {}", textOf(file), why));
    };
    std::error_code notThere;
    if (!fs::is_regular_file(file, notThere))
        refuse("is not there");
    const std::string bytes = textHead(file, kLongestFile + 1);
    constexpr std::size_t kVersionAt = 4;
    if (bytes.size() > kLongestFile || !bytes.starts_with("TZif"))
        refuse("is no file of zoneinfo: it doesn't begin with TZif");
    const std::size_t end = bytes.size() - 1;
    const std::size_t begin = bytes.rfind('\n', end - 1);
    if (bytes[kVersionAt] < '2' || bytes.back() != '\n' || begin == std::string::npos)
        refuse("has no rule in its last line: it is cut, or of the first version of its format");
    const std::string_view rule = std::string_view(bytes).substr(begin + 1, end - begin - 1);
    auto footer = ZoneFooter::parse(rule);
    if (!footer)
        refuse(fmt::format("has a last line that is no rule: \"{}\"", rule));
    return std::move(*footer);
}

std::string ExactZones::version() const {
    std::string version = versionIn(m_folder / "tzdata.zi", "# version ");
    if (version.empty())
        version = versionIn(m_folder / "+VERSION", "");
    return version.empty() ? "unknown" : version;
}

void setExactZone(TimeZone &zone, std::shared_ptr<const ExactZone> exact, Date now) {
    const ZoneMoment law = exact->at(now);
    const auto east = std::chrono::floor<std::chrono::minutes>(law.offset).count();
    zone = TimeZone(now);
    zone.exact = std::move(exact);
    zone.tzTimeZoneID = 0;
    zone.tzBias = zone.tzActiveBias = static_cast<std::int16_t>(-east);
    zone.tzDSTBias = zone.tzLatitudeBias = 0;
    zone.tzLongitudeBias = static_cast<std::int16_t>((zone.tzBias > 0) - (zone.tzBias < 0));
    zone.dstAdjustment = zone.dstInEffect = false;
    zone.tzBiasAsText = formatBiasText(static_cast<std::int16_t>(east));
    zone.daylightCode = zone.tzDaylightCode = zone.tzStandardCode = law.abbreviation;
    zone.tzName = zone.tzStandardName = zone.tzDaylightName = zone.exact->name();
}

std::string zoneKey(const TimeZone &zone) {
    return zone.exact ? zone.exact->name() : fmt::format("{}", zone.tzTimeZoneID);
}

std::string offsetText(std::chrono::seconds offset) {
    const std::chrono::hh_mm_ss clock(std::chrono::abs(offset));
    std::string text = fmt::format("{}{:02}{:02}", offset.count() < 0 ? '-' : '+',
                                   clock.hours().count(), clock.minutes().count());
    if (clock.seconds().count() != 0)
        text += fmt::format("{:02}", clock.seconds().count());
    return text;
}

std::string exactZoneText(const TimeZone &zone) {
    return zone.exact ? fmt::format("{}, zoneinfo {}", zone.exact->name(), zone.exact->version())
                      : std::string();
}

} // namespace nv
