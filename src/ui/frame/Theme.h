#pragma once

#include "app/settings/IniFile.h"

#include <string_view>

namespace nv {

enum class Theme { System, Light, Dark };

/// "System", "Light" or "Dark", as the settings file has it.
std::string_view themeName(Theme theme);
/// The theme that the settings keep; the system's when they have none or an unknown one.
Theme keptTheme(const IniFile &settings);
void keepTheme(IniFile &settings, Theme theme);

/// Gives all windows the theme's colours. The system's choice is read from the colours that the
/// desktop has now.
void applyTheme(Theme theme);

} // namespace nv
