#include "views/explain/MadeBy.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

using enum OriginCheck;

constexpr std::array<MadeBy, 53> kMade = {{
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
    {"content_sha1", derived, "SHA-1 of the cached content, unpacked, at the import"},
    {"content_md5", derived, "MD5 of the cached content, unpacked, at the import"},
    {"content_sha256", derived, "SHA-256 of the cached content, unpacked, at the import"},
}};

} // namespace

const MadeBy *madeBy(std::string_view field) {
    const auto found = std::ranges::find_if(
        kMade, [field](const MadeBy &each) { return equalsNoCase(each.field, field); });
    return found == kMade.end() ? nullptr : &*found;
}

} // namespace nv
