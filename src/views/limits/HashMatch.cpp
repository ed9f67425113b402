#include "views/limits/HashMatch.h"

#include "db/hashes/HashLookup.h"
#include "db/records/RecordFacts.h"
#include "db/sql/SqliteErrors.h"
#include "views/rows/DateIndex.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <compare>
#include <string>

namespace nv {

namespace {

constexpr std::size_t kAtOnce = 262144; // hashes, sorted so that sets are read from front to back
constexpr double kReading = 0.8;        ///< part of the work, the rest is storing

/// A hash of the project.
struct AskedHash {
    HashValue hash;
    std::int64_t record = 0;
};

bool isBefore(const AskedHash &one, const AskedHash &other) {
    return one.hash.algorithm != other.hash.algorithm ? one.hash.algorithm < other.hash.algorithm
                                                      : one.hash.bytes < other.hash.bytes;
}

struct Finding {
    std::int64_t record = 0;
    std::size_t set = 0; ///< its place
    DigestAlgorithm by = DigestAlgorithm::md5;

    friend auto operator<=>(const Finding &, const Finding &) = default;
};

bool isSameRowAndSet(const Finding &one, const Finding &other) {
    return one.record == other.record && one.set == other.set;
}

class Matching {
  public:
    Matching(SQLite::Database &project, std::span<HashSetFile> sets, TaskMonitor &task)
        : m_project(project), m_sets(sets), m_task(task) {
        m_found.rows.resize(sets.size());
    }

    HashMatch run(EarlierFindings earlier) {
        m_found.cancelled = !readHashes() || !countBodies() || !store(earlier);
        return m_found;
    }

  private:
    bool readHashes() {
        const double last =
            m_project.execAndGet("SELECT ifnull(max(rowid), 1) FROM RecordFacts").getDouble();
        SQLite::Statement rows(
            m_project, fmt::format("SELECT rowid, URL_ID, Name, Value FROM RecordFacts WHERE Name "
                                   "IN ('{}') ORDER BY rowid",
                                   fmt::join(kHashFacts, "', '")));
        StatementWatch watch(m_project, m_task);
        Step step = watch.step(rows);
        for (; step == Step::Row; step = watch.step(rows)) {
            take(rows.getColumn(1).getInt64(), rows.getColumn(2).getString(),
                 rows.getColumn(3).getString());
            if (m_asked.size() < kAtOnce)
                continue;
            lookUp();
            if (!m_task.advance(rows.getColumn(0).getDouble() / last * kReading))
                return false;
        }
        lookUp();
        return step != Step::Cancelled && !watch.cancelled();
    }

    /// Facts of a record lie beside each other.
    void take(std::int64_t record, const std::string &name, const std::string &value) {
        const auto hash = hashIn(value);
        if (!hash)
            return;
        m_found.rowsWithHash += m_lastRecord == record ? 0 : 1;
        m_lastRecord = record;
        if (name.starts_with("content_") && m_lastBody != record) {
            m_lastBody = record;
            ++m_bodies;
        }
        const auto knows = [&](const HashSetFile &set) { return set.count(hash->algorithm) > 0; };
        if (std::ranges::any_of(m_sets, knows))
            m_asked.push_back({*hash, record});
    }

    void lookUp() {
        std::ranges::sort(m_asked, isBefore);
        for (std::size_t place = 0; place < m_sets.size(); ++place)
            for (const AskedHash &asked : m_asked)
                if (m_sets[place].has(asked.hash))
                    m_findings.push_back({asked.record, place, asked.hash.algorithm});
        m_asked.clear();
    }

    bool countBodies() {
        SQLite::Statement count(m_project,
                                "SELECT count(*) FILTER (WHERE CacheFileExists <> 0), count(*) "
                                "FROM URLs");
        StatementWatch watch(m_project, m_task);
        if (watch.step(count) != Step::Row)
            return false;
        const auto all = static_cast<std::uint64_t>(count.getColumn(0).getInt64());
        m_found.bodiesWithoutHash = all - std::min(all, m_bodies);
        m_found.rowsOfProject = static_cast<std::uint64_t>(count.getColumn(1).getInt64());
        m_found.withoutContent =
            m_found.rowsOfProject -
            std::min(m_found.rowsOfProject, m_found.rowsWithHash + m_found.bodiesWithoutHash);
        return true;
    }

    /// The strongest hash by which a row was found in a set stands for the others.
    bool store(EarlierFindings earlier) {
        std::ranges::sort(m_findings, std::greater());
        m_findings.erase(std::unique(m_findings.begin(), m_findings.end(), isSameRowAndSet),
                         m_findings.end());
        std::ranges::reverse(m_findings);
        countFound();
        if (ensureHashSetIndex(m_project, m_task) == IndexState::Cancelled)
            return false;
        SQLite::Transaction transaction(m_project); // rolled back when it isn't committed
        dropFindings(earlier);
        RecordFacts facts(m_project);
        for (std::size_t at = 0; at < m_findings.size(); ++at) {
            const Finding &finding = m_findings[at];
            FactList list;
            addHashSetFact(list, m_sets[finding.set].facts(), finding.by);
            facts.store(UrlId{finding.record}, list);
            ++m_found.rows.at(finding.set);
            const double done = static_cast<double>(at) / static_cast<double>(m_findings.size());
            if (!m_task.advance(kReading + done * (1 - kReading)))
                return false;
        }
        transaction.commit();
        return true;
    }

    /// The findings of a row stand beside each other.
    void countFound() {
        for (std::size_t at = 0; at < m_findings.size(); ++at)
            m_found.rowsFound +=
                at == 0 || m_findings[at].record != m_findings[at - 1].record ? 1 : 0;
    }

    void dropFindings(EarlierFindings earlier) {
        const std::string all = fmt::format("DELETE FROM RecordFacts WHERE Name IN ('{}')",
                                            fmt::join(kHashSetFacts, "', '"));
        if (earlier == EarlierFindings::drop) {
            m_project.exec(all);
            return;
        }
        SQLite::Statement drop(m_project, all + " AND Value = ?");
        for (const HashSetFile &set : m_sets) {
            drop.reset();
            drop.bind(1, set.facts().name);
            drop.exec();
        }
    }

    SQLite::Database &m_project;
    std::span<HashSetFile> m_sets;
    TaskMonitor &m_task;
    HashMatch m_found;
    std::vector<AskedHash> m_asked;
    std::vector<Finding> m_findings;
    std::int64_t m_lastRecord = -1;
    std::int64_t m_lastBody = -1;
    std::uint64_t m_bodies = 0; ///< with a hash
};

} // namespace

HashMatch matchHashSets(SQLite::Database &project, std::span<HashSetFile> sets,
                        EarlierFindings earlier, TaskMonitor &task) {
    return onProject(project, [&] { return Matching(project, sets, task).run(earlier); });
}

} // namespace nv
