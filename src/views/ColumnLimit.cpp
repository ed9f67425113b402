#include "views/ColumnLimit.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/RowWalk.h"
#include "search/FoldedText.h"
#include "search/FoundIds.h"
#include "views/CellText.h"
#include "views/GatheredTexts.h"
#include "views/UrlQuery.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>
#include <unordered_map>

namespace nv {

namespace {

/// Values come from evidence: a column can hold another one in each row.
constexpr std::size_t kMostValues = 200'000;

struct TextHash {
    using is_transparent = void; // NOLINT(readability-identifier-naming)
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>()(text);
    }
};

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

/// Dates of the zone's clock are shown from that in UTC, and go by it here too.
std::string_view sourceOf(UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    if (rule == CellRule::Rebuilt)
        return kRebuiltCondition;
    if (rule == CellRule::Note)
        return "(Notes <> '')";
    const bool isOfZone = rule == CellRule::ZoneDate || rule == CellRule::LocalDate;
    return isOfZone ? factsOf(UrlColumn::ActionDateUtc).source : factsOf(column).source;
}

/// The types as the table shows them; rows that lie side by side often have the same one.
class TypeWords {
  public:
    std::string_view of(std::string_view cacheType) {
        if (m_shown.empty() || cacheType != m_stored) {
            m_stored = cacheType;
            m_shown = typeWord(cacheType);
        }
        return m_shown;
    }

  private:
    std::string m_stored;
    std::string m_shown;
};

using Look = std::function<void(std::int32_t, std::string_view)>;

/// Of a column that is made of rows of another table.
Walk walkGathered(SQLite::Database &project, const RowIds &ids, UrlColumn column, TaskMonitor &task,
                  const Look &look) {
    GatheredTexts texts;
    if (gatherTexts(project, column, task, texts) == Walk::Cancelled)
        return Walk::Cancelled;
    for (const std::int32_t id : ids)
        look(id, texts.of(id));
    return Walk::Finished;
}

/// Calls `look` with the value of each row that can be read.
Walk walkValues(SQLite::Database &project, const RowIds &sorted, UrlColumn column,
                TaskMonitor &task, const Look &look) {
    if (isGathered(column))
        return walkGathered(project, sorted, column, task, look);
    const UrlColumnFacts &facts = factsOf(column);
    const bool isFlag = facts.rule == CellRule::YesNo || facts.rule == CellRule::Flag ||
                        facts.rule == CellRule::Rebuilt || facts.rule == CellRule::Note;
    TypeWords types;
    SQLite::Statement row(project, fmt::format("SELECT URL_ID, {} FROM URLs WHERE URL_ID >= ? "
                                               "ORDER BY URL_ID",
                                               sourceOf(column)));
    RowWalk walk(row);
    NoLog unheard; // whoever looks at the row logs its damage
    double done = 0;
    for (const std::int32_t id : sorted) {
        if (!task.advance(done++ / static_cast<double>(sorted.size())))
            return Walk::Cancelled;
        logFailureOf(unheard, {}, [&] {
            if (!walk.goTo(id))
                return;
            const SQLite::Column value = row.getColumn(1);
            if (isFlag)
                look(id, value.getInt() != 0 ? "Yes" : "No");
            else if (facts.rule == CellRule::Type)
                look(id, types.of(textIn(value)));
            else
                look(id, textIn(value));
        });
    }
    return Walk::Finished;
}

bool isWithin(std::string_view text, const ColumnLimit &limit) {
    double days = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), days);
    const bool isDate = error == std::errc() && end == text.data() + text.size();
    const bool isUnset = limit.column == UrlColumn::ExpiryDate && days == 0; // "never set"
    return isDate && !isUnset && holds(limit.dates->within, days);
}

bool isBetween(std::string_view text, const ColumnLimit &limit) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && (!limit.from || number >= *limit.from) &&
           (!limit.to || number <= *limit.to);
}

} // namespace

ColumnValues valuesOf(UrlColumn column) {
    if (isGathered(column))
        return ColumnValues::texts;
    if (factsOf(column).source.empty())
        return ColumnValues::none;
    switch (factsOf(column).rule) {
    case CellRule::Text:
    case CellRule::YesNo:
    case CellRule::Flag:
    case CellRule::Type:
    case CellRule::Rebuilt:
    case CellRule::Note:
        return ColumnValues::texts;
    case CellRule::Number:
        return ColumnValues::numbers;
    case CellRule::Date:
    case CellRule::FileCreated:
    case CellRule::ZoneDate:
    case CellRule::LocalDate:
        return ColumnValues::dates;
    default:
        return ColumnValues::none;
    }
}

Walk keepByColumn(SQLite::Database &project, const ColumnLimit &limit, TaskMonitor &task,
                  RowIds &ids) {
    const RowIds sorted = sortedIds(ids);
    std::vector<std::string> wanted = limit.oneOf.value_or(std::vector<std::string>());
    std::ranges::sort(wanted);
    const std::string part = foldedCase(limit.part);
    const bool isRange = limit.from || limit.to;
    FoldedText folded;
    RowIds out;
    const Walk walk = walkValues(
        project, sorted, limit.column, task, [&](std::int32_t id, std::string_view value) {
            bool meets = !limit.oneOf || std::ranges::binary_search(wanted, value, std::less<>());
            if (meets && !part.empty()) {
                folded.fold(value);
                meets = folded.text().find(part) != std::string::npos;
            }
            meets = meets && (!isRange || isBetween(value, limit));
            if (!meets || (limit.dates && !isWithin(value, limit)))
                out.push_back(id);
        });
    if (walk == Walk::Cancelled)
        return walk;
    leaveOut(out, ids);
    return Walk::Finished;
}

Walk countValues(SQLite::Database &project, const RowIds &ids, UrlColumn column, std::size_t most,
                 TaskMonitor &task, CountedValues &counted) {
    const RowIds sorted = sortedIds(ids);
    std::unordered_map<std::string, std::int64_t, TextHash, std::equal_to<>> counts;
    auto last = counts.end(); // rows that lie side by side often say the same
    const Walk walk =
        walkValues(project, sorted, column, task, [&](std::int32_t, std::string_view value) {
            if (last == counts.end() || last->first != value)
                last = counts.find(value);
            if (last == counts.end() && counts.size() < kMostValues)
                last = counts.emplace(value, 0).first;
            if (last != counts.end())
                ++last->second;
            else
                counted.isCut = true;
        });
    counted.values.assign(counts.begin(), counts.end());
    std::ranges::sort(counted.values, [](const auto &one, const auto &other) {
        return one.second != other.second ? one.second > other.second : one.first < other.first;
    });
    if (counted.values.size() > most) {
        counted.values.resize(most);
        counted.isCut = true;
    }
    return walk;
}

} // namespace nv
