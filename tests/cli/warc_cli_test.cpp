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
        cli({"export", project, (folder.path() / "a.warc").string(), "--columns", "COL_URL_ID"});
    EXPECT_EQ(columns.exit, 1);
    EXPECT_THAT(columns.err, HasSubstr("holds contents"));
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

} // namespace
} // namespace nv::test
