#include "reports/Export.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kDrainedAt = std::size_t{1} << 20; // bytes

std::int64_t questionMarks(std::string_view text) {
    return std::ranges::count(text, '?');
}

} // namespace

void Export::handOn() {
    if (!m_file)
        m_file = std::make_unique<ExportFile>(outputFilePath);
    if (format == ExportFormat::delimited) {
        const std::string bytes = toAnsi(exportText);
        counts.charactersLost += questionMarks(bytes) - questionMarks(exportText);
        m_file->write(bytes);
    } else {
        m_file->write(exportText);
    }
    exportText.clear();
}

void Export::drain() {
    if (exportText.size() >= kDrainedAt)
        handOn();
}

bool Export::exportToFile() {
    handOn();
    m_file->finish();
    m_file.reset();
    return true;
}

std::string columnsAsString(std::span<const UrlColumn> shown) {
    std::string text = "Index|Index;";
    for (const UrlColumn column : shown) {
        const UrlColumnFacts &facts = factsOf(column);
        text.append(facts.header).append("|").append(facts.key).append(";");
    }
    return text;
}

SelectedColumns columnsFromString(std::string_view columnsAsString) {
    SelectedColumns columns;
    for (const std::string_view piece : split(columnsAsString, ';')) {
        const auto parts = split(piece, '|');
        if (parts.size() != 2)
            continue;
        ListedColumn column;
        column.columnHeader = parts[0];
        column.keyName = parts[1];
        if (const auto known = columnOfKey(column.keyName)) {
            column.defaultColWidth = factsOf(*known).widthTwips;
            column.sqlOrdinalIndex = static_cast<int>(indexOf(*known));
        }
        columns.add(column, column.keyName);
    }
    return columns;
}

std::string_view extensionOf(ExportFormat format) {
    switch (format) {
    case ExportFormat::csv:
        return "csv";
    case ExportFormat::jsonl:
        return "jsonl";
    case ExportFormat::xlsx:
        return "xlsx";
    case ExportFormat::delimited:
        break;
    }
    return "txt";
}

} // namespace nv
