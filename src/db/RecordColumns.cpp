#include "db/RecordColumns.h"

#include <array>

namespace nv {

namespace {

constexpr auto kColumns = std::to_array<RecordColumn>({
    {"SourceFile_ID", &URLClass::SourceFile_ID},
    {"Reference_ID", &URLClass::Reference_ID},
    {"Action", &URLClass::Action},
    {"ActionDateUTC", &URLClass::ActionDateUTC},
    {"ActionDateLocal", &URLClass::ActionDateLocal},
    {"CacheFolderName", &URLClass::CacheFolderName},
    {"CacheRootPath", &URLClass::CacheRootPath},
    {"CacheType", &URLClass::cacheType},
    {"CacheFileCreated", &URLClass::CacheFileCreatedGMTDOS},
    {"CacheFileExt", &URLClass::CacheFileExt},
    {"CacheFileExists", &URLClass::CacheFileExists},
    {"CacheFileLastAccessed", &URLClass::CacheFileLastAccessed},
    {"CacheFileName", &URLClass::CacheFileName},
    {"CacheFileNameDecoded", &URLClass::CacheFileNameDecoded},
    {"CacheFileRebuilt", &URLClass::CacheFileRebuilt},
    {"CacheFileRebuiltBLOB", &URLClass::CacheFileRebuiltBLOB},
    {"CacheFileRelativePath", &URLClass::CacheFileRelativePath},
    {"CacheFileSize", &URLClass::CacheFileSize},
    {"Category", &URLClass::Category},
    {"DataBlockFile", &URLClass::DataBlockFile},
    {"DataBlockFileOffset", &URLClass::DataBlockFileOffset},
    {"ExpiryDate", &URLClass::ExpiryDate},
    {"GZipEncoded", &URLClass::GZipEncoded},
    {"HashedURL", &URLClass::HashedURL},
    {"HistoryVersion", &URLClass::HistoryVersion},
    {"HistoryFilePath", &URLClass::HistoryFilePath},
    {"Host", &URLClass::host},
    {"Hidden", &URLClass::Hidden},
    {"HTMLBody", &URLClass::HTMLBody},
    {"MetaData", &URLClass::MetaData},
    {"IngredientIDs", &URLClass::IngredientIDs},
    {"IsBookmark", &URLClass::IsBookmark},
    {"IsCookie", &URLClass::IsCookie},
    {"IsHistory", &URLClass::IsHistory},
    {"IsJavascript", &URLClass::IsJavascript},
    {"IsWebPage", &URLClass::IsWebPage},
    {"IsPicture", &URLClass::IsPicture},
    {"LastVisited", &URLClass::LastVisited},
    {"Links", &URLClass::Links},
    {"MapFileOffset", &URLClass::MapFileOffset},
    {"MIMEType", &URLClass::MIMEType},
    {"Notes", &URLClass::Notes},
    {"NotesDateTime", &URLClass::NotesDateTime},
    {"RebuiltDateTime", &URLClass::RebuiltDateTime},
    {"RebuiltFilePath", &URLClass::RebuiltFilePath},
    {"RebuiltMethod", &URLClass::RebuiltMethod},
    {"RebuiltSourceCode", &URLClass::RebuiltSourceCode},
    {"Referrer", &URLClass::Referrer},
    {"RootPath", &URLClass::RootPath},
    {"OtherDate", &URLClass::OtherDate},
    {"OtherDateMeaning", &URLClass::OtherDateMeaning},
    {"Status", &URLClass::Status},
    {"Tagged", &URLClass::Tag},
    {"PictureWidth", &URLClass::PictureWidth},
    {"PictureHeight", &URLClass::PictureHeight},
    {"PARDValue", &URLClass::PARDValue},
    {"ThumbnailBLOB", &URLClass::ThumbnailBLOB},
    {"ThumbnailMD5Hash", &URLClass::ThumbnailMD5Hash},
    {"ThumbnailWidth", &URLClass::ThumbnailWidth},
    {"ThumbnailHeight", &URLClass::ThumbnailHeight},
    {"ThumbnailCreated", &URLClass::ThumbnailCreated},
    {"ThumbnailDirty", &URLClass::ThumbnailDirty},
    {"ThumbnailFormat", &URLClass::ThumbnailFormat},
    {"TimeAdded", &URLClass::TimeAdded},
    {"Typed", &URLClass::Typed},
    {"URL", &URLClass::URL},
    {"URLFileExt", &URLClass::URLFileExt},
    {"URLFileName", &URLClass::URLFileName},
    {"URLProtocol", &URLClass::URLProtocol},
    {"URLRawValue", &URLClass::URLRawValue},
    {"URLParameters", &URLClass::URLParameters},
    {"User", &URLClass::User},
    {"Visits", &URLClass::Visits},
    {"WebPageTitle", &URLClass::WebpageTitle},
});

} // namespace

std::span<const RecordColumn> recordColumns() {
    return kColumns;
}

} // namespace nv
