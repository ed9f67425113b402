#include "base/Base32.h"
#include "base/Files.h"
#include "readers/HttpHeaders.h"
#include "rebuild/RebuildContext.h"
#include "reports/exports/ExportRows.h"
#include "reports/warc/WarcHead.h"
#include "reports/warc/WarcTarget.h"
#include "reports/warc/WarcWriter.h"
#include "support/SmallFiles.h"
#include "support/TestProject.h"
#include "support/WarcReading.h"
#include "support/builders/Packed.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <functional>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

TEST(Base32, standsAsTheStandardsOwnCases) {
    EXPECT_EQ(base32(""), "");
    EXPECT_EQ(base32("f"), "MY======");
    EXPECT_EQ(base32("fo"), "MZXQ====");
    EXPECT_EQ(base32("foo"), "MZXW6===");
    EXPECT_EQ(base32("foob"), "MZXW6YQ=");
    EXPECT_EQ(base32("fooba"), "MZXW6YTB");
    EXPECT_EQ(base32("foobar"), "MZXW6YTBOI======");
    EXPECT_EQ(base32(std::string(20, '\xFF')), std::string(32, '7'));
}

TEST(WarcHead, linesThatUnpackingMadeUntrueKeepTheirWordsAside) {
    EXPECT_EQ(mendedHead("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Encoding: gzip\r\n"
                         "Transfer-Encoding: chunked\r\ncontent-length: 99\r\n\r\n~U:mara\r\n",
                         {.size = 4, .unpackedFrom = "gzip"}),
              "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nX-Archive-Orig-Content-Encoding: "
              "gzip\r\nX-Archive-Orig-Transfer-Encoding: chunked\r\nX-Archive-Orig-content-length: "
              "99\r\nContent-Length: 4\r\n\r\n");
}

TEST(WarcHead, whatIsTrueStays) {
    const std::string head = "HTTP/1.0 200 OK\r\nContent-Encoding: br\r\nContent-Length: 4\r\n\r\n";
    EXPECT_EQ(mendedHead(head, {.size = 4}), head);
    EXPECT_THAT(
        mendedHead("HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 0-3/9\r\n", {.size = 4}),
        HasSubstr("\r\nContent-Range: bytes 0-3/9\r\n"));
    EXPECT_THAT(
        mendedHead("HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 0-3/9\r\n", {.size = 9}),
        HasSubstr("\r\nX-Archive-Orig-Content-Range: bytes 0-3/9\r\n"));
}

TEST(WarcHead, aPartThatIsAllOfItIsTheWhole) {
    EXPECT_EQ(
        mendedHead("HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 0-8/9\r\n", {.size = 9}),
        "HTTP/1.1 200 OK\r\nX-Archive-Orig-Content-Range: bytes 0-8/9\r\n"
        "Content-Length: 9\r\n\r\n");
    for (const char *part : {"bytes 0-8/10", "bytes 1-9/10", "bytes 0-8/*", "bytes 0-9/10",
                             "bytes 8-0/9", "bytes */9", "bytes 0-18446744073709551615/0"})
        EXPECT_THAT(mendedHead(std::string("HTTP/1.1 206 Partial Content\r\nContent-Range: ") +
                                   part + "\r\n",
                               {.size = 9}),
                    StartsWith("HTTP/1.1 206 Partial"))
            << part;
}

TEST(WarcHead, whatWasPutTogetherFromPartsGetsATrueRange) {
    const std::string head = "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 0-3/9\r\n";
    EXPECT_EQ(mendedHead(head, {.size = 9, .first = 0}),
              "HTTP/1.1 200 OK\r\nX-Archive-Orig-Content-Range: bytes 0-3/9\r\n"
              "Content-Length: 9\r\n\r\n");
    EXPECT_THAT(mendedHead(head, {.size = 7, .first = 2}),
                AllOf(StartsWith("HTTP/1.1 206 Partial"),
                      HasSubstr("\r\nX-Archive-Orig-Content-Range: bytes 0-3/9\r\n"),
                      HasSubstr("\r\nContent-Range: bytes 2-8/9\r\n")));
    EXPECT_THAT(mendedHead("HTTP/1.1 206 x\r\nContent-Length: 9\r\n", {.size = 9, .first = 0}),
                StartsWith("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n"));
    EXPECT_THAT(mendedHead("HTTP/1.1 206 x\r\n", {.size = 9, .first = 0}),
                HasSubstr("\r\nContent-Range: bytes 0-8/*\r\n"));
    EXPECT_THAT(mendedHead("HTTP/1.1 200 OK\r\n", {.size = 9, .first = 5}),
                Not(HasSubstr("Content-Range")));
}

