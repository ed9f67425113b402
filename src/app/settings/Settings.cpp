#include "app/settings/Settings.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <charconv>
#include <type_traits>

namespace nv {

namespace {

constexpr std::string_view kTrue = "True";

/// As the settings file reads numbers: the leading digits.
int numberOf(std::string_view text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string asText(bool on) {
    return on ? "True" : "False";
}
std::string asText(int number) {
    return fmt::format("{}", number);
}
std::string asText(const std::string &text) {
    return text;
}
std::string asText(const std::filesystem::path &path) {
    return textOf(path);
}

void take(bool &value, std::string_view text) {
    value = text == kTrue;
}
void take(int &value, std::string_view text) {
    value = numberOf(text);
}
void take(std::string &value, std::string_view text) {
    value = text;
}
void take(std::filesystem::path &value, std::string_view text) {
    value = std::string(text);
}

/// Calls `use` with the pointer to the member, when there is one.
template <class Use>
void withMember(const SettingFacts &row, Use &&use) {
    std::visit(
        [&use](auto member) {
            if constexpr (!std::is_same_v<decltype(member), std::monostate>)
                use(member);
        },
        row.member);
}

/// A member holds what its row's kind says, and a choice begins with one of its words.
constexpr bool isSound(const SettingFacts &row) {
    const bool none = std::holds_alternative<std::monostate>(row.member);
    const bool flag = std::holds_alternative<bool SettingValues::*>(row.member);
    const bool number = std::holds_alternative<int SettingValues::*>(row.member);
    switch (row.kind) {
    case SettingKind::flag:
        return none || flag;
    case SettingKind::number:
        return (none || number) && row.least < row.most;
    case SettingKind::choice:
        return !flag && !number && row.choices.find(row.byDefault) != std::string_view::npos;
    default:
        return !flag && !number;
    }
}
constexpr bool areSound() {
    for (const SettingFacts &row : setting::kAll)
        if (!isSound(row))
            return false;
    return true;
}
static_assert(areSound(), "a row of app/settings/SettingRows.h doesn't fit its member");

} // namespace

std::string fullName(const SettingFacts &facts) {
    return fmt::format("{}/{}", facts.section, facts.key);
}

bool readFlag(const IniFile &settings, FlagKey key) {
    return settings.readIniValue(key->section, key->key, key->byDefault == kTrue);
}

int readNumber(const IniFile &settings, NumberKey key) {
    return settings.readIniValue(key->section, key->key, defaultNumber(key));
}

int defaultNumber(NumberKey key) {
    return numberOf(key->byDefault);
}

std::string readText(const IniFile &settings, TextKey key) {
    return settings.readIniValue(key->section, key->key, key->byDefault);
}

bool writeFlag(IniFile &settings, FlagKey key, bool on) {
    return settings.writeIniValue(key->section, key->key, on);
}

bool writeNumber(IniFile &settings, NumberKey key, int number) {
    return settings.writeIniValue(key->section, key->key, asText(number));
}

bool writeText(IniFile &settings, TextKey key, std::string_view text) {
    return settings.writeIniValue(key->section, key->key, text);
}

void rememberFlag(IniFile &settings, FlagKey key, bool on) {
    settings.remember(key->section, key->key, on ? "True" : "False");
}

void rememberText(IniFile &settings, TextKey key, std::string_view text) {
    settings.remember(key->section, key->key, text);
}

std::string textIn(const SettingValues &values, const SettingFacts &row) {
    std::string text;
    withMember(row, [&](auto member) { text = asText(values.*member); });
    return text;
}

void putText(SettingValues &values, const SettingFacts &row, std::string_view text) {
    withMember(row, [&](auto member) { take(values.*member, text); });
}

void copyMember(const SettingFacts &row, const SettingValues &from, SettingValues &to) {
    withMember(row, [&](auto member) { to.*member = from.*member; });
}

void readMember(const IniFile &settings, const SettingFacts &row, std::string_view byDefault,
                SettingValues &values) {
    if (row.kind == SettingKind::flag)
        return putText(values, row,
                       asText(settings.readIniValue(row.section, row.key, byDefault == kTrue)));
    if (row.kind != SettingKind::number)
        return putText(values, row, settings.readIniValue(row.section, row.key, byDefault));
    const int number = settings.readIniValue(row.section, row.key, numberOf(byDefault));
    putText(values, row, asText(number < row.least ? row.mended.value_or(number) : number));
}

} // namespace nv
