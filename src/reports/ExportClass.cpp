#include "reports/ExportClass.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kDrainedAt = std::size_t{1} << 20; // bytes

std::int64_t questionMarks(std::string_view text) {
    return std::ranges::count(text, '?');
}

} // namespace

void ExportClass::handOn() {
    if (!m_file)
        m_file = std::make_unique<ExportFile>(OutputFilePath);
    if (format == ExportFormat::delimited) {
        const std::string bytes = toAnsi(ExportText);
        counts.charactersLost += questionMarks(bytes) - questionMarks(ExportText);
        m_file->write(bytes);
    } else {
        m_file->write(ExportText);
    }
    ExportText.clear();
}

void ExportClass::drain() {
    if (ExportText.size() >= kDrainedAt)
        handOn();
}

bool ExportClass::ExportToFile() {
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

SelectedColumns columnsFromString(std::string_view ColumnsAsString) {
    SelectedColumns columns;
    for (const std::string_view piece : split(ColumnsAsString, ';')) {
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
