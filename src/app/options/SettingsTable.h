#pragma once

#include "app/program/Program.h"
#include "app/settings/Settings.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The setting of that name in either case, "Key" or "SECTION/Key". Two sections hold a key of the
/// same name: then there are several.
std::vector<const SettingFacts *> settingsNamed(std::string_view name);

std::string defaultOf(const Program &program, const SettingFacts &facts);
/// As it is in force at the next start; the default when the file has none.
std::string valueOf(const Program &program, const SettingFacts &facts);

/// A value as it is written, or why it is refused.
struct CheckedValue {
    std::string value;
    std::string refusal; ///< empty when the value is good
};
CheckedValue checkValue(Program &program, const SettingFacts &facts, std::string_view value);

} // namespace nv
