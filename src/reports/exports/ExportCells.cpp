#include "base/Text.h"
#include "reports/exports/ExportWriter.h"
#include "views/rows/CellText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

namespace nv {

namespace {

/// The grid ends longer texts with "…".
bool mayBeCut(const std::string &cell) {
    return cell.size() > kCellChars && cell.ends_with("\u2026");
}

} // namespace

std::string ExportCells::shown(std::size_t place, const ExportColumn &column) {
    if (!column.column)
        return std::to_string(place + 1);
    const CellRule rule = factsOf(*column.column).rule;
    if (rule == CellRule::Tick)
        return plainText(m_table.machineCell(place, *column.column));
    std::string cell = m_table.cell(place, *column.column);
    if (rule != CellRule::Text || !mayBeCut(cell))
        return cell;
    return displayText(m_table.fullText(place, *column.column),
                       std::numeric_limits<std::size_t>::max());
}

Cell ExportCells::machine(std::size_t place, UrlColumn column) {
    Cell value = m_table.machineCell(place, column);
    if (auto *text = std::get_if<std::string>(&value))
        *text = decodeText(*text);
    return value;
}

Cell ExportCells::machine(std::size_t place, const ExportColumn &column) {
    if (!column.column)
        return static_cast<std::int64_t>(place) + 1;
    return machine(place, *column.column);
}

Date ExportCells::actionDate(std::size_t place) {
    return m_table.actionDateUTC(place);
}

std::string nameOf(const ExportColumn &column, const Export &job) {
    if (job.names == FieldNames::people)
        return column.column ? fieldName(*column.column) : toLower(column.key);
    return job.format == ExportFormat::csv && !column.header.empty() ? column.header : column.key;
}

bool looksLikeFormula(std::string_view text) {
    // The last four are the wide forms of the first four, which some spreadsheets take as well.
    constexpr std::array<std::string_view, 11> kBeginnings = {
        "=", "+", "-", "@", "\t", "\r", "\n", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"};
    return std::ranges::any_of(kBeginnings,
                               [text](std::string_view sign) { return text.starts_with(sign); });
}

} // namespace nv
