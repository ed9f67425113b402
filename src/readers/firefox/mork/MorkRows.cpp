#include "readers/firefox/mork/MorkRows.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/firefox/mork/MorkDictionary.h"

#include <algorithm>
#include <unordered_map>

namespace nv {

namespace {

bool has(std::string_view line, std::string_view mark) {
    return line.find(mark) != std::string_view::npos;
}

/// The end of a cell's text: an unescaped ")", or the line's end.
std::size_t endOfCell(std::string_view line, std::size_t at) {
    while (at < line.size() && line[at] != ')')
        at += line[at] == '\\' ? 2 : 1;
    return std::min(at, line.size());
}

} // namespace

void MorkRowScan::take(const MorkLine &line) {
    // A cell goes on after a backslash; any other line that begins as a row does is one.
    const std::size_t begin = line.text.find_first_not_of(" \t");
    if (m_isRowOpen && !m_isContinued && begin != std::string_view::npos && line.text[begin] == '[')
        endRow(Ends::brokenOff);
    const std::size_t rowsFrom = m_isRowOpen ? 0 : applyMarks(line.text);
    for (std::size_t at = 0; at < line.text.size();)
        at = m_isRowOpen ? scanRow(line, at) : scanOutside(line, at, rowsFrom);
    m_isContinued = m_isRowOpen && line.text.ends_with('\\');
}

/// The table's or a group's opening turns the reading of rows on. Its end turns it off only where
/// it stands on a line with a row: browsers write it on a line of its own, and the rows after it
/// are read. Returns where in the line rows count.
std::size_t MorkRowScan::applyMarks(std::string_view line) {
    if (has(line, "{1:^80") || has(line, "@$${")) {
        m_isInTable = true;
        const std::size_t mark = line.find(")[1");
        return mark == std::string_view::npos ? 0 : mark + 1;
    }
    if (has(line, "[") && has(line, "@$$}"))
        m_isInTable = false;
    return 0;
}

std::size_t MorkRowScan::scanOutside(const MorkLine &line, std::size_t at, std::size_t rowsFrom) {
    const char c = line.text[at];
    if (c == '[')
        openRow(line.offset + at, m_isInTable && at >= rowsFrom);
    else if (c == '{' || c == '}')
        brace(c, line.offset + at);
    return at + 1;
}

std::size_t MorkRowScan::scanRow(const MorkLine &line, std::size_t at) {
    const std::string_view text = line.text;
    if (m_isInCell) {
        const std::size_t end = endOfCell(text, at);
        const bool isContinued = end == text.size() && text.ends_with('\\');
        m_row.append(text.substr(at, end - at - (isContinued ? 1 : 0)));
        if (end == text.size())
            return end;
        m_row += ')';
        m_lastCellEnd = m_row.size();
        m_isInCell = false;
        return end + 1;
    }
    const char c = text[at];
    const bool isMetaRow = text.substr(at).starts_with("[(");
    if (c == '[' && !isMetaRow) {
        endRow(Ends::brokenOff);
        return at;
    }
    if (c == ']')
        endRow(Ends::closed);
    else if (c != '[' && c != '}' && c != '\\')
        m_row += c;
    m_isInCell = c == '(';
    return at + 1;
}

void MorkRowScan::openRow(std::uint64_t offset, bool counts) {
    m_isRowOpen = true;
    m_isInCell = false;
    m_counts = counts;
    m_row.clear();
    m_lastCellEnd = 0;
    m_rowAt = offset;
}

/// Of a row that is broken off only whole cells are kept: a cut reference would name another value.
void MorkRowScan::endRow(Ends how) {
    m_isRowOpen = false;
    m_isInCell = false;
    if (how == Ends::brokenOff) {
        m_row.resize(m_lastCellEnd);
        if (m_counts)
            ++(m_row.empty() ? m_lost : m_unclosed);
    }
    keepRow();
}

void MorkRowScan::keepRow() {
    const std::string text = cleanedMorkText(m_row);
    if (trim(text).empty())
        return;
    if (!m_counts) {
        ++m_outside;
        return;
    }
    if (m_rows.count() >= limits::kMorkRows) {
        ++m_behindCap;
        return;
    }
    const std::size_t cells = std::min(text.find('('), text.size());
    m_rows.add({0, text.starts_with('-'), text.substr(cells), text.substr(0, cells)});
}

void MorkRowScan::brace(char c, std::uint64_t offset) {
    if (c == '}') {
        m_depth -= m_depth > 0 ? 1 : 0;
        return;
    }
    if (m_depth++ == 0)
        m_braceAt = offset;
}

void MorkRowScan::finish() {
    if (m_isRowOpen) {
        m_cutAt = m_rowAt;
        endRow(Ends::brokenOff);
    } else if (m_depth > 0) {
        m_cutAt = m_braceAt;
    }
}

void locateMorkRows(MorkRows &rows, std::string_view file) {
    std::unordered_map<std::string_view, std::int64_t> places;
    for (const MorkRow &row : rows)
        places.emplace(row.rowID, 0);
    std::size_t open = std::string_view::npos;
    for (std::size_t at = 0; at < file.size(); ++at) {
        if (file[at] == '[')
            open = at;
        if (file[at] != '(' || open == std::string_view::npos)
            continue;
        const auto found = places.find(file.substr(open + 1, at - open - 1));
        if (found != places.end() && found->second == 0)
            found->second = static_cast<std::int64_t>(open) + 1;
        open = std::string_view::npos;
    }
    for (MorkRow &row : rows)
        row.fileOffset = places[row.rowID];
}

} // namespace nv
