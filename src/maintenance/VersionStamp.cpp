#include "maintenance/VersionStamp.h"

#include "db/project/ProjectFields.h"

#include <fmt/format.h>

namespace nv {

AppBuild stampOf(SQLite::Database &project, FailureLog &log) {
    const ProjectFields fields(project, log);
    const auto number = [&fields](std::string_view name) {
        return fields.defaultNumber(name).value_or(0);
    };
    return {number("AppMajor"), number("AppMinor"), number("AppRevision")};
}

bool stampVersion(SQLite::Database &project, FailureLog &log, const AppBuild &build) {
    ProjectFields fields(project, log);
    return fields.saveDefaultSetting("AppMajor", fmt::format("{}", build.appMajor)) &&
           fields.saveDefaultSetting("AppMinor", fmt::format("{}", build.appMinor)) &&
           fields.saveDefaultSetting("AppRevision", fmt::format("{}", build.appRevision));
}

} // namespace nv
