#pragma once

#include "base/Files.h"
#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"
#include "readers/firefox/cache/CacheParse.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/FirefoxCache.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// One reading of a disk cache, with all that the reader says.
class FirefoxCacheFixture : public testing::Test {
  protected:
    /// Writes the cache to the fixture's folder and reads it.
    void read(const FirefoxCache &cache) { readMap(cache.writeTo(folder.path() / "Cache")); }
    void readMap(const std::filesystem::path &map) { readMap(map, task); }
    void readMap(const std::filesystem::path &map, TaskMonitor &watcher) {
        sink.records.clear();
        log.entries.clear();
        file.fullPath = map;
        ContentProbe content;
        const Evidence evidence(base);
        ReadContext ctx{file, evidence, content, clock, folder.path(),
                        sink, log,      watcher, false, classicOnly};
        result = parseFirefoxCache(ctx);
    }

    /// The body of the record, or a word that says why there is none.
    std::string bodyOf(UrlRecord &record) {
        const Evidence evidence(base);
        record.RunTimeTempFilePath.clear();
        if (!contentOf(record, {evidence, scratch.path(), log, HistoryFileType::firefoxCache}))
            return "(none)";
        const Bytes bytes = readWhole(record.RunTimeTempFilePath);
        return std::string(ByteView(bytes).raw());
    }

    std::vector<UrlRecord> &records() { return sink.records; }
    std::vector<std::string> urls() const {
        std::vector<std::string> urls;
        for (const UrlRecord &record : sink.records)
            urls.push_back(record.URL);
        return urls;
    }
    std::vector<std::string> messages() const {
        std::vector<std::string> messages;
        for (const Failure &failure : log.entries)
            messages.push_back(failure.message);
        return messages;
    }
    std::uint64_t passedOver(const std::string &reason) const {
        const auto found = result.passedOver.find(reason);
        return found == result.passedOver.end() ? 0 : found->second;
    }

    TempFolder folder;
    TempFolder scratch;
    std::filesystem::path base = folder.path();
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    MemoryTask task;
    ReadResult result;
    bool classicOnly = true;
};

} // namespace nv::test