TEST(WarcHead, ofSeveralCodingsThoseStayThatWereNotUndone) {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Encoding: dcb, gzip\r\n\r\n";
    EXPECT_THAT(
        mendedHead(head, {.size = 4, .unpackedFrom = "gzip"}),
        HasSubstr("X-Archive-Orig-Content-Encoding: dcb, gzip\r\nContent-Encoding: dcb\r\n"));
    EXPECT_THAT(mendedHead("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n", {.size = 4}),
                Not(HasSubstr("\r\nContent-Encoding")))
        << "kept unpacked by its cache";
    EXPECT_THAT(
        mendedHead("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n", {.size = 4, .isGZip = true}),
        HasSubstr("\r\nContent-Encoding: gzip\r\n"));
}

TEST(WarcHead, hostileLinesForgeNothing) {
    const std::string head = mendedHead(
        "HTTP/2 404\nA: 1\n folded\nB:x\ry\nno header\n: none\nC D: 1\nE: \x01\x7F\x00z\n",
        {.isThere = false});
    EXPECT_EQ(head, "HTTP/1.1 404 \r\nA: 1 folded\r\nB: x y\r\nE:   \r\n\r\n");
    EXPECT_THAT(mendedHead("HTTP/1.1 200", {}), StartsWith("HTTP/1.1 200 \r\nContent-Length: 0"));
    EXPECT_EQ(mendedHead("HTTP/1.1 304 Not Modified\r\nContent-Length: 77\r\n", {}),
              "HTTP/1.1 304 Not Modified\r\nX-Archive-Orig-Content-Length: 77\r\n\r\n");
    std::string many = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 200'000; ++i)
        many += "Content-Length: 4\r\n x\r\n";
    EXPECT_THAT(mendedHead(many, {.size = 4}), HasSubstr("\r\nContent-Length: 4\r\n\r\n"));
}

TEST(WarcHead, itIsFoundWhereCachesKeepIt) {
    EXPECT_EQ(answerHeadIn("request-method GET response-head HTTP/1.1 200 OK\r\n"),
              "HTTP/1.1 200 OK\r\n");
    EXPECT_EQ(answerHeadIn("<?xml?>"), "");
    EXPECT_EQ(answerHeadIn(""), "");
    EXPECT_EQ(answerHeadIn("response-head nothing"), "");
}

TEST(WarcTarget, anyAddressIsAUri) {
    UrlRecord record;
    record.URLID = UrlId{17};
    record.URL = "https://a.example/caf\u00E9 a\r\nWARC-Type: x?b=%20#c";
    EXPECT_EQ(warcTargetOf(record), "https://a.example/caf%C3%A9%20a%0D%0AWARC-Type:%20x?b=%20#c");
    for (const char *none : {"", "C:\\page.htm", "no scheme", ":", "1a://b", "/a:b"}) {
        record.URL = none;
        EXPECT_EQ(warcTargetOf(record), "urn:x-norvelane:record:17") << none;
    }
}

TEST(WarcFile, namesAreTheSameForTheSameWords) {
    // The name of a web page by RFC 4122, as Python's uuid module makes it.
    EXPECT_EQ(warcIdOf("http://www.example.com/"), "urn:uuid:fcde3c85-2270-590f-9e7c-ee003d65e0e2");
    EXPECT_EQ(warcPackingOf("a.WARC"), WarcPacking::none);
    EXPECT_EQ(warcPackingOf("a.warc.gz"), WarcPacking::gzip);
    EXPECT_EQ(warcPackingOf("standard-output"), WarcPacking::gzip);
}

/// A project whose cached contents lie as files in a folder of evidence.
struct WarcTest : testing::Test {
    WarcTest() {
        fs::create_directories(scratch);
        fs::create_directories(evidence / "cache");
    }

