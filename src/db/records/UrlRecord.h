#pragma once

#include "base/ByteView.h"
#include "db/records/FactList.h"
#include "db/schema/Ids.h"
#include "time/Date.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace nv {

/// `Visits` where the artefact counts none: not 0, which is a page that was never visited.
inline constexpr std::int64_t kVisitsUnknown = -1;

/// One URL record: the only form in which readers, views, rebuilding and reports exchange records.
/// Texts are UTF-8. Members carry the names of their columns in table `URLs` (db/schema/Schema.cpp), but
/// `host` (Host), `Tag` (Tagged), `cacheType` (CacheType), `WebpageTitle` (webPageTitle) and
/// `CacheFileCreatedGMTDOS` (CacheFileCreated).
struct UrlRecord {
    // NOLINTBEGIN(readability-identifier-naming)
    // Identity
    UrlId URLID = UrlId::none;
    SourceFileId SourceFile_ID = SourceFileId::none;
    std::int64_t Reference_ID = 0; ///< row id in the source SQLite table
    bool Tag = false;

    // What
    std::string URL;
    std::string URLRawValue; ///< the text as found
    std::string URLProtocol;
    std::string host;
    std::string URLFileName;
    std::string URLFileExt;
    std::string URLParameters;
    std::string User;
    std::string HashedURL; ///< MD5 over the ANSI form of `URL`
    std::string Category;
    std::string MIMEType;
    std::string WebpageTitle;
    std::string HTMLBody;
    std::string Links; ///< separated by "|"

    // Event. All dates are UTC but `ActionDateLocal`, which is in the project's zone.
    std::string Action;
    Date ActionDateUTC;
    Date ActionDateLocal; ///< read back from the row; saveRecord computes it
    Date LastVisited;     ///< read back from the row; saveRecord stores ActionDateUTC here too
    Date OtherDate;
    std::string OtherDateMeaning;
    Date ExpiryDate;
    std::int64_t Visits = 0;
    bool Typed = false;
    bool Hidden = false;
    std::string Referrer;
    std::string Status;

    // Source
    std::string cacheType;
    std::string HistoryFilePath;
    std::string HistoryVersion;
    std::int64_t MapFileOffset = 0; ///< of the record in the index file, 0-based
    std::string RootPath;           ///< ends with a separator
    std::string CacheRootPath;
    std::string CacheFolderName;
    std::string CacheFileName;
    std::string CacheFileNameDecoded;
    std::string CacheFileExt;
    std::string CacheFileRelativePath; ///< `RootPath` + this is the cached file
    Date CacheFileCreatedGMTDOS;
    Date CacheFileLastAccessed;
    std::int64_t CacheFileSize = 0;
    bool CacheFileExists = false;
    std::string DataBlockFile;
    std::int64_t DataBlockFileOffset = 0;
    std::string MetaData; ///< the HTTP response header
    bool GZipEncoded = false;

    // Origin. Readers leave it to the file's; they fill it where a record says otherwise.
    std::string Browser;
    std::string Profile;
    std::string Person;

    /// What no column holds. saveRecord writes it, getURL leaves it empty: see RecordFacts.
    FactList facts;

    // Kind
    bool IsHistory = false;
    bool IsCookie = false;
    bool IsBookmark = false;
    bool IsWebPage = false;
    bool IsPicture = false;
    bool IsJavascript = false;

    // Pictures
    std::int64_t PictureWidth = 0;
    std::int64_t PictureHeight = 0;
    std::int64_t PARDValue = 0;
    Bytes ThumbnailBLOB;
    std::string ThumbnailMD5Hash;
    std::int64_t ThumbnailWidth = 0;
    std::int64_t ThumbnailHeight = 0;
    Date ThumbnailCreated;
    bool ThumbnailDirty = false;
    std::string ThumbnailFormat;

    // Rebuild
    bool CacheFileRebuilt = false;
    Bytes CacheFileRebuiltBLOB;
    std::string RebuiltDateTime;
    std::string RebuiltFilePath;
    std::string RebuiltMethod;
    std::string RebuiltSourceCode;
    std::string IngredientIDs;

    // Notes
    std::string Notes;
    Date NotesDateTime;
    Date TimeAdded; ///< read back from the row

    // In memory only
    std::filesystem::path RunTimeTempFilePath; ///< scratch copy of the content in hand
    std::filesystem::path RunTimeContentPath;
    std::filesystem::path RunTimeRebuiltFilePath; ///< the rewritten page in its rebuild folder
    std::filesystem::path RunTimeThumbnailPath;
    std::filesystem::path RunTimeArchivePath;
    std::uint64_t RecordSize = 0;
    std::uint64_t MetaDataRecordOffset = 0;
    std::uint64_t CacheFileNameRecordOffset = 0;
    bool IsValidHTMLPictureObject = false;
    bool IsValidHTMLTagObject = false;
    // NOLINTEND(readability-identifier-naming)
};

} // namespace nv
