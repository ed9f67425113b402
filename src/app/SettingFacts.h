#pragma once

#include "app/SettingValues.h"

#include <optional>
#include <string_view>
#include <variant>

namespace nv {

/// What a setting's value has to be. All but `flag` also take an empty value, which leads back to
/// the default.
enum class SettingKind { flag, number, choice, text, file, folder, tempFolder, baseFolder, zone };

/// Who fills the member from the settings file.
enum class SettingRead {
    atStart,
    inOptions, ///< the Options dialog, each time it opens
    never,     ///< the value of an earlier run is never taken up again
};

/// What Okay does with the value.
enum class SettingOkay {
    leaves,
    writes,
    holds, ///< in force until the program ends; written with "Keep all options" only
};

/// The member that holds the value; none when those who need it read it themselves.
using SettingMember =
    std::variant<std::monostate, bool SettingValues::*, int SettingValues::*,
                 std::string SettingValues::*, std::filesystem::path SettingValues::*>;

/// How the Options dialog shows it.
struct SettingControl {
    const char *name = nullptr;  ///< of the control
    const char *label = nullptr; ///< with the letter that leads to it
    const char *hint = nullptr;  ///< one sentence
};

/// A setting: all that is known of a key of the settings file.
struct SettingFacts {
    std::string_view section;
    std::string_view key;
    SettingKind kind = SettingKind::text;
    /// "<home>", "<state>" and "<program>" at its beginning stand for the program's folders.
    std::string_view byDefault{};
    std::string_view what{}; ///< one sentence for people

    int least = 0; ///< of numbers, both included
    int most = 0;
    std::optional<int> mended{};    ///< what a start takes for a number below the least
    std::string_view choices{};     ///< of choices, with ";" between them
    std::string_view offered{};     ///< what Options shows for none, where it isn't the default
    std::string_view whenEmptied{}; ///< what Okay makes of an empty box, where it isn't the default
    SettingMember member{};
    SettingRead read = SettingRead::atStart;
    SettingOkay okay = SettingOkay::leaves;
    SettingControl control{};

    // A row is made by the functions below, with one of these behind it for each further fact.

    constexpr SettingFacts keptIn(SettingMember where,
                                  SettingRead when = SettingRead::atStart) const {
        SettingFacts row = *this;
        row.member = where;
        row.read = when;
        return row;
    }
    constexpr SettingFacts mendedTo(int number) const {
        SettingFacts row = *this;
        row.mended = number;
        return row;
    }
    constexpr SettingFacts offeredAs(std::string_view value) const {
        SettingFacts row = *this;
        row.offered = value;
        return row;
    }
    constexpr SettingFacts emptiedTo(std::string_view value) const {
        SettingFacts row = *this;
        row.whenEmptied = value;
        return row;
    }
    constexpr SettingFacts written() const {
        SettingFacts row = *this;
        row.okay = SettingOkay::writes;
        return row;
    }
    constexpr SettingFacts held() const {
        SettingFacts row = *this;
        row.okay = SettingOkay::holds;
        return row;
    }
    /// Shown by Options, which writes it unless it is held.
    constexpr SettingFacts shownAs(const char *name, const char *label, const char *hint) const {
        SettingFacts row = *this;
        row.control = {name, label, hint};
        if (row.okay == SettingOkay::leaves)
            row.okay = SettingOkay::writes;
        return row;
    }
};

} // namespace nv

// What rows are made with.
namespace nv::setting {

constexpr SettingFacts flag(std::string_view section, std::string_view key, bool byDefault,
                            std::string_view what) {
    SettingFacts row{section, key, SettingKind::flag, byDefault ? "True" : "False", what};
    return row;
}

constexpr SettingFacts number(std::string_view section, std::string_view key, int least, int most,
                              std::string_view byDefault, std::string_view what) {
    SettingFacts row{section, key, SettingKind::number, byDefault, what};
    row.least = least;
    row.most = most;
    return row;
}

constexpr SettingFacts choice(std::string_view section, std::string_view key,
                              std::string_view choices, std::string_view byDefault,
                              std::string_view what) {
    SettingFacts row{section, key, SettingKind::choice, byDefault, what};
    row.choices = choices;
    return row;
}

constexpr SettingFacts text(std::string_view section, std::string_view key,
                            std::string_view byDefault, std::string_view what,
                            SettingKind kind = SettingKind::text) {
    SettingFacts row{section, key, kind, byDefault, what};
    return row;
}

} // namespace nv::setting
