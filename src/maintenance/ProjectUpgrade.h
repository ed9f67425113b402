#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "maintenance/SchemaScan.h"
#include "maintenance/VersionStamp.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

class ProjectLock;

struct UpgradeWhere {
    std::filesystem::path project; ///< closed; nobody else may have it open for a fix
    std::filesystem::path TempFolderPath;
    std::filesystem::path KeywordFolder;
};

enum class FixEnd {
    fixed,
    stopped, ///< the project is as it was
};

struct FixOutcome {
    FixEnd end = FixEnd::stopped;
    std::filesystem::path oldProject; ///< where the project as it was now lies
    std::vector<std::string> notes;   ///< for the examiner: what didn't go smoothly
};

/// Compares a project with the schema of this build, and moves its data into a new project of that
/// schema. Nothing is written to the project by a fix until the new one is whole and takes its
/// place.
class ProjectUpgrade {
  public:
    ProjectUpgrade(UpgradeWhere where, const AppBuild &build, FailureLog &log, const Clock &clock);

    /// Throws StorageFailure when the file is no project, or when a database can't be read or made.
    /// Only reads the project.
    SchemaScan scan(TaskMonitor &task);
    /// The project bears the stamp of an earlier build than this one.
    bool isStampOlder();
    /// For a project in which the scan found nothing: gives it the stamp of this build when it
    /// bears that of an earlier one. A failure is logged: a project that can't be written is fit
    /// all the same.
    void stampWhenOlder();
    /// Throws StorageFailure, FileFailure and the database's errors; the project then stays as it
    /// was. `tableDone` learns of each table that was moved.
    [[nodiscard]] FixOutcome fix(TaskMonitor &task,
                                 const std::function<void(std::string_view)> &tableDone = {});

  private:
    std::filesystem::path temporary(const char *name) const;
    bool noteFix(SQLite::Database &fresh, const std::filesystem::path &project,
                 const ProjectLock &lock, TaskMonitor &task) const;

    UpgradeWhere m_where;
    AppBuild m_build;
    FailureLog &m_log;
    const Clock &m_clock;
};

} // namespace nv
