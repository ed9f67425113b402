#include "views/overview/ImportCounts.h"

#include "db/sql/Damage.h"
#include "readers/PathOrigin.h"
#include "views/limits/EvidenceOfRow.h"
#include "views/limits/TreesApart.h"
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
constexpr std::size_t kTree = 4;
/// Person, browser, profile, `CacheType`, and the tree that its path lies in.
using Source = std::array<std::string, 5>;

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
        TreesApart apart;
        for (const auto &[source, rows] : m_sources)
            apart.add(namesOf(source), source[kTree]);
        std::array<std::map<std::string, KindRows>, 4> sums;
        for (const auto &[source, rows] : m_sources) {
            const auto terms = apart.terms(namesOf(source), source[kTree]);
            overview.rows.add(rows);
            sums[kPerson][placeValue(terms[1])].add(rows);
            sums[kBrowser][source[kBrowser]].add(rows);
            sums[kProfile][profileName(source, terms)].add(rows);
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
        return fmt::format("SELECT {}, CacheType, {}, ActionDateUTC FROM URLs{}", origin, kRowPath,
                           isPart ? fmt::format(" WHERE URL_ID > {} AND URL_ID <= {}",
                                                overview.end.lastBefore, overview.end.lastRow)
                                  : std::string());
    }

    /// Of whatever folder of evidence.
    static OriginNames namesOf(const Source &source) {
        return {std::string(), source[kPerson], source[kBrowser], source[kProfile]};
    }

    static std::string profileName(const Source &source, const std::array<PlaceTerm, 4> &terms) {
        if (source[kBrowser].empty())
            return {};
        std::string name = source[kBrowser];
        if (!source[kProfile].empty())
            name += fmt::format(", profile \"{}\"", source[kProfile]);
        if (!source[kPerson].empty())
            name += fmt::format(", person \"{}\"", source[kPerson]);
        for (const PlaceTerm &term : terms)
            if (term.tree)
                name += fmt::format(" ({})", term.treeLabel);
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
            const SQLite::Column column = row.getColumn(static_cast<int>(at));
            const std::string_view text = at == kTree ? m_treeOf(textIn(column)) : textIn(column);
            if (text == m_lastSource.at(at))
                continue;
            isSame = false;
            m_lastSource.at(at) = text;
        }
        if (!isSame)
            m_last = &m_sources[m_lastSource];
        const SQLite::Column date = row.getColumn(kTree + 1);
        m_last->count(date.isNull() ? Date() : Date::fromDays(date.getDouble()));
    }

    TreesOfPaths m_treeOf;
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
