#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What the law of a zone says of one moment.
struct ZoneMoment {
    std::chrono::seconds offset{}; ///< local time minus UTC: east of Greenwich positive
    std::string abbreviation;      ///< the zone's own: "CEST", "LMT", "+0530"
};

/// The last line of a zone's file, the rule that holds after the last change that the file lists:
/// "CET-1CEST,M3.5.0,M10.5.0/3". Written as POSIX has it in TZ, with the clock running from -167 to
/// 167 hours.
class ZoneFooter {
  public:
    /// Nothing when the text is no such rule.
    static std::optional<ZoneFooter> parse(std::string_view text);

    ZoneMoment at(std::int64_t unixSeconds) const;
    /// Of all times that the rule knows.
    std::vector<std::string> abbreviations() const;

  private:
    friend class FooterText;

    /// When the clocks change, in the local time before the change.
    struct Change {
        enum class Kind {
            weekday,      ///< Mm.w.d
            dayWithout29, ///< Jn, from 1; the 29th of February isn't counted
            day           ///< n, from 0
        };
        Kind kind = Kind::weekday;
        unsigned month = 1;
        unsigned week = 1; ///< 5 is the last one
        int day = 0;       ///< of the week, Sunday 0; else of the year
        int seconds = 0;   ///< from midnight
    };
    struct Time {
        std::string abbreviation;
        std::chrono::seconds offset{};
    };
    struct Daylight {
        Time time;
        Change begin;
        Change end;
    };

    static std::chrono::sys_seconds inYear(const Change &change, std::chrono::year year);

    Time m_standard;
    std::optional<Daylight> m_daylight;
};

} // namespace nv
