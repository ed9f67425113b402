#include "maintenance/ProjectUpgrade.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Replace.h"
#include "base/Trap.h"
#include "db/project/ProjectDatabase.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/Connection.h"
#include "db/sql/SideFiles.h"
#include "db/sql/SqliteErrors.h"
#include "db/trail/CaseTrail.h"
#include "maintenance/ProjectLock.h"
#include "maintenance/QueryMove.h"
#include "maintenance/StatusText.h"
#include "maintenance/TableMove.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kNewAside = ".~new";
constexpr const char *kOldAside = ".~old";

/// A new project of this build in a temporary file, over a leftover of its name.
void createTemplate(ProjectDatabase &database, const fs::path &file, const fs::path &keywords) {
    removeDatabase(file);
    database.filePath = file;
    database.keywordFolder = keywords;
    if (!database.createDatabaseProject())
        throw StorageFailure(
            fmt::format("no database can be made at \"{}\"; the log says why", textOf(file)));
}

/// What a link leads to is what is replaced, not the link.
fs::path followed(const fs::path &project) {
    return fs::is_symlink(project) ? fs::canonical(project) : fs::absolute(project);
}

/// From the old project to the new one, up to its closing.
class Migration {
  public:
    Migration(SQLite::Database &from, SQLite::Database &to, TaskMonitor &task)
        : m_from(from), m_to(to), m_task(task) {}

    /// False when stopped.
    bool moveTables(const std::function<void(std::string_view)> &done) {
        // Rows whose parents were deleted by an earlier build are evidence too.
        m_to.exec("PRAGMA foreign_keys=OFF");
        double place = 0;
        for (const std::string_view table : kMovedTables) {
            const double share = 1.0 / static_cast<double>(std::size(kMovedTables));
            SubTask part(m_task, place * share, (place + 1) * share);
            if (!moveOne(std::string(table), part))
                return false;
            if (done)
                done(table);
            ++place;
        }
        for (const schema::Table &table : schema::tablesOfFirstUse())
            if (!moveOfFirstUse(std::string(table.name)))
                return false;
        moveRowNumbers(m_from, m_to);
        return true;
    }

  private:
    /// What was done with the case, what the audit shows of rebuilt pages, what was chosen for them
    /// and what searches have found isn't lost with the old file. Numbers and guards stay.
    bool moveOfFirstUse(const std::string &table) {
        if (!m_from.tableExists(table))
            return true;
        SchemaCatalogue(m_to).addOnFirstUse(table);
        SubTask part(m_task, 1, 1);
        return moveOne(table, part);
    }

    bool moveOne(const std::string &table, TaskMonitor &part) {
        if (!m_from.tableExists(table))
            return m_task.advance(0);
        if (table == "StoredQueries")
            m_to.exec("DELETE FROM StoredQueries");
        showStatus(m_task, "Copying table: " + table);
        return moveTable(m_from, m_to, table, part).has_value();
    }

    SQLite::Database &m_from;
    SQLite::Database &m_to;
    TaskMonitor &m_task;
};

/// The old project goes to its own path with ".old" after it, the new one in its place.
void swapIn(const fs::path &fresh, const fs::path &project, const ProjectLock &lock,
            TaskMonitor &task) {
    const fs::perms mode = fs::status(project).permissions();
    const fs::path aside = project.native() + kNewAside;
    copyToScratch(fresh, aside);
    fs::permissions(aside, mode);
    const fs::path oldAside = project.native() + kOldAside;
    showStatus(task, "Backing up: " + textOf(project));
    if (copyRange(lock.bytes(), 0, lock.bytes().size(), oldAside) != lock.bytes().size())
        throw StorageFailure(fmt::format("\"{}\" can't be copied", textOf(project)));
    fs::permissions(oldAside, mode);
    replaceDurably(oldAside, project.native() + ".old");
    showStatus(task, "Replacing: " + textOf(project));
    replaceDurably(aside, project);
}

/// The new project tells which file its rows come from. Nothing when stopped.
std::optional<TrailEntry> upgradeEntry(const ProjectLock &lock, const fs::path &project,
                                       SQLite::Database &fresh, TaskMonitor &task) {
    showStatus(task, "Hashing: " + textOf(project));
    const auto hashes =
        hashesOfFile(lock.bytes(), [&task](std::uint64_t) { return task.advance(1); });
    if (!hashes)
        return std::nullopt;
    TrailEntry entry;
    entry.action = "Upgrade";
    entry.rowCount = fresh.execAndGet("SELECT count(*) FROM URLs").getInt64();
    entry.detail =
        fmt::format("{} rows moved into a new project; the file is the old one", entry.rowCount);
    entry.filePath = textOf(project) + ".old";
    entry.fileSize = static_cast<std::int64_t>(hashes->size);
    entry.md5Hash = hashes->md5;
    entry.sha256Hash = hashes->sha256;
    return entry;
}

