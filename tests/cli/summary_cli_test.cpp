#include "cli/CliCase.h"
#include "support/SmallFiles.h"
#include "support/builders/MacCache.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <unistd.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class SummaryCliTest : public CliCase {
  protected:
    void write(const std::string &name, const std::string &bytes) const {
        fs::create_directories((evidence / name).parent_path());
        writeWhole(evidence / name, bytes);
    }
    void makeHistory() const {
        IndexDat index;
        index.add(
            {.url = "Visited: mara@http://a.example/", .secondDate = fileTime(2011, 3, 1, 12)});
        write("History.IE5/index.dat", index.bytes());
    }
    CliResult import(std::vector<std::string> more = {}) const {
        std::vector<std::string> words = {"import", project, evidence.string()};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }
    json summary(std::vector<std::string> more = {}) const {
        std::vector<std::string> words = {"summary", project, "--format", "json"};
        words.insert(words.end(), more.begin(), more.end());
        return json::parse(cli(words).out);
    }
    fs::path page = folder.path() / "summary.html";
};

TEST_F(SummaryCliTest, aWholeImportIsGreenAlsoLater) {
    makeHistory();
    EXPECT_EQ(import().exit, 0);
    const json told = summary();
    EXPECT_EQ(told["light"], "green");
    EXPECT_EQ(told["headline"], "1 record from 1 profile, 1 file read");
    EXPECT_EQ(told["files_found"], 1);
    EXPECT_EQ(told["all_imports"], false);
    EXPECT_THAT(cli({"summary", project}).out,
                HasSubstr("Complete. Everything that was found was read."));
}

TEST_F(SummaryCliTest, whatCouldNotBeReadIsTold) {
    makeHistory();
    write("Safari/Cookies.plist", std::string(64, 'x'));
    write("damaged/History.IE5/index.dat", "Client UrlCache MMF Ver 5.2" + std::string(200, '\0'));
    static_cast<void>(import());
    const json told = summary();
    EXPECT_NE(told["light"], "green");
    EXPECT_FALSE(told["not_read"].empty());
    for (const json &gap : told["not_read"])
        for (const char *key : {"file", "place", "state", "reason", "light"})
            EXPECT_FALSE(gap[key].get<std::string>().empty()) << key;
}

TEST_F(SummaryCliTest, aFileThatHasChangedBetweenTwoImportsIsRed) {
    makeHistory();
    EXPECT_EQ(import().exit, 0);
    IndexDat index;
    index.add({.url = "Visited: mara@http://b.example/"});
    index.add({.url = "Visited: mara@http://c.example/"});
    write("History.IE5/index.dat", index.bytes());
    EXPECT_EQ(import().exit, 0);
    const json told = summary();
    EXPECT_EQ(told["light"], "red");
    EXPECT_EQ(told["not_read"][0]["state"], "changed");
    EXPECT_EQ(told["rows"], 2);
    EXPECT_EQ(summary({"--all"})["rows"], 3);
}

TEST_F(SummaryCliTest, anEmptyFolder) {
    fs::create_directories(evidence);
    EXPECT_EQ(import().exit, 1);
    EXPECT_EQ(summary()["headline"], "Nothing was found to import");
}

TEST_F(SummaryCliTest, thePageIsWrittenByBothCommands) {
    makeHistory();
    EXPECT_EQ(import({"--summary", page.string()}).exit, 0);
    EXPECT_THAT(text(page), HasSubstr("1 record from 1 profile, 1 file read"));
    EXPECT_THAT(cli({"trail", project}).out, HasSubstr("Summary of the import saved"));
    EXPECT_EQ(cli({"summary", project, "--out", page.string()}).exit, 1) << "it is there";
    EXPECT_EQ(cli({"summary", project, "--out", page.string(), "--overwrite"}).exit, 0);
    EXPECT_EQ(cli({"verify", project}).exit, 0);
}

TEST_F(SummaryCliTest, thePageIsRefusedAmongEvidenceAndUnderAnotherName) {
    makeHistory();
    EXPECT_EQ(import({"--summary", (evidence / "summary.html").string()}).exit, 1);
    EXPECT_FALSE(fs::exists(evidence / "summary.html"));
    EXPECT_EQ(import().exit, 0);
    EXPECT_EQ(cli({"summary", project, "--out", (evidence / "summary.html").string()}).exit, 1);
    EXPECT_EQ(cli({"summary", project, "--out", (folder.path() / "summary.txt").string()}).exit, 1);
    EXPECT_EQ(cli({"summary", project, "--out", project, "--overwrite"}).exit, 1);
}

TEST_F(SummaryCliTest, anImportThatAFailureEndsHasARedPage) {
    makeHistory();
    constexpr std::size_t kLimit = std::size_t{8} << 20;
    MacCache cache;
    cache.add({.url = "http://host/large.html", .body = "<html>" + std::string(kLimit, 'x')});
    write("cache.waf", cache.bytes());
    const CliResult run = [&] {
        const SmallFiles limit(kLimit);
        return cli({"import", project, (evidence / "cache.waf").string(), "--as", "mac-cache",
                    "--summary", page.string()});
    }();
    EXPECT_EQ(run.exit, 3) << run.err;
    EXPECT_THAT(text(page), HasSubstr("Failed or changed"));
    EXPECT_THAT(text(page), HasSubstr("The import ended: "));
    EXPECT_THAT(run.err, Not(HasSubstr("No summary")));
}

TEST_F(SummaryCliTest, aPageThatCanNotBeWrittenIsToldAndTheImportIsKept) {
    makeHistory();
    const CliResult run = import({"--summary", (folder.path() / "none" / "s.html").string()});
    EXPECT_NE(run.exit, 0);
    EXPECT_THAT(run.err, HasSubstr("No summary was written to"));
    EXPECT_EQ(summary()["rows"], 1);
}

TEST_F(SummaryCliTest, anImportThatIsCancelledHasAnAmberPageWithItsCounts) {
    fs::create_directories(evidence / "Chrome");
    SQLite::Database((evidence / "Chrome" / "History").string(),
                     SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE urls(id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR, "
              "visit_count INTEGER, last_visit_time INTEGER, hidden INTEGER); "
              "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) "
              "INSERT INTO urls SELECT i, 'http://host.example/' || i, 'Page', 1, "
              "12946651391000000 + i, 0 FROM n");
    CliProcess import({"import", project, evidence.string(), "--summary", page.string()},
                      folder.path() / "home");
    while (!fs::exists(project) || fs::file_size(project) < 100'000)
        ::usleep(10'000);
    ::usleep(700'000);
    import.signal(SIGINT);
    ASSERT_EQ(import.finish().exit, 130);
    EXPECT_THAT(text(page), HasSubstr("Not complete"));
    EXPECT_THAT(text(page), HasSubstr("The import was cancelled"));
    EXPECT_THAT(text(page), Not(HasSubstr("not counted")));
}

TEST_F(SummaryCliTest, theWordsOfTheImportStayAsTheyWere) {
    makeHistory();
    const CliResult run = import();
    EXPECT_THAT(run.out, HasSubstr("1 row from 1 of 1 artefact; 0 entries not reached, 0 records "
                                   "passed over"));
    EXPECT_THAT(run.err, Not(HasSubstr("left")));
}

} // namespace
} // namespace nv::test
