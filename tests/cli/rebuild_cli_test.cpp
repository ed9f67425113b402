#include "cli/CliCase.h"
#include "support/Places.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;

/// A cache of a page (row 1) and its picture (row 2), imported.
class RebuildCliTest : public CliCase {
  protected:
    RebuildCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(
            index, "http://host/page.html", "page[1].htm",
            "<html><title>Inbox</title><img src=\"pic/logo.gif\" ><img src=\"gone.gif\" ></html> ");
        addCached(index, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
        import(index);
    }

    fs::path out = folder.path() / "out";
};

TEST_F(RebuildCliTest, aPageIsHandedOverWithItsParts) {
    const CliResult run = cli({"rebuild", project, "1", "--out", out.string()});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("2 tags found, 1 replaced, 1 missing"), std::string::npos) << run.out;
    EXPECT_NE(text(out / "0000001.NVR" / "0000001.htm").find("src=\"0000002.gif\""),
              std::string::npos);
    EXPECT_EQ(text(out / "0000001.NVR" / "0000002.gif"), "GIF89a");
    const CliResult audit = cli({"audit", project, "1", "--format", "tsv"});
    EXPECT_EQ(audit.exit, 0) << audit.err;
    EXPECT_NE(audit.out.find("pic/logo.gif\t0000002.gif\tgif\t0000002.gif\t2"), std::string::npos)
        << audit.out;
    EXPECT_NE(audit.out.find("Missing or Invalid Tag"), std::string::npos) << audit.out;
}

TEST_F(RebuildCliTest, aPageThatIsNamedTwiceIsRebuiltOnce) {
    const CliResult run =
        cli({"rebuild", project, "1", "1", "--out", out.string(), "--no-thumbnails"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("1 of 1 page rebuilt"), std::string::npos) << run.out;
    EXPECT_TRUE(fs::exists(out / "0000001.NVR" / "0000001.htm"));
}

TEST_F(RebuildCliTest, aFileInPlaceOfTheFolderIsToldBeforeAnythingIsRebuilt) {
    writeWhole(out, "mine");
    for (const char *last : {"--no-thumbnails", "--overwrite"}) {
        const CliResult run = cli({"rebuild", project, "1", "--out", out.string(), last});
        EXPECT_EQ(run.exit, 1) << run.err;
        EXPECT_NE(run.err.find("a folder was expected"), std::string::npos) << run.err;
        EXPECT_EQ(text(out), "mine");
    }
    EXPECT_NE(cli({"audit", project, "1"}).err.find("was not rebuilt"), std::string::npos);
}

TEST_F(RebuildCliTest, aPageThatIsHandedOverReachesNothing) {
    IndexDat index;
    index.folder("ABCDEFGH");
    addCached(index, "http://host/page.html", "page[1].htm",
              "<html><link rel=stylesheet href=http://live/a.css><meta http-equiv=refresh "
              "content='0;url=http://live/'><script src=\"http://live/a.js\"></script>"
              "<iframe src=\"http://live/f.html\"></iframe><img src=\"pic/logo.gif\" >"
              "<p style='background:u\\72l(http://live/b.gif)'>Good morning</html> ");
    addCached(index, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
    project = (folder.path() / "other.nvp").string();
    import(index);
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string(), "--no-thumbnails"}).exit, 0);
    const std::string page = text(out / "0000001.NVR" / "0000001.htm");
    EXPECT_EQ(page.find("live"), std::string::npos) << page;
    EXPECT_NE(page.find("default-src 'none'"), std::string::npos) << page;
    EXPECT_NE(page.find("Good morning"), std::string::npos) << page;
    EXPECT_NE(page.find("src=\"0000002.gif\""), std::string::npos) << page;
}

TEST_F(RebuildCliTest, pagesAreChosenByIdTickOrAll) {
    EXPECT_EQ(cli({"rebuild", project, "--out", out.string()}).exit, 1);
    EXPECT_EQ(cli({"rebuild", project, "1", "--tagged", "--out", out.string()}).exit, 1);
    const CliResult none = cli({"rebuild", project, "--tagged", "--out", out.string()});
    EXPECT_NE(none.out.find("0 of 0"), std::string::npos);
    EXPECT_EQ(none.exit, 2);
    EXPECT_EQ(cli({"tag", project, "--where", "URL LIKE '%.html'"}).exit, 0);
    EXPECT_NE(cli({"rebuild", project, "--tagged", "--out", out.string()}).out.find("1 of 1"),
              std::string::npos);
    const fs::path other = folder.path() / "other";
    EXPECT_NE(cli({"rebuild", project, "--all-pages", "--out", other.string()}).out.find("1 of 1"),
              std::string::npos);
}

