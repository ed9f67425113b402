#include "app/options/ShownOptions.h"

#include "app/options/SettingsTable.h"
#include "app/project/SuggestedProject.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

fs::path firstOf(const fs::path &inForce, const IniFile &settings, TextKey key) {
    return inForce.empty() ? fs::path(readText(settings, key)) : inForce;
}

void readPaths(const Program &program, Options &options) {
    const ProgramState &state = program.state;
    options.projectDBPath = state.projectDBPath;
    options.rootPath = state.rootPath;
    options.tempFolderPath = firstOf(state.tempFolderRoot, program.settings, "Temp");
    options.publishTempFolder = firstOf(state.publishTempFolder, program.settings, "Publish");
    options.agencyLogoPath = firstOf(state.agencyLogoPath, program.settings, "AgencyLogo");
}

/// Those in force, but for what Options looks up anew.
void readSettings(const Program &program, Options &options) {
    static_cast<SettingValues &>(options) = static_cast<const SettingValues &>(program.state);
    for (const SettingFacts &row : settingsTable()) {
        const bool isShown = row.control.name != nullptr;
        if (isShown && std::holds_alternative<std::monostate>(row.member))
            options.others[&row] = valueOf(program, row);
        else if (!row.offered.empty())
            readMember(program.settings, row, row.offered, options);
        else if (row.read == SettingRead::inOptions)
            readMember(program.settings, row, defaultOf(program, row), options);
    }
}

} // namespace

Options readOptions(const Program &program, const std::vector<ZoneRow> &zones) {
    const ProgramState &state = program.state;
    Options options;
    readSettings(program, options);
    readPaths(program, options);
    if (state.gmtZone.exact)
        options.exactZone = state.gmtZone.exact->name();
    else if (const auto place = placeInList(zones, state.gmtZone))
        options.timeZoneID = zones[*place].timeZoneID;
    options.enableDSTChanges = state.enableDSTChanges;
    options.enablePARD = state.pard.enablePARD;
    options.pardFrom = state.pard.fromValue;
    options.pardTo = state.pard.toValue;
    return options;
}

Options readNewProjectOptions(const Program &program, const std::vector<ZoneRow> &zones) {
    Options options = readOptions(program, zones);
    options.rootPath.clear();
    const fs::path folder = folderOfProjects(program);
    options.projectDBPath = folder / "Case.nvp";
    for (int number = 2; fs::exists(options.projectDBPath); ++number)
        options.projectDBPath = folder / fmt::format("Case {}.nvp", number);
    return options;
}

std::string shownText(const Options &options, const SettingFacts &row) {
    const auto other = options.others.find(&row);
    return other == options.others.end() ? textIn(options, row) : other->second;
}

void chooseText(Options &options, const SettingFacts &row, const std::string &text) {
    if (std::holds_alternative<std::monostate>(row.member))
        options.others[&row] = text;
    else
        putText(options, row, text);
}

} // namespace nv
