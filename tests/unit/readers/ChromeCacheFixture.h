#pragma once

#include "readers/ContentProbe.h"
#include "readers/chrome/cache/Cache.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/ChromeCache.h"
#include "support/builders/ChromeHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {

/// One reading of a cache, with all that the reader says.
struct ChromeCacheReading {
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    MemoryTask task;
    ReadResult result;
    bool classicOnly = true;

    ChromeCacheReading &read(const std::filesystem::path &index, const std::filesystem::path &base,
                             TaskMonitor &watcher) {
        file.fullPath = index;
        file.sourceFileID = SourceFileId{7};
        file.version = "1.0";
        const Evidence evidence(base);
        ContentProbe content;
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, watcher, false, classicOnly};
        result = parseChromeCache(ctx);
        return *this;
    }
    ChromeCacheReading &read(const std::filesystem::path &index,
                             const std::filesystem::path &base) {
        return read(index, base, task);
    }
    const std::vector<UrlRecord> &records() const { return sink.records; }
};

/// A cache in memory, and a disk to read it from.
struct ChromeCacheTest : testing::Test {
    TempFolder disk;
    ChromeCache cache;
    ChromeCacheReading reading;

    std::filesystem::path folder() const { return disk.path() / "mara/Chrome/Default/Cache"; }

    /// An entry with dates of 2011-06-15 around 12:00 UTC, in microseconds.
    static ChromeCacheEntry entry(std::string url, std::string body = "body") {
        return {.url = std::move(url),
                .requested = static_cast<std::uint64_t>(chromeTime(1308139200, 250'000)),
                .modified = static_cast<std::uint64_t>(chromeTime(1308139260, 750'000)),
                .body = std::move(body)};
    }
    ChromeCacheReading &read() { return reading.read(cache.write(folder()), disk.path()); }
    /// Writes a 32-bit field of what lies at an address.
    void put(std::uint32_t address, std::size_t field, std::uint32_t value) {
        put32(cache.file(ChromeCache::fileOf(address)), ChromeCache::offsetOf(address) + field,
              value);
    }
    static void put32(std::string &bytes, std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes.at(at + i) = static_cast<char>(value >> (8 * i));
    }
    std::vector<std::string> urls() const {
        std::vector<std::string> found;
        for (const UrlRecord &record : reading.records())
            found.push_back(record.URL);
        return found;
    }
};

} // namespace nv::test