/// Removes what lies beside the project of a swap that didn't come to its end.
class Leftovers {
  public:
    explicit Leftovers(fs::path project) : m_project(std::move(project)) { remove(); }
    ~Leftovers() { remove(); }
    Leftovers(const Leftovers &) = delete;
    Leftovers &operator=(const Leftovers &) = delete;

  private:
    void remove() const {
        for (const char *suffix : {kNewAside, kOldAside}) {
            std::error_code ignored;
            fs::remove(m_project.native() + suffix, ignored);
        }
    }

    fs::path m_project;
};

} // namespace

ProjectUpgrade::ProjectUpgrade(UpgradeWhere where, const AppBuild &build, FailureLog &log,
                               const Clock &clock)
    : m_where(std::move(where)), m_build(build), m_log(log), m_clock(clock) {}

fs::path ProjectUpgrade::temporary(const char *name) const {
    return m_where.tempFolderPath / name;
}

SchemaScan ProjectUpgrade::scan(TaskMonitor &task) {
    // To SQLite this is a database without tables, and a fix would make an empty project of it.
    std::error_code missing;
    if (fs::is_empty(m_where.project, missing))
        throw StorageFailure(
            fmt::format("\"{}\" is empty: it holds no project", textOf(m_where.project)));
    if (fs::exists(m_where.project, missing))
        checkIsProject(m_where.project);
    SchemaScan scan;
    const fs::path templates = temporary("~adoxschema1");
    ProjectDatabase reference(m_log, m_clock);
    createTemplate(reference, templates, m_where.keywordFolder);
    const ProjectShape wanted = shapeOf(reference.connection());
    onFile(m_where.project, [&] {
        const auto project = connect(m_where.project, Access::read);
        const ProjectShape found = shapeOf(*project);
        scan.complete = compareShapes(wanted, found, task, scan.differences);
        if (scan.complete && !scan.differences.empty())
            scan.leftBehind = leftBehindBy(*project, found, wanted);
    });
    reference.closeDB();
    removeDatabase(templates);
    return scan;
}

bool ProjectUpgrade::isStampOlder() {
    return stampOf(*connectToProject(m_where.project, Access::read), m_log) < m_build;
}

// A later build's stamp stays: this build knows nothing of what that one has added.
void ProjectUpgrade::stampWhenOlder() {
    ProjectDatabase project(m_log, m_clock);
    project.filePath = m_where.project;
    logFailureOf(m_log, "UpgradeWizardForm.ScanBtn_Click()", [&] {
        if (!isStampOlder())
            return;
        project.open();
        // One that isn't kept stands in the log, and the next scan tries again.
        static_cast<void>(stampVersion(project.connection(), m_log, m_build));
    });
}

/// False when stopped.
bool ProjectUpgrade::noteFix(SQLite::Database &fresh, const fs::path &project,
                             const ProjectLock &lock, TaskMonitor &task) const {
    auto entry = upgradeEntry(lock, project, fresh, task);
    if (!entry)
        return false;
    entry->actionDateUTC = Date::fromTimePoint(m_clock.now());
    entry->appVersion =
        fmt::format("{}.{}.{}", m_build.appMajor, m_build.appMinor, m_build.appRevision);
    CaseTrail(fresh).add(*entry);
    return true;
}

FixOutcome ProjectUpgrade::fix(TaskMonitor &task,
                               const std::function<void(std::string_view)> &tableDone) {
    const fs::path project = followed(m_where.project);
    checkIsProject(project);
    const Leftovers leftovers(project);
    const ProjectLock lock(project);
    const fs::path temp = temporary("~tempdb");
    ProjectDatabase fresh(m_log, m_clock);
    createTemplate(fresh, temp, m_where.keywordFolder);
    FixOutcome outcome;
    bool moved = onFile(project, [&] {
        const auto from = connect(project, Access::read);
        return Migration(*from, fresh.connection(), task).moveTables(tableDone);
    });
    if (moved)
        moved = noteFix(fresh.connection(), project, lock, task);
    if (moved) {
        remakeViews(fresh.connection(), m_log, outcome.notes);
        if (!stampVersion(fresh.connection(), m_log, m_build))
            throw StorageFailure("the new project can't be written; the log says why");
    }
    fresh.closeDB();
    if (moved && task.advance(1)) {
        if (fs::exists(sideFile(temp, kLogSuffix)))
            throw StorageFailure(fmt::format("\"{}\" can't be closed", textOf(temp)));
        swapIn(temp, project, lock, task);
        outcome.end = FixEnd::fixed;
        outcome.oldProject = project.native() + ".old";
    }
    removeDatabase(temp);
    return outcome;
}

} // namespace nv
