// The made site as it lies in the caches of today's browsers: what they hold is what was served.

#include "base/Files.h"
#include "readers/CachedBody.h"
#include "readers/chrome/cache/Cache.h"
#include "readers/chrome/cache/SimpleCache.h"
#include "readers/chrome/cache/SqlCache.h"
#include "readers/firefox/cache/Cache2.h"
#include "support/FileReading.h"
#include "support/builders/site/SiteCaches.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::LaterCache;
using test::MadeSite;
using test::SiteAnswer;

constexpr std::int64_t kBegun = 1792220400; // 2026-10-17 07:00:00 UTC

struct Layout {
    LaterCache cache;
    const char *artefact; ///< in the cache's folder; empty for the folder itself
    ReadResult (*read)(ReadContext &);
};

class MadeSiteCache : public testing::TestWithParam<Layout> {
  protected:
    const std::vector<UrlRecord> &read(const MadeSite &site) {
        writeSite(site, GetParam().cache, cache, kBegun);
        const fs::path name = GetParam().artefact;
        return reading.read(GetParam().read, name.empty() ? cache : cache / name);
    }
    std::string bodyOfRecord(UrlRecord record) {
        const Evidence evidence(folder.path());
        const Extraction extraction = {
            .evidence = evidence, .folder = reading.scratch.path(), .log = reading.log};
        const auto body = bodyOf(record, extraction, kBodyInMemory);
        return body ? std::string(body->raw()) : std::string();
    }

    test::TempFolder folder;
    fs::path cache = folder.path() / "cache";
    test::FileReading reading;
};

TEST_P(MadeSiteCache, holdsWhatWasServed) {
    const MadeSite site = test::madeSite();
    std::map<std::string, UrlRecord> records;
    for (const UrlRecord &record : read(site))
        records[record.URL] = record;
    EXPECT_EQ(reading.result.state, ReadState::complete) << reading.result.reason;
    EXPECT_TRUE(reading.result.noted.empty());
    EXPECT_TRUE(reading.log.entries.empty());
    std::size_t kept = 0;
    for (const SiteAnswer &answer : site) {
        ASSERT_EQ(records.contains(answer.url), answer.isKept) << answer.url;
        if (!answer.isKept)
            continue;
        ++kept;
        EXPECT_EQ(bodyOfRecord(records[answer.url]), answer.body) << answer.url;
    }
    EXPECT_EQ(records.size(), kept);
}

TEST_P(MadeSiteCache, isTheSameOnEachRun) {
    const MadeSite site = test::partOf(test::madeSite(), "tidewater.example");
    ASSERT_FALSE(site.empty());
    const auto filesOf = [&](const fs::path &place) {
        writeSite(site, GetParam().cache, place, kBegun);
        std::map<std::string, std::string> files;
        for (const auto &entry : fs::recursive_directory_iterator(place))
            if (entry.is_regular_file()) {
                const Bytes bytes = readWhole(entry.path());
                files[fs::relative(entry.path(), place)] = ByteView(bytes).raw();
            }
        return files;
    };
    EXPECT_EQ(filesOf(folder.path() / "one"), filesOf(folder.path() / "other"));
}

TEST(MadeSiteSqlCache, hasTheChecksumOfEachHeadAndPiece) {
    const test::TempFolder folder;
    writeSite(test::partOf(test::madeSite(), "tidewater.example"), LaterCache::sql, folder.path(),
              kBegun);
    for (const char *part : {"sqldb0", "sqldb1", "sqldb2"})
        for (const char *table : {"resources", "blobs"})
            EXPECT_EQ(
                SQLite::Database((folder.path() / part).native())
                    .execAndGet(fmt::format("SELECT count(*) FROM {} WHERE check_sum = 0", table))
                    .getInt(),
                0)
                << part << ' ' << table;
}

INSTANTIATE_TEST_SUITE_P(OfToday, MadeSiteCache,
                         testing::Values(Layout{LaterCache::simple, "", parseChromiumSimpleCache},
                                         Layout{LaterCache::blocks, "index", parseChromeCache},
                                         Layout{LaterCache::sql, "", parseChromiumSqlCache},
                                         Layout{LaterCache::cache2, "", parseFirefoxCache2}),
                         [](const auto &instance) {
                             switch (instance.param.cache) {
                             case LaterCache::simple:
                                 return "simple";
                             case LaterCache::blocks:
                                 return "blocks";
                             case LaterCache::sql:
                                 return "sql";
                             case LaterCache::cache2:
                                 return "cache2";
                             }
                             return "";
                         });

TEST(MadeSiteList, namesEachAddressOnce) {
    std::set<std::string> met;
    std::set<std::string> shown;
    for (const SiteAnswer &answer : test::madeSite()) {
        EXPECT_TRUE(met.insert(answer.url).second) << answer.url;
        EXPECT_TRUE(answer.shows.empty() || shown.insert(answer.shows).second) << answer.shows;
    }
    EXPECT_GT(shown.size(), 40U);
}

} // namespace
} // namespace nv
