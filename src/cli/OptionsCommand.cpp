#include "app/jobs/ZoneJob.h"
#include "app/options/ProjectOptions.h"
#include "app/options/SettingsTable.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/NearestNames.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/project/ProjectFields.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/limits/MovedEvidence.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace nv::cli {

namespace {

struct Arguments {
    std::string key;     ///< "Key" or "SECTION/Key"; empty lists all
    std::string value;   ///< of set; empty leads back to the default
    std::string project; ///< the project's own values instead of the settings file's
    Format format = Format::table;
};

[[noreturn]] void refuseName(const std::string &key, const std::vector<std::string> &names) {
    throw UsageError(fmt::format("there is no setting \"{}\". The nearest names: {}",
                                 printable(key), fmt::join(nearestNames(key, names), ", ")));
}

std::vector<const SettingFacts *> settingsOfName(const std::string &key) {
    auto found = settingsNamed(key);
    if (!found.empty())
        return found;
    std::vector<std::string> names;
    for (const SettingFacts &facts : settingsTable())
        names.emplace_back(facts.key);
    refuseName(key, names);
}

const SettingFacts &oneSetting(const std::string &key) {
    const auto found = settingsOfName(key);
    if (found.size() == 1)
        return *found.front();
    std::vector<std::string> names;
    names.reserve(found.size());
    for (const SettingFacts *facts : found)
        names.push_back(fullName(*facts));
    throw UsageError(
        fmt::format("\"{}\" stands in two sections: say which of {}", key, fmt::join(names, ", ")));
}

/// A value that the program keeps for itself, such as the places of windows.
constexpr std::string_view kOwnValue = "Kept by the program for itself";

const ProjectValueFacts *projectValueNamed(std::string_view key) {
    const auto table = projectValueTable();
    const auto found = std::find_if(table.begin(), table.end(), [&](const ProjectValueFacts &each) {
        return equalsNoCase(each.name, key);
    });
    return found == table.end() ? nullptr : &*found;
}

/// One that a project goes by when it is opened; what it only notes would change nothing.
const ProjectValueFacts &settableInProject(const std::string &key) {
    const ProjectValueFacts *facts = projectValueNamed(key);
    if (facts && facts->settable)
        return *facts;
    if (const auto setting = settingsNamed(key); !setting.empty())
        throw UsageError(fmt::format("no project keeps {0}: it is a setting of the program, which "
                                     "`options set {0} VALUE` changes",
                                     setting.front()->key));
    if (facts)
        throw UsageError(fmt::format("{} is written by the program itself", facts->name));
    std::vector<std::string> names;
    for (const ProjectValueFacts &each : projectValueTable())
        if (each.settable)
            names.emplace_back(each.name);
    refuseName(key, names);
}

std::unique_ptr<RowWriter> newWriter(Session &session, Format format) {
    return makeRowWriter(format, session.out,
                         {"Section", "Key", "Value", "Default", "What it changes"});
}

/// What stands in the settings file and is not meant to be changed by hand.
std::vector<IniFile::Value> ownSettings(const Program &program, std::string_view key) {
    std::vector<IniFile::Value> own = program.settings.values();
    std::erase_if(own, [key](const IniFile::Value &value) {
        const std::string name = fmt::format("{}/{}", value.section, value.key);
        const bool isAsked = key.empty() || equalsNoCase(key, value.key) || equalsNoCase(key, name);
        return !isAsked || !settingsNamed(name).empty();
    });
    return own;
}

void listSettings(Session &session, const Arguments &arguments) {
    const std::string &key = arguments.key;
    std::vector<const SettingFacts *> chosen;
    const std::vector<IniFile::Value> own = ownSettings(session.program, key);
    if (key.empty()) {
        for (const SettingFacts &facts : settingsTable())
            chosen.push_back(&facts);
    } else {
        chosen = own.empty() ? settingsOfName(key) : settingsNamed(key);
    }
    const auto writer = newWriter(session, arguments.format);
    for (const SettingFacts *facts : chosen)
        writer->row({facts->section, facts->key, valueOf(session.program, *facts),
                     defaultOf(session.program, *facts), facts->what});
    for (const IniFile::Value &value : own)
        writer->row({value.section, value.key, value.text, "", kOwnValue});
    writer->finish();
}

/// The settings file's value of the same name stands in for what the project doesn't keep.
std::string defaultInProject(const Program &program, std::string_view name) {
    const auto found = settingsNamed(name);
    return found.size() == 1 ? valueOf(program, *found.front()) : std::string();
}

void listProject(Session &session, const Arguments &arguments) {
    const auto database = openReadOnly(arguments.project);
    const ProjectFields fields(*database, session.program.log);
    std::vector<std::string> names;
    for (const ProjectValueFacts &facts : projectValueTable())
        names.emplace_back(facts.name);
    for (const std::string &name : fields.defaultNames())
        if (!projectValueNamed(name))
            names.push_back(name);
    const std::vector<std::string> all = names;
    if (!arguments.key.empty())
        std::erase_if(names, [&](const auto &name) { return !equalsNoCase(name, arguments.key); });
    if (names.empty())
        refuseName(arguments.key, all);
    const auto writer = newWriter(session, arguments.format);
    for (const std::string &name : names) {
        const ProjectValueFacts *facts = projectValueNamed(name);
        writer->row({"PROJECT", name, fields.getDefault(name),
                     facts ? defaultInProject(session.program, name) : std::string(),
                     facts ? facts->what : kOwnValue});
    }
    writer->finish();
}

/// What the value of a project is checked as.
SettingFacts factsOf(const ProjectValueFacts &value) {
    const bool isRoot = value.name == "RootPath";
    return setting::text("PROJECT", value.name, "", value.what,
                         isRoot ? SettingKind::baseFolder : SettingKind::zone);
}

std::string checked(Program &program, const SettingFacts &facts, const std::string &value) {
    const CheckedValue result = checkValue(program, facts, value);
    constexpr std::size_t kQuoted = 100; // of a long value
    if (!result.refusal.empty())
        throw UsageError(fmt::format("{} \"{}\"{}: {}", facts.key,
                                     printable(value.substr(0, kQuoted)),
                                     value.size() > kQuoted ? "..." : "", result.refusal));
    return result.value;
}

void setInProject(Session &session, const Arguments &arguments) {
    const ProjectValueFacts &facts = settableInProject(arguments.key);
    const std::string value = checked(session.program, factsOf(facts), arguments.value);
    session.open(arguments.project);
    // Without a value the machine's zone is taken when it is opened next.
    const bool isZone = facts.name == "LastTimeZoneID" && !value.empty();
    if (isZone && !changeZone(session.program, value, session.task))
        throw StorageFailure("the project keeps its time zone");
    if (!storeProjectValues(session.program, {{std::string(facts.name), value}}, TrailNote::yes)
             .empty())
        throw StorageFailure(fmt::format("\"{}\" can't keep {}; see \"{}\"", arguments.project,
                                         facts.name, textOf(session.program.log.path())));
    if (facts.name == "RootPath")
        mendRootPath(session.program.state.projectDB.connection(), session.program.log, value,
                     session.task);
}

/// Section, key, value, default, what it changes.
Exit get(Session &session, const Arguments &arguments) {
    if (arguments.project.empty())
        listSettings(session, arguments);
    else
        listProject(session, arguments);
    return Exit::ok;
}

/// Writes one setting after a check. UsageError when there is no such key or the value is bad.
Exit set(Session &session, const Arguments &arguments) {
    if (!arguments.project.empty()) {
        setInProject(session, arguments);
        return Exit::ok;
    }
    const SettingFacts &facts = oneSetting(arguments.key);
    const std::string value = checked(session.program, facts, arguments.value);
    if (!session.program.settings.writeIniValue(facts.section, facts.key, value))
        throw StorageFailure(fmt::format("the settings can't be written: \"{}\"",
                                         textOf(session.program.settings.path())));
    session.err << fmt::format("[{}] {} = {}\n", facts.section, facts.key,
                               printable(valueOf(session.program, facts)));
    return Exit::ok;
}

Argument projectOption(Arguments &given) {
    return value("--project", given.project, "The values that this project keeps for itself");
}

} // namespace

Command optionsCommand() {
    return {.name = "options",
            .what = "The settings, or a project's own values",
            .readme = {"`options get`, `options set KEY VALUE`",
                       "shows and changes the settings; `--project` for what a project keeps"}};
}

Command optionsGetCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "options get",
            .what = "List settings with their defaults",
            .examples = {{"options get", "all settings"},
                         {"options get RootPath --project case.nvp", "a value of a project"}},
            .arguments = {projectOption(*given),
                          value("KEY", given->key, "Only this one: Key or SECTION/Key"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return get(session, *given); }};
}

Command optionsSetCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "options set",
        .what = "Change a setting after a check of its value",
        .examples = {{"options set GalleryRecordsPerPage 50", ""},
                     {"options set RootPath /mnt/moved --project case.nvp", "evidence was moved"}},
        .arguments = {projectOption(*given),
                      value("KEY", given->key, "Key or SECTION/Key").required(),
                      value("VALUE", given->value, "\"\" leads back to the default").required()},
        .run = [given](Session &session) { return set(session, *given); }};
}

} // namespace nv::cli
