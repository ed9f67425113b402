#pragma once

#include "app/options/ShownOptions.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

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