    UrlId add(const std::string &url, const std::string &head,
              const std::optional<std::string> &content, const FactList &facts = {}) {
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = record.URLRawValue = url;
        record.MetaData = head;
        record.MIMEType = "text/plain";
        record.ActionDateUTC = Date::fromUnixSeconds(1308139200 + ++count);
        record.facts = facts;
        record.CacheFileSize = content ? static_cast<std::int64_t>(content->size()) : 9;
        if (content && !content->empty()) {
            const fs::path file = evidence / "cache" / std::to_string(count);
            writeWhole(file, *content);
            record.RootPath = Evidence(evidence).rootOf(file);
            record.CacheFileRelativePath = Evidence(evidence).relativeOf(file);
            record.CacheFileExists = true;
        }
        prepare(record);
        store.saveRecord(record, project.file);
        return record.URLID;
    }

    test::WarcReading written(const std::string &name = "out.warc.gz") {
        const Evidence found(evidence);
        const RebuildContext ctx{project.connection(), store, found, scratch,
                                 project.log,          task,  {}};
        WarcWriter warc(project.folder.path() / name,
                        {ctx, "Norvelane 0", Date::fromTimePoint(project.clock.now())});
        for (int id = 1; id <= count; ++id)
            static_cast<void>(warc.add(UrlId{id}));
        warc.finish();
        counts = warc.counts();
        return test::WarcReading(project.folder.path() / name);
    }

    test::TestProject project;
    RecordStore store = project.store();
    fs::path scratch = project.folder.path() / "scratch";
    fs::path evidence = project.folder.path() / "evidence";
    Unwatched task;
    WarcCounts counts;
    int count = 0;
    std::function<void(UrlRecord &)> prepare = [](UrlRecord &) {};
};

constexpr const char *kPlain = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n";

