#pragma once

#include "app/program/Program.h"
#include "app/settings/Settings.h"
#include "time/ZoneDatabase.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What stands in the Options dialog: settings, and what isn't kept in the settings file.
struct Options : SettingValues {
    std::filesystem::path projectDBPath;
    std::filesystem::path rootPath; ///< of a new project: empty is left to its first import
    std::filesystem::path tempFolderPath;
    std::optional<std::int32_t> timeZoneID; ///< the selection of the list
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

/// The dialog's first step of a new project, or an ordinary call.
struct OptionsOccasion {
    bool newProject = false;
    /// Closes the open project before the new one's values come into force.
    std::function<void()> closeOpenProject;
    /// The examiner has agreed to write over this file already.
    std::filesystem::path overwriteAgreed;
};

/// Where the dialog stays when it can't go on.
enum class OptionsField { none, project, base, temp, templates, publish, zone };

struct OptionsOutcome {
    bool applied = false;
    OptionsField focus = OptionsField::none;
};

/// What the dialog shows at first. `zones` is its list.
Options readOptions(const Program &program, const std::vector<ZoneRow> &zones);
/// The same for a new project, with a file that isn't there yet.
Options readNewProjectOptions(const Program &program, const std::vector<ZoneRow> &zones);

/// Validates and applies, step by step: what was applied before a refusal stays applied. The
/// examiner is told of the refusal, and of what couldn't be written.
OptionsOutcome applyOptions(Program &program, const Options &options,
                            const OptionsOccasion &occasion = {});

/// Now, in that format.
std::string sampleOf(const Program &program, std::string_view format);
/// The choice of a format is written at once; gives the sample.
std::string chooseDateFormat(Program &program, std::string_view format);
std::string chooseTimeFormat(Program &program, std::string_view format);

/// The zones for the list. The examiner is told when there are none to be had.
std::vector<ZoneRow> initTimeZone(Program &program);

/// The state of the connection `name`, and switching it over, whichever connection the settings
/// name. Gives the state afterwards.
std::string connectionStatus(Program &program, const std::string &name);
std::string switchConnectionOver(Program &program, const std::string &name);

} // namespace nv
