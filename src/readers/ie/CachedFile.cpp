#include "readers/ie/CachedFile.h"

#include "base/Files.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace nv {

namespace {

/// Files of these kinds may hold a title, and so may those without an extension.
constexpr std::array<std::string_view, 8> kTitledExtensions = {"htm",  "html", "",    "asp",
                                                               "aspx", "cgi",  "php", "js"};

/// A cached file may have been cleared while its record stayed, and the other way round: the
/// record's own word, such as "LEAK", is kept only while the file is there.
void noteFound(UrlRecord &record, const std::optional<std::filesystem::path> &found,
               const Evidence &evidence) {
    record.CacheFileExists = found.has_value();
    if (!found) {
        record.Status = "URL";
        return;
    }
    record.CacheRootPath = textOf(found->parent_path().parent_path());
    record.CacheFileRelativePath = evidence.relativeOf(*found);
    record.CacheFileLastAccessed = evidence.factsOf(*found).lastAccessed;
    record.RunTimeContentPath = *found;
}

} // namespace

std::optional<std::filesystem::path> locateCachedFile(UrlRecord &record, const HistoryFile &file,
                                                      const Evidence &evidence) {
    record.RootPath = evidence.rootOf(file.fullPath);
    if (record.Status == "REDR")
        return std::nullopt;
    if (file.historyFileType == HistoryFileType::importedBinary)
        record.CacheRootPath = evidence.relativeOf(file.fullPath);
    if (file.historyFileType != HistoryFileType::ieCache)
        return std::nullopt;
    std::optional<std::filesystem::path> found;
    if (!record.CacheFileName.empty())
        found = evidence.find(file.fullPath.parent_path(),
                              record.CacheFolderName + "/" + record.CacheFileName);
    noteFound(record, found, evidence);
    return found;
}

void examineCachedFile(UrlRecord &record, const std::filesystem::path &cachedFile,
                       const Evidence &evidence, ContentProbe &content) {
    const ContentFacts &facts = content.facts(evidence, cachedFile, record.MetaData);
    if (facts.hasHtml || facts.hasBody) {
        // Pages that the browser itself brings are none that the user saw on the network.
        const bool isResource = startsWithNoCase(record.URL, "res://ieframe.dll");
        record.Category = isResource ? "IE Resource" : "HTML";
        record.IsWebPage = !isResource;
    }
    const std::string extension = getFileExtension(record.CacheFileRelativePath);
    if (std::find(kTitledExtensions.begin(), kTitledExtensions.end(), extension) !=
        kTitledExtensions.end())
        record.WebpageTitle = facts.title;
}

} // namespace nv
