// A small sound disk cache with bytes of the input written over its map and first block file: no
// reading throws, every entry is stored or told, bodies come from the cache's folder only.
//   input = damage*      damage = place:u16 (odd: block file) value:u32

#include "fuzz/Reading.h"
#include "readers/firefox/cache/CacheBody.h"
#include "readers/firefox/cache/CacheParse.h"
#include "support/TempFolder.h"
#include "support/builders/FirefoxCache.h"

#include <cstdint>

namespace {

using nv::fuzz::require;
using nv::test::FirefoxCache;

/// Fetches the body of each record, as an import does.
struct FetchingSink final : nv::RecordSink {
    FetchingSink(const nv::Evidence &from, const std::filesystem::path &to)
        : evidence(from), scratch(to) {}
    void save(nv::UrlRecord &record) override {
        require(++records <= 64 && record.CacheFileSize >= 0 && record.DataBlockFileOffset >= 0);
        require(record.MetaData.size() <= std::size_t{3} << 16);
        const std::filesystem::path file = scratch / "body";
        {
            nv::BodyTarget target(file, 0);
            if (nv::fetchFirefoxCacheBody(record, evidence, target)) {
                const nv::Body body = target.take();
                require(body.isInMemory || std::filesystem::exists(body.file));
                std::filesystem::remove(file);
            }
        }
        require(!std::filesystem::exists(file));
    }
    const nv::Evidence &evidence;
    const std::filesystem::path &scratch;
    std::uint64_t records = 0;
};

FirefoxCache damagedCache(const std::uint8_t *data, std::size_t size) {
    FirefoxCache cache(FirefoxCache::kFirefox3, 16);
    nv::test::addExampleEntries(cache);
    for (; size >= 6; data += 6, size -= 6) {
        const std::size_t word = std::size_t{data[0]} | std::size_t{data[1]} << 8;
        // Metadata stand after the bitmap, which is never read.
        std::string &bytes = word % 2 == 0 ? cache.map : cache.blocks[1];
        const std::size_t first = word % 2 == 0 ? 0 : 4096;
        const std::size_t at = first + word / 2 % (bytes.size() - first - 4);
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<char>(data[2 + i]);
    }
    return cache;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const nv::test::TempFolder folder;
    static const nv::test::TempFolder scratch;
    const nv::Evidence evidence(folder.path());
    const auto map = damagedCache(data, size).writeTo(folder.path());
    FetchingSink sink(evidence, scratch.path());
    nv::fuzz::Reading reading(map, evidence, sink, scratch.path());
    reading.requireNothingLost(nv::parseFirefoxCache(reading.context), sink.records);
    return 0;
}
