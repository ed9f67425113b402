#include "views/explain/MadeBy.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <span>

namespace nv {

namespace {

using enum OriginCheck;

constexpr std::array<MadeBy, 58> kMade = {{
    {"URL_ID", derived, "number of the row in the project, counted from 1"},
    {"SourceFile_ID", derived, "number of the source file's row in the project"},
    {"ActionDateLocal", derived, "ActionDateUTC, moved to the project's zone"},
    {"URLProtocol", derived, "part of URL (docs/formats/addresses.md)"},
    {"URLFileExt", derived, "extension of URLFileName"},
    {"HashedURL", derived, "MD5 of URL in Windows-1252"},
    {"CacheType", derived, "kind of the record, by the reader of its format"},
    {"HistoryVersion", derived, "version of the format, by its reader"},
    {"HistoryFilePath", derived, "where the source file lay at the import"},
    {"RootPath", derived, "base folder of the evidence"},
    {"CacheRootPath", derived, "folder of the cache in the evidence"},
    {"CacheFileRelativePath", derived, "where the cached file lay below the base folder"},
    {"CacheFileExists", derived, "whether the cached file was there at the import"},
    {"CacheFileExt", derived, "extension of CacheFileName"},
    {"CacheFileNameDecoded", derived, "CacheFileName with its percent signs undone"},
    {"CacheFileLastAccessed", derived, "of the file, as the file system told at the import"},
    {"Category", derived, "by the content's first bytes, otherwise by the extension"},
    {"IsBookmark", derived, "by the record's kind"},
    {"IsCookie", derived, "by the record's kind"},
    {"IsHistory", derived, "by the record's kind"},
    {"IsJavascript", derived, "by the content"},
    {"IsWebPage", derived, "by the content's first bytes and tags, and the type it was sent as"},
    {"IsPicture", derived, "by the content's first bytes"},
    {"HTMLBody", derived, "words of the cached page"},
    {"Links", derived, "addresses that the cached page names"},
    {"OtherDateMeaning", derived, "what OtherDate means in this format"},
    {"TimeAdded", derived, "clock of the machine that imported"},
    {"PictureWidth", derived, "of the picture, when its thumbnail was made"},
    {"PictureHeight", derived, "of the picture, when its thumbnail was made"},
    {"PARDValue", derived, "of the picture's thumbnail"},
    {"ThumbnailBLOB", derived, "drawn by this program"},
    {"ThumbnailMD5Hash", derived, "MD5 of the thumbnail"},
    {"ThumbnailWidth", derived, "of the thumbnail"},
    {"ThumbnailHeight", derived, "of the thumbnail"},
    {"ThumbnailCreated", derived, "when the thumbnail was drawn"},
    {"RebuiltDateTime", derived, "when the page was rebuilt"},
    {"RebuiltMethod", derived, "how the page was rebuilt (docs/rebuilding.md)"},
    {"RebuiltFilePath", derived, "where this program wrote the rebuilt page"},
    {"RebuiltSourceCode", derived,
     "the cached page, its references rewritten by this program when it was rebuilt"},
    {"CacheFileRebuiltBLOB", derived, "the rebuilt page with its parts, packed by this program"},
    {"IngredientIDs", derived, "the rows that this program took for the rebuilt page's parts"},
    {"Browser", derived, "by the place of the source file and what lies beside it"},
    {"Profile", derived, "the profile's folder, by the place of the source file"},
    {"Person", derived, "the account's folder, by the place of the source file"},
    {"Tagged", examiner, "the examiner's tick"},
    {"Notes", examiner, "the examiner's note"},
    {"NotesDateTime", examiner, "when the note was last changed"},
    {"CacheFileRebuilt", derived, "whether this program has rebuilt the page"},
    {"ThumbnailDirty", derived, "whether the thumbnail has to be drawn again"},
    {"GZipEncoded", derived, "by the content's headers and first bytes"},
    {"content_coding", derived, "by the content's headers and first bytes"},
    {"recovered_from", derived, "how this program found the record"},
    {"classic_rule", derived, "why the rules of the first version pass over the record"},
    {"body", derived, "what this program found where the content should be"},
    {"page_text", derived, "what this program could take of the cached page's words"},
    {"content_sha1", derived, "SHA-1 of the cached content, unpacked, at the import"},
    {"content_md5", derived, "MD5 of the cached content, unpacked, at the import"},
    {"content_sha256", derived, "SHA-256 of the cached content, unpacked, at the import"},
}};

constexpr auto kMadeOtherwise = std::to_array<MadeBy>({
    {"Action", derived, "a word of this program for what records of this kind tell", true},
    {"Status", derived, "a word of this program, by the kind and the state of the record", true},
    {"Host", derived, "part of URL (docs/formats/addresses.md)", true},
    {"URLFileName", derived, "the last part of URL's path", true},
    {"URLParameters", derived, "what follows \"?\" in URL"},
    {"User", derived, "what stands before \"@\" in the stored address"},
    {"Hidden", derived, "no mark of it was found, which counts as no", true},
    {"Visits", derived, "a count that records of this kind don't have: -1"},
    {"LastVisited", derived,
     "ActionDateUTC, or ActionDateUTC moved to the importing machine's zone"},
    {"CacheFileSize", derived, "of the file, as the file system told at the import; 0 without one",
     true},
    {"CacheFileCreated", derived, "of the source file, as the file system told at the import",
     true},
    {"CacheFileName", derived, "name of the file that was read, or the last part of URL's path"},
    {"CacheFolderName", derived, "folder of the file that was read"},
    {"RecordSize", derived, "length of the file, or of URL in characters"},
    {"WebPageTitle", derived, "title in the page that was read"},
    {"Reference_ID", derived, "the row that this program found the record in; 0 without one", true},
    {"MapFileOffset", derived, "where this program found the record; 0 without such a place", true},
    {"DataBlockFileOffset", derived, "0: records of this kind have no such place", true},
    {"MetaDataRecordOffset", derived, "where the headers begin; 0 without headers"},
    {"source_table", derived, "the table that this program found the record in", true},
    {"source_rowid", derived, "the row that this program found the record in", true},
    {"source_offset", derived, "where this program found the record", true},
    {"source_file", derived, "the file that this program found the record in", true},
    {"visit_id", derived, "the visit of an address of its chain that is nearest to its start"},
    {"download_id", derived, "the download that began at this visit"},
    {"visit_source", derived, "the browser names no source for what was browsed here", true},
    {"OtherDate", derived, "the date of the fact that OtherDateMeaning names"},
    {"permission", derived, "what the table is for: sites whose logins aren't to be saved"},
    {"setting", derived, "what the table is for: sites whose logins aren't to be saved"},
    {"url_from", derived, "the table that the address was found in"},
});

const MadeBy *foundIn(std::span<const MadeBy> rows, std::string_view field) {
    const auto found = std::ranges::find_if(
        rows, [field](const MadeBy &each) { return equalsNoCase(each.field, field); });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

const MadeBy *madeBy(std::string_view field) {
    return foundIn(kMade, field);
}

const MadeBy *madeOtherwise(std::string_view field) {
    return foundIn(kMadeOtherwise, field);
}

} // namespace nv