TEST_F(RebuildCliTest, aPageIsRebuiltExactlyWhenAsked) {
    const auto rebuild = [this](std::vector<std::string> more) {
        std::vector<std::string> all{"rebuild",     project,          "1", "--out", out.string(),
                                     "--overwrite", "--no-thumbnails"};
        all.insert(all.end(), more.begin(), more.end());
        return cli(all);
    };
    EXPECT_EQ(rebuild({"--choose", "1=2"}).exit, 1); // its references have no numbers yet
    const CliResult run = rebuild({"--method", "exact"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("2 tags found, 1 replaced, 1 missing"), std::string::npos) << run.out;
    EXPECT_EQ(text(out / "0000001.NVR" / "0000002.gif"), "GIF89a");
    const auto audit = [this] { return cli({"audit", project, "1", "--format", "jsonl"}); };
    const std::string told = audit().out;
    EXPECT_NE(told.find("\"score\":\"1:1\",\"URL\":\"http://host/pic/logo.gif\",\"other "
                        "candidates\":\"\",\"document\":1,\"element\":\"img\",\"attribute\":"
                        "\"src\",\"address\":\"http://host/pic/logo.gif\",\"rule\":\"exact "
                        "address\",\"date\":\"2011-03-01T"),
              std::string::npos)
        << told;
    EXPECT_NE(told.find("\"SHA-256\":\"610f5ae4d76e"), std::string::npos) << told;
    EXPECT_NE(told.find("\"cache\":\"Internet Explorer"), std::string::npos) << told;
    EXPECT_NE(told.find("Marked place: not in any cache"), std::string::npos) << told;
    EXPECT_EQ(rebuild({"--method", "exact", "--choose", "2=2"}).exit, 0);
    EXPECT_NE(audit().out.find("\"rule\":\"chosen by the examiner\""), std::string::npos);
    EXPECT_EQ(rebuild({"--method", "exact"}).exit, 0); // the choice is kept
    EXPECT_NE(audit().out.find("\"rule\":\"chosen by the examiner\""), std::string::npos);
    EXPECT_EQ(rebuild({"--method", "exact", "--choose", "http://host/gone.gif=auto", "--choose",
                       "1=none"})
                  .exit,
              0);
    EXPECT_NE(audit().out.find("left out by the examiner"), std::string::npos);
    EXPECT_EQ(audit().out.find("chosen by the examiner"), std::string::npos);
    for (const char *wrong : {"1", "=2", "9=2", "0=2", "1=x", "1=99"})
        EXPECT_EQ(rebuild({"--choose", wrong}).exit, 1) << wrong;
    EXPECT_EQ(rebuild({"--method", "other"}).exit, 1);
    EXPECT_EQ(rebuild({"2", "--choose", "1=2"}).exit, 1); // of which page?
    EXPECT_EQ(rebuild({"--method", "auto"}).exit, 0);     // its cache isn't one of today's
    EXPECT_EQ(audit().out.find("\"rule\""), std::string::npos);
}

TEST_F(RebuildCliTest, theSettingSaysHowPagesAreRebuilt) {
    ASSERT_EQ(cli({"options", "set", "RebuildMethod", "exact"}).exit, 0);
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string(), "--no-thumbnails"}).exit, 0);
    EXPECT_NE(cli({"audit", project, "1"}).out.find("exact address"), std::string::npos);
    EXPECT_EQ(cli({"options", "set", "RebuildMethod", "other"}).exit, 1);
}

