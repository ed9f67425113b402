#pragma once

#include "app/program/Program.h"
#include "app/settings/Settings.h"
#include "time/ZoneDatabase.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// What stands in the Options dialog: settings, and what isn't kept in the settings file.
struct Options : SettingValues {
    std::filesystem::path projectDBPath;
    std::filesystem::path rootPath; ///< of a new project: empty is left to its first import
    std::filesystem::path tempFolderPath;
    std::optional<std::int32_t> timeZoneID; ///< a classic zone, the selection of the list
    std::string exactZone;                  ///< an exact one, "Europe/Berlin": goes before it
    bool enableDSTChanges = true;
    bool enablePARD = false;
    int pardFrom = 0; ///< percent
    int pardTo = 0;
    std::optional<bool> switchedOffline; ///< set when the connection was switched meanwhile
    /// Settings that no member holds, as the settings file has them.
    std::map<const SettingFacts *, std::string> others;
};

/// A setting as it stands there, and a choice of the examiner's.
std::string shownText(const Options &options, const SettingFacts &row);
void chooseText(Options &options, const SettingFacts &row, const std::string &text);

/// What the dialog shows at first. `zones` is its list.
Options readOptions(const Program &program, const std::vector<ZoneRow> &zones);
/// The same for a new project, with a file that isn't there yet.
Options readNewProjectOptions(const Program &program, const std::vector<ZoneRow> &zones);

} // namespace nv
