#include "time/DateFormat.h"

#include "base/Text.h"
#include "time/DateNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

namespace nv {

namespace {

/// With AM first.
constexpr std::array<std::string_view, 3> kHalfDayMarks = {"AM/PM", "AMPM", "A/P"};
constexpr std::string_view kWholeDayClock = "24:00:00";

/// A piece of a format: a run of one letter, a mark of the half day, or text to copy.
struct Piece {
    enum class Kind { Letters, HalfDay, Text };
    Kind kind = Kind::Text;
    char letter = 0; ///< lower-case
    std::string_view text;
};

char lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

std::size_t runLength(std::string_view text) {
    const char letter = lower(text.front());
    const auto end = std::find_if(text.begin(), text.end(),
                                  [letter](char other) { return lower(other) != letter; });
    return static_cast<std::size_t>(end - text.begin());
}

/// What stands in quotes or after "\" at the start of `text`; `used` is its length with them.
std::string_view quoted(std::string_view text, std::size_t &used) {
    if (text.front() == '\\') {
        used = std::min<std::size_t>(2, text.size());
        return text.substr(1, 1);
    }
    const std::size_t end = std::min(text.find('"', 1), text.size());
    used = std::min(end + 1, text.size());
    return text.substr(1, end - 1);
}

/// Takes the next piece off the front of `rest`.
Piece nextPiece(std::string_view &rest) {
    const auto take = [&rest](Piece::Kind kind, std::size_t length) {
        const Piece piece{kind, lower(rest.front()), rest.substr(0, length)};
        rest.remove_prefix(length);
        return piece;
    };
    for (const std::string_view mark : kHalfDayMarks) {
        if (startsWithNoCase(rest, mark))
            return take(Piece::Kind::HalfDay, mark.size());
    }
    if (std::string_view("ymdhns").find(lower(rest.front())) != std::string_view::npos)
        return take(Piece::Kind::Letters, runLength(rest));
    if (rest.front() != '\\' && rest.front() != '"')
        return take(Piece::Kind::Text, 1);
    std::size_t used = 0;
    const std::string_view text = quoted(rest, used);
    rest.remove_prefix(used);
    return {Piece::Kind::Text, 0, text};
}

void split(std::string_view format, std::vector<Piece> &pieces) {
    while (!format.empty()) {
        if (format.starts_with(kWholeDayClock)) {
            split(kTimeFormat, pieces);
            format.remove_prefix(kWholeDayClock.size());
        } else {
            pieces.push_back(nextPiece(format));
        }
    }
}

/// Writes the pieces of one format for one date.
class Writer {
  public:
    Writer(Date date, bool twelveHours)
        : m_civil(date.civil()), m_weekday(static_cast<std::size_t>(date.weekday() - 1)),
          m_twelveHours(twelveHours) {}

    void add(const Piece &piece) {
        if (piece.kind == Piece::Kind::Text)
            m_text += piece.text;
        else if (piece.kind == Piece::Kind::HalfDay)
            halfDay(piece.text);
        else
            letters(piece.letter, piece.text.size());
    }

    std::string take() { return std::move(m_text); }

  private:
    void letters(char letter, std::size_t count) {
        const bool minutes = letter == 'n' || (letter == 'm' && m_afterHours && count <= 2);
        m_afterHours = letter == 'h';
        if (minutes)
            number(m_civil.minute, count);
        else if (letter == 'y')
            year(count);
        else if (letter == 'm')
            numberOrName(m_civil.month, count,
                         kMonthNames[static_cast<std::size_t>(m_civil.month - 1)]);
        else if (letter == 'd')
            numberOrName(m_civil.day, count, kWeekdayNames[m_weekday]);
        else
            number(letter == 'h' ? hour() : m_civil.second, count);
    }

    int hour() const {
        if (!m_twelveHours)
            return m_civil.hour;
        return m_civil.hour % 12 == 0 ? 12 : m_civil.hour % 12;
    }

    void year(std::size_t count) {
        if (count > 2)
            fmt::format_to(std::back_inserter(m_text), "{:04}", m_civil.year);
        else
            number(m_civil.year % 100, 2);
    }

    void number(int value, std::size_t digits) {
        fmt::format_to(std::back_inserter(m_text), "{:0{}}", value,
                       std::min<std::size_t>(digits, 2));
    }

    void numberOrName(int value, std::size_t count, std::string_view name) {
        if (count <= 2)
            number(value, count);
        else
            m_text += name.substr(0, count == 3 ? kShortDateName : name.size());
    }

    /// The format's letters say whether the mark is upper- or lower-case.
    void halfDay(std::string_view mark) {
        const bool morning = m_civil.hour < 12;
        const std::string text = mark.size() == 3 ? (morning ? "A" : "P") : (morning ? "AM" : "PM");
        m_text += mark.front() == 'a' ? toLower(text) : text;
    }

    CivilTime m_civil;
    std::size_t m_weekday;
    bool m_twelveHours;
    bool m_afterHours = false; ///< the last run of letters was the hours
    std::string m_text;
};

} // namespace

std::string formatDate(Date date, std::string_view format) {
    if (!date.has())
        return {};
    std::vector<Piece> pieces;
    split(format, pieces);
    Writer writer(date, std::any_of(pieces.begin(), pieces.end(), [](const Piece &piece) {
                      return piece.kind == Piece::Kind::HalfDay;
                  }));
    for (const Piece &piece : pieces)
        writer.add(piece);
    return writer.take();
}

std::string isoUtc(Date utc) {
    if (!utc.has())
        return {};
    const CivilTime time = utc.civil();
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", time.year, time.month, time.day,
                       time.hour, time.minute, time.second);
}

} // namespace nv
