#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"
#include "readers/results/LooseFile.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char *kPage = "<html><head><title> A caf\xE9 page </title></head></html>";

class LooseFile : public testing::Test {
  protected:
    void write(const fs::path &name, std::string_view bytes) {
        file.fullPath = disk.write(name, bytes);
    }

    ReadResult read(ReadResult (*reader)(ReadContext &)) {
        file.sourceFileID = SourceFileId{7};
        file.version = "1.0";
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
        ctx.deleted = true; // a loose file has no status at all
        return reader(ctx);
    }

    const UrlRecord &record() const { return sink.records.at(0); }

    void expectCommonFields(const std::string &name, std::uint64_t size) {
        EXPECT_EQ(record().SourceFile_ID, SourceFileId{7});
        EXPECT_EQ(record().Category, "HTML");
        EXPECT_EQ(record().CacheFolderName, "found pages");
        EXPECT_EQ(record().CacheFileName, name);
        EXPECT_EQ(record().CacheFileNameRecordOffset, 0U);
        EXPECT_EQ(record().MapFileOffset, 1);
        EXPECT_EQ(record().RootPath, disk.path().string() + "/");
        EXPECT_EQ(record().CacheFileRelativePath, "found pages/" + name);
        EXPECT_EQ(record().CacheFileSize, static_cast<std::int64_t>(size));
        EXPECT_EQ(record().RecordSize, size);
        EXPECT_EQ(record().Visits, -1);
        EXPECT_TRUE(record().IsWebPage);
        EXPECT_FALSE(record().IsHistory || record().CacheFileRebuilt || record().Typed ||
                     record().Tag || record().IsValidHTMLTagObject ||
                     record().IsValidHTMLPictureObject);
        EXPECT_EQ(record().MetaDataRecordOffset, 0U);
    }

    void expectEmptyFields() {
        const UrlRecord &r = record();
        EXPECT_EQ(r.HashedURL + r.HistoryFilePath + r.HistoryVersion + r.host + r.HTMLBody, "");
        EXPECT_EQ(r.MetaData + r.Links + r.Notes + r.Referrer + r.URLProtocol + r.Status, "");
        EXPECT_EQ(r.URL + r.URLRawValue + r.URLParameters + r.User, "");
        EXPECT_FALSE(r.ActionDateUTC.has() || r.OtherDate.has());
    }

    test::TempFolder disk;
    const Evidence evidence{disk.path()};
    ContentProbe content;
    test::FixedClock clock;
    test::MemorySink sink;
    test::MemoryLog log;
    test::MemoryTask task;
    HistoryFile file;
};

TEST_F(LooseFile, ofHtmlGivesOneRecord) {
    write("found pages/a%20b.htm", kPage);
    const ReadResult result = read(parseSimpleHTML);
    EXPECT_EQ(result.state, ReadState::complete);
    ASSERT_THAT(sink.records, SizeIs(1));
    expectCommonFields("a%20b.htm", std::string_view(kPage).size());
    expectEmptyFields();
    EXPECT_EQ(record().Action, "Not Known");
    EXPECT_EQ(record().cacheType, "Simple HTML");
    EXPECT_TRUE(record().CacheFileExists);
    EXPECT_EQ(record().CacheFileNameDecoded, "a b.htm");
    EXPECT_EQ(record().WebpageTitle, "A caf\u00e9 page");
    EXPECT_THAT(log.entries, IsEmpty());
}

TEST_F(LooseFile, ofCsvReadsNoColumns) {
    const std::string text = "URL,Visits\r\nhttp://host/,3\r\n";
    write("found pages/list.csv", text);
    EXPECT_EQ(read(parseCSVFile).state, ReadState::complete);
    ASSERT_THAT(sink.records, SizeIs(1));
    expectCommonFields("list.csv", text.size());
    expectEmptyFields();
    EXPECT_EQ(record().Action, "");
    EXPECT_EQ(record().cacheType, "Unallocated");
    EXPECT_FALSE(record().CacheFileExists);
    EXPECT_EQ(record().WebpageTitle, "");
}

TEST_F(LooseFile, ofCsvHasATitleTooWhenItHoldsOne) {
    write("found pages/list.csv", kPage);
    read(parseCSVFile);
    EXPECT_EQ(record().WebpageTitle, "A caf\u00e9 page");
}

TEST_F(LooseFile, hasTheDatesOfTheFileInUtc) {
    write("found pages/a.htm", kPage);
    const timespec times[2] = {{1300000000, 0}, {1200000000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.fullPath.c_str(), times, 0), 0);
    clock.offset = std::chrono::minutes(120);
    read(parseSimpleHTML);
    EXPECT_EQ(record().CacheFileLastAccessed, Date::fromUnixSeconds(1300000000));
    EXPECT_TRUE(record().CacheFileCreatedGMTDOS.has());
}

TEST_F(LooseFile, isFoundAgainAsTheRecordsContent) {
    for (const char *name : {"found pages/a.htm", "found pages/caf\xE9.htm"}) {
        write(name, kPage);
        read(parseSimpleHTML);
        UrlRecord &saved = sink.records.back();
        EXPECT_EQ(contentOf(saved, {evidence, disk.path(), log}), file.fullPath);
    }
}

TEST_F(LooseFile, thatIsEmptyIsARecordToo) {
    write("found pages/empty.html", "");
    EXPECT_EQ(read(parseSimpleHTML).state, ReadState::complete);
    expectCommonFields("empty.html", 0);
    EXPECT_EQ(record().WebpageTitle, "");
}

TEST_F(LooseFile, outsideOfTheBaseFolderHasTheRootForADrive) {
    const test::TempFolder other;
    file.fullPath = other.write("a.htm", kPage);
    read(parseSimpleHTML);
    EXPECT_EQ(record().RootPath, "/");
    EXPECT_EQ(record().RootPath + record().CacheFileRelativePath, file.fullPath.string());
}

TEST_F(LooseFile, leavesTheTitleOfTheTaskToTheImport) {
    write("found pages/a.htm", kPage);
    read(parseSimpleHTML);
    EXPECT_THAT(task.headings, IsEmpty());
}

TEST_F(LooseFile, thatIsGoneIsTold) {
    file.fullPath = disk.path() / "gone.htm";
    for (const auto &[reader, procedure] :
         {std::pair(&parseSimpleHTML, "ParserClass.ParseSimpleHTML()"),
          std::pair(&parseCSVFile, "ParserClass.ParseCSVFile()")}) {
        log.entries.clear();
        const ReadResult result = read(reader);
        EXPECT_EQ(result.state, ReadState::failed);
        EXPECT_THAT(result.reason, HasSubstr("gone.htm"));
        EXPECT_THAT(sink.records, IsEmpty());
        ASSERT_THAT(log.entries, SizeIs(1));
        EXPECT_EQ(log.entries[0].procedure, procedure);
        EXPECT_EQ(log.entries[0].severity, Severity::Warning);
    }
}

TEST_F(LooseFile, survivesACutAtEveryByte) {
    const std::string whole = kPage;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        content.forget();
        write("found pages/a.htm", whole.substr(0, length));
        ASSERT_EQ(read(parseSimpleHTML).state, ReadState::complete);
    }
    EXPECT_THAT(sink.records, SizeIs(whole.size() + 1));
    EXPECT_THAT(log.entries, IsEmpty());
}

} // namespace
} // namespace nv
