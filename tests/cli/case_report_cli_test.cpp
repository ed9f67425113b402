#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// A cache of a page (row 1), its picture (row 2) and a page of another host (row 3).
class CaseReportCliTest : public CliCase {
  protected:
    CaseReportCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.html", "page[1].htm",
                  "<html><title>Inbox</title><img src=\"pic/logo.gif\" ></html> ");
        addCached(index, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
        addCached(index, "http://tide.example/low", "low[1].htm", "<html>Low water</html> ");
        import(index);
    }
    CliResult report(const std::vector<std::string> &more = {}) {
        std::vector<std::string> all{"report", project, "--type", "case", "--out", out.string()};
        all.insert(all.end(), more.begin(), more.end());
        return cli(all);
    }
    std::string all() const {
        std::string bytes;
        for (const auto &entry : fs::recursive_directory_iterator(out))
            if (entry.is_regular_file())
                bytes += text(entry.path());
        return bytes;
    }

    fs::path out = folder.path() / "out";
};

TEST_F(CaseReportCliTest, aCaseReportIsHandedOver) {
    const CliResult run = report({"--cards", "all", "--case-number", "17", "--trail"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("3 rows reported, "));
    EXPECT_THAT(run.out, HasSubstr("index.htm"));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("<dt>Case</dt><dd>17</dd>"));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("index.dat"));
    EXPECT_THAT(text(out / "cache.csv"), HasSubstr("http://tide.example/low"));
    EXPECT_THAT(text(out / "files.csv"), HasSubstr("index.htm,"));
    EXPECT_TRUE(fs::exists(out / "cards-1.htm"));
    EXPECT_EQ(report().exit, 1); // the folder is not empty
    EXPECT_EQ(report({"--overwrite"}).exit, 0);
    EXPECT_FALSE(fs::exists(out / "cards-1.htm"));
    EXPECT_THAT(cli({"trail", project, "--format", "jsonl"}).out,
                HasSubstr("Case report of 3 rows"));
}

TEST_F(CaseReportCliTest, missingEvidenceIsNoSuccess) {
    const CliResult whole = report({"--cards", "all"});
    EXPECT_EQ(whole.exit, 0) << whole.err;
    EXPECT_THAT(text(out / "index.htm"), Not(HasSubstr("could not be read")));
    fs::remove_all(evidence / "ABCDEFGH");
    const CliResult run = report({"--cards", "all", "--overwrite"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr("3 cached files could not be read; their cards say so."));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("3 cached files could not be read"));
    const CliResult graphical =
        cli({"report", project, "--type", "graphical", "--out", out.string(), "--overwrite"});
    EXPECT_EQ(graphical.exit, 2);
    EXPECT_THAT(graphical.err, HasSubstr("3 cached files could not be read"));
}

TEST_F(CaseReportCliTest, rowsAreChosenBySeveralTags) {
    ASSERT_EQ(cli({"tag", project, "1", "--name", "Important"}).exit, 0);
    ASSERT_EQ(cli({"tag", project, "1", "3", "--name", "Later"}).exit, 0);
    EXPECT_THAT(report({"--tag", "important"}).out, HasSubstr("1 row reported"));
    EXPECT_THAT(report({"--tag", "Important", "--tag", "Later", "--overwrite", "--remember"}).out,
                HasSubstr("2 rows reported"));
    EXPECT_THAT(text(out / "index.htm"),
                HasSubstr("one of the tags &quot;Important&quot;, &quot;Later&quot;"));
    EXPECT_THAT(report({"--overwrite"}).out, HasSubstr("3 rows reported"))
        << "only the window offers what was chosen last";
    EXPECT_EQ(report({"--tag", "Important", "--tag", "None", "--overwrite"}).exit, 1);
    EXPECT_EQ(cli({"list", "--tag", "Important", project, "--tag", "Later", "--columns", "id",
                   "--format", "tsv"})
                  .out,
              "id\n1\n3\n");
}

TEST_F(CaseReportCliTest, rowsAreChosenBySearchAndSpan) {
    EXPECT_THAT(report({"--search", "tide"}).out, HasSubstr("1 row reported"));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("the search &quot;tide&quot;"));
    EXPECT_THAT(report({"--from", "2011-03-02", "--overwrite"}).out, HasSubstr("0 rows reported"));
    EXPECT_THAT(report({"--to", "2011-03-01", "--overwrite"}).out, HasSubstr("3 rows reported"));
    EXPECT_EQ(report({"--from", "yesterday", "--overwrite"}).exit, 1);
    EXPECT_EQ(report({"--from", "2012-01-01", "--to", "2011-01-01", "--overwrite"}).exit, 1);
    ASSERT_EQ(cli({"search", project, "Inbox", "--keep", "Letters"}).exit, 0);
    EXPECT_THAT(report({"--query", "Letters", "--overwrite"}).out, HasSubstr("1 row reported"));
}

