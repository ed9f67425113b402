#include "db/RecordColumns.h"

#include <array>

namespace nv {

namespace {

constexpr auto kColumns = std::to_array<RecordColumn>({
    {"SourceFile_ID", &UrlRecord::SourceFile_ID},
    {"Reference_ID", &UrlRecord::Reference_ID},
    {"Action", &UrlRecord::Action},
    {"ActionDateUTC", &UrlRecord::ActionDateUTC},
    {"ActionDateLocal", &UrlRecord::ActionDateLocal},
    {"CacheFolderName", &UrlRecord::CacheFolderName},
    {"CacheRootPath", &UrlRecord::CacheRootPath},
    {"CacheType", &UrlRecord::cacheType},
    {"CacheFileCreated", &UrlRecord::CacheFileCreatedGMTDOS},
    {"CacheFileExt", &UrlRecord::CacheFileExt},
    {"CacheFileExists", &UrlRecord::CacheFileExists},
    {"CacheFileLastAccessed", &UrlRecord::CacheFileLastAccessed},
    {"CacheFileName", &UrlRecord::CacheFileName},
    {"CacheFileNameDecoded", &UrlRecord::CacheFileNameDecoded},
    {"CacheFileRebuilt", &UrlRecord::CacheFileRebuilt},
    {"CacheFileRebuiltBLOB", &UrlRecord::CacheFileRebuiltBLOB},
    {"CacheFileRelativePath", &UrlRecord::CacheFileRelativePath},
    {"CacheFileSize", &UrlRecord::CacheFileSize},
    {"Category", &UrlRecord::Category},
    {"DataBlockFile", &UrlRecord::DataBlockFile},
    {"DataBlockFileOffset", &UrlRecord::DataBlockFileOffset},
    {"ExpiryDate", &UrlRecord::ExpiryDate},
    {"GZipEncoded", &UrlRecord::GZipEncoded},
    {"HashedURL", &UrlRecord::HashedURL},
    {"HistoryVersion", &UrlRecord::HistoryVersion},
    {"HistoryFilePath", &UrlRecord::HistoryFilePath},
    {"Host", &UrlRecord::host},
    {"Hidden", &UrlRecord::Hidden},
    {"HTMLBody", &UrlRecord::HTMLBody},
    {"MetaData", &UrlRecord::MetaData},
    {"IngredientIDs", &UrlRecord::IngredientIDs},
    {"IsBookmark", &UrlRecord::IsBookmark},
    {"IsCookie", &UrlRecord::IsCookie},
    {"IsHistory", &UrlRecord::IsHistory},
    {"IsJavascript", &UrlRecord::IsJavascript},
    {"IsWebPage", &UrlRecord::IsWebPage},
    {"IsPicture", &UrlRecord::IsPicture},
    {"LastVisited", &UrlRecord::LastVisited},
    {"Links", &UrlRecord::Links},
    {"MapFileOffset", &UrlRecord::MapFileOffset},
    {"MIMEType", &UrlRecord::MIMEType},
    {"Notes", &UrlRecord::Notes},
    {"NotesDateTime", &UrlRecord::NotesDateTime},
    {"RebuiltDateTime", &UrlRecord::RebuiltDateTime},
    {"RebuiltFilePath", &UrlRecord::RebuiltFilePath},
    {"RebuiltMethod", &UrlRecord::RebuiltMethod},
    {"RebuiltSourceCode", &UrlRecord::RebuiltSourceCode},
    {"Referrer", &UrlRecord::Referrer},
    {"RootPath", &UrlRecord::RootPath},
    {"OtherDate", &UrlRecord::OtherDate},
    {"OtherDateMeaning", &UrlRecord::OtherDateMeaning},
    {"Status", &UrlRecord::Status},
    {"Tagged", &UrlRecord::Tag},
    {"PictureWidth", &UrlRecord::PictureWidth},
    {"PictureHeight", &UrlRecord::PictureHeight},
    {"PARDValue", &UrlRecord::PARDValue},
    {"ThumbnailBLOB", &UrlRecord::ThumbnailBLOB},
    {"ThumbnailMD5Hash", &UrlRecord::ThumbnailMD5Hash},
    {"ThumbnailWidth", &UrlRecord::ThumbnailWidth},
    {"ThumbnailHeight", &UrlRecord::ThumbnailHeight},
    {"ThumbnailCreated", &UrlRecord::ThumbnailCreated},
    {"ThumbnailDirty", &UrlRecord::ThumbnailDirty},
    {"ThumbnailFormat", &UrlRecord::ThumbnailFormat},
    {"TimeAdded", &UrlRecord::TimeAdded},
    {"Typed", &UrlRecord::Typed},
    {"URL", &UrlRecord::URL},
    {"URLFileExt", &UrlRecord::URLFileExt},
    {"URLFileName", &UrlRecord::URLFileName},
    {"URLProtocol", &UrlRecord::URLProtocol},
    {"URLRawValue", &UrlRecord::URLRawValue},
    {"URLParameters", &UrlRecord::URLParameters},
    {"User", &UrlRecord::User},
    {"Visits", &UrlRecord::Visits},
    {"WebPageTitle", &UrlRecord::WebpageTitle},
});

} // namespace

std::span<const RecordColumn> recordColumns() {
    return kColumns;
}

} // namespace nv
