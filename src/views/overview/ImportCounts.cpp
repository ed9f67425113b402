#include "views/overview/ImportCounts.h"

#include "db/sql/Damage.h"
#include "views/limits/PlaceLimit.h"
#include "views/rows/CellText.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

namespace nv {

namespace {

constexpr std::size_t kPerson = 0;
constexpr std::size_t kBrowser = 1;
constexpr std::size_t kProfile = 2;
constexpr std::size_t kKind = 3;
/// Person, browser, profile, `CacheType`.
using Source = std::array<std::string, 4>;

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

/// Counts rows by their source. Rows that lie side by side mostly have the same.
class SourceCounts {
  public:
    /// False when it was cancelled.
    bool read(SQLite::Database &project, const ImportOverview &overview, TaskMonitor &task) {
        SQLite::Statement rows(project, statementFor(project, overview));
        StatementWatch watch(project, task);
        Step step = watch.step(rows);
        for (; step == Step::Row; step = watch.step(rows))
            take(rows);
        return step != Step::Cancelled;
    }

    void fill(ImportOverview &overview) const {
        std::array<std::map<std::string, KindRows>, 4> sums;
        for (const auto &[source, rows] : m_sources) {
            overview.rows.add(rows);
            sums[kPerson][source[kPerson]].add(rows);
            sums[kBrowser][source[kBrowser]].add(rows);
            sums[kProfile][profileName(source)].add(rows);
            sums[kKind][typeWord(source[kKind])].add(rows);
        }
        overview.people = sorted(sums[kPerson]);
        overview.browsers = sorted(sums[kBrowser]);
        overview.profiles = sorted(sums[kProfile]);
        overview.kinds = sorted(sums[kKind]);
    }

  private:
    static std::string statementFor(SQLite::Database &project, const ImportOverview &overview) {
        const std::string_view origin =
            hasOriginColumns(project) ? "Person, Browser, Profile" : "NULL, NULL, NULL";
        const bool isPart = overview.scope == ImportScope::last;
        return fmt::format("SELECT {}, CacheType, ActionDateUTC FROM URLs{}", origin,
                           isPart ? fmt::format(" WHERE URL_ID > {} AND URL_ID <= {}",
                                                overview.end.lastBefore, overview.end.lastRow)
                                  : std::string());
    }

    static std::string profileName(const Source &source) {
        if (source[kBrowser].empty())
            return {};
        std::string name = source[kBrowser];
        if (!source[kProfile].empty())
            name += fmt::format(", profile \"{}\"", source[kProfile]);
        if (!source[kPerson].empty())
            name += fmt::format(", person \"{}\"", source[kPerson]);
        return name;
    }

    static std::vector<ImportCount> sorted(const std::map<std::string, KindRows> &sums) {
        std::vector<ImportCount> counts;
        counts.reserve(sums.size());
        for (const auto &[name, rows] : sums)
            counts.push_back({name, rows});
        std::ranges::stable_sort(counts, [](const ImportCount &a, const ImportCount &b) {
            return a.rows.rows > b.rows.rows;
        });
        return counts;
    }

    void take(SQLite::Statement &row) {
        bool isSame = m_last != nullptr;
        for (std::size_t at = 0; at < m_lastSource.size(); ++at) {
            const std::string_view text = textIn(row.getColumn(static_cast<int>(at)));
            if (text == m_lastSource.at(at))
                continue;
            isSame = false;
            m_lastSource.at(at) = text;
        }
        if (!isSame)
            m_last = &m_sources[m_lastSource];
        const SQLite::Column date = row.getColumn(4);
        m_last->count(date.isNull() ? Date() : Date::fromDays(date.getDouble()));
    }

    std::map<Source, KindRows> m_sources;
    Source m_lastSource;
    KindRows *m_last = nullptr;
};

} // namespace

Walk countImported(SQLite::Database &project, TaskMonitor &task, ImportOverview &overview) {
    SourceCounts counts;
    bool whole = true;
    overview.isCounted = unlessDamaged([&] { whole = counts.read(project, overview, task); });
    if (overview.isCounted && whole)
        counts.fill(overview);
    overview.isWhole = whole;
    return whole ? Walk::Finished : Walk::Cancelled;
}

} // namespace nv