TEST_F(CaseReportCliTest, whatIsRedactedIsntHandedOver) {
    const CliResult run = report(
        {"--leave-out", "host=tide.example", "--blur", "value=logo", "--cards", "all", "--trail"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("2 rows reported"));
    EXPECT_THAT(all(), Not(HasSubstr("tide.example")));
    EXPECT_THAT(all(), Not(HasSubstr("logo.gif")));
    EXPECT_THAT(all(), Not(HasSubstr("Low water")));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("<dt>Rows left out</dt><dd>1</dd>"));
    fs::remove_all(out);
    EXPECT_EQ(report({"--blur", "value=ab"}).exit, 1);
    EXPECT_EQ(report({"--leave-out", "room=12"}).exit, 1);
    const CliResult classic = cli(
        {"report", project, "--type", "tabular", "--out", out.string(), "--blur", "value=logo"});
    EXPECT_EQ(classic.exit, 1);
    EXPECT_THAT(classic.err, HasSubstr("--type case"));
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(CaseReportCliTest, aPartOfAHostsNameIsToldToBeNoHost) {
    const CliResult run = report({"--leave-out", "host=tide", "--blur", "host=tide.example"});
    EXPECT_EQ(run.exit, 2) << run.err;
    EXPECT_THAT(run.err, HasSubstr("no row is of the host \"tide\": only the words are redacted"));
    EXPECT_THAT(run.err, HasSubstr("tide.example"));
    EXPECT_THAT(run.err, Not(HasSubstr("of the host \"tide.example\"")));
}

TEST_F(CaseReportCliTest, choicesAreKeptWithTheProjectAlone) {
    ASSERT_EQ(report({"--case-number", "2011-17", "--reported-by", "M. Quill", "--blur",
                      "value=tide", "--remember"})
                  .exit,
              0);
    ASSERT_EQ(report({"--overwrite"}).exit, 0);
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("<dd>2011-17</dd>"));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("<dd>M. Quill</dd>"));
    EXPECT_THAT(all(), Not(HasSubstr("tide.example")));
    ASSERT_EQ(report({"--overwrite", "--no-redactions"}).exit, 0);
    EXPECT_THAT(all(), HasSubstr("tide.example"));
    project = (folder.path() / "other.nvp").string();
    ASSERT_EQ(cli({"import", project, evidence.string(), "--kinds", "ie-cache"}).exit, 0);
    ASSERT_EQ(report({"--overwrite"}).exit, 0);
    EXPECT_THAT(text(out / "index.htm"), Not(HasSubstr("2011-17")));
    EXPECT_THAT(text(out / "index.htm"), Not(HasSubstr("M. Quill")));
    EXPECT_THAT(all(), HasSubstr("tide.example"));
}

TEST_F(CaseReportCliTest, aMediumThatCantBeWrittenIsReported) {
    ASSERT_EQ(report({"--blur", "value=tide", "--remember"}).exit, 0);
    fs::remove_all(out);
    fs::permissions(project, fs::perms::owner_read);
    const CliResult run = report({"--remember"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(all(), Not(HasSubstr("tide.example")));
}

TEST_F(CaseReportCliTest, aRedactionThatNothingFitsIsToldOfWhateverKind) {
    const CliResult run = report({"--leave-out", "host=tide.exampel", "--blur", "person=maara",
                                  "--blur", "value=Lowwater", "--blur", "picture=99"});
    EXPECT_EQ(run.exit, 2) << "who hands it over by a script has to hear of it";
    EXPECT_THAT(run.err, HasSubstr("no row is of the host \"tide.exampel\": only the words are "
                                   "redacted; there are: tide.example (1)"));
    EXPECT_THAT(run.err, HasSubstr("no row is of the person \"maara\""));
    EXPECT_THAT(run.err, HasSubstr("there is no row 99"));
    EXPECT_THAT(run.err,
                HasSubstr("nothing in the report fits \"leave out host=tide.exampel\", \"blur "
                          "person=maara\", \"blur value=Lowwater\", \"blur picture=99\""));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("Nothing was redacted. Chosen were"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("nothing was redacted; nothing fits 1 host, 1 person, 1 value, 1 pict"));
    EXPECT_EQ(report({"--overwrite", "--blur", "value=tide.example"}).exit, 0);
}

} // namespace
} // namespace nv::test
