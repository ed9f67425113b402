#pragma once

#include "base/ByteView.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"
#include "readers/firefox/mork/MorkCollections.h"
#include "readers/firefox/mork/MorkDictionary.h"
#include "readers/firefox/mork/MorkLines.h"
#include "readers/firefox/mork/MorkRows.h"
#include "time/Date.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// A history.dat of Firefox 2. It reads lines and not the whole grammar of the format: what earlier
/// cases show is what a reader of lines made of such files.
class MorkFileParser {
  public:
    MorkColHeaders colHeaders;
    MorkValues values;
    MorkRows tableRows;
    MorkEntries entries;
    std::string version; ///< such as "1.4"

    /// Fills the collections. `result` tells what of the file isn't among the entries. Throws
    /// EvidenceFailure.
    void parseFile(const EvidenceFile &file, TaskMonitor &task, ReadResult &result);
    /// The same for bytes in memory.
    void parseBytes(ByteView bytes, TaskMonitor &task, ReadResult &result);

    /// The line that opens the file, cleaned of what only lays out the text.
    const std::string &header() const { return m_header; }
    void header(std::string_view text);

    /// Seconds since 1970 in digits; no date for what is no number.
    static Date convertSecondsToUTCDate(std::string_view text);
    /// The number that a text holds and nothing else.
    static std::optional<double> numberOf(std::string_view text);

  private:
    bool readHeader(MorkLines &lines);
    bool readFirstColumns(MorkLines &lines, MorkRowScan &rows);
    bool readLines(MorkLines &lines, MorkRowScan &rows, TaskMonitor &task);
    void takeLine(MorkLine line, MorkRowScan &rows);
    std::optional<std::size_t> openDictionary(const MorkLine &line);
    void leaveDictionary();
    void makeEntries(ReadResult &result);
    void tell(const MorkLines &lines, const MorkRowScan &rows, ReadResult &result) const;

    std::string m_header;
    std::optional<MorkDictionary> m_dictionary; ///< the one that is open
    std::optional<std::uint64_t> m_unclosedDictionary;
    MorkValueLosses m_losses;
};

} // namespace nv
