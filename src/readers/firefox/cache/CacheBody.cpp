#include "readers/firefox/cache/CacheBody.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/firefox/cache/Cache.h"

#include <algorithm>
#include <optional>
#include <string>

namespace nv {

namespace fs = std::filesystem;

std::optional<fs::path> inFirefoxCacheFolder(const UrlRecord &record, const Evidence &evidence,
                                             const std::string &name) {
    const fs::path relative = record.CacheRootPath;
    const bool leadsUp = std::ranges::find(relative, fs::path("..")) != relative.end();
    const fs::path folder = record.RootPath + record.CacheRootPath;
    if (!leadsUp && evidence.kindOf(folder) == PlaceKind::folder)
        return evidence.find(folder, name);
    // Folders whose names aren't UTF-8 on the disk are found through their parents' listings.
    return evidence.find(record.RootPath, record.CacheRootPath + "/" + name);
}

namespace {

std::optional<fs::path> separateFile(const UrlRecord &record, const Evidence &evidence) {
    const std::string name = record.DataBlockFile + "d01";
    if (const auto beside = inFirefoxCacheFolder(record, evidence, name))
        return beside;
    // Later caches spread these files over folders named by the hash: "3/3D/ED165d01".
    constexpr std::size_t kHashDigits = 8;
    if (record.DataBlockFile.size() != kHashDigits)
        return std::nullopt;
    return inFirefoxCacheFolder(record, evidence,
                                name.substr(0, 1) + "/" + name.substr(1, 2) + "/" + name.substr(3));
}

std::optional<fs::path> blockFile(const UrlRecord &record, const Evidence &evidence) {
    for (const std::int64_t number : {1, 2, 3})
        if (record.DataBlockFile == std::to_string(number))
            return inFirefoxCacheFolder(record, evidence, blockFileName(number));
    return std::nullopt;
}

} // namespace

bool fetchFirefoxCacheBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const std::string map = fs::path(record.HistoryFilePath).filename().string();
    if (record.DataBlockFileOffset < 0 || record.CacheFileSize < 0 ||
        !inFirefoxCacheFolder(record, evidence, map))
        return false;
    const bool isSeparate = record.DataBlockFileOffset == 0;
    const auto source = isSeparate ? separateFile(record, evidence) : blockFile(record, evidence);
    if (!source)
        return false;
    const auto wanted = static_cast<std::uint64_t>(record.CacheFileSize);
    const std::uint64_t count =
        isSeparate ? wanted : std::min(wanted, limits::kFirefoxCacheBlockBody);
    const auto offset = static_cast<std::uint64_t>(record.DataBlockFileOffset);
    return target.copy(evidence.open(*source), offset, count) > 0 || wanted == 0;
}

} // namespace nv