TEST_F(RebuildCliTest, aFolderThatIsThereIsReplacedOnlyWhenAsked) {
    const fs::path own = out / "0000001.NVR" / "my notes.txt";
    fs::create_directories(own.parent_path());
    writeWhole(own, "the examiner's");
    const CliResult refused = cli({"rebuild", project, "1", "--out", out.string()});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_NE(refused.err.find("0000001.NVR\" is there already; --overwrite replaces"),
              std::string::npos)
        << refused.err;
    EXPECT_EQ(text(own), "the examiner's");
    EXPECT_EQ(cli({"audit", project, "1"}).exit, 1); // nothing was rebuilt
    const CliResult run = cli({"rebuild", project, "1", "--out", out.string(), "--overwrite"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_FALSE(fs::exists(own));
    EXPECT_EQ(text(out / "0000001.NVR" / "0000002.gif"), "GIF89a");
    EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 1);
}

TEST_F(RebuildCliTest, whenNothingWasRebuiltTheExitTellsIt) {
    const CliResult run = cli({"rebuild", project, "2", "--out", out.string()}); // a picture
    EXPECT_EQ(run.exit, 2);
    EXPECT_NE(run.out.find("0 of 1 page rebuilt"), std::string::npos) << run.out;
    EXPECT_EQ(cli({"rebuild", project, "1", "2", "--out", out.string()}).exit, 0);
}

TEST_F(RebuildCliTest, theAuditTellsScoreCandidatesAndWhatIsReplaced) {
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string()}).exit, 0);
    const CliResult audit = cli({"audit", project, "1", "--format", "jsonl"});
    EXPECT_NE(audit.out.find("\"replaced\":true,\"score\":\"1:1\",\"URL\":"
                             "\"http://host/pic/logo.gif\",\"other candidates\":\"\""),
              std::string::npos)
        << audit.out;
    EXPECT_NE(audit.out.find("\"replaced\":false,\"score\":\"0:0\",\"URL\":\"\""),
              std::string::npos)
        << audit.out;
}

TEST_F(RebuildCliTest, anAuditThatCannotBeMadeIsNoEmptyTable) {
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string()}).exit, 0);
    ASSERT_EQ(cli({"tag", project, "1"}).exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET IngredientIDs = replace(IngredientIDs, '2|', '40002|') "
              "WHERE URL_ID = 1");
    ASSERT_EQ(cli({"options", "set", "WideRecordIds", "False"}).exit, 0);
    const CliResult audit = cli({"audit", project, "1"});
    EXPECT_EQ(audit.exit, 1);
    EXPECT_EQ(audit.out, "");
    EXPECT_NE(audit.err.find("a part has an id above 32767"), std::string::npos) << audit.err;
    EXPECT_EQ(cli({"audit", project, "1", "--wide-ids"}).exit, 0);
    const CliResult made = cli({"template", "create", project, "1", "--folder", out.string()});
    EXPECT_EQ(made.exit, 1);
    EXPECT_NE(made.err.find("a part has an id above 32767"), std::string::npos) << made.err;
    const fs::path pages = folder.path() / "report";
    const CliResult report =
        cli({"report", project, "--type", "graphical", "--tagged", "--out", pages.string()});
    EXPECT_EQ(report.exit, 2);
    EXPECT_NE(report.err.find("1 rebuilt page could not be brought with all parts"),
              std::string::npos)
        << report.err;
}

TEST_F(RebuildCliTest, anAuditWhoseNotesCannotBeReadFails) {
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string()}).exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("DROP TABLE RebuildAudit; CREATE TABLE RebuildAudit (URL_ID INTEGER)");
    const CliResult audit = cli({"audit", project, "1"});
    EXPECT_EQ(audit.exit, 3);
    EXPECT_EQ(audit.out, "");
    EXPECT_NE(audit.err.find("the audit can't be read"), std::string::npos) << audit.err;
}

