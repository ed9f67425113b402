#include "readers/firefox/MorkEntry.h"

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
    std::string morkEntryClass::*member;
};

/// The ids are those that every browser of this line gives its columns; the column dictionary isn't
/// asked.
constexpr std::array<Column, 11> kColumns = {{{"^82", &morkEntryClass::URL},
                                              {"^83", &morkEntryClass::Referrer},
                                              {"^84", &morkEntryClass::LastVisitDate},
                                              {"^85", &morkEntryClass::FirstVisitDate},
                                              {"^86", &morkEntryClass::VisitCount},
                                              {"^87", &morkEntryClass::URLName},
                                              {"^88", &morkEntryClass::Hostname},
                                              {"^89", &morkEntryClass::Hidden},
                                              {"^8A", &morkEntryClass::Typed},
                                              {"^8B", &morkEntryClass::LastPageVisited},
                                              {"^8C", &morkEntryClass::ByteOrder}}};

/// A cell: "^84=1224000000" holds its value, "^82^A3" names it.
struct Cell {
    std::string_view column;
    std::string_view value;
};

std::string_view lookUp(std::string_view id, const morkValuesCollection &values) {
    const auto position = values.positionOf(id);
    return position ? std::string_view(values.item(*position).RowValue) : std::string_view();
}

Cell readCell(std::string_view text, const morkValuesCollection &values) {
    text = trim(text);
    if (const std::size_t mark = text.find('='); mark != std::string_view::npos)
        return {trim(text.substr(0, mark)), text.substr(mark + 1)};
    const std::size_t second = text.find('^', 1);
    if (second == std::string_view::npos)
        return {text, {}};
    return {trim(text.substr(0, second)), lookUp(trim(text.substr(second + 1)), values)};
}

void setMember(morkEntryClass &entry, Cell cell) {
    const auto column = std::ranges::find_if(
        kColumns, [&cell](const Column &known) { return equalsNoCase(known.id, cell.column); });
    if (column == kColumns.end())
        return;
    std::string text = fromAnsi(cell.value.substr(0, limits::kMorkValueBytes));
    if (column->member == &morkEntryClass::URLName)
        text = replaceAll(text, "$00", "");
    entry.*column->member = std::move(text);
}

} // namespace

morkEntryClass morkEntryOf(const morkRowClass &row, const morkValuesCollection &values) {
    morkEntryClass entry;
    entry.FileOffset = row.FileOffset;
    entry.RowID = fromAnsi(row.RowID);
    const std::string_view cells = row.RowValue;
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

std::uint64_t textSizeOf(const morkEntryClass &entry) {
    std::uint64_t size = entry.RowID.size();
    for (const Column &column : kColumns)
        size += (entry.*column.member).size();
    return size;
}

std::string morkEntryClass::RawData() const {
    const std::string rule(41, '-');
    return fmt::format("{0}\r\nROW ID: {1}\r\n{0}\r\nTyped = {2}\r\nLastPageVisited = {3}\r\n"
                       "ByteOrder = {4}\r\nURL = {5}\r\nReferrer = {6}\r\nLastVisitDate = {7}\r\n"
                       "FirstVisitDate = {8}\r\nVisitCount = {9}\r\nURLName = {10}\r\n"
                       "Hostname = {11}\r\nHidden = {12}",
                       rule, RowID, Typed, LastPageVisited, ByteOrder, URL, Referrer, LastVisitDate,
                       FirstVisitDate, VisitCount, URLName, Hostname, Hidden);
}

} // namespace nv
