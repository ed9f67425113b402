#include "views/overview/ImportOverview.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
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
#include <filesystem>
#include <map>
#include <utility>

namespace nv {

namespace {

namespace fs = std::filesystem;

ImportLight lightOfState(ArtefactState state) {
    switch (state) {
    case ArtefactState::complete:
        return ImportLight::green;
    case ArtefactState::cancelled:
    case ArtefactState::notReadYet:
    case ArtefactState::notReached:
        return ImportLight::amber;
    case ArtefactState::cutShort:
    case ArtefactState::failed:
    case ArtefactState::vanished:
        break;
    }
    return ImportLight::red;
}

ImportGap gapOf(const TrailEntry &entry, std::string_view state, std::string reason,
                ImportLight light) {
    const fs::path path = pathFromText(entry.filePath).value_or(entry.filePath);
    return {.file = textOf(path.filename()),
            .place = textOf(path.parent_path()),
            .state = std::string(state),
            .reason = std::move(reason),
            .light = light};
}

/// Goes through the trail once. Whatever is told of an import comes before its end.
class TrailReading {
  public:
    explicit TrailReading(ImportOverview &overview) : m_overview(overview) {}

    void take(const TrailEntry &entry) {
        if (const auto end = importEndOf(entry))
            takeEnd(*end, entry);
        else if (const auto file = importedFileOf(entry))
            takeFile(*file, entry);
        else if (entry.action == kNotReadableAction)
            takeUnreadable(entry);
        else if (entry.action == "Verify")
            takeVerify(entry.detail);
    }

    /// Where earlier versions imported, nothing tells one import from the next.
    void finish() {
        m_overview.isKnown = m_hasAny;
        if (!m_hasEnd || m_isOpen)
            m_overview.scope = ImportScope::all;
        Told &told = m_overview.scope == ImportScope::all ? m_all : m_last;
        std::erase_if(told.gaps,
                      [](const ImportGap &gap) { return gap.light == ImportLight::green; });
        m_overview.gaps = std::move(told.gaps);
        m_overview.read = told.read;
        m_overview.reached = told.reached;
        m_overview.end = told.end;
        m_overview.found = m_overview.reached + m_overview.end.notReached;
        std::ranges::stable_sort(m_overview.gaps, std::greater(), &ImportGap::light);
    }

  private:
    struct Told {
        std::vector<ImportGap> gaps;
        std::uint64_t read = 0;    ///< files
        std::uint64_t reached = 0; ///< files
        ImportEnd end;
    };

    /// Forgets the import before when the next one begins.
    void beginIfNeeded() {
        m_hasAny = true;
        if (std::exchange(m_isOpen, true))
            return;
        m_last = {};
        m_overview.verified.clear();
        m_overview.hasChanged = false;
    }

    void addGap(ImportGap gap) {
        m_all.gaps.push_back(gap);
        m_last.gaps.push_back(std::move(gap));
    }

    /// A place and the reader that went to it; none for a place that none could go to.
    using Reading = std::pair<std::string, std::string>;

    /// It is told of anew: what was missing isn't any more, or is said again.
    void forgetGap(const Reading &reading) {
        if (const auto gap = m_gapOf.find(reading); gap != m_gapOf.end()) {
            m_all.gaps[gap->second].light = ImportLight::green; // taken out at the end
            m_gapOf.erase(gap);
        }
    }

    void addGap(const Reading &reading, ImportGap gap) {
        m_gapOf[reading] = m_all.gaps.size();
        addGap(std::move(gap));
    }

    void takeFile(const ImportedFile &file, const TrailEntry &entry) {
        beginIfNeeded();
        noteEnd(entry);
        for (Told *told : {&m_last, &m_all}) {
            ++told->reached;
            told->read += file.state == ArtefactState::complete ? 1 : 0;
        }
        const Reading reading(entry.filePath, file.readerKey);
        forgetGap(reading);
        const ImportLight light = file.lacksRows ? ImportLight::red : lightOfState(file.state);
        if (light != ImportLight::green)
            addGap(reading, gapOf(entry, stateWord(file.state), file.why, light));
        compareWithBefore(entry);
    }

    /// The same path with another content was imported before.
    void compareWithBefore(const TrailEntry &entry) {
        if (entry.md5Hash.empty())
            return;
        const auto [before, isNew] = m_hashes.emplace(entry.filePath, entry.md5Hash);
        if (isNew || before->second == entry.md5Hash)
            return;
        addGap(gapOf(entry, "changed",
                     fmt::format("since it was imported before: MD5 {} then, {} now",
                                 before->second, entry.md5Hash),
                     ImportLight::red));
        before->second = entry.md5Hash;
    }