TEST_F(RebuildCliTest, nothingIsWrittenIntoTheEvidence) {
    const CliResult run = cli({"rebuild", project, "1", "--out", (evidence / "out").string()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_FALSE(fs::exists(evidence / "out"));
}

TEST_F(RebuildCliTest, ticksAreSetAndTakenAway) {
    EXPECT_NE(cli({"tag", project, "1", "2"}).out.find("2 rows ticked"), std::string::npos);
    EXPECT_NE(cli({"tag", project, "1", "--off"}).out.find("1 row unticked"), std::string::npos);
    EXPECT_NE(cli({"query", project, "SELECT Count(*) FROM URLs WHERE Tagged"}).out.find("1"),
              std::string::npos);
    EXPECT_EQ(cli({"tag", project, "99"}).exit, 1);
    EXPECT_EQ(cli({"tag", project, "4294967297"}).exit, 1); // 2^32 + 1 is not row 1
    EXPECT_EQ(cli({"tag", project}).exit, 1);
    EXPECT_EQ(cli({"tag", project, "--where", "1); DELETE FROM URLs; --"}).exit, 1);
    EXPECT_NE(cli({"query", project, "SELECT Count(*) FROM URLs"}).out.find("2"),
              std::string::npos);
}

TEST_F(RebuildCliTest, thumbnailsAreDrawnAnewOrToldOf) {
    const bool draws = fs::exists(cliProgram().parent_path() / "norvelane-draw");
    const fs::path drawn = out / "0000001.NVR" / "~0000001.thumbnail.jpg";
    const CliResult off = cli({"rebuild", project, "1", "--out", out.string(), "--no-thumbnails"});
    EXPECT_EQ(off.exit, 0);
    EXPECT_EQ((off.out + off.err).find("thumbnail"), std::string::npos) << off.out << off.err;
    EXPECT_FALSE(fs::exists(drawn));
    const CliResult run = cli({"rebuild", project, "1", "--out", out.string(), "--overwrite"});
    EXPECT_EQ(run.exit, 0) << run.err; // the page is rebuilt either way
    EXPECT_EQ(fs::exists(drawn), draws);
    if (draws)
        EXPECT_NE(run.out.find("1 thumbnail drawn anew"), std::string::npos) << run.out;
    else
        EXPECT_NE(run.err.find("1 thumbnail could not be drawn; see"), std::string::npos)
            << run.err;
}

TEST_F(RebuildCliTest, aTemplateIsMadeListedAndLaidOver) {
    EXPECT_EQ(cli({"template", "create", project, "1"}).exit, 1); // not rebuilt yet
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", out.string()}).exit, 0);
    const CliResult made = cli({"template", "create", project, "1"});
    EXPECT_EQ(made.exit, 0) << made.out << made.err;
    EXPECT_EQ(cli({"template", "create", project, "1"}).exit, 1); // it is there
    EXPECT_EQ(cli({"template", "create", project, "1", "--overwrite"}).exit, 0);
    EXPECT_NE(cli({"template", "list"}).out.find("Inbox"), std::string::npos);
    const std::string file = made.out.substr(0, made.out.find("  "));
    EXPECT_EQ(cli({"template", "apply", project, file, "2"}).exit, 2); // another title
    EXPECT_EQ(cli({"template", "apply", project, file, "2", "--any-title"}).exit, 0);
    EXPECT_EQ(cli({"template", "apply", project, file, "--tag", "Mail"}).exit, 1) << "no such tag";
    ASSERT_EQ(cli({"tag", project, "2", "--name", "Mail"}).exit, 0);
    EXPECT_EQ(cli({"template", "apply", project, file, "--tag", "mail", "--any-title"}).exit, 0);
    EXPECT_EQ(cli({"template", "apply", project, file, "2", "--tag", "Mail"}).exit, 1);
    EXPECT_EQ(cli({"template", "apply", project, file}).exit, 1);
    EXPECT_EQ(cli({"audit", project, "2"}).exit, 0);
    const fs::path laid = folder.path() / "laid";
    const auto apply = [&](std::vector<std::string> more) {
        std::vector<std::string> all{"template", "apply", project, file, "2", "--any-title"};
        all.insert(all.end(), more.begin(), more.end());
        return cli(all);
    };
    EXPECT_EQ(apply({"--out", (evidence / "laid").string()}).exit, 1);
    const CliResult handed = apply({"--out", laid.string()});
    EXPECT_EQ(handed.exit, 0) << handed.err;
    EXPECT_NE(text(laid / "0000002.NVR" / "0000002.htm").find("src=\"0000002.gif\""),
              std::string::npos);
    EXPECT_EQ(text(laid / "0000002.NVR" / "0000002.gif"), "GIF89a");
    EXPECT_EQ(apply({"--out", laid.string()}).exit, 1);
    EXPECT_EQ(apply({"--out", laid.string(), "--overwrite"}).exit, 0);
}

} // namespace
} // namespace nv::test
