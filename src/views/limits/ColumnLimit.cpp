#include "views/limits/ColumnLimit.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/RowWalk.h"
#include "search/FoldedText.h"
#include "search/FoundIds.h"
#include "views/limits/GatheredTexts.h"
#include "views/limits/ValueCounts.h"
#include "views/rows/CellText.h"
#include "views/rows/NarrowIndex.h"
#include "views/rows/UrlQuery.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>
#include <unordered_map>

namespace nv {

namespace {

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

bool isFlag(CellRule rule) {
    return rule == CellRule::YesNo || rule == CellRule::Flag || rule == CellRule::Rebuilt ||
           rule == CellRule::Note;
}

/// The types as the table shows them; the same few come again and again.
class TypeWords {
  public:
    const std::string &of(std::string_view cacheType) {
        if (m_last != nullptr && m_last->first == cacheType)
            return m_last->second;
        auto known = m_words.find(cacheType);
        if (known == m_words.end()) {
            if (m_words.size() == kMostKnown)
                m_words.clear();
            known = m_words.emplace(cacheType, typeWord(cacheType)).first;
        }
        m_last = &*known; // which stays where it is
        return m_last->second;
    }

  private:
    static constexpr std::size_t kMostKnown = 1000; // words come from evidence
    std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> m_words;
    const std::pair<const std::string, std::string> *m_last = nullptr;
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

/// Calls `look` with the value of each row that can be read, in the order of their ids.
Walk walkRows(SQLite::Database &project, const RowIds &ids, UrlColumn column, TaskMonitor &task,
              const Look &look) {
    const RowIds sorted = sortedIds(ids);
    if (isGathered(column))
        return walkGathered(project, sorted, column, task, look);
    const UrlColumnFacts &facts = factsOf(column);
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
            if (isFlag(facts.rule))
                look(id, value.getInt() != 0 ? "Yes" : "No");
            else if (facts.rule == CellRule::Type)
                look(id, types.of(textIn(value)));
            else
                look(id, textIn(value));
        });
    }
    return Walk::Finished;
}

/// The same by an index, in any order.
NarrowWalk walkIndex(SQLite::Database &project, const RowIds &ids, UrlColumn column, NarrowIds told,
                     TaskMonitor &task, const Look &look) {
    if (isGathered(column))
        return NarrowWalk::Impossible;
    const bool isType = factsOf(column).rule == CellRule::Type;
    TypeWords types;
    return walkNarrow(project, {sourceOf(column)}, ids, told, task, [&](const NarrowRow &row) {
        look(row.id(), isType ? std::string_view(types.of(row.text(0))) : row.text(0));
    });
}

