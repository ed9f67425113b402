#pragma once

#include "app/program/Program.h"
#include "app/settings/Settings.h"

namespace nv {

/// Fills the program's state with the settings that are read at the start.
void takeSettings(Program &program);

/// Takes the value of one setting over from `values`, whatever in the program goes by it.
void bringIntoForce(Program &program, const SettingFacts &row, const SettingValues &values);

/// The examiner's choice outside of Options: in force, and kept for the next start. The examiner is
/// told when the first of several can't be kept.
void keepFlag(Program &program, FlagKey key, bool on);
/// Keeps a choice that something else brings into force; tells as keepFlag() does.
void keepText(Program &program, TextKey key, std::string_view text);

} // namespace nv
