#include "views/table/FindText.h"

#include "base/DisplayText.h"
#include "base/NoLog.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "db/sql/RowWalk.h"
#include "search/FoundIds.h"
#include "views/rows/CellText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <bitset>
#include <functional>
#include <initializer_list>
#include <limits>
#include <map>
#include <memory>
#include <unordered_map>

namespace nv {
namespace {

constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();

/// The characters that a number or a date may be shown with, in lower case.
class Alphabet {
  public:
    void add(std::string_view text) {
        for (const char c : toLower(text))
            m_has.set(static_cast<unsigned char>(c));
    }
    bool canSpell(std::string_view text) const {
        return std::ranges::all_of(
            toLower(text), [this](char c) { return m_has.test(static_cast<unsigned char>(c)); });
    }

  private:
    std::bitset<256> m_has;
};

Alphabet alphabetOfNumbers() {
    Alphabet numbers;
    numbers.add("0123456789+-.e inf nan");
    return numbers;
}

/// Of the examiner's format and the one with words, which every hour of a year shows in full, and
/// of what stands after a date.
Alphabet alphabetOfDates(const RowCells &cells) {
    Alphabet dates;
    dates.add("0123456789");
    dates.add(cells.zoneCodes());
    constexpr double kFirst = 40000;
    constexpr int kSteps = 366 * 2;
    for (int step = 0; step < kSteps; ++step) {
        const Date date = Date::fromDays(kFirst + step * 0.5417); // 13 hours on
        dates.add(formatDate(date, cells.dates.dateTimeFormat()));
        dates.add(formatDate(date, "dd-mmm-yyyy Hh:Nn:Ss"));
    }
    return dates;
}

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

/// The number of links of each record, by the column of `LinkAnalysis` that names it.
using LinkCounts = std::unordered_map<std::int64_t, std::int64_t>;

LinkCounts linkCounts(SQLite::Database &database, const char *column) {
    LinkCounts counts;
    SQLite::Statement rows(
        database, fmt::format("SELECT {0}, Count(Link_ID) FROM LinkAnalysis GROUP BY {0}", column));
    while (rows.executeStep())
        counts[rows.getColumn(0).getInt64()] = rows.getColumn(1).getInt64();
    return counts;
}

/// Looks into the columns of one row after the other.
class RowFinder {
  public:
    RowFinder(const FindText &what, SQLite::Database &database, RowCells &cells)
        : m_pattern(what.text), m_cells(cells), m_tags(database), m_hashSets(database),
          m_isNumber(alphabetOfNumbers().canSpell(what.text)),
          m_isDate(alphabetOfDates(cells).canSpell(what.text)) {
        for (const UrlColumn column : what.columns)
            plan(column);
        m_rows = std::make_unique<SQLite::Statement>(
            database,
            fmt::format("SELECT URL_ID{} FROM URLs WHERE URL_ID >= ? ORDER BY URL_ID", m_select));
        if (!m_countsLinks)
            return;
        m_asChild = linkCounts(database, "Child_ID");
        m_asParent = linkCounts(database, "Parent_ID");
    }

    SQLite::Statement &rows() { return *m_rows; }

    /// Of the row in hand.
    bool isInRow() {
        return std::ranges::any_of(m_texts, [this](const Probe &probe) { return inText(probe); }) ||
               std::ranges::any_of(m_computed,
                                   [this](const Probe &probe) { return inComputed(probe); });
    }

  private:
    struct Probe {
        UrlColumn column;
        int at; ///< of the statement
    };

    int read(std::string_view expression) {
        m_select.append(", ").append(expression);
        return ++m_read;
    }

    bool isOneOf(std::initializer_list<std::string_view> words) const {
        return std::ranges::any_of(
            words, [this](std::string_view word) { return m_pattern.isInShown(word); });
    }

    /// Columns that can't show the text, such as dates a word, aren't read.
    void plan(UrlColumn column) {
        const UrlColumnFacts &facts = factsOf(column);
        const auto compute = [&](bool possible, std::string_view expression) {
            if (possible)
                m_computed.push_back({column, read(expression)});
        };
        switch (facts.rule) {
        case CellRule::Nothing:
        case CellRule::Tick:
        case CellRule::Icon:
            return;
        case CellRule::Text:
            return m_texts.push_back({column, read(facts.source)});
        case CellRule::Date:
        case CellRule::FileCreated:
            return compute(m_isDate, facts.source);
        case CellRule::ZoneDate:
            return compute(m_isDate, "ActionDateUTC");
        case CellRule::Flag:
            return compute(isOneOf({"True", "False"}), facts.source);
        case CellRule::YesNo:
            return compute(isOneOf({"Yes", "No"}), facts.source);
        case CellRule::Rebuilt:
            return compute(isOneOf({"Yes", "No"}), kRebuiltCondition);
        case CellRule::Linked:
            m_countsLinks = m_isNumber;
            return compute(m_isNumber, "IsHistory");
        case CellRule::Status:
            return planStatus(column);
        case CellRule::TagNames:
        case CellRule::HashSets:
            return compute(true, "NULL");
        default:
            return compute(true, facts.source);
        }
    }

