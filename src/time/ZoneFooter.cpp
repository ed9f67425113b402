#include "time/ZoneFooter.h"

#include <algorithm>
#include <cctype>

namespace nv {

namespace c = std::chrono;

namespace {

constexpr int kMostHours = 167;
constexpr int kSecondsPerHour = 3600;
constexpr int kDefaultChange = 2 * kSecondsPerHour;

} // namespace

/// Walks over a rule's text. Each step is false, or empty, where the text is not as it should be.
class FooterText {
  public:
    explicit FooterText(std::string_view text) : m_rest(text) {}

    bool atEnd() const { return m_rest.empty(); }
    bool skip(char wanted) {
        if (atEnd() || m_rest.front() != wanted)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    bool name(std::string &name);
    /// West of Greenwich is positive in the text.
    bool offset(c::seconds &east);
    bool change(ZoneFooter::Change &change);

  private:
    bool number(int &number, int most);
    bool clock(int &seconds);
    bool day(ZoneFooter::Change &change);

    std::string_view m_rest;
};

bool FooterText::name(std::string &name) {
    const bool quoted = skip('<');
    const auto end = std::ranges::find_if_not(m_rest, [quoted](unsigned char letter) {
        return quoted ? std::isalnum(letter) || letter == '+' || letter == '-'
                      : std::isalpha(letter) != 0;
    });
    name.assign(m_rest.begin(), end);
    m_rest.remove_prefix(name.size());
    return !name.empty() && (!quoted || skip('>'));
}

bool FooterText::number(int &number, int most) {
    number = 0;
    std::size_t digits = 0;
    for (; digits < m_rest.size() && std::isdigit(static_cast<unsigned char>(m_rest[digits]));
         ++digits) {
        number = number * 10 + (m_rest[digits] - '0');
        if (number > most)
            return false;
    }
    m_rest.remove_prefix(digits);
    return digits > 0;
}

bool FooterText::clock(int &seconds) {
    const bool negative = skip('-');
    if (!negative)
        skip('+');
    int hours = 0;
    int part = 0;
    if (!number(hours, kMostHours))
        return false;
    seconds = hours * kSecondsPerHour;
    for (const int unit : {60, 1}) {
        if (!skip(':'))
            break;
        if (!number(part, 59))
            return false;
        seconds += part * unit;
    }
    if (negative)
        seconds = -seconds;
    return true;
}

bool FooterText::offset(c::seconds &east) {
    int west = 0;
    if (!clock(west))
        return false;
    east = c::seconds(-west);
    return true;
}

bool FooterText::day(ZoneFooter::Change &change) {
    using Kind = ZoneFooter::Change::Kind;
    if (!skip('M')) {
        change.kind = skip('J') ? Kind::dayWithout29 : Kind::day;
        return number(change.day, 365) && (change.kind == Kind::day || change.day >= 1);
    }
    int month = 0;
    int week = 0;
    const bool read =
        number(month, 12) && skip('.') && number(week, 5) && skip('.') && number(change.day, 6);
    change.month = static_cast<unsigned>(month);
    change.week = static_cast<unsigned>(week);
    return read && month >= 1 && week >= 1;
}

bool FooterText::change(ZoneFooter::Change &change) {
    change.seconds = kDefaultChange;
    return day(change) && (!skip('/') || clock(change.seconds));
}

std::optional<ZoneFooter> ZoneFooter::parse(std::string_view text) {
    FooterText rest(text);
    ZoneFooter footer;
    if (!rest.name(footer.m_standard.abbreviation) || !rest.offset(footer.m_standard.offset))
        return std::nullopt;
    if (rest.atEnd())
        return footer;
    Daylight daylight;
    daylight.time.offset = footer.m_standard.offset + c::hours(1);
    if (!rest.name(daylight.time.abbreviation))
        return std::nullopt;
    if (!rest.skip(',') && (!rest.offset(daylight.time.offset) || !rest.skip(',')))
        return std::nullopt;
    if (!rest.change(daylight.begin) || !rest.skip(',') || !rest.change(daylight.end) ||
        !rest.atEnd())
        return std::nullopt;
    footer.m_daylight = std::move(daylight);
    return footer;
}

c::sys_seconds ZoneFooter::inYear(const Change &change, c::year year) {
    const c::seconds clock(change.seconds);
    if (change.kind == Change::Kind::weekday) {
        const c::weekday weekday(static_cast<unsigned>(change.day));
        const c::month month(change.month);
        constexpr unsigned kLast = 5;
        const c::sys_days day = change.week == kLast
                                    ? c::sys_days(year / month / weekday[c::last])
                                    : c::sys_days(year / month / weekday[change.week]);
        return day + clock;
    }
    const c::sys_days newYear = year / c::January / 1;
    if (change.kind == Change::Kind::day)
        return newYear + c::days(change.day) + clock;
    constexpr int kFirstOfMarch = 60;
    const bool passes29 = year.is_leap() && change.day >= kFirstOfMarch;
    return newYear + c::days(change.day - 1 + (passes29 ? 1 : 0)) + clock;
}

ZoneMoment ZoneFooter::at(std::int64_t unixSeconds) const {
    const auto momentOf = [](const Time &time) {
        return ZoneMoment{time.offset, time.abbreviation};
    };
    if (!m_daylight)
        return momentOf(m_standard);
    const c::sys_seconds now{c::seconds(unixSeconds)};
    const c::year year = c::year_month_day(c::floor<c::days>(now)).year();
    const c::sys_seconds begin = inYear(m_daylight->begin, year) - m_standard.offset;
    const c::sys_seconds end = inYear(m_daylight->end, year) - m_daylight->time.offset;
    // In the south daylight time lasts over the turn of the year.
    const bool daylight = begin < end ? begin <= now && now < end : !(end <= now && now < begin);
    return momentOf(daylight ? m_daylight->time : m_standard);
}

std::vector<std::string> ZoneFooter::abbreviations() const {
    std::vector<std::string> all = {m_standard.abbreviation};
    if (m_daylight)
        all.push_back(m_daylight->time.abbreviation);
    return all;
}

} // namespace nv
