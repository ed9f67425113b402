#pragma once

#include "base/FailureLog.h"

#include <concepts>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The settings file: sections of "key=value" lines, found without regard to case. A missing file
/// is no failure: every key gives its default. Every write goes to the disk at once and leaves all
/// other lines as they are, also those that another program has written meanwhile.
class IniFile {
  public:
    IniFile(std::filesystem::path path, FailureLog &log);

    const std::filesystem::path &path() const { return m_path; }

    /// True exactly when the text is "True": "true" and "1" read as false, as they always have. An
    /// empty value gives the default.
    template <std::same_as<bool> Flag>
    bool readIniValue(std::string_view section, std::string_view key, Flag byDefault) const {
        return readFlag(section, key, byDefault);
    }
    /// An empty value gives the default.
    std::string readIniValue(std::string_view section, std::string_view key,
                             std::string_view byDefault) const;
    /// The leading decimal digits; a value without any, also an empty one, is 0.
    template <std::same_as<int> Number>
    int readIniValue(std::string_view section, std::string_view key, Number byDefault) const {
        return readNumber(section, key, byDefault);
    }

    /// Blanks at the ends go and line breaks become blanks, so that one value stays on one line.
    /// False, logged, when the file can't be written: the value then holds until the program ends,
    /// and the next write tries it again.
    [[nodiscard]] bool writeIniValue(std::string_view section, std::string_view key,
                                     std::string_view value);
    template <std::same_as<bool> Flag>
    [[nodiscard]] bool writeIniValue(std::string_view section, std::string_view key, Flag value) {
        return writeIniValue(section, key, std::string_view(value ? "True" : "False"));
    }
    /// The same for what nobody chose and nobody misses, such as the place of a window: a file that
    /// can't be written stands in the log alone.
    void remember(std::string_view section, std::string_view key, std::string_view value);

    struct Value {
        std::string section;
        std::string key;
        std::string text;
    };
    /// Everything in the file, in its order.
    std::vector<Value> values() const;

    /// Some of what writeIniValue() was given couldn't be written yet.
    bool hasUnwritten() const { return m_lacksChoices; }

  private:
    bool readFlag(std::string_view section, std::string_view key, bool byDefault) const;
    int readNumber(std::string_view section, std::string_view key, int byDefault) const;
    std::optional<std::string> valueOf(std::string_view section, std::string_view key) const;
    std::vector<std::string> load() const;
    bool write(std::string_view section, std::string_view key, std::string_view value);
    void put(std::string_view section, std::string_view key, const std::string &value);
    void writeLines() const;

    std::filesystem::path m_path;
    FailureLog &m_log;
    std::vector<std::string> m_lines;
    std::vector<Value> m_unwritten;
    bool m_lacksChoices = false; ///< among the unwritten are some that the examiner made
};

} // namespace nv
