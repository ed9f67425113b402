#include "app/jobs/RecordContent.h"

#include "base/Text.h"
#include "readers/HttpHeaders.h"
#include "views/rows/SourcePath.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Some readers name it from the root on, others as a whole.
std::string folderOf(const UrlRecord &record) {
    const bool isWhole = record.CacheRootPath.starts_with(record.RootPath);
    return (isWhole ? std::string() : record.RootPath) + record.CacheRootPath;
}

std::string placeOf(const UrlRecord &record) {
    if (!record.DataBlockFile.empty())
        return fmt::format("expected {} bytes at {} of the block file or file \"{}\" of the cache "
                           "in {}",
                           record.CacheFileSize, record.DataBlockFileOffset, record.DataBlockFile,
                           folderOf(record));
    if (!record.CacheFileRelativePath.empty())
        return "expected at " + record.RootPath + record.CacheFileRelativePath;
    // What wasn't there at the import has a name, but no path.
    if (!record.CacheFileName.empty())
        return fmt::format("expected as \"{}\" in the folder \"{}\" of the cache in {}",
                           record.CacheFileName, record.CacheFolderName, record.CacheRootPath);
    return "the record names no cached file";
}

} // namespace

std::optional<RecordContent> contentOfRecord(RecordTools &tools, UrlId url) {
    auto record = tools.record(url);
    if (!record)
        return std::nullopt;
    RecordContent content;
    content.record = std::move(*record);
    content.file = contentOf(content.record, tools.context().extraction());
    if (!content.file)
        content.reason = missingContent(content.record);
    return content;
}

std::string missingContent(const UrlRecord &record) {
    if (record.IsHistory && record.CacheFileRelativePath.empty() && record.DataBlockFile.empty())
        return "no cached content: the record is one of history";
    const std::string_view answer = answerHeadIn(record.MetaData);
    if (record.CacheFileSize == 0 && !record.CacheFileExists && !answer.empty())
        return fmt::format("no cached content: the cache has no body with the answer \"{}\"",
                           trim(answer.substr(0, answer.find_first_of("\r\n"))));
    return "no cached content: " + placeOf(record);
}

std::string missingSource(const UrlRecord &record) {
    if (record.HistoryFilePath.empty())
        return "the record names no source file: its cached content is all there is";
    if (isSourceGone(record))
        return fmt::format("the source file \"{}\" isn't there. If the evidence was moved, set the "
                           "project's base folder to where it lies now",
                           record.HistoryFilePath);
    return fmt::format("where the record lies in \"{}\" isn't known", record.HistoryFilePath);
}

bool isSourceGone(const UrlRecord &record) {
    return !record.HistoryFilePath.empty() &&
           !sourcePathOf(record.HistoryFilePath, record.RootPath) &&
           !sourceFolderOf(record.HistoryFilePath, record.RootPath);
}

std::optional<SourcePlace> sourceOfRecord(const UrlRecord &record) {
    const auto path = sourcePathOf(record.HistoryFilePath, record.RootPath);
    if (!path)
        return std::nullopt;
    const auto offset = static_cast<std::uint64_t>(std::max<std::int64_t>(record.MapFileOffset, 0));
    std::error_code unread; // then whoever opens it says why
    const std::uintmax_t size = std::filesystem::file_size(*path, unread);
    if (!unread && offset > 0 && offset >= size)
        return std::nullopt;
    return SourcePlace{*path, offset};
}

} // namespace nv
