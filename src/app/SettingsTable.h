#pragma once

#include "app/Program.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What a setting's value has to be. All but `flag` also take an empty value, which leads back to
/// the default.
enum class SettingKind { flag, text, number, file, folder, tempFolder, baseFolder, zone, theme };

/// A key of the settings file.
struct SettingFacts {
    std::string_view section;
    std::string_view key;
    SettingKind kind = SettingKind::text;
    /// "<home>", "<state>" and "<program>" at its beginning stand for the program's folders.
    std::string_view byDefault;
    int least = 0; ///< of numbers, both included
    int most = 0;
    std::string_view what; ///< one sentence for people
};

/// All keys that are meant to be changed by hand, by section.
std::span<const SettingFacts> settingsTable();

/// The setting of that name in either case, "Key" or "SECTION/Key". Two sections hold a key of the
/// same name: then there are several.
std::vector<const SettingFacts *> settingsNamed(std::string_view name);

/// The names that are most like `name`, the likest first.
std::vector<std::string> nearestNames(std::string_view name, const std::vector<std::string> &names);

/// "SECTION/Key".
std::string fullName(const SettingFacts &facts);

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
