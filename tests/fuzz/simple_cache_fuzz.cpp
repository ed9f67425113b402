// The files of an entry of Chromium's Simple cache, and the list of all: whatever is in them,
// stretches lie in their file, and nothing but their damage is told.
//   input = which:u8 file

#include "fuzz/MemorySource.h"
#include "fuzz/Reading.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/CacheKey.h"
#include "readers/chrome/cache/ResponseInfo.h"
#include "readers/chrome/cache/SimpleCache.h"
#include "readers/chrome/cache/SimpleEntry.h"
#include "readers/chrome/cache/SimpleIndex.h"
#include "readers/chrome/cache/SiteCacheAnswer.h"

#include <cstdint>
#include <string_view>

namespace {

using nv::fuzz::require;

void requireInside(const nv::SimpleStream &stream, std::uint64_t size) {
    require(stream.at <= size && stream.size <= size - stream.at);
}

void readEntry(std::string_view bytes) {
    const nv::fuzz::MemorySource file(bytes);
    const auto head = nv::simpleHeadOf(file);
    if (!head)
        return;
    static_cast<void>(nv::chromeCacheKeyOf(head->key));
    const nv::SimpleEntry entry = nv::simpleEntryOf(file, *head);
    requireInside(entry.body, bytes.size());
    requireInside(entry.head, bytes.size());
    static_cast<void>(nv::hasItsChecksum(file, entry.body));
    if (const auto last = nv::simpleLastStreamOf(file, *head))
        requireInside(*last, bytes.size());
    const nv::SimpleStretches stretches = nv::simpleStretchesOf(file, *head);
    require(stretches.size() <= bytes.size());
    for (const nv::SimpleStretch &each : stretches.list)
        requireInside(each.bytes, bytes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view rest(reinterpret_cast<const char *>(data) + 1, size - 1);
    const nv::ByteView view = nv::viewOf(rest);
    switch (data[0] % 4) {
    case 0:
        readEntry(rest);
        break;
    case 1:
        require(nv::simpleIndexOf(view).lastUsed.size() <= rest.size() / 24);
        break;
    case 2:
        static_cast<void>(nv::chromeResponseOf(view));
        static_cast<void>(nv::chromeSiteAnswerOf(view));
        break;
    default:
        static_cast<void>(nv::simpleFileName(rest));
        static_cast<void>(nv::chromeCacheKeyOf(rest));
        break;
    }
    return 0;
}
