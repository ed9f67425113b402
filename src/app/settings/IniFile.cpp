#include "app/settings/IniFile.h"

#include "base/FileLock.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

/// A longer value is cut when it is read; the file keeps it whole.
constexpr std::size_t kLongestValue = 10000;

std::optional<std::string_view> sectionOf(std::string_view line) {
    line = trim(line);
    if (!line.starts_with('['))
        return std::nullopt;
    return trim(line.substr(1, line.find(']') - 1));
}

bool hasKey(std::string_view line, std::string_view key) {
    const std::size_t equals = line.find('=');
    return equals != std::string_view::npos && equalsNoCase(trim(line.substr(0, equals)), key);
}

std::string_view unquoted(std::string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

/// Lines of the section: index of the first one after its heading, and of the one after its last.
struct Range {
    std::size_t begin;
    std::size_t end;
};

std::optional<Range> rangeOf(const std::vector<std::string> &lines, std::string_view section) {
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const auto name = sectionOf(lines[at]);
        if (!name || !equalsNoCase(*name, section))
            continue;
        std::size_t end = at + 1;
        while (end < lines.size() && !sectionOf(lines[end]))
            ++end;
        return Range{at + 1, end};
    }
    return std::nullopt;
}

} // namespace

IniFile::IniFile(std::filesystem::path path, FailureLog &log)
    : m_path(std::move(path)), m_log(log) {
    trapped(m_log, Severity::Warning, "File Read Error", kContactSupport,
            [this] { m_lines = load(); });
}

std::vector<std::string> IniFile::load() const {
    std::vector<std::string> lines;
    if (!std::filesystem::exists(m_path))
        return lines;
    const Bytes bytes = readWhole(m_path);
    std::string_view text = ByteView(bytes).raw();
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    for (std::string_view line : split(text, '\n'))
        lines.emplace_back(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    if (!lines.empty() && lines.back().empty())
        lines.pop_back();
    return lines;
}

std::optional<std::string> IniFile::valueOf(std::string_view section, std::string_view key) const {
    const auto range = rangeOf(m_lines, section);
    if (!range)
        return std::nullopt;
    for (std::size_t at = range->begin; at < range->end; ++at) {
        const std::string_view line = m_lines[at];
        if (!hasKey(line, key))
            continue;
        std::string_view value = unquoted(trim(line.substr(line.find('=') + 1)));
        value = value.substr(0, value.find('\0')).substr(0, kLongestValue);
        return decodeText(value);
    }
    return std::nullopt;
}

std::vector<IniFile::Value> IniFile::values() const {
    std::vector<Value> found;
    std::string section;
    for (const std::string &line : m_lines) {
        const std::size_t equals = line.find('=');
        if (const auto name = sectionOf(line))
            section = *name;
        else if (equals != std::string::npos && !section.empty() && !trim(line).starts_with(';')) {
            const std::string key(trim(std::string_view(line).substr(0, equals)));
            found.push_back({section, key, valueOf(section, key).value_or("")});
        }
    }
    return found;
}

bool IniFile::readFlag(std::string_view section, std::string_view key, bool byDefault) const {
    const auto value = valueOf(section, key);
    return !value || value->empty() ? byDefault : *value == "True";
}

std::string IniFile::readIniValue(std::string_view section, std::string_view key,
                                  std::string_view byDefault) const {
    const auto value = valueOf(section, key);
    return !value || value->empty() ? std::string(byDefault) : *value;
}

int IniFile::readNumber(std::string_view section, std::string_view key, int byDefault) const {
    const auto value = valueOf(section, key);
    if (!value)
        return byDefault;
    int number = 0;
    std::from_chars(value->data(), value->data() + value->size(), number);
    return number;
}

bool IniFile::writeIniValue(std::string_view section, std::string_view key,
                            std::string_view value) {
    const bool isWritten = write(section, key, value);
    m_lacksChoices |= !isWritten;
    return isWritten;
}

void IniFile::remember(std::string_view section, std::string_view key, std::string_view value) {
    static_cast<void>(write(section, key, value));
}

bool IniFile::write(std::string_view section, std::string_view key, std::string_view value) {
    std::string line = replaceAll(trim(value), "\r\n", " ");
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    put(section, key, line);
    m_unwritten.push_back({std::string(section), std::string(key), line});
    // No content is lost with them: the program goes on without.
    return !failureOf(m_log, "File Write Error", [&] {
        const FileLock lock(m_path);
        m_lines = load(); // another program may have written
        for (const Value &each : m_unwritten)
            put(each.section, each.key, each.text);
        writeLines();
        m_unwritten.clear();
        m_lacksChoices = false;
    });
}

/// Written aside and put in place whole: a crash never leaves half a settings file.
void IniFile::writeLines() const {
    std::string text;
    for (const std::string &line : m_lines)
        text += line + "\r\n";
    const std::filesystem::path aside = m_path.native() + ".new";
    writeWhole(aside, text);
    std::filesystem::rename(aside, m_path);
}

void IniFile::put(std::string_view section, std::string_view key, const std::string &value) {
    const std::string line = fmt::format("{}={}", key, value);
    const auto range = rangeOf(m_lines, section);
    if (!range) {
        m_lines.push_back(fmt::format("[{}]", section));
        m_lines.push_back(line);
        return;
    }
    for (std::size_t at = range->begin; at < range->end; ++at)
        if (hasKey(m_lines[at], key)) {
            m_lines[at] = line;
            return;
        }
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(range->end), line);
}

} // namespace nv