TEST_F(WarcTest, anAnswerIsReadBackWithAllThatIsKnown) {
    FactList facts;
    facts.add("server_address", "[2001:db8::7]:443");
    facts.add("frecency", std::int64_t{7});
    add("https://a.example/p?q=1", kPlain, std::string("caf\xE9\0\r\n\r\nend", 12), facts);
    for (const char *name : {"out.warc.gz", "out.warc"}) {
        const test::WarcReading read = written(name);
        ASSERT_EQ(read.problem, "") << name;
        ASSERT_THAT(read.records, SizeIs(3));
        EXPECT_EQ(read.records[0]["fields"]["WARC-Filename"], name);
        EXPECT_THAT(read.records[0]["text"], HasSubstr("software: Norvelane 0\r\n"));
        const auto answer = read.at("response", "https://a.example/p?q=1");
        EXPECT_EQ(answer["status"], 200);
        EXPECT_EQ(answer["date"], "2011-06-15T12:00:01Z");
        EXPECT_EQ(answer["size"], 12);
        EXPECT_EQ(answer["fields"]["WARC-IP-Address"], "2001:db8::7");
        const auto known = read.at("metadata", "https://a.example/p?q=1");
        EXPECT_EQ(known["fields"]["WARC-Refers-To"], answer["id"]);
        EXPECT_EQ(known["known"]["url_id"], 1);
        EXPECT_EQ(known["known"]["cache_type"], "IE Cache");
        EXPECT_EQ(known["known"]["content_sha256"], answer["sha256"]);
        EXPECT_EQ(known["known"]["facts"]["frecency"], 7);
    }
    const Bytes packed = readWhole(project.folder.path() / "out.warc.gz");
    EXPECT_THAT(ByteView(packed).raw(), StartsWith("\x1F\x8B"));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(WarcTest, ofAFilmWithGapsEachStretchIsAnAnswer) {
    FactList gaps;
    gaps.add("byte_ranges", "0-3, 6-8; missing 4-5");
    FactList none;
    none.add("byte_ranges", "0-8");
    const std::string head = "HTTP/1.1 206 Partial Content\r\nContent-Type: "
                             "video/mp4\r\nContent-Range: bytes 0-3/9\r\n\r\n";
    add("https://a.example/gaps.mp4", head, "abcdghi", gaps);
    add("https://a.example/whole.mp4", head, "abcdefghi", none);
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    std::vector<std::string> answers;
    for (const auto &record : read.records)
        if (record["type"] == "response")
            answers.push_back(
                fmt::format("{} {}", record["status"].get<int>(), record["size"].get<int>()));
    EXPECT_THAT(answers, testing::ElementsAre("206 4", "206 3", "200 9"));
    EXPECT_EQ(read.at("metadata", "https://a.example/gaps.mp4")["fields"]["WARC-Refers-To"],
              read.records[1]["id"]);
    EXPECT_NE(read.records[1]["id"], read.records[2]["id"]);
    EXPECT_EQ(counts.contents, 2);
}

TEST_F(WarcTest, theSameRowsGiveTheSameBytes) {
    add("http://a.example/1", kPlain, "one");
    add("http://a.example/2", "", "two");
    written("out.warc");
    const Bytes first = readWhole(project.folder.path() / "out.warc");
    written("out.warc");
    EXPECT_EQ(first, readWhole(project.folder.path() / "out.warc"));
}

TEST_F(WarcTest, theSameContentIsWrittenOnce) {
    add("http://a.example/1", kPlain, "the same");
    add("http://a.example/2", "HTTP/1.1 203 Other\r\n\r\n", "the same");
    add("http://a.example/3", kPlain, "");
    add("http://a.example/4", kPlain, "");
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    const auto again = read.at("revisit", "http://a.example/2");
    ASSERT_FALSE(again.is_null());
    EXPECT_EQ(again["status"], 203);
    EXPECT_EQ(again["fields"]["WARC-Refers-To-Target-URI"], "http://a.example/1");
    EXPECT_EQ(again["fields"]["WARC-Profile"],
              "http://netpreserve.org/warc/1.1/revisit/identical-payload-digest");
    EXPECT_THAT(read.of("response"), SizeIs(3)) << "nothing is saved by two empty ones";
    EXPECT_EQ(counts.repeated, 1);
}

TEST_F(WarcTest, whatHasNoHeadIsAResource) {
    add("http://a.example/1", "<?xml?>", "one");
    add("", "", "two");
    prepare = [](UrlRecord &record) { record.MIMEType = "text/x\r\nWARC-Type: y"; };
    add("http://a.example/3", "", "three");
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    EXPECT_EQ(read.at("resource", "http://a.example/1")["text"], "one");
    EXPECT_EQ(read.at("resource", "http://a.example/1")["fields"]["Content-Type"], "text/plain");
    EXPECT_EQ(read.at("resource", "urn:x-norvelane:record:2")["text"], "two");
    EXPECT_EQ(read.at("resource", "http://a.example/3")["fields"]["Content-Type"],
              "application/octet-stream");
}

TEST_F(WarcTest, anAnswerWhoseContentIsGoneSaysSo) {
    add("http://a.example/gone", kPlain, std::nullopt);
    add("http://a.example/none", "", std::nullopt);
    add("http://a.example/redirect", "HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n", "");
    prepare = [](UrlRecord &record) { record.ActionDateUTC = {}; };
    add("http://a.example/undated", kPlain, "x");
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    EXPECT_EQ(read.at("response", "http://a.example/gone")["fields"]["WARC-Truncated"],
              "unspecified");
    EXPECT_TRUE(read.at("resource", "http://a.example/none").is_null());
    EXPECT_EQ(read.at("response", "http://a.example/redirect")["headers"]["content-length"], "0");
    EXPECT_EQ(read.at("response", "http://a.example/undated")["date"], "1970-01-01T00:00:00Z");
    EXPECT_EQ(counts.bodyless, 1);
    EXPECT_EQ(counts.others, 1);
    EXPECT_EQ(counts.undated, 1);
    EXPECT_EQ(counts.contents, 3);
}

TEST_F(WarcTest, visitsCookiesAndBookmarksAreNotInIt) {
    prepare = [](UrlRecord &record) { record.IsHistory = true; };
    add("http://a.example/visit", kPlain, std::nullopt);
    add("http://a.example/visit of a file", "", "file");
    prepare = [](UrlRecord &record) { record.IsCookie = true; };
    add("http://a.example/cookie", "", "cookie");
    prepare = [](UrlRecord &record) { record.IsBookmark = true; };
    add("http://a.example/bookmark", "", "x");
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    EXPECT_THAT(read.records, SizeIs(3));
    EXPECT_EQ(counts.others, 3);
}

TEST_F(WarcTest, aLargeContentPassesThroughInBlocks) {
    const std::string large(5'000'000, 'x');
    add("http://a.example/large", kPlain, large + "1");
    const test::WarcReading read = written();
    ASSERT_EQ(read.problem, "");
    EXPECT_EQ(read.at("response", "http://a.example/large")["size"], 5'000'001);
    EXPECT_LT(fs::file_size(project.folder.path() / "out.warc.gz"), 100'000U);
}

TEST_F(WarcTest, aFullDiskLeavesWhatWasThere) {
    add("http://a.example/large", kPlain, std::string(100'000, 'x'));
    const fs::path before = project.folder.write("out.warc", "of before");
    {
        const test::SmallFiles full(4000); // bytes
        EXPECT_THROW(written("out.warc"), StorageFailure);
    }
    EXPECT_EQ(ByteView(readWhole(before)).raw(), "of before");
    EXPECT_FALSE(fs::exists(before.native() + ".~export"));
}

TEST_F(WarcTest, anExportOfRowsCanBeCancelledAndCounts) {
    add("http://a.example/1", kPlain, "one");
    prepare = [](UrlRecord &record) { record.IsHistory = true; };
    add("http://a.example/visit", "", std::nullopt);
    const Evidence found(evidence);
    const RebuildContext ctx{project.connection(), store, found, scratch, project.log, task, {}};
    const WarcSource source{ctx, "Norvelane 0", Date::fromTimePoint(project.clock.now())};
    UrlTable table(project.connection(), project.log, project.zone);
    table.loadURLs(task);
    Export job;
    job.format = ExportFormat::warc;
    job.contents = &source;
    job.outputFilePath = project.folder.path() / "rows.warc";
    test::CancelAfter cancel(1);
    EXPECT_EQ(exportRows(job, table, scratch, cancel), ExportEnd::cancelled);
    EXPECT_FALSE(fs::exists(job.outputFilePath));
    EXPECT_FALSE(fs::exists(job.outputFilePath.native() + ".~export"));
    EXPECT_EQ(exportRows(job, table, scratch, task), ExportEnd::exported);
    EXPECT_EQ(job.counts.rows, 1);
    EXPECT_THAT(notesOf(job), testing::ElementsAre(HasSubstr("1 rows have no cached content")));
    EXPECT_EQ(test::WarcReading(job.outputFilePath).problem, "");
    job.contents = nullptr;
    EXPECT_ANY_THROW(exportRows(job, table, scratch, task));
}

TEST_F(WarcTest, aRowThatCantBeReadIsTold) {
    add("http://a.example/1", kPlain, "one");
    count = 2; // of the second there is no row
    const Evidence found(evidence);
    const RebuildContext ctx{project.connection(), store, found, scratch, project.log, task, {}};
    WarcWriter warc(project.folder.path() / "out.warc", {ctx, "", {}});
    EXPECT_EQ(warc.add(UrlId{2}), WarcAdded::unread);
    EXPECT_EQ(warc.add(UrlId{1}), WarcAdded::written);
}

TEST(ExportNames, theFormFollowsFromTheName) {
    EXPECT_EQ(formatOfName("a.WARC.GZ"), ExportFormat::warc);
    EXPECT_EQ(formatOfName("a.warc"), ExportFormat::warc);
    EXPECT_EQ(formatOfName("a.csv"), ExportFormat::csv);
    EXPECT_EQ(formatOfName("a.gz"), std::nullopt);
    EXPECT_EQ(formatOfName(".csv"), std::nullopt);
    EXPECT_EQ(withExtensionOf("/b/a.warc.gz", ExportFormat::csv), "/b/a.csv");
    EXPECT_EQ(withExtensionOf("/b.csv/a", ExportFormat::warc), "/b.csv/a");
    EXPECT_EQ(withExtensionOf("/b/a.txt", ExportFormat::warc), "/b/a.warc.gz");
}

} // namespace
} // namespace nv
