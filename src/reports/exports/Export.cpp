#include "reports/exports/Export.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::size_t kDrainedAt = std::size_t{1} << 20; // bytes
/// Programs that don't guess take a text without it for the machine's own coding.
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::int64_t questionMarks(std::string_view text) {
    return std::ranges::count(text, '?');
}

} // namespace

void Export::handOn() {
    if (!m_file)
        m_file = std::make_unique<ExportFile>(outputFilePath);
    m_file->write(format == ExportFormat::delimited ? coded() : exportText);
    exportText.clear();
}

/// In Windows-1252 as long as it holds every character. With the first one that it can't hold the
/// whole file becomes UTF-8: nothing ever becomes "?".
std::string Export::coded() {
    std::string bytes = toAnsi(exportText);
    const std::int64_t lacking = questionMarks(bytes) - questionMarks(exportText);
    if (lacking > 0 && counts.charactersBeyond == 0)
        m_file->rewrite(kUtf8Mark, [](std::string_view block) { return fromAnsi(block); });
    counts.charactersBeyond += lacking;
    return counts.charactersBeyond > 0 ? exportText : bytes;
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

namespace {

constexpr std::array<ExportFormatFacts, 10> kFormats = {{
    {ExportFormat::delimited, "delimited", "txt", "Delimited text, as shown"},
    {ExportFormat::csv, "csv", "csv", "CSV, UTF-8, quoted"},
    {ExportFormat::jsonl, "jsonl", "jsonl", "JSON lines, a row a line"},
    {ExportFormat::xlsx, "xlsx", "xlsx", "Spreadsheet (XLSX)"},
    {ExportFormat::warc, "warc", "warc.gz", "Web archive of the cached contents (WARC 1.1)",
     ExportContent::contents},
    {ExportFormat::timesketch, "timesketch", "jsonl", "Timesketch, JSON lines, a line an event",
     ExportContent::events},
    {ExportFormat::timesketchCsv, "timesketch-csv", "csv", "Timesketch, CSV, a line an event",
     ExportContent::events},
    {ExportFormat::body, "body", "body", "Body file for mactime, a line an event",
     ExportContent::events},
    {ExportFormat::l2tcsv, "l2tcsv", "csv", "CSV of log2timeline, a line an event",
     ExportContent::events},
    {ExportFormat::kml, "kml", "kml", "Places on a map (KML)", ExportContent::places},
}};
static_assert([] {
    for (std::size_t at = 0; at < kFormats.size(); ++at)
        if (static_cast<std::size_t>(kFormats[at].format) != at)
            return false;
    return true;
}());

/// An archive may be unpacked, too.
constexpr std::string_view kPlainWarc = "warc";

/// The extension of the name, with its point, that is `extension`; nothing when it has another.
std::optional<std::string> extensionAtEnd(const std::string &name, std::string_view extension) {
    const std::string wanted = "." + std::string(extension);
    if (name.size() <= wanted.size() ||
        !equalsNoCase(std::string_view(name).substr(name.size() - wanted.size()), wanted))
        return std::nullopt;
    return wanted;
}

struct KnownName {
    ExportFormat format;
    std::size_t extension; ///< its length in bytes, with its point
};

std::optional<KnownName> knownName(const std::filesystem::path &file) {
    const std::string name = file.filename().native();
    for (const ExportFormatFacts &facts : kFormats)
        if (const auto found = extensionAtEnd(name, facts.extension))
            return KnownName{facts.format, found->size()};
    if (const auto found = extensionAtEnd(name, kPlainWarc))
        return KnownName{ExportFormat::warc, found->size()};
    return std::nullopt;
}

} // namespace

std::span<const ExportFormatFacts> exportFormats() {
    return kFormats;
}

const ExportFormatFacts &factsOf(ExportFormat format) {
    return kFormats.at(static_cast<std::size_t>(format));
}

std::optional<ExportFormat> formatOfName(const std::filesystem::path &file) {
    const auto known = knownName(file);
    return known ? std::optional(known->format) : std::nullopt;
}

std::filesystem::path withExtensionOf(const std::filesystem::path &file, ExportFormat format) {
    const auto known = knownName(file);
    if (!known)
        return file;
    std::string name = file.native();
    name.resize(name.size() - known->extension);
    return name + '.' + std::string(extensionOf(format));
}

} // namespace nv
