#include "app/Project.h"
#include "app/cli/ViewerCommands.h"
#include "db/Connection.h"
#include "db/ProjectFields.h"
#include "db/RecordStore.h"
#include "readers/CachedBody.h"
#include "views/HttpHeaders.h"
#include "views/Properties.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

/// A line a property, but HTTP headers one below the other.
void showProperty(std::ostream &out, std::string_view name, const std::string &value) {
    std::vector<std::string> lines = {value};
    if (name == "MetaData")
        lines = httpHeaderLines(value);
    if (lines.empty())
        lines.emplace_back();
    for (const std::string &line : lines) {
        out << fmt::format("{:<24}{}\n", name, printable(line));
        name = {};
    }
}

/// The project stays unopened: it may lie where nothing can be written.
std::optional<std::filesystem::path> pictureOf(Session &session, const std::string &project,
                                               std::int64_t urlId, const std::string &root) {
    Program &program = session.program;
    const auto database = connectToProject(project, Access::read);
    const ThisClass &state = program.thisClass;
    RecordStore records(*database, {state.GMTZone, state.EnableDSTChanges}, program.around.clock,
                        program.log);
    auto record = records.GetURL(UrlId{urlId});
    if (!record)
        return std::nullopt;
    const Evidence evidence(root);
    return contentOf(*record, {evidence, session.scratch(), program.log});
}

} // namespace

void showForPeople(Session &session, SQLite::Database &database, const std::string &project,
                   std::int64_t urlId) {
    Program &program = session.program;
    const ProjectFields fields(database, program.log);
    takeStoredZone(program, fields);
    DateSettings dates = dateSettings(program);
    dates.currentYear = 0; // no date is too old to be printed
    const std::string root = fields.GetDefault("RootPath");
    const PropertySource source{database, program.thisClass.GMTZone, dates, program.log,
                                [&] { return pictureOf(session, project, urlId, root); }};
    for (const Property &property : LoadProperties(UrlId{urlId}, source))
        showProperty(session.out, property.name, property.value);
}

} // namespace nv::cli
