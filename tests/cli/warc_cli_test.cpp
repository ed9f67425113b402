#include "cli/CliCase.h"
#include "support/WarcReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/Packed.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr std::int64_t kNoon = 1308139200; // 2011-06-15 12:00 UTC

/// A Simple cache with a page in each coding, a redirect and a picture that is there twice.
class WarcCliTest : public CliCase {
  protected:
    WarcCliTest() {
        add("https://a.example/plain", "", m_page);
        add("https://a.example/gzip", "gzip", gzip(m_page + "g"));
        add("https://a.example/deflate", "deflate", zlibDeflate(m_page + "d"));
        add("https://a.example/br", "br", brotli(m_page + "b"));
        add("https://a.example/zstd", "zstd", zstd(m_page + "z"));
        add("https://a.example/again", "br", brotli(m_page));
        add("https://a.example/old", "", "", "HTTP/1.1 301 Moved Permanently");
        m_cache.write(evidence / "Cache" / "Cache_Data");
        const CliResult run = cli({"import", project, evidence.string()});
        EXPECT_EQ(run.exit, 0) << run.err;
    }

    void add(const std::string &url, const std::string &coding, const std::string &body,
             const std::string &status = "HTTP/1.1 200 OK") {
        ChromiumAnswer answer{.lines = {status, "Content-Type: text/html"},
                              .requested = chromeTime(kNoon),
                              .answered = chromeTime(kNoon + 60)};
        if (!coding.empty())
            answer.lines.push_back("Content-Encoding: " + coding);
        answer.lines.push_back("Content-Length: " + std::to_string(body.size()));
        m_cache.add(++m_count, "1/0/_dk_https://a.example https://a.example " + url, answer.bytes(),
                    body);
    }

    std::string m_page = "<html><title>p</title>" + std::string(3000, 'x');

  private:
    SimpleCacheFiles m_cache;
    std::uint64_t m_count = 0;
};

TEST_F(WarcCliTest, aCacheIsReadBackByAReaderOfItsOwn) {
    for (const char *name : {"cache.warc.gz", "cache.warc"}) {
        const fs::path out = folder.path() / name;
        const CliResult run = cli({"export", project, out.string()});
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_THAT(run.err, AllOf(HasSubstr("7 rows written as warc"),
                                   HasSubstr("1 answers have the content of an earlier one")));
        const WarcReading read(out);
        ASSERT_EQ(read.problem, "") << name;
        EXPECT_THAT(read.of("response"), SizeIs(6));
        EXPECT_THAT(read.of("metadata"), SizeIs(7));
        for (const char *each : {"gzip", "deflate", "br", "zstd"}) {
            const auto answer = read.at("response", std::string("https://a.example/") + each);
            EXPECT_EQ(answer["size"], m_page.size() + 1) << each;
            EXPECT_EQ(answer["date"], "2011-06-15T12:01:00Z");
            EXPECT_EQ(answer["headers"].value("x-archive-orig-content-encoding", ""), each);
            EXPECT_FALSE(answer["headers"].contains("content-encoding"));
            EXPECT_EQ(answer["fields"]["WARC-IP-Address"], "192.0.2.7");
            const auto known = read.at("metadata", std::string("https://a.example/") + each);
            EXPECT_EQ(known["known"]["content_sha256"], answer["sha256"]);
            EXPECT_EQ(known["known"]["facts"]["content_sha256"], answer["sha256"]);
            EXPECT_EQ(known["known"]["unpacked_from"], each);
        }
        EXPECT_EQ(read.at("response", "https://a.example/old")["status"], 301);
        const bool isPlainFirst = read.at("revisit", "https://a.example/plain").is_null();
        EXPECT_FALSE(
            read.at("revisit", isPlainFirst ? "https://a.example/again" : "https://a.example/plain")
                .is_null());
    }
}

TEST_F(WarcCliTest, rowsAreChosenAsForAnyForm) {
    const fs::path out = folder.path() / "some";
    const CliResult run = cli({"export", project, out.string(), "--format", "warc", "--tagged"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(WarcReading(out).records, SizeIs(1)) << "nothing has a tick";
    const CliResult columns =
        cli({"export", project, (folder.path() / "a.warc").string(), "--columns", "id"});
    EXPECT_EQ(columns.exit, 1);
    EXPECT_THAT(columns.err, HasSubstr("warc has no columns of the table"));
    const CliResult printed = cli({"export", project, "-", "--format", "warc"});
    EXPECT_EQ(printed.exit, 0) << printed.err;
    const fs::path file = folder.write("printed.warc.gz", printed.out);
    EXPECT_EQ(WarcReading(file).problem, "");
}

TEST_F(WarcCliTest, contentsThatAreGoneAreTold) {
    fs::remove_all(evidence);
    fs::create_directories(evidence);
    const fs::path out = folder.path() / "gone.warc";
    const CliResult run = cli({"export", project, out.string()});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("answers stand without their content"));
    EXPECT_EQ(WarcReading(out).problem, "");
}

class PageFormsCliTest : public CliCase {
  protected:
    PageFormsCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.html", "page[1].htm",
                  "<html><title>Inbox</title><img src=\"pic/logo.gif\" ><img src=\"gone.gif\" >"
                  "<iframe src=\"http://live/f.html\"></iframe></html> ");
        addCached(index, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
        addCached(index, "http://host/other.gif", "other[1].gif", "GIF89b");
        import(index);
    }
    CliResult rebuild(std::vector<std::string> more) {
        std::vector<std::string> words{"rebuild", project,      "1",
                                       "--out",   out.string(), "--no-thumbnails"};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }

    fs::path out = folder.path() / "out";
};

TEST_F(PageFormsCliTest, aPageLeavesAsOneFile) {
    const CliResult run = rebuild({"--single"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 1);
    EXPECT_THAT(text(out / "0000001.html"),
                AllOf(HasSubstr("src=\"data:image/gif;base64,R0lGODlh\""), HasSubstr("Inbox"),
                      HasSubstr("default-src 'none'"), Not(HasSubstr("http://live"))));
    const CliResult refused = rebuild({"--single"});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_THAT(refused.err, HasSubstr("0000001.html\" is there already"));
    EXPECT_EQ(rebuild({"--single", "--overwrite"}).exit, 0);
}

TEST_F(PageFormsCliTest, aPageLeavesAsAnArchiveOfItsRecords) {
    const CliResult run = rebuild({"--warc", "--single"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 2);
    const WarcReading read(out / "0000001.warc.gz");
    ASSERT_EQ(read.problem, "");
    EXPECT_EQ(read.at("resource", "http://host/pic/logo.gif")["text"], "GIF89a");
    EXPECT_THAT(std::string(read.at("resource", "http://host/page.html")["text"]),
                HasSubstr("<title>Inbox</title><img src=\"pic/logo.gif\""))
        << "as it was cached, not as it was rebuilt";
    EXPECT_TRUE(read.at("resource", "http://host/other.gif").is_null());
    const CliResult alone = rebuild({"--warc", "--overwrite"});
    EXPECT_EQ(alone.exit, 0) << alone.err;
}

} // namespace
} // namespace nv::test
