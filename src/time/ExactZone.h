#pragma once

#include "time/Date.h"
#include "time/ZoneFooter.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace date {
class time_zone;
}

namespace nv {

struct TimeZone;

/// Zones that can't be had, in words for the examiner.
class ZoneFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A zone of the IANA database with its law at each date, from before the first clock that was set
/// by law (local mean time, "LMT") to the year 9999.
class ExactZone {
  public:
    /// For ExactZones; `law` must outlive this.
    ExactZone(std::string name, std::string version, const date::time_zone &law,
              std::optional<ZoneFooter> footer);

    const std::string &name() const { return m_name; }
    /// Of the zoneinfo that it was taken from: "2025b".
    const std::string &version() const { return m_version; }
    /// There must be a date. Costs some 200 ns.
    ZoneMoment at(Date utc) const;
    /// All that it has ever used.
    std::vector<std::string> abbreviations() const;

  private:
    std::string m_name;
    std::string m_version;
    const date::time_zone &m_law;
    std::optional<ZoneFooter> m_footer;
};

/// The zones of the system's zoneinfo. A zone is read once a process.
class ExactZones {
  public:
    /// `folder` is where the system has them.
    explicit ExactZones(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    /// The folder is there.
    bool areThere() const;
    /// Throws ZoneFailure when it isn't.
    void require() const;
    /// All, by name; none when the system has no zoneinfo.
    std::vector<std::string> names() const;
    /// Letters may be in either case. Nothing when there is no zone of this name. Throws
    /// ZoneFailure when the system has no zoneinfo, or a file of the zone that can't be read.
    std::shared_ptr<const ExactZone> find(std::string_view name) const;
    /// "2025b"; "unknown" when nothing tells it.
    std::string version() const;

  private:
    ZoneFooter footerOf(const std::string &name) const;

    std::filesystem::path m_folder;
};

/// Makes `zone` the exact one. What it has for the biases of a classic zone is the law of `now`,
/// which is UTC.
void setExactZone(TimeZone &zone, std::shared_ptr<const ExactZone> exact, Date now);

/// How projects and settings name a zone: "Europe/Berlin", or the number of a classic one.
std::string zoneKey(const TimeZone &zone);

/// "+0100"; with seconds where local mean time has some: "+005328".
std::string offsetText(std::chrono::seconds offset);

/// "Europe/Berlin, zoneinfo 2025b"; empty for a classic zone.
std::string exactZoneText(const TimeZone &zone);

} // namespace nv
