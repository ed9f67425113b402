#include "readers/mac/CachePlaces.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/mac/CacheFile.h"

#include <fmt/format.h>

#include <array>
#include <optional>
#include <stdexcept>

namespace nv {

namespace {

using F = SourceForm;
using enum ByteOrder;

constexpr std::array<NumberRule, 4> kNumbers = {{
    {"ActionDateUTC", macend::kLastVisit, 4, F::secondsOf1904, big},
    {"LastVisited", macend::kLastVisit, 4, F::secondsOf1904, big},
    {"OtherDate", macend::kFirstVisit, 4, F::secondsOf1904, big},
    {"CacheFileSize", macend::kDataSize, 4, F::number, big},
}};

std::optional<MacCacheEntry> entryAt(ByteView file, std::uint64_t offset) {
    std::optional<MacCacheEntry> found;
    Unwatched task;
    MacCacheFile cache;
    static_cast<void>(cache.readMACIECache(file, task, [&](const MacCacheEntry &entry) {
        if (entry.recordOffset == offset && !found)
            found = entry;
    }));
    return found;
}

void placeText(std::string_view field, const SourceBytes &file, std::uint64_t at, MadeValue made,
               std::string rule, FieldPlaces &places) {
    if (at != 0)
        places.value(field, file, at, file.view().untilZero(at).size(), std::move(made),
                     std::move(rule));
}

} // namespace

/// Entries have no table: the file is walked from its first block on, as when it was read.
void locateInMacCache(const PlaceSearch &search, FieldPlaces &places) {
    const SourceBytes file{"the entry", search.source, {}, 0, search.evidence.whole(search.source)};
    const auto offset = static_cast<std::uint64_t>(search.record.MapFileOffset);
    const auto entry = entryAt(file.view(), offset);
    if (!entry)
        throw std::runtime_error(fmt::format("no entry begins at byte {}", offset));
    placeText("URLRawValue", file, entry->urlOffset, entry->url, {}, places);
    placeText("URL", file, entry->urlOffset, percentDecode(parseURLFromRawURL(entry->url)),
              "the address in it, its percent coding undone", places);
    placeText("MIMEType", file, entry->mimeOffset, entry->mime, {}, places);
    if (entry->endOffset != 0) {
        const std::string_view raw = file.view().sub(entry->endOffset, macend::kBytes).raw();
        places.numbers({"the entry's block \"CATE\"",
                        search.source,
                        {},
                        entry->endOffset,
                        Bytes(raw.begin(), raw.end())},
                       kNumbers);
    }
    places.derivedOfAddress();
    places.derived("Visits", "1 where the entry has a block \"HVRS\", otherwise 0");
    places.derived("MapFileOffset", "where the walk along the blocks found the entry");
    places.derived("DataBlockFileOffset", "where the walk along the blocks found the body");
    places.derived("DataBlockFile", "the cache is one file");
    places.derived("CacheFolderName", "folder of the cache's file");
}

} // namespace nv
