#include "readers/chrome/cache/CacheBody.h"

#include "base/Files.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/CacheRecords.h"
#include "readers/chrome/cache/LaterPieces.h"

#include <algorithm>
#include <optional>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// The cache's folder as the row names it. When that is no folder any more, or its name is no
/// UTF-8, the index tells where it is.
std::optional<fs::path> folderOf(const UrlRecord &record, const Evidence &evidence) {
    if (evidence.kindOf(record.CacheRootPath) == PlaceKind::folder)
        return record.CacheRootPath;
    const auto index = evidence.find(record.RootPath, record.CacheFileRelativePath);
    return index ? std::optional(index->parent_path()) : std::nullopt;
}

/// What the row tells of its body may be one.
bool namesBody(const UrlRecord &record) {
    const bool isInBlocks = record.DataBlockFile.starts_with("data_");
    constexpr std::int64_t kFirstBlock = ChromeDataFile::kSize;
    // An entry without a body names "f_000000", and its size is 0.
    return record.CacheFileSize > 0 && record.DataBlockFileOffset >= (isInBlocks ? kFirstBlock : 0);
}

/// The file that holds the body. The name is looked for among those of the folder, so that a row
/// of a hostile project leads nowhere else.
std::optional<fs::path> sourceOf(const UrlRecord &record, const Evidence &evidence) {
    const auto folder = namesBody(record) ? folderOf(record, evidence) : std::nullopt;
    return folder ? evidence.find(*folder, record.DataBlockFile) : std::nullopt;
}

} // namespace

bool fetchChromeBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    if (isInPieces(record))
        return fetchLaterPieces(record, evidence, target);
    const auto source = sourceOf(record, evidence);
    if (!source)
        return false;
    const auto offset = static_cast<std::uint64_t>(record.DataBlockFileOffset);
    auto size = static_cast<std::uint64_t>(record.CacheFileSize);
    if (record.DataBlockFile.starts_with("data_"))
        size = std::min(size, limits::kChromeBlockBody);
    return target.copy(evidence.open(*source), offset, size) > 0;
}

} // namespace nv
