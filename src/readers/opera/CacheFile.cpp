#include "readers/opera/CacheFile.h"

#include "base/Text.h"
#include "readers/Coding.h"
#include "readers/ContentProbe.h"
#include "readers/Limits.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string_view>

namespace nv {

namespace {

namespace fs = std::filesystem;

/// The browser numbers its files from here on.
constexpr std::string_view kNumbered = "opr0002";
/// The browser holds this one open: it is named by records and never looked for.
constexpr std::string_view kHeldOpen = "opr0002I";

constexpr std::array<std::string_view, 6> kPictures = {"jpg", "bmp", "jpe", "png", "gif", "tif"};
/// A file without a signature is most often a page too.
constexpr std::array<std::string_view, 7> kPages = {"html", "htm", "asp", "aspx", "php", "cgi", ""};

template <class List>
bool isAmong(const List &list, std::string_view word) {
    return std::ranges::find(list, word) != list.end();
}

std::string extensionOf(const std::optional<fs::path> &file, const Evidence &evidence) {
    if (!file)
        return {};
    const Bytes head = evidence.head(*file, limits::kHeadBytes);
    return beginsAsGZip(ByteView(head)) ? "gzip" : toLower(getExtBySignature(ByteView(head)));
}

void setKind(UrlRecord &record, const std::string &extension) {
    record.IsPicture = isAmong(kPictures, extension);
    record.GZipEncoded = extension == "gzip";
    if (isAmong(kPages, extension))
        record.IsWebPage = true;
}

/// Dates and size of the file, in UTC and bytes.
void setFacts(UrlRecord &record, const FileFacts &facts) {
    if (!facts.isThere)
        return;
    record.CacheFileLastAccessed = facts.lastAccessed;
    record.CacheFileCreatedGMTDOS = facts.created;
    record.CacheFileSize = static_cast<std::int64_t>(facts.size);
}

bool leadsOut(const std::string &name) {
    const fs::path path = replaceAll(name, "\\", "/");
    return path.is_absolute() || std::ranges::find(path, fs::path("..")) != path.end();
}

} // namespace

void setOperaCacheFolder(UrlRecord &record, const HistoryFile &file, const Evidence &evidence) {
    record.RootPath = evidence.rootOf(file.fullPath);
    record.CacheRootPath = fs::path(evidence.relativeOf(file.fullPath)).parent_path().string();
    record.CacheFolderName = record.CacheRootPath;
}

bool setOperaCachedFile(UrlRecord &record, const std::string &name, const HistoryFile &file,
                        const Evidence &evidence) {
    record.CacheFileName = name;
    record.DataBlockFile = name;
    record.DataBlockFileOffset = 0;
    record.CacheFileExists = true; // as the index says, which earlier cases show
    std::optional<fs::path> found;
    if (!equalsNoCase(name, kHeldOpen))
        found = evidence.find(file.fullPath.parent_path(), name);
    if (found)
        record.CacheFileRelativePath = evidence.relativeOf(*found);
    else if (!leadsOut(name))
        record.CacheFileRelativePath =
            (fs::path(record.CacheRootPath) / replaceAll(name, "\\", "/")).string();
    if (found && name.find(kNumbered) != std::string::npos)
        setFacts(record, evidence.factsOf(*found));
    setKind(record, extensionOf(found, evidence));
    return found.has_value();
}

} // namespace nv