    void takeUnreadable(const TrailEntry &entry) {
        beginIfNeeded();
        noteEnd(entry);
        forgetGap({entry.filePath, {}});
        addGap({entry.filePath, {}},
               gapOf(entry, "not readable", entry.detail, ImportLight::amber));
    }

    void takeEnd(const ImportEnd &end, const TrailEntry &entry) {
        beginIfNeeded();
        m_isOpen = false;
        m_hasEnd = true;
        noteEnd(entry);
        m_last.end = end;
        ImportEnd &sum = m_all.end;
        sum.lastRow = end.lastRow;
        sum.notReached += end.notReached;
        sum.rowsLost += end.rowsLost;
        sum.passedOver += end.passedOver;
        sum.linksNotFollowed += end.linksNotFollowed;
        sum.shaderCaches += end.shaderCaches;
        sum.cancelled |= end.cancelled;
        if (!end.failure.empty())
            sum.failure = end.failure;
    }

    void noteEnd(const TrailEntry &entry) {
        m_overview.ended = entry.actionDateUTC;
        m_overview.version = entry.appVersion;
    }

    /// Only its first sentence is of files.
    void takeVerify(std::string_view detail) {
        if (!m_hasAny)
            return;
        const std::string_view files = detail.substr(0, detail.find(". "));
        m_overview.verified = std::string(files);
        m_overview.hasChanged = files.find(" changed") != std::string_view::npos ||
                                files.find(" gone") != std::string_view::npos;
    }

    ImportOverview &m_overview;
    std::map<std::string, std::string> m_hashes; ///< of each path as it was imported last
    std::map<Reading, std::size_t> m_gapOf;      ///< places in those of all imports
    Told m_last;                                 ///< of the import in hand, or of the last one
    Told m_all;
    bool m_hasAny = false;
    bool m_hasEnd = false;
    bool m_isOpen = false; ///< an import has begun whose end hasn't come
};

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

std::size_t named(const std::vector<ImportCount> &counts) {
    return static_cast<std::size_t>(std::ranges::count_if(
        counts, [](const ImportCount &count) { return !count.name.empty(); }));
}

/// What the trail would tell of it.
void takeSummary(SQLite::Database &project, const ImportSummary &summary,
                 ImportOverview &overview) {
    overview.end.failure = summary.failure; // also where the database doesn't answer
    TrailReading trail(overview);
    for (const ArtefactResult &artefact : summary.artefacts)
        if (artefact.state != ArtefactState::notReached)
            trail.take(trailEntry(artefact, ImportSettings()));
    for (const UnreadPlace &place : summary.gaps.unreadable)
        trail.take(trailEntry(place));
    const std::int64_t last =
        project.execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs").getInt64();
    trail.take(trailEntry(importEnd(summary, summary.lastBefore, last)));
    trail.finish();
}

/// Fills in the rows of its scope and whose they are.
Walk countSources(SQLite::Database &project, TaskMonitor &task, ImportOverview &overview) {
    SourceCounts counts;
    bool whole = true;
    overview.isCounted = unlessDamaged([&] { whole = counts.read(project, overview, task); });
    if (overview.isCounted && whole)
        counts.fill(overview);
    overview.isWhole = whole;
    return whole ? Walk::Finished : Walk::Cancelled;
}

} // namespace

Walk loadImportOverview(SQLite::Database &project, ImportScope scope, TaskMonitor &task,
                        ImportOverview &overview) {
    overview = {};
    overview.scope = scope;
    TrailReading trail(overview);
    CaseTrail(project).forEach([&trail](const TrailEntry &entry) { trail.take(entry); });
    trail.finish();
    return countSources(project, task, overview);
}

Walk loadImportOverview(SQLite::Database &project, const ImportSummary &summary, TaskMonitor &task,
                        ImportOverview &overview) {
    Walk walk = Walk::Finished;
    if (summary.isNoted) {
        walk = loadImportOverview(project, ImportScope::last, task, overview);
    } else {
        overview = {};
        overview.isInTrail = false;
        takeSummary(project, summary, overview);
        walk = countSources(project, task, overview);
    }
    if (overview.end.failure.empty())
        overview.end.failure = summary.failure;
    return walk;
}

std::uint64_t countNotRead(SQLite::Database &project) {
    ImportOverview overview;
    overview.scope = ImportScope::all;
    TrailReading trail(overview);
    CaseTrail(project).forEach([&trail](const TrailEntry &entry) { trail.take(entry); });
    trail.finish();
    return overview.gaps.size() + overview.end.notReached;
}

std::size_t ImportOverview::personCount() const {
    return named(people);
}

std::size_t ImportOverview::profileCount() const {
    return named(profiles);
}

std::size_t ImportOverview::count(ImportLight light) const {
    return static_cast<std::size_t>(std::ranges::count(gaps, light, &ImportGap::light));
}

} // namespace nv
