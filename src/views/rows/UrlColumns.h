#pragma once

#include "base/KeyedList.h"
#include "time/TimeZone.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The columns of the URL table; the value is the number by which projects keep a column in their
/// layouts (docs/formats/project-file.md). Those from LocalDate on came later: lists of "all
/// columns" go without them.
enum class UrlColumn : std::uint8_t {
    Tag,
    Icon,
    Id,
    Linked,
    Type,
    Rebuilt,
    FileExists,
    Status,
    Action,
    ActionDateUtc,
    ActionDateLocal,
    Visits,
    CacheType,
    HistoryVersion,
    Value,
    User,
    DateOther,
    DateOtherMeaning,
    KeywordFlag,
    MimeType,
    Md5Hash,
    CacheFolder,
    FileName,
    CacheFileName,
    RawValue,
    FileExt,
    Category,
    Host,
    WebpageTitle,
    Variables,
    BasePath,
    CacheRootPath,
    FileRelativePath,
    HttpMetadata,
    SourceHistoryFile,
    MapFileOffset,
    DataBlockFile,
    DataBlockFileOffset,
    GzipEncoded,
    PictureHeight,
    PictureWidth,
    Pard,
    ExpiryDate,
    FileCreated,
    FileLastAccessed,
    CacheFileSize,
    TimeRebuilt,
    RebuiltMethod,
    TimeAdded,
    FileId,
    LastVisited,
    LocalDate, ///< of any age, unlike ActionDateLocal
    Note,
    Browser,
    Profile,
    Person,
    TagNames, ///< of named tags, unlike the tick of Tag
    HashSets, ///< that the row's file is in
};
inline constexpr std::size_t kUrlColumnCount = 51;   ///< those of layout "Classic"
inline constexpr std::size_t kTableColumnCount = 58; ///< all that the table can show

constexpr std::size_t indexOf(UrlColumn column) {
    return static_cast<std::size_t>(column);
}

/// How a cell is made from its row.
enum class CellRule : std::uint8_t {
    Nothing, ///< no column of `URLs` feeds it
    Text,
    Number,
    Flag, ///< "True" or "False"
    YesNo,
    Date,
    ZoneDate,
    LocalDate,
    FileCreated,
    RebuiltTime, ///< a text that stands for a date
    Tick,
    Icon,
    Linked,
    Type,
    Rebuilt,
    Status,
    Note, ///< "Yes" when the examiner has noted something
    TagNames,
    HashSets,
};

enum class Shown : std::uint8_t { Yes, No };

struct UrlColumnFacts {
    UrlColumn column;
    std::string_view key;
    std::string_view header;
    int widthTwips; ///< 0 is a hidden column
    Shown shown;
    CellRule rule;
    std::string_view
        source; ///< the column of `URLs` that the cell shows and sorts by; may be empty
};

/// All columns, in order of their index.
extern const std::array<UrlColumnFacts, kTableColumnCount> kTableColumns;
/// Those of layout "Classic" (docs/guide/table.md).
extern const std::span<const UrlColumnFacts, kUrlColumnCount> kUrlColumns;

const UrlColumnFacts &factsOf(UrlColumn column);
/// Whether the cell is a date by which rows can be sorted.
bool isDate(UrlColumn column);
/// Whether its cells are made of several rows of another table (views/limits/GatheredTexts.h).
bool isGathered(UrlColumn column);
/// Of all columns, in order of their index.
std::vector<std::string_view> columnKeys();
/// By key, without regard to case.
std::optional<UrlColumn> columnOfKey(std::string_view key);

inline constexpr int kTwipsPerPixel = 15; ///< at 96 dots an inch
constexpr int pixelsOf(int twips) {
    return twips / kTwipsPerPixel;
}

/// A column as lists of columns hold it: the table's, the export job's.
struct ListedColumn {
    std::string keyName;
    int defaultColWidth = 0; ///< twips
    int sqlOrdinalIndex = 0;
    std::string columnHeader;
    bool hideColumn = false;
};

using URLTableColumns = KeyedList<ListedColumn>;
using SelectedColumns = KeyedList<ListedColumn>;

/// The columns of layout "Classic" with their first widths.
URLTableColumns defaultUrlColumns();

/// The text of a header cell; that of a local date has a second line that names the zone's
/// offset.
std::string headerText(UrlColumn column, const TimeZone &zone);

} // namespace nv
