// Real caches, with what an independent reading found in them.

#include "base/Files.h"
#include "base/Md5.h"
#include "readers/CachedBody.h"
#include "readers/firefox/cache/Cache2.h"
#include "support/FactsOf.h"
#include "support/FileReading.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class FirefoxCache2Sample : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        const fs::path folder =
            samples ? samples->parent_path() / "samples-today" / GetParam() : fs::path();
        if (!samples || !fs::is_directory(folder))
            GTEST_SKIP() << "the folder of today's samples is not here";
        const Bytes text = readWhole(folder / "expected.json");
        const json all = json::parse(text.begin(), text.end());
        for (const json &entry : all.at("cache"))
            expected[entry.at("key")] = entry;
        profile = folder / "evidence/home/ada/.mozilla/firefox/abcd1234.default-esr";
        reading.read(parseFirefoxCache2, profile / "cache2");
    }

    std::string md5Of(UrlRecord record, bool isAsStored) {
        const Evidence evidence(profile);
        const Extraction extraction = {.evidence = evidence,
                                       .folder = reading.scratch.path(),
                                       .log = reading.log,
                                       .isAsStored = isAsStored};
        const auto file = contentOf(record, extraction);
        return file ? fileMD5(*file).value_or("") : std::string("-");
    }

    fs::path profile;
    std::map<std::string, json> expected;
    test::FileReading reading;
};

TEST_P(FirefoxCache2Sample, everyEntryIsThereWithItsBody) {
    std::size_t live = 0;
    for (const UrlRecord &record : reading.sink.records) {
        SCOPED_TRACE(record.URLRawValue);
        if (record.cacheType != "Firefox Cache")
            continue;
        ++live;
        const json &entry = expected.at(record.URLRawValue);
        EXPECT_EQ(record.URL, entry.at("url"));
        EXPECT_EQ(record.Visits, entry.at("fetch_count"));
        EXPECT_EQ(record.CacheFileSize, entry.at("wire_size"));
        EXPECT_EQ(md5Of(record, true), entry.at("wire_md5"));
        EXPECT_EQ(md5Of(record, false), entry.at("plain_md5"));
        if (record.URL.starts_with("https:")) {
            EXPECT_EQ(test::factOf(record, "certificate_name"), "www.tidemill.example");
        }
    }
    EXPECT_EQ(live, expected.size());
    EXPECT_EQ(reading.sink.records.size(), live + 1) << "and the one that was given up";
    EXPECT_TRUE(reading.result.noted.empty());
    EXPECT_TRUE(reading.result.passedOver.empty());
    EXPECT_TRUE(reading.log.entries.empty());
}

INSTANTIATE_TEST_SUITE_P(Profiles, FirefoxCache2Sample,
                         testing::Values("firefox153_closed", "firefox153_killed"),
                         [](const auto &sample) { return sample.param; });

} // namespace
} // namespace nv
