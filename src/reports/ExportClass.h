#pragma once

#include "reports/ExportFile.h"
#include "reports/RowClass.h"
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
class ExportClass {
  public:
    bool ExportAllRows = true;
    bool ExportAllColumns = true;
    std::string delimiter = "|";
    std::string OutputFileExt;
    /// UTF-8. What goes to the file next: everything when ExportToFile() is called without drain().
    std::string ExportText;
    bool Cancel = false;
    /// "Heading|key;" for each column that can be chosen.
    std::string ColumnsAsString;
    nv::SelectedColumns SelectedColumns;
    nv::SelectedURLs SelectedURLs;
    std::filesystem::path OutputFilePath;

    ExportFormat format = ExportFormat::delimited;
    /// Of csv: texts that a spreadsheet would take for a formula get an apostrophe in front.
    bool guardFormulas = false;
    ExportCounts counts;

    /// Writes `ExportText` to `OutputFilePath`, replacing what was there, and returns true. The
    /// file is written beside and takes its place when it is whole. Throws StorageFailure.
    bool ExportToFile();
    /// Hands a long `ExportText` on to the file, so that a large export needs little memory.
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
SelectedColumns columnsFromString(std::string_view ColumnsAsString);

/// The words of the command line and their extensions.
std::string_view extensionOf(ExportFormat format);

} // namespace nv
