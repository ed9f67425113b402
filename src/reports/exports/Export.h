#pragma once

#include "reports/exports/ExportFile.h"
#include "reports/exports/ExportedRow.h"
#include "reports/warc/WarcSource.h"
#include "views/rows/FieldNames.h"
#include "views/rows/UnreadRows.h"
#include "views/rows/UrlColumns.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

enum class ExportFormat {
    delimited, ///< the table's texts in Windows-1252, or in UTF-8 when need be, nothing quoted
    csv,       ///< RFC 4180 in UTF-8
    jsonl,     ///< an event a line, as timeline tools read them
    xlsx,
    warc,          ///< cached contents with their answers' heads, as archives of the web have them
    timesketch,    ///< an event a line for the timeline program of that name, as JSON lines
    timesketchCsv, ///< the same as CSV
    body,          ///< the body file of mactime, version 3
    l2tcsv,        ///< the CSV of log2timeline, version 2
    kml,           ///< places on a map
};

/// What a form's file is made of.
enum class ExportContent {
    cells,    ///< of the table, in the chosen columns
    contents, ///< cached ones
    events,   ///< a line a date of a record
    places,   ///< positions that records name
};

/// What is known of a form.
struct ExportFormatFacts {
    ExportFormat format;
    std::string_view word;      ///< of the command line
    std::string_view extension; ///< without the first point
    std::string_view label;     ///< in the list of the window
    ExportContent content = ExportContent::cells;
};
/// All of them, by the numbers of ExportFormat.
std::span<const ExportFormatFacts> exportFormats();
const ExportFormatFacts &factsOf(ExportFormat format);
/// The form whose extension a file's name has, in either case; nothing for another name.
std::optional<ExportFormat> formatOfName(const std::filesystem::path &file);
/// A name with a form's extension in place of the one that it has, if that is of any form.
std::filesystem::path withExtensionOf(const std::filesystem::path &file, ExportFormat format);

/// What an export's file doesn't say by itself.
struct ExportCounts {
    std::int64_t rows = 0;             ///< that are in the file
    std::int64_t charactersBeyond = 0; ///< Windows-1252: the file is in UTF-8 for them
    std::int64_t cellsCut = 0;         ///< longer than a spreadsheet's cell may be
    std::int64_t cellsGuarded = 0;     ///< got an apostrophe in front
    std::int64_t rowsWithoutDate = 0;
    std::int64_t events = 0;         ///< that are in the file
    std::int64_t signsReplaced = 0;  ///< that part fields, where a form has no quotes
    std::int64_t eventsTooEarly = 0; ///< before 1970, where a form can't say so
    std::int64_t rowsWithPlace = 0;  ///< of those whose places are in the file
    std::int64_t sheets = 0;         ///< of a spreadsheet
    UnreadRows unread;   ///< rows that stand in the file with their id only, or not at all
    WarcCounts archived; ///< of an archive
};

/// The choices of one export, and its text on the way to the file.
class Export {
  public:
    bool exportAllRows = true;
    bool exportAllColumns = true;
    std::string delimiter = "|";
    std::string outputFileExt;
    /// UTF-8. What goes to the file next: everything when exportToFile() is called without drain().
    std::string exportText;
    bool cancel = false;
    /// "Heading|key;" for each column that can be chosen.
    std::string columnsAsString;
    nv::SelectedColumns selectedColumns;
    nv::SelectedURLs selectedURLs;
    std::filesystem::path outputFilePath;

    ExportFormat format = ExportFormat::delimited;
    /// Of csv and jsonl.
    FieldNames names = FieldNames::people;
    /// Of csv: texts that a spreadsheet would take for a formula get an apostrophe in front.
    bool guardFormulas = false;
    /// Of warc: where the contents are. It must outlive the export.
    const WarcSource *contents = nullptr;
    ExportCounts counts;

    /// Writes `exportText` to `outputFilePath`, replacing what was there, and returns true. The
    /// file is written beside and takes its place when it is whole. Throws StorageFailure.
    bool exportToFile();
    /// Hands a long `exportText` on to the file, so that a large export needs little memory.
    void drain();
    /// Lets go of a file that isn't finished.
    void abandon() { m_file.reset(); }

  private:
    void handOn();
    std::string coded();
    std::unique_ptr<ExportFile> m_file;
};

/// The table's number of a row, which is no column of the table.
inline constexpr std::string_view kIndexColumn = "Index";

/// "Index|Index;" and "Heading|key;" for each column on show.
std::string columnsAsString(std::span<const UrlColumn> shown);
SelectedColumns columnsFromString(std::string_view columnsAsString);

inline std::string_view extensionOf(ExportFormat format) {
    return factsOf(format).extension;
}

} // namespace nv