    /// Which the paths of the row may replace.
    void planStatus(UrlColumn column) {
        m_computed.push_back({column, read("Status")});
        for (const char *fact :
             {"CacheType", "RootPath", "CacheFileRelativePath", "CacheFileName", "HistoryFilePath"})
            read(fact);
    }

    bool inText(const Probe &probe) {
        const SQLite::Column value = m_rows->getColumn(probe.at);
        return value.isFloat() ? isShown(probe, value) : m_pattern.isIn(textIn(value));
    }

    bool isShown(const Probe &probe, const SQLite::Column &value) {
        m_row.stored.at(indexOf(probe.column)) = valueIn(value);
        return m_pattern.isInShown(m_cells.text(m_row, probe.column));
    }

    bool inComputed(const Probe &probe) {
        const SQLite::Column value = m_rows->getColumn(probe.at);
        switch (factsOf(probe.column).rule) {
        case CellRule::Number: // a text may stand in such a column
            return !value.isNull() && (m_isNumber || value.isText()) && isShown(probe, value);
        case CellRule::Linked:
            return inLinks(value.getInt() != 0);
        case CellRule::Type:
            return inType(textIn(value));
        case CellRule::Status:
            return inStatus(probe, value);
        case CellRule::TagNames:
            return inTags();
        case CellRule::HashSets:
            return m_pattern.isInShown(displayText(m_hashSets.of(recordId())));
        case CellRule::YesNo:
            m_row.cacheFileExists = value.getInt() != 0;
            return isShown(probe, value);
        case CellRule::Rebuilt:
            m_row.rebuilt = value.getInt() != 0;
            return isShown(probe, value);
        case CellRule::ZoneDate:
            m_row.actionDateUtc = value.isNull() ? Date() : Date::fromDays(value.getDouble());
            return !value.isNull() && isShown(probe, value);
        default:
            return !value.isNull() && isShown(probe, value);
        }
    }

    bool inLinks(bool isHistory) {
        const LinkCounts &counts = isHistory ? m_asChild : m_asParent;
        const auto found = counts.find(m_rows->getColumn(0).getInt64());
        return found != counts.end() && m_pattern.isInShown(std::to_string(found->second));
    }

    UrlId recordId() { return UrlId{m_rows->getColumn(0).getInt64()}; }

    bool inTags() { return m_pattern.isInShown(displayText(namesOf(m_tags.of(recordId())))); }

    /// There are a few dozens of them, whatever the number of rows.
    bool inType(std::string_view cacheType) {
        const auto known = m_types.find(cacheType);
        if (known != m_types.end())
            return known->second;
        const bool found = m_pattern.isInShown(typeWord(cacheType));
        m_types.emplace(cacheType, found);
        return found;
    }

    bool inStatus(const Probe &probe, const SQLite::Column &value) {
        if (!isOneOf({"Bad Path"}) && !m_pattern.isIn(textIn(value)))
            return false;
        int at = probe.at;
        for (std::string *fact : {&m_row.cacheType, &m_row.rootPath, &m_row.relativePath,
                                  &m_row.cacheFileName, &m_row.historyFilePath})
            *fact = textIn(m_rows->getColumn(++at));
        return isShown(probe, value);
    }

    FindPattern m_pattern;
    RowCells &m_cells;
    RowTagReader m_tags;
    RowHashSetReader m_hashSets;
    bool m_isNumber; ///< the text may stand in a number
    bool m_isDate;
    bool m_countsLinks = false;
    std::string m_select;
    int m_read = 0;
    std::vector<Probe> m_texts;
    std::vector<Probe> m_computed;
    std::unique_ptr<SQLite::Statement> m_rows;
    UrlRow m_row = foundRow();
    LinkCounts m_asChild;
    LinkCounts m_asParent;
    std::map<std::string, bool, std::less<>> m_types;

    static UrlRow foundRow() {
        UrlRow row;
        row.found = true;
        return row;
    }
};

} // namespace

FindPattern::FindPattern(std::string_view text)
    : m_pattern(*LikePattern::compile("%" + escapedForLike(text) + "%")),
      m_hasStandIns(containsNoCase(text, "U+") || text.find("\xE2\x90") != std::string_view::npos ||
                    text.find("\xEF\xBF\xBD") != std::string_view::npos) {}

bool FindPattern::isIn(std::string_view stored) const {
    return m_hasStandIns ? m_pattern.matches(displayText(stored, kWhole))
                         : m_pattern.matches(stored);
}

std::optional<FoundTexts> rowsWith(const FindText &what, const RowIds &ids,
                                   SQLite::Database &database, RowCells &cells, TaskMonitor &task) {
    FoundTexts found;
    const RowIds sorted = sortedIds(ids);
    RowFinder finder(what, database, cells);
    RowWalk walk(finder.rows());
    NoLog unheard; // they are counted, and logged when they are looked at
    double done = 0;
    for (const std::int32_t id : sorted) {
        if (!task.advance(done++ / static_cast<double>(sorted.size())))
            return std::nullopt;
        bool holds = false;
        const bool isRead = succeeds(unheard, Severity::Low, {}, {},
                                     [&] { holds = walk.goTo(id) && finder.isInRow(); });
        if (holds)
            found.ids.push_back(id);
        if (!isRead)
            found.unread.insert(id);
    }
    return found;
}

} // namespace nv
