#pragma once

#include "reports/ExportFile.h"
#include "reports/ExportedRow.h"
#include "views/UnreadRows.h"
#include "views/UrlColumns.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace nv {

enum class ExportFormat {
    delimited, ///< the table's texts in Windows-1252, nothing quoted
    csv,       ///< RFC 4180 in UTF-8
    jsonl,     ///< an event a line, as timeline tools read them
    xlsx,
};

/// What an export's file doesn't say by itself.
struct ExportCounts {
    std::int64_t rows = 0;
    std::int64_t charactersLost = 0; ///< became "?": Windows-1252 can't hold them
    std::int64_t cellsCut = 0;       ///< longer than a spreadsheet's cell may be
    std::int64_t cellsGuarded = 0;   ///< got an apostrophe in front
    std::int64_t rowsWithoutDate = 0;
    std::int64_t sheets = 0; ///< of a spreadsheet
    UnreadRows unread;       ///< rows that stand in the file with their id only
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
    /// Of csv: texts that a spreadsheet would take for a formula get an apostrophe in front.
    bool guardFormulas = false;
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
    std::unique_ptr<ExportFile> m_file;
};

/// The table's number of a row, which is no column of the table.
inline constexpr std::string_view kIndexColumn = "Index";

/// "Index|Index;" and "Heading|key;" for each column on show.
std::string columnsAsString(std::span<const UrlColumn> shown);
SelectedColumns columnsFromString(std::string_view columnsAsString);

/// The words of the command line and their extensions.
std::string_view extensionOf(ExportFormat format);

} // namespace nv
