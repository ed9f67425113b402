#include "app/options/SettingsTable.h"

#include "app/messages/Messages.h"
#include "app/program/Zones.h"
#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace fs = std::filesystem;

namespace {

using K = SettingKind;

constexpr std::size_t kLongestValue = 4000; // bytes; what earlier builds could read

CheckedValue refused(std::string reason) {
    return {{}, std::move(reason)};
}

CheckedValue checkFlag(std::string_view value) {
    if (equalsNoCase(value, "True"))
        return {"True", {}};
    if (equalsNoCase(value, "False"))
        return {"False", {}};
    return refused("True or False is expected");
}

CheckedValue checkNumber(const SettingFacts &facts, std::string_view value) {
    int number = 0;
    const auto end = value.data() + value.size();
    const auto [at, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || at != end || number < facts.least || number > facts.most)
        return refused(
            fmt::format("a whole number from {} to {} is expected", facts.least, facts.most));
    return {fmt::format("{}", number), {}};
}

CheckedValue checkZone(Program &program, std::string_view value) {
    CheckedZone zone = checkedZone(program, value);
    return zone.refusal.empty() ? CheckedValue{std::move(zone.key), {}}
                                : refused(std::move(zone.refusal));
}

CheckedValue checkChoice(const SettingFacts &facts, std::string_view value) {
    std::string expected;
    const auto choices = split(facts.choices, ';');
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (equalsNoCase(value, choices[i]))
            return {std::string(choices[i]), {}};
        expected += i == 0 ? "" : i + 1 < choices.size() ? ", " : " or ";
        expected += choices[i];
    }
    return refused(fmt::format("{} is expected", expected));
}

/// The folders that Options tests have its words.
std::string noSuchPath(SettingKind kind) {
    if (kind == K::tempFolder)
        return messages::invalidTempFolder().text;
    if (kind == K::baseFolder)
        return messages::invalidBaseFolder().text;
    return kind == K::file ? "there is no such file" : "there is no such folder";
}

CheckedValue checkPath(const Program &program, SettingKind kind, std::string_view value) {
    const fs::path path = fs::absolute(fs::path(value)).lexically_normal();
    std::error_code notThere;
    if (kind == K::file ? !fs::is_regular_file(path, notThere) : !fs::is_directory(path, notThere))
        return refused(noSuchPath(kind));
    if (kind == K::tempFolder && !isUsableTempFolder(program, path))
        return refused(
            "scratch files go there: this one can't be written to, or holds the program, "
            "its settings, the project or the user's home");
    return {textOf(path), {}};
}

} // namespace

std::vector<const SettingFacts *> settingsNamed(std::string_view name) {
    std::vector<const SettingFacts *> found;
    for (const SettingFacts &facts : settingsTable()) {
        if (equalsNoCase(facts.key, name) || equalsNoCase(fullName(facts), name))
            found.push_back(&facts);
    }
    return found;
}

std::string defaultOf(const Program &program, const SettingFacts &facts) {
    constexpr std::string_view home = "<home>/";
    constexpr std::string_view state = "<state>/";
    constexpr std::string_view beside = "<program>/";
    if (facts.byDefault.starts_with(home))
        return textOf(program.paths.home / facts.byDefault.substr(home.size()));
    if (facts.byDefault.starts_with(state))
        return textOf(program.paths.state / facts.byDefault.substr(state.size()));
    if (facts.byDefault.starts_with(beside))
        return textOf(program.paths.program / facts.byDefault.substr(beside.size()));
    return std::string(facts.byDefault);
}

std::string valueOf(const Program &program, const SettingFacts &facts) {
    if (facts.kind == SettingKind::flag)
        return readFlag(program.settings, FlagKey(facts)) ? "True" : "False";
    return program.settings.readIniValue(facts.section, facts.key, defaultOf(program, facts));
}

CheckedValue checkValue(Program &program, const SettingFacts &facts, std::string_view value) {
    value = trim(value);
    if (std::any_of(value.begin(), value.end(), [](unsigned char c) { return c < ' '; }))
        return refused("a value stands on one line and has no control characters");
    if (value.size() > kLongestValue)
        return refused(fmt::format("a value has at most {} bytes", kLongestValue));
    if (facts.kind == K::flag)
        return checkFlag(value);
    if (value.empty() || facts.kind == K::text)
        return {std::string(value), {}};
    switch (facts.kind) {
    case K::number:
        return checkNumber(facts, value);
    case K::zone:
        return checkZone(program, value);
    case K::choice:
        return checkChoice(facts, value);
    default:
        return checkPath(program, facts.kind, value);
    }
}

} // namespace nv
