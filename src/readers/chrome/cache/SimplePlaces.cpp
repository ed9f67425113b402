#include "readers/Limits.h"
#include "readers/chrome/cache/CachePlaces.h"
#include "readers/chrome/cache/SimpleCache.h"
#include "readers/chrome/cache/SimpleEntry.h"
#include "readers/chrome/cache/SimpleIndex.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

namespace nv {

namespace {

namespace fs = std::filesystem;

/// The index has a row for each entry: the hash that names its files, and its last use.
void placeLastUse(const PlaceSearch &search, const fs::path &folder, std::uint64_t hash,
                  FieldPlaces &places) {
    const auto file = search.evidence.find(folder, "index-dir/the-real-index");
    if (!file)
        return;
    const SourceBytes index{"the index of the cache",
                            *file,
                            {},
                            0,
                            search.evidence.head(*file, limits::kChromeSimpleIndex)};
    const ByteView view = index.view();
    const std::uint64_t first = simpleIndexOf(view).firstAt;
    for (std::uint64_t at = first; first > 0 && view.has(at, kSimpleIndexEntry);
         at += kSimpleIndexEntry)
        if (view.u64le(at) == hash) {
            places.number(index, {"last_used", at + 8, 8, SourceForm::chromeTime});
            return;
        }
}

/// No number of the file says it: of the body its first bytes are shown.
void placeSize(const SimpleEntry &entry, const ByteSource &file, FieldPlaces &places) {
    constexpr std::uint64_t kShown = 64;
    const SourceBytes bytes{
        "the body", file.path(), {}, entry.body.at, file.read(entry.body.at, kShown)};
    places.value("CacheFileSize", bytes, 0, std::min(entry.body.size, kShown),
                 static_cast<std::int64_t>(entry.body.size),
                 "bytes between the key and the record behind the body");
}

/// The sum of the stretches, whose lengths stand before them.
void placeStretches(const ByteSource &file, const SimpleHead &head, FieldPlaces &places) {
    constexpr std::uint64_t kLengthAt = 16; ///< before the bytes, of 32
    const SimpleStretches stretches = simpleStretchesOf(file, head);
    if (stretches.list.empty())
        return;
    const SourceBytes first = sourceBytes(file, "the head of the first stretch",
                                          stretches.list.front().bytes.at - kLengthAt, 8);
    places.value(
        "CacheFileSize", first, 0, 8, static_cast<std::int64_t>(stretches.size()),
        fmt::format("sum of the lengths of {} stretches, each a number of 8 bytes 16 bytes "
                    "before its stretch",
                    stretches.list.size()));
}

} // namespace

void locateInSimpleCache(const PlaceSearch &search, FieldPlaces &places) {
    const fs::path path = ownFile(search);
    const std::string own = textOf(path.filename());
    const EvidenceFile file = search.evidence.open(path);
    const auto head = simpleHeadOf(file);
    if (!head)
        throw std::runtime_error(fmt::format("{} is no entry's file", own));
    placeChromeKey(sourceBytes(file, "the entry's key", SimpleHead::kSize, head->key.size()),
                   places);
    if (own != search.record.DataBlockFile || own.ends_with("_s")) {
        const auto sparse = search.evidence.find(sourceFolder(search), search.record.DataBlockFile);
        if (sparse) {
            const EvidenceFile stretches = search.evidence.open(*sparse);
            if (const auto sparseHead = simpleHeadOf(stretches))
                placeStretches(stretches, *sparseHead, places);
        }
    }
    if (!own.ends_with("_s")) {
        const SimpleEntry entry = simpleEntryOf(file, *head);
        placeSize(entry, file, places);
        placeChromeHead(
            sourceBytes(file, "the head of the answer", entry.head.at,
                        std::min<std::uint64_t>(entry.head.size, limits::kChromeSeparateText)),
            head->key, places);
    }
    if (const auto name = simpleFileName(own))
        placeLastUse(search, sourceFolder(search), name->hash, places);
    placeChromeRest(places);
}

} // namespace nv
