// The caches of real profiles, with what an independent reading found in them.

#include "base/Files.h"
#include "base/Md5.h"
#include "readers/chrome/cache/Cache.h"
#include "readers/chrome/cache/CacheBody.h"
#include "readers/chrome/cache/SimpleCache.h"
#include "readers/chrome/cache/SqlCache.h"
#include "support/BodyOf.h"
#include "support/FileReading.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

struct CacheSample {
    const char *name;
    const char *artefact; ///< of the folder; empty for the folder itself
    test::FileReading::ReadFunction read;
    Fetch fetch;
};

class ChromiumCacheSample : public testing::TestWithParam<CacheSample> {};

void compare(const UrlRecord &record, const json &entry) {
    const double answered = entry.at("response").get<double>();
    EXPECT_NEAR(static_cast<double>(record.ActionDateUTC.unixSeconds()), std::floor(answered), 1);
    const std::string type = entry.value("type", json()).is_string() ? entry.at("type") : "";
    EXPECT_EQ(record.MIMEType, type.substr(0, type.find(';')));
    EXPECT_EQ(record.CacheFileSize, entry.at("wire_size").get<std::int64_t>());
}

TEST_P(ChromiumCacheSample, hasEachEntryWithItsBodyAsTheServerSentIt) {
    const auto samples = test::samplesFolder();
    const fs::path folder =
        samples ? samples->parent_path() / "samples-today" / GetParam().name : fs::path();
    if (!samples || !fs::is_directory(folder))
        GTEST_SKIP() << "the folder of today's samples is not here";
    const fs::path cache = folder / "evidence/home/ada/.config/chromium/Default/Cache/Cache_Data";
    test::FileReading reading;
    const auto &records = reading.read(
        GetParam().read, *GetParam().artefact == '\0' ? cache : cache / GetParam().artefact);
    EXPECT_EQ(reading.result.state, ReadState::complete) << reading.result.reason;
    EXPECT_TRUE(reading.result.passedOver.empty());
    std::map<std::string, const UrlRecord *> byKey;
    for (const UrlRecord &record : records)
        byKey[record.URLRawValue] = &record;
    EXPECT_EQ(byKey.size(), records.size());
    std::size_t entries = 0;
    const Bytes text = readWhole(folder / "expected.json");
    const json told = json::parse(text.begin(), text.end());
    for (const json &entry : told.at("cache")) {
        const std::string key = entry.at("key");
        if (key.starts_with("Range_"))
            continue; // a piece of another entry
        ++entries;
        SCOPED_TRACE(key);
        ASSERT_TRUE(byKey.contains(key));
        const UrlRecord &record = *byKey.at(key);
        EXPECT_EQ(record.cacheType, "Chrome Cache");
        if (!record.MetaData.starts_with("HTTP/1.1 206")) {
            compare(record, entry);
            const auto body = test::bodyOf(GetParam().fetch, record, cache);
            EXPECT_EQ(md5Hex(body.value_or("")), entry.at("wire_md5"));
        } else {
            const auto body = test::bodyOf(GetParam().fetch, record, cache);
            EXPECT_EQ(md5Hex(body.value_or("")), "59c0839ad99cd04517a234d78b494076");
        }
    }
    EXPECT_EQ(records.size(), entries);
}

INSTANTIATE_TEST_SUITE_P(Layouts, ChromiumCacheSample,
                         testing::Values(CacheSample{"chromium156_simple", "",
                                                     parseChromiumSimpleCache, fetchSimpleBody},
                                         CacheSample{"chromium156_blockfile", "index",
                                                     parseChromeCache, fetchChromeBody},
                                         CacheSample{"chromium156_sql", "", parseChromiumSqlCache,
                                                     fetchSqlBody}),
                         [](const auto &sample) { return std::string(sample.param.name); });

} // namespace
} // namespace nv
