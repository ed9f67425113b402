#pragma once

#include "app/settings/IniFile.h"
#include "app/settings/SettingRows.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// All settings.
inline std::span<const SettingFacts> settingsTable() {
    return setting::kAll;
}

/// "SECTION/Key".
std::string fullName(const SettingFacts &facts);

/// A setting that the code names: "Key", or "SECTION/Key" where two sections have one. A name that
/// no row has doesn't compile, nor does one of another kind.
template <SettingKind... Kinds>
class SettingKey {
  public:
    // NOLINTNEXTLINE(google-explicit-constructor): a name in the code is meant as one
    consteval SettingKey(const char *name) : m_row(&rowOf(name)) {}

    /// Of a row in hand, which must be of such a kind.
    constexpr explicit SettingKey(const SettingFacts &row) : m_row(&row) {}

    const SettingFacts &row() const { return *m_row; }
    const SettingFacts *operator->() const { return m_row; }

  private:
    static consteval bool isNamed(const SettingFacts &row, std::string_view name) {
        const std::size_t slash = name.find('/');
        return slash == std::string_view::npos
                   ? row.key == name
                   : row.section == name.substr(0, slash) && row.key == name.substr(slash + 1);
    }
    static consteval const SettingFacts &rowOf(std::string_view name) {
        const SettingFacts *found = nullptr;
        for (const SettingFacts &row : setting::kAll) {
            if (!isNamed(row, name))
                continue;
            if (found)
                throw "two sections have a setting of this name: write \"SECTION/Key\"";
            found = &row;
        }
        if (!found || !((found->kind == Kinds) || ...))
            throw "no row of app/settings/SettingRows.h is a setting of this name and kind";
        return *found;
    }

    const SettingFacts *m_row;
};

using FlagKey = SettingKey<SettingKind::flag>;
using NumberKey = SettingKey<SettingKind::number>;
using TextKey =
    SettingKey<SettingKind::choice, SettingKind::text, SettingKind::file, SettingKind::folder,
               SettingKind::tempFolder, SettingKind::baseFolder, SettingKind::zone>;
using AnyKey = SettingKey<SettingKind::flag, SettingKind::number, SettingKind::choice,
                          SettingKind::text, SettingKind::file, SettingKind::folder,
                          SettingKind::tempFolder, SettingKind::baseFolder, SettingKind::zone>;

/// As the file has them, or the row's default. A default that lies in one of the program's folders
/// is asked of `defaultOf`.
bool readFlag(const IniFile &settings, FlagKey key);
int readNumber(const IniFile &settings, NumberKey key);
std::string readText(const IniFile &settings, TextKey key);

int defaultNumber(NumberKey key);

/// Choices of the examiner's. False when the file can't be written; see IniFile.
[[nodiscard]] bool writeFlag(IniFile &settings, FlagKey key, bool on);
[[nodiscard]] bool writeNumber(IniFile &settings, NumberKey key, int number);
[[nodiscard]] bool writeText(IniFile &settings, TextKey key, std::string_view text);
/// What nobody misses; see IniFile::remember.
void rememberFlag(IniFile &settings, FlagKey key, bool on);
void rememberText(IniFile &settings, TextKey key, std::string_view text);

/// The member of `row`, which has one, as a settings file has it, and back.
std::string textIn(const SettingValues &values, const SettingFacts &row);
void putText(SettingValues &values, const SettingFacts &row, std::string_view text);
/// The member of `row`, when it has one.
void copyMember(const SettingFacts &row, const SettingValues &from, SettingValues &to);
/// Fills the member of `row`, when it has one, from the file.
void readMember(const IniFile &settings, const SettingFacts &row, std::string_view byDefault,
                SettingValues &values);

} // namespace nv