/// The same by one statement over all rows of the table.
NarrowWalk walkStatement(SQLite::Database &project, const RowIds &ids, UrlColumn column,
                         RowOrder order, TaskMonitor &task, const Look &look) {
    if (isGathered(column))
        return NarrowWalk::Impossible;
    const CellRule rule = factsOf(column).rule;
    TypeWords types;
    return walkTable(project, sourceOf(column), ids, order, task, [&](const NarrowRow &row) {
        if (isFlag(rule))
            look(row.id(), row.isSet(0) ? "Yes" : "No");
        else if (rule == CellRule::Type)
            look(row.id(), types.of(row.text(0)));
        else
            look(row.id(), row.text(0));
    });
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

namespace {

/// Whether a value meets a limit.
class ValueTest {
  public:
    explicit ValueTest(const ColumnLimit &limit)
        : m_limit(limit), m_wanted(limit.oneOf.value_or(std::vector<std::string>())),
          m_part(foldedCase(limit.part)) {
        std::ranges::sort(m_wanted);
    }
    bool meets(std::string_view value) {
        if (!m_last || *m_last != value) {
            m_meets = looked(value);
            m_last = value;
        }
        return m_meets;
    }

  private:
    bool looked(std::string_view value) {
        if (m_limit.oneOf && !std::ranges::binary_search(m_wanted, value, std::less<>()))
            return false;
        if (!m_part.empty()) {
            m_folded.fold(value);
            if (m_folded.text().find(m_part) == std::string::npos)
                return false;
        }
        const bool isRange = m_limit.from || m_limit.to;
        return (!isRange || isBetween(value, m_limit)) &&
               (!m_limit.dates || isWithin(value, m_limit));
    }

    const ColumnLimit &m_limit;
    std::vector<std::string> m_wanted;
    std::string m_part;
    FoldedText m_folded;
    std::optional<std::string> m_last; ///< rows side by side often say the same
    bool m_meets = false;
};

/// As walkIndex(), of a limit of dates alone: to make a text of each takes longer than to read it.
NarrowWalk walkDates(SQLite::Database &project, const RowIds &ids, const ColumnLimit &limit,
                     TaskMonitor &task, RowIds &out) {
    if (limit != ColumnLimit{.column = limit.column, .dates = limit.dates})
        return NarrowWalk::Impossible;
    return walkNarrow(project, {sourceOf(limit.column)}, ids, NarrowIds::told, task,
                      [&](const NarrowRow &row) {
                          const auto days = row.number(0);
                          if (!days || !holds(limit.dates->within, *days))
                              out.push_back(row.id());
                      });
}

} // namespace

Walk keepByColumn(SQLite::Database &project, const ColumnLimit &limit, TaskMonitor &task,
                  RowIds &ids) {
    ValueTest test(limit);
    RowIds out;
    out.reserve(ids.size()); // as it grows it would take up to thrice the room
    const auto look = [&](std::int32_t id, std::string_view value) {
        if (!test.meets(value))
            out.push_back(id);
    };
    NarrowWalk walk = limit.dates
                          ? walkDates(project, ids, limit, task, out)
                          : walkIndex(project, ids, limit.column, NarrowIds::told, task, look);
    if (walk == NarrowWalk::Impossible) {
        out.clear();
        walk = walkStatement(project, ids, limit.column, RowOrder::any, task, look);
    }
    if (walk == NarrowWalk::Cancelled)
        return Walk::Cancelled;
    if (walk == NarrowWalk::Impossible) {
        out.clear();
        if (walkRows(project, ids, limit.column, task, look) == Walk::Cancelled)
            return Walk::Cancelled;
    }
    if (!std::ranges::is_sorted(out)) // as an index shows them; millions aren't copied
        out = sortedIds(out);
    leaveOut(out, ids);
    return Walk::Finished;
}

namespace {

/// Counts values, and tells of the first ones.
class Counting {
  public:
    Counting(std::size_t most, const CountedSoFar &soFar) : m_most(most), m_soFar(soFar) {}
    void add(std::string_view value) {
        m_counts.add(value);
        if (++m_rows < m_next || !m_soFar)
            return;
        m_soFar(m_counts.most(m_most), m_rows);
        m_next *= 2;
    }
    const ValueCounts &counts() const { return m_counts; }
    /// Counts anew, and tells no more until it has come as far again.
    void restart() {
        m_counts = {};
        m_rows = 0;
    }

  private:
    static constexpr std::size_t kFirst = 10'000;

    std::size_t m_most;
    const CountedSoFar &m_soFar;
    ValueCounts m_counts;
    std::size_t m_rows = 0;
    std::size_t m_next = kFirst;
};

} // namespace

Walk countValues(SQLite::Database &project, const RowIds &ids, UrlColumn column, std::size_t most,
                 TaskMonitor &task, CountedValues &counted, const CountedSoFar &soFar) {
    ValueCounts known;
    const NarrowWalk byIndex =
        walkIndex(project, ids, column, NarrowIds::untold, task,
                  [&](std::int32_t, std::string_view value) { known.add(value); });
    if (byIndex == NarrowWalk::Cancelled || (byIndex == NarrowWalk::Finished && !known.isCut())) {
        counted = known.most(most);
        return byIndex == NarrowWalk::Cancelled ? Walk::Cancelled : Walk::Finished;
    }
    Counting counting(most, soFar);
    const auto add = [&](std::int32_t, std::string_view value) { counting.add(value); };
    const NarrowWalk byTable = walkStatement(project, ids, column, RowOrder::byId, task, add);
    Walk walk = byTable == NarrowWalk::Cancelled ? Walk::Cancelled : Walk::Finished;
    if (byTable == NarrowWalk::Impossible) {
        counting.restart();
        walk = walkRows(project, ids, column, task, add);
    }
    counted = counting.counts().most(most);
    return walk;
}

} // namespace nv
