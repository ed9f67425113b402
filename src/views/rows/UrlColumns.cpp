#include "views/rows/UrlColumns.h"

#include "base/Text.h"
#include "time/ShownDate.h"

#include <algorithm>

namespace nv {
namespace {

using C = UrlColumn;
using R = CellRule;

} // namespace

// clang-format off
constexpr std::array<UrlColumnFacts, kTableColumnCount> kTableColumns = {{
    {C::Tag, "COL_URL_TAG", "", 1000, Shown::Yes, R::Tick, "Tagged"},
    {C::Icon, "COL_URL_ICON", "Icon", 600, Shown::Yes, R::Icon, ""},
    {C::Id, "COL_URL_ID", "URL ID", 800, Shown::Yes, R::Number, "URL_ID"},
    {C::Linked, "COL_URL_LINKED", "Links", 800, Shown::Yes, R::Linked, ""},
    {C::Type, "COL_URL_TYPE", "Type", 800, Shown::Yes, R::Type, "CacheType"},
    {C::Rebuilt, "COL_URL_REBUILT", "Rebuilt", 800, Shown::Yes, R::Rebuilt, "CacheFileRebuilt"},
    {C::FileExists, "COL_URL_FILE_EXISTS", "File Exists", 1300, Shown::Yes, R::YesNo, "CacheFileExists"},
    {C::Status, "COL_URL_STATUS", "Status", 1300, Shown::Yes, R::Status, "Status"},
    {C::Action, "COL_URL_ACTION", "Action", 1100, Shown::Yes, R::Text, "Action"},
    {C::ActionDateUtc, "COL_URL_ACTION_DATE_UTC", "Action Date [UTC]", 2000, Shown::Yes, R::Date, "ActionDateUTC"},
    {C::ActionDateLocal, "COL_URL_ACTION_DATE_LOCAL", "Action Date [Local]", 2200, Shown::Yes, R::ZoneDate, "ActionDateLocal"},
    {C::Visits, "COL_URL_VISITS", "Visits", 800, Shown::Yes, R::Number, "Visits"},
    {C::CacheType, "COL_URL_CACHE_TYPE", "Data Source", 1300, Shown::Yes, R::Text, "CacheType"},
    {C::HistoryVersion, "COL_URL_HISTORY_VERSION", "Version", 900, Shown::Yes, R::Text, "HistoryVersion"},
    {C::Value, "COL_URL_VALUE", "URL", 5000, Shown::Yes, R::Text, "URL"},
    {C::User, "COL_URL_USER", "User", 1300, Shown::Yes, R::Text, "User"},
    {C::DateOther, "COL_URL_DATE_OTHER", "Date Other", 2000, Shown::Yes, R::Date, "OtherDate"},
    {C::DateOtherMeaning, "COL_URL_DATE_OTHER_MEANING", "Date Other Desc.", 2000, Shown::Yes, R::Text, "OtherDateMeaning"},
    {C::KeywordFlag, "COL_URL_KEYWORD_FLAG", "Keyword Flag", 0, Shown::No, R::Nothing, ""},
    {C::MimeType, "COL_URL_MIME_TYPE", "MIME Type", 1500, Shown::Yes, R::Text, "MIMEType"},
    {C::Md5Hash, "COL_URL_MD5HASH", "URL MD5 Hash", 3300, Shown::Yes, R::Text, "HashedURL"},
    {C::CacheFolder, "COL_URL_CACHE_FOLDER", "Folder", 1200, Shown::Yes, R::Text, "CacheFolderName"},
    {C::FileName, "COL_URL_FILE_NAME", "URL File Name", 2300, Shown::Yes, R::Text, "URLFileName"},
    {C::CacheFileName, "COL_URL_CACHE_FILE_NAME", "Cache File Name", 2300, Shown::Yes, R::Text, "CacheFileName"},
    {C::RawValue, "COL_URL_RAWVALUE", "URL Raw Value", 5000, Shown::Yes, R::Text, "URLRawValue"},
    {C::FileExt, "COL_URL_FILE_EXT", "File Ext", 1300, Shown::Yes, R::Text, "URLFileExt"},
    {C::Category, "COL_URL_CATEGORY", "Category", 2100, Shown::Yes, R::Text, "Category"},
    {C::Host, "COL_URL_HOST", "Host", 2800, Shown::Yes, R::Text, "Host"},
    {C::WebpageTitle, "COL_URL_WEBPAGE_TITLE", "Web Page Title", 3000, Shown::Yes, R::Text, "WebPageTitle"},
    {C::Variables, "COL_URL_VARIABLES", "URL Variables", 3000, Shown::Yes, R::Text, "URLParameters"},
    {C::BasePath, "COL_URL_BASE_PATH", "Base Path", 1200, Shown::Yes, R::Text, "RootPath"},
    {C::CacheRootPath, "COL_URL_CACHE_ROOT_PATH", "Cache Root Path", 2400, Shown::Yes, R::Text, "CacheRootPath"},
    {C::FileRelativePath, "COL_URL_FILE_RELATIVE_PATH", "File Relative Path", 3400, Shown::Yes, R::Text, "CacheFileRelativePath"},
    {C::HttpMetadata, "COL_URL_HTTP_METADATA", "HTTP MetaData", 3000, Shown::Yes, R::Text, "MetaData"},
    {C::SourceHistoryFile, "COL_URL_SOURCE_HISTORY_FILE", "Source History File", 3400, Shown::Yes, R::Text, "HistoryFilePath"},
    {C::MapFileOffset, "COL_URL_MAP_FILE_OFFSET", "Map Offset", 1000, Shown::Yes, R::Number, "MapFileOffset"},
    {C::DataBlockFile, "COL_URL_DATA_BLOCK_FILE", "Data Block", 1000, Shown::Yes, R::Text, "DataBlockFile"},
    {C::DataBlockFileOffset, "COL_URL_DATA_BLOCK_FILE_OFFSET", "Block Offset", 1000, Shown::Yes, R::Number, "DataBlockFileOffset"},
    {C::GzipEncoded, "COL_URL_GZIP_ENCODED", "GZipped", 900, Shown::Yes, R::Flag, "GZipEncoded"},
    {C::PictureHeight, "COL_URL_PICTURE_HEIGHT", "Height", 800, Shown::Yes, R::Number, "PictureHeight"},
    {C::PictureWidth, "COL_URL_PICTURE_WIDTH", "Width", 800, Shown::Yes, R::Number, "PictureWidth"},
    {C::Pard, "COL_URL_PARD", "PARD", 800, Shown::Yes, R::Number, "PARDValue"},
    {C::ExpiryDate, "COL_URL_EXPIRY_DATE", "Expiry Date", 2000, Shown::Yes, R::Date, "ExpiryDate"},
    {C::FileCreated, "COL_URL_FILE_CREATED", "File Created", 2300, Shown::Yes, R::FileCreated, "CacheFileCreated"},
    {C::FileLastAccessed, "COL_URL_FILE_LAST_ACCESSED", "File Last Accessed", 2300, Shown::Yes, R::Date, "CacheFileLastAccessed"},
    {C::CacheFileSize, "COL_URL_CACHE_FILE_SIZE", "File Size", 1300, Shown::Yes, R::Number, "CacheFileSize"},
    {C::TimeRebuilt, "COL_URL_TIME_REBUILT", "Time Rebuilt", 2300, Shown::Yes, R::RebuiltTime, "RebuiltDateTime"},
    {C::RebuiltMethod, "COL_URL_REBUILT_METHOD", "Rebuilt Method", 1400, Shown::Yes, R::Text, "RebuiltMethod"},
    {C::TimeAdded, "COL_URL_TIME_ADDED", "Time Added", 2300, Shown::Yes, R::Date, "TimeAdded"},
    {C::FileId, "COL_URL_FILEID", "", 0, Shown::No, R::Number, "SourceFile_ID"},
    {C::LastVisited, "COL_URL_LAST_VISITED", "", 0, Shown::No, R::Date, "LastVisited"},
    {C::LocalDate, "COL_URL_LOCAL_DATE", "Local Date", 2200, Shown::No, R::LocalDate, "ActionDateLocal"},
    {C::Note, "COL_URL_NOTE", "Note", 800, Shown::No, R::Note, "Notes"},
    {C::Browser, "COL_URL_BROWSER", "Browser", 1600, Shown::No, R::Text, "Browser"},
    {C::Profile, "COL_URL_PROFILE", "Profile", 1600, Shown::No, R::Text, "Profile"},
    {C::Person, "COL_URL_PERSON", "Person", 1300, Shown::No, R::Text, "Person"},
    {C::TagNames, "COL_URL_TAG_NAMES", "Tags", 1800, Shown::No, R::TagNames, ""},
    {C::HashSets, "COL_URL_HASH_SETS", "Hash Sets", 2000, Shown::No, R::HashSets, ""},
}};
// clang-format on

constexpr std::span<const UrlColumnFacts, kUrlColumnCount> kUrlColumns =
    std::span(kTableColumns).first<kUrlColumnCount>();

const UrlColumnFacts &factsOf(UrlColumn column) {
    return kTableColumns.at(indexOf(column));
}

bool isDate(UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    return rule == CellRule::Date || rule == CellRule::ZoneDate || rule == CellRule::LocalDate ||
           rule == CellRule::FileCreated;
}

bool isGathered(UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    return rule == CellRule::TagNames || rule == CellRule::HashSets;
}

std::vector<std::string_view> columnKeys() {
    std::vector<std::string_view> keys;
    keys.reserve(kTableColumnCount);
    for (const UrlColumnFacts &facts : kTableColumns)
        keys.push_back(facts.key);
    return keys;
}

std::optional<UrlColumn> columnOfKey(std::string_view key) {
    const auto found =
        std::find_if(kTableColumns.begin(), kTableColumns.end(),
                     [key](const UrlColumnFacts &facts) { return equalsNoCase(facts.key, key); });
    if (found == kTableColumns.end())
        return std::nullopt;
    return found->column;
}

URLTableColumns defaultUrlColumns() {
    URLTableColumns columns;
    for (const UrlColumnFacts &facts : kUrlColumns) {
        ListedColumn column{std::string(facts.key), facts.widthTwips,
                            static_cast<int>(indexOf(facts.column)), std::string(facts.header),
                            facts.shown == Shown::No};
        columns.add(std::move(column), facts.key);
    }
    return columns;
}

std::string headerText(UrlColumn column, const TimeZone &zone) {
    if (column == UrlColumn::ActionDateLocal)
        return "Action Date Local\n" + zoneHeading(zone);
    if (column == UrlColumn::LocalDate)
        return "Local Date\n" + zoneHeading(zone);
    return std::string(factsOf(column).header);
}

} // namespace nv
