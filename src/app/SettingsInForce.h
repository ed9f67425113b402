#pragma once

#include "app/Program.h"
#include "app/Settings.h"

namespace nv {

/// Fills the program's state with the settings that are read at the start.
void takeSettings(Program &program);

/// Takes the value of one setting over from `values`, whatever in the program goes by it.
void bringIntoForce(Program &program, const SettingFacts &row, const SettingValues &values);

/// The examiner's choice outside of Options: in force, and kept for the next start.
void keepFlag(Program &program, FlagKey key, bool on);

} // namespace nv
