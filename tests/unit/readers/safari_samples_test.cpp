#include "base/Files.h"
#include "base/Md5.h"
#include "readers/safari/Cache.h"
#include "readers/safari/History.h"
#include "support/Samples.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <openssl/evp.h>

#include <algorithm>
#include <array>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// One artefact of Safari with what independent readers found in it.
struct SafariSample : testing::Test {
    /// False where there are no samples.
    bool open(const std::string &name, test::SqliteHistoryReading::ReadFunction read) {
        const auto samples = test::samplesFolder();
        if (!samples)
            return false;
        const fs::path folder = *samples / name;
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        file = folder / expected.at("scan").at(0).at("path").get<std::string>();
        reading.read(read, file);
        EXPECT_EQ(fileMD5(file), expected.at("files").at(0).at("md5").get<std::string>());
        EXPECT_EQ(reading.records().size(), expected.at("expected").at("rows").get<std::size_t>());
        return true;
    }
    template <class Test>
    std::size_t count(Test holds) const {
        const auto &records = reading.records();
        return static_cast<std::size_t>(std::ranges::count_if(records, holds));
    }
    const UrlRecord *find(const std::string &url) const {
        const auto &records = reading.records();
        const auto found = std::ranges::find(records, url, &UrlRecord::URLRawValue);
        return found == records.end() ? nullptr : &*found;
    }

    json expected;
    fs::path file;
    test::SqliteHistoryReading reading;
};

/// "2013-07-12 19:29:42.5" as the list writes it; empty for null.
std::string listedDate(const json &record, const char *key) {
    if (!record.contains(key) || record.at(key).is_null())
        return {};
    std::string text = record.at(key).get<std::string>().substr(0, 19) + "Z";
    text[10] = 'T';
    return text;
}

std::string sha256Of(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr);
    std::string text;
    for (unsigned i = 0; i < length; ++i)
        text += fmt::format("{:02x}", digest[i]);
    return text;
}

void expectBody(const UrlRecord &saved, const json &wanted) {
    const test::TempFolder folder;
    test::MemoryLog log;
    const Evidence evidence(fs::path(saved.HistoryFilePath).parent_path());
    UrlRecord record = saved;
    ASSERT_TRUE(contentOf(record, {evidence, folder.path(), log}));
    EXPECT_EQ(fs::file_size(record.RunTimeTempFilePath), wanted.at("receiver_data_length"));
    EXPECT_EQ(sha256Of(record.RunTimeTempFilePath), wanted.at("body_sha256"));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafariSample, theCacheGivesItsRecordsAndBodies) {
    if (!open("safari_cachedb_xml", parseSafariCacheFile))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_TRUE(reading.result.passedOver.empty());
    const json &counts = expected.at("expected");
    EXPECT_EQ(count([](const UrlRecord &r) { return r.CacheFileExists; }),
              counts.at("rows_with_CacheFileExists"));
    EXPECT_EQ(count([](const UrlRecord &r) { return r.ActionDateUTC.has(); }),
              counts.at("rows_with_date_header"));
    EXPECT_EQ(count([](const UrlRecord &r) { return r.OtherDate.has(); }),
              counts.at("rows_with_last_modified"));
    for (const auto &each : counts.at("MIMEType_counts").items())
        EXPECT_EQ(count([&](const UrlRecord &r) { return r.MIMEType == each.key(); }), each.value())
            << each.key();
}

TEST_F(SafariSample, theCachesListedRecordsAgreeFieldByField) {
    if (!open("safari_cachedb_xml", parseSafariCacheFile))
        GTEST_SKIP() << "the folder of real samples is not here";
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord *record = find(wanted.at("URLRawValue"));
        ASSERT_TRUE(record);
        EXPECT_EQ(record->Reference_ID, wanted.at("Reference_ID"));
        EXPECT_EQ(record->MIMEType, wanted.value("MIMEType", ""));
        EXPECT_EQ(isoUtc(record->ActionDateUTC), listedDate(wanted, "ActionDateUTC"));
        EXPECT_EQ(isoUtc(record->OtherDate), listedDate(wanted, "OtherDate"));
        EXPECT_EQ(record->OtherDateMeaning, wanted.value("OtherDateMeaning", ""));
        EXPECT_EQ(record->CacheFileSize, wanted.value("CacheFileSize_by_upper_bound", 0));
        EXPECT_EQ(record->CacheFileExists, wanted.value("CacheFileExists", true));
        EXPECT_EQ(record->Visits, wanted.value("Visits", -1));
        EXPECT_EQ(record->cacheType, wanted.value("cacheType", "Safari Cache"));
        if (wanted.contains("body_sha256"))
            expectBody(*record, wanted);
    }
}

TEST_F(SafariSample, theHistoryGivesItsRecords) {
    if (!open("safari_history_xml", parseSafariHistoryFile))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(count([](const UrlRecord &r) { return r.WebpageTitle.empty(); }),
              expected.at("expected").at("entries_without_title"));
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord *record = find(wanted.at("URL"));
        ASSERT_TRUE(record);
        EXPECT_EQ(record->URL, wanted.at("URL"));
        EXPECT_EQ(record->WebpageTitle, wanted.at("WebpageTitle"));
        EXPECT_EQ(isoUtc(record->ActionDateUTC), listedDate(wanted, "ActionDateUTC"));
        EXPECT_EQ(record->Visits, wanted.at("Visits"));
        EXPECT_EQ(record->cacheType, wanted.at("cacheType"));
    }
}

TEST_F(SafariSample, theBinaryHistoryIsNotReadYet) {
    if (!open("safari_history_binary", parseSafariHistoryFile))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_EQ(reading.result.state, ReadState::notReadYet);
    EXPECT_TRUE(reading.result.reason.ends_with("a later form, not read yet"));
}

} // namespace
} // namespace nv
