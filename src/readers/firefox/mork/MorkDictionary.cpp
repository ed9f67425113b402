#include "readers/firefox/mork/MorkDictionary.h"

#include "base/Text.h"
#include "readers/Limits.h"

#include <algorithm>

namespace nv {

namespace {

std::string without(std::string_view text, std::string_view what) {
    return replaceAll(text, what, "");
}

/// A "|" and a pair of parentheses part values wherever they stand, also within a URL: earlier
/// cases hold the values so, and their hashes are compared.
std::size_t endOfValue(std::string_view text) {
    return std::min({text.find('|'), text.find(")("), text.size()});
}

/// Characters of the format are taken out of values instead of being decoded, for the same reason.
std::string strippedValue(std::string_view text) {
    std::string value = without(text, "<(");
    std::erase_if(value, [](char c) { return c == ')' || c == '>' || c == '<'; });
    value = without(value, "$00");
    std::erase(value, '\\');
    return value;
}

/// A backslash before a character that stays is no loss.
bool losesCharacters(std::string_view text) {
    return text.find_first_of(")<>") != std::string_view::npos ||
           text.find("\\\\") != std::string_view::npos;
}

} // namespace

std::string cleanedMorkText(std::string_view text) {
    return without(without(without(text, "\r\n"), "  "), "\t");
}

/// Reads on in a cell from `at`. The place after its end, or the line's end.
std::size_t MorkDictionary::scanCell(std::string_view line, std::size_t at) {
    std::size_t end = at;
    while (end < line.size() && line[end] != ')')
        end += line[end] == '\\' ? 2 : 1;
    end = std::min(end, line.size());
    const bool isOver = end < line.size();
    if (m_cell.size() <= limits::kMorkValueBytes)
        m_cell.append(line.substr(at, end - at - (!isOver && m_isContinued ? 1 : 0)));
    if (!isOver)
        return end;
    m_takeCell(m_kind, m_cell);
    m_cell.clear();
    m_isInCell = false;
    return end + 1;
}

std::optional<std::size_t> MorkDictionary::take(std::string_view line) {
    m_isContinued = line.ends_with('\\');
    for (std::size_t at = 0; at < line.size();) {
        if (m_isInCell) {
            at = scanCell(line, at);
            continue;
        }
        if (line[at] == '>')
            return at + 1;
        m_isInCell = line[at++] == '(';
    }
    return std::nullopt;
}

void addMorkColumn(std::string_view cell, MorkColHeaders &columns) {
    if (columns.count() >= limits::kMorkColumns)
        return;
    std::string text = cleanedMorkText(cell);
    std::erase_if(text, [](char c) { return c == '(' || c == '>'; });
    if (text.empty())
        return;
    const std::size_t mark = std::min(text.find('='), text.size());
    columns.add({text.substr(0, mark), text.substr(std::min(mark + 1, text.size()))});
}

void addMorkValue(std::string_view cell, MorkValues &values, MorkValueLosses &losses) {
    const std::string text = cleanedMorkText(without(without(cell, "$00"), "$AE"));
    const std::size_t mark = text.find('=');
    if (mark == std::string::npos)
        return;
    if (values.count() >= limits::kMorkValues) {
        ++losses.behindCap;
        return;
    }
    const std::string id = strippedValue(std::string_view(text).substr(0, mark));
    const std::string_view stored = std::string_view(text).substr(mark + 1);
    const std::size_t end = std::min(endOfValue(stored), limits::kMorkValueBytes);
    if (end < stored.size())
        ++losses.shortened;
    if (losesCharacters(stored.substr(0, end)))
        ++losses.stripped;
    const bool isFirst = !values.positionOf(id);
    values.add({id, strippedValue(stored.substr(0, end))}, isFirst ? id : std::string());
}

} // namespace nv
