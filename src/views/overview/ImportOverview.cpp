#include "views/overview/ImportOverview.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "views/overview/ImportCounts.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
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

ImportGap gapOf(std::string_view file, std::string_view state, std::string reason,
                ImportLight light) {
    const fs::path path = pathFromText(file).value_or(file);
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
        m_unended.take(entry);
        if (importBeginOf(entry))
            takeBegin(entry);
        else if (const auto end = importEndOf(entry))
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
        m_overview.unended = m_unended.found();
        for (const UnendedImport &import : m_overview.unended) {
            m_all.gaps.push_back(
                gapOf(import.folder, "never ended", reasonOf(import), ImportLight::red));
            if (!import.lastRow)
                m_overview.ended = {};
        }
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

    /// What is open by now never ended.
    void takeBegin(const TrailEntry &entry) {
        m_isOpen = false;
        beginIfNeeded();
        noteEnd(entry);
    }

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
            addGap(reading, gapOf(entry.filePath, stateWord(file.state), file.why, light));
        compareWithBefore(entry);
    }

    /// The same path with another content was imported before.
    void compareWithBefore(const TrailEntry &entry) {
        if (entry.md5Hash.empty())
            return;
        const auto [before, isNew] = m_hashes.emplace(entry.filePath, entry.md5Hash);
        if (isNew || before->second == entry.md5Hash)
            return;
        addGap(gapOf(entry.filePath, "changed",
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
               gapOf(entry.filePath, "not readable", entry.detail, ImportLight::amber));
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
                                files.find(" gone") != std::string_view::npos ||
                                files.find(" new beside") != std::string_view::npos;
    }

    ImportOverview &m_overview;
    std::map<std::string, std::string> m_hashes; ///< of each path as it was imported last
    std::map<Reading, std::size_t> m_gapOf;      ///< places in those of all imports
    UnendedImports m_unended;
    Told m_last; ///< of the import in hand, or of the last one
    Told m_all;
    bool m_hasAny = false;
    bool m_hasEnd = false;
    bool m_isOpen = false; ///< an import has begun whose end hasn't come
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

} // namespace

Walk loadImportOverview(SQLite::Database &project, ImportScope scope, TaskMonitor &task,
                        ImportOverview &overview) {
    overview = {};
    overview.scope = scope;
    TrailReading trail(overview);
    CaseTrail(project).forEach([&trail](const TrailEntry &entry) { trail.take(entry); });
    trail.finish();
    return countImported(project, task, overview);
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
        walk = countImported(project, task, overview);
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
