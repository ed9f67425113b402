#include "readers/firefox/mork/MorkEntry.h"

#include "base/Text.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

struct Column {
    std::string_view id;
    std::string MorkEntry::*member;
};

/// The ids are those that every browser of this line gives its columns; the column dictionary isn't
/// asked.
constexpr std::array<Column, 11> kColumns = {{{"^82", &MorkEntry::url},
                                              {"^83", &MorkEntry::referrer},
                                              {"^84", &MorkEntry::lastVisitDate},
                                              {"^85", &MorkEntry::firstVisitDate},
                                              {"^86", &MorkEntry::visitCount},
                                              {"^87", &MorkEntry::urlName},
                                              {"^88", &MorkEntry::hostname},
                                              {"^89", &MorkEntry::hidden},
                                              {"^8A", &MorkEntry::typed},
                                              {"^8B", &MorkEntry::lastPageVisited},
                                              {"^8C", &MorkEntry::byteOrder}}};

/// A cell: "^84=1224000000" holds its value, "^82^A3" names it.
struct Cell {
    std::string_view column;
    std::string_view value;
};

std::string_view lookUp(std::string_view id, const MorkValues &values) {
    const auto position = values.positionOf(id);
    return position ? std::string_view(values.item(*position).rowValue) : std::string_view();
}

Cell readCell(std::string_view text, const MorkValues &values) {
    text = trim(text);
    if (const std::size_t mark = text.find('='); mark != std::string_view::npos)
        return {trim(text.substr(0, mark)), text.substr(mark + 1)};
    const std::size_t second = text.find('^', 1);
    if (second == std::string_view::npos)
        return {text, {}};
    return {trim(text.substr(0, second)), lookUp(trim(text.substr(second + 1)), values)};
}

void setMember(MorkEntry &entry, Cell cell) {
    const auto column = std::ranges::find_if(
        kColumns, [&cell](const Column &known) { return equalsNoCase(known.id, cell.column); });
    if (column == kColumns.end())
        return;
    std::string text = fromAnsi(cell.value.substr(0, limits::kMorkValueBytes));
    if (column->member == &MorkEntry::urlName)
        text = replaceAll(text, "$00", "");
    entry.*column->member = std::move(text);
}

} // namespace

MorkEntry morkEntryOf(const MorkRow &row, const MorkValues &values) {
    MorkEntry entry;
    entry.fileOffset = row.fileOffset;
    entry.rowID = fromAnsi(row.rowID);
    const std::string_view cells = row.rowValue;
    for (std::size_t at = 0; (at = cells.find('(', at)) != std::string_view::npos;) {
        std::size_t end = ++at;
        while (end < cells.size() && cells[end] != ')')
            end += cells[end] == '\\' ? 2 : 1;
        end = std::min(end, cells.size());
        setMember(entry, readCell(cells.substr(at, end - at), values));
        at = end;
    }
    return entry;
}

std::uint64_t textSizeOf(const MorkEntry &entry) {
    std::uint64_t size = entry.rowID.size();
    for (const Column &column : kColumns)
        size += (entry.*column.member).size();
    return size;
}

std::string MorkEntry::rawData() const {
    const std::string rule(41, '-');
    return fmt::format("{0}\r\nROW ID: {1}\r\n{0}\r\nTyped = {2}\r\nLastPageVisited = {3}\r\n"
                       "ByteOrder = {4}\r\nURL = {5}\r\nReferrer = {6}\r\nLastVisitDate = {7}\r\n"
                       "FirstVisitDate = {8}\r\nVisitCount = {9}\r\nURLName = {10}\r\n"
                       "Hostname = {11}\r\nHidden = {12}",
                       rule, rowID, typed, lastPageVisited, byteOrder, url, referrer, lastVisitDate,
                       firstVisitDate, visitCount, urlName, hostname, hidden);
}

} // namespace nv
