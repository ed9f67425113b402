#include "base/Digest.h"
#include "base/Files.h"
#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class TrailCliTest : public testing::Test {
  protected:
    TrailCliTest() {
        IndexDat index;
        index.add({.url = "Visited: mara@http://a.example/"});
        fs::create_directories(evidence);
        writeWhole(evidence / "index.dat", index.bytes());
        EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
    }
    CliResult cli(std::vector<std::string> arguments) {
        return runCli(arguments, folder.path() / "home");
    }

    TempFolder folder;
    fs::path evidence = folder.path() / "History.IE5";
    std::string project = (folder.path() / "case.nvp").string();
};

TEST_F(TrailCliTest, anImportIsInTheTrail) {
    const CliResult trail = cli({"trail", project, "--format", "jsonl"});
    EXPECT_EQ(trail.exit, 0) << trail.err;
    EXPECT_THAT(trail.out, HasSubstr(R"("Action":"Import","Detail":"ie-)"));
    EXPECT_THAT(trail.out, HasSubstr((evidence / "index.dat").string()));
    EXPECT_THAT(trail.out, HasSubstr(R"("SHA256Hash":")"));
}

TEST_F(TrailCliTest, verifyTellsWhetherEvidenceIsAsItWas) {
    EXPECT_EQ(cli({"verify", project}).exit, 0);
    writeWhole(evidence / "index.dat", "something else");
    const CliResult changed = cli({"verify", project, "--format", "tsv"});
    EXPECT_EQ(changed.exit, 2);
    EXPECT_THAT(changed.out, HasSubstr("changed\t"));
    EXPECT_THAT(changed.err, HasSubstr("0 of 1 imported files are as they were, 1 changed."));
    fs::remove(evidence / "index.dat");
    EXPECT_THAT(cli({"verify", project}).out, HasSubstr("gone"));
    EXPECT_THAT(cli({"trail", project}).out, HasSubstr("Verify"));
}

TEST_F(TrailCliTest, whatIsWrittenIsInTheTrail) {
    const fs::path out = folder.path() / "report";
    const fs::path file = folder.path() / "rows.csv";
    EXPECT_EQ(cli({"export", project, file.string()}).exit, 0);
    EXPECT_EQ(cli({"report", project, "--type", "tabular", "--out", out.string(), "--trail"}).exit,
              0);
    EXPECT_EQ(cli({"rebuild", project, "1", "--out", (folder.path() / "pages").string()}).exit, 2)
        << "the visit has no page";
    const std::string trail = cli({"trail", project, "--format", "jsonl"}).out;
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Export","Detail":"1 row exported as csv")"));
    EXPECT_THAT(trail, HasSubstr(hashesOfFile(file).value().sha256));
    EXPECT_THAT(
        trail,
        HasSubstr(
            R"("Action":"Report","Detail":"Tabular report of 1 row (all rows); in the program's)"));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Publish")"));
    EXPECT_THAT(trail, HasSubstr(R"(:"index-history.htm")")) << "no folder that is gone later";
    EXPECT_THAT(trail, HasSubstr(hashesOfFile(out / "index-history.htm").value().sha256));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Rebuild","Detail":"0 of 1 page rebuilt")"));
    const Bytes page = readWhole(out / "index-history.htm");
    EXPECT_THAT(std::string(ByteView(page).raw()), HasSubstr("1 row exported as csv"));
}

TEST_F(TrailCliTest, notesTicksAndSearchesAreInTheTrail) {
    EXPECT_EQ(cli({"note", project, "1", "seen by two"}).exit, 0);
    EXPECT_EQ(cli({"note", project, "1", "--delete"}).exit, 0);
    EXPECT_EQ(cli({"tag", project, "1"}).exit, 0);
    EXPECT_EQ(cli({"tag", project, "--where", "Visits > -5", "--off"}).exit, 0);
    EXPECT_EQ(cli({"search", project, "a.example"}).exit, 0);
    const fs::path list = folder.path() / "terms.txt";
    writeWhole(list, "example\n");
    EXPECT_EQ(cli({"keywords", project, list.string()}).exit, 0);
    const std::string trail = cli({"trail", project, "--format", "jsonl"}).out;
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Note","Detail":"row 1: note of 11 characters)"));
    EXPECT_THAT(trail, testing::Not(HasSubstr("seen by two")));
    EXPECT_THAT(trail, HasSubstr("row 1: note taken away"));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Tag","Detail":"tick set on 1 row: URL_ID 1")"));
    EXPECT_THAT(trail, HasSubstr("tick taken from 1 row: Visits > -5"));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Search","Detail":"1 row found by \"a.example\"")"));
    EXPECT_THAT(trail,
                HasSubstr(R"("Action":"Keywords","Detail":"1 of 1 term found in 1 of 1 row")"));
    EXPECT_THAT(cli({"verify", project}).err, HasSubstr("The case trail is whole"));
}

TEST_F(TrailCliTest, whatIsDoneWithTagsIsInTheTrail) {
    EXPECT_EQ(cli({"tag", project, "1", "--name", "Harbour"}).exit, 0);
    EXPECT_EQ(cli({"tags", "change", project, "Harbour", "--name", "Quay", "--color", "#0f6cbd",
                   "--note", "seen by two"})
                  .exit,
              0);
    EXPECT_EQ(cli({"tags", "change", project, "Quay", "--name", "Quay"}).exit, 0);
    EXPECT_EQ(cli({"tags", "delete", project, "Quay"}).exit, 0);
    const std::string trail = cli({"trail", project, "--format", "jsonl"}).out;
    EXPECT_THAT(
        trail,
        HasSubstr(R"("Action":"Tag","Detail":"tag \"Harbour\" changed: name \"Quay\", colour )"
                  R"(#0f6cbd instead of #d13438, note of 11 characters written, SHA-256 )"));
    EXPECT_THAT(trail,
                HasSubstr(R"("Action":"Tag","Detail":"tag \"Quay\" deleted: 1 row had it")"));
    EXPECT_THAT(trail, testing::Not(HasSubstr("seen by two")));
    EXPECT_THAT(trail, testing::Not(HasSubstr(R"(tag \"Quay\" changed)"))) << "nothing was";
}

TEST_F(TrailCliTest, whatRowsHaveNotedOfATagIsInTheTrail) {
    const auto hashOf = [](std::string_view text) {
        Digest digest(DigestAlgorithm::sha256);
        digest.add(text);
        return digest.takeHex();
    };
    const auto entries = [this] { return cli({"trail", project, "--format", "jsonl"}).out; };
    const auto tag = [this](const std::string &note) {
        EXPECT_EQ(cli({"tag", project, "1", "--name", "Harbour", "--note", note}).exit, 0);
    };
    tag("seen by two");
    EXPECT_THAT(entries(), HasSubstr(R"("Action":"Note","Detail":"tag \"Harbour\" of 1 row: note )"
                                     R"(of 11 characters written, SHA-256 )" +
                                     hashOf("seen by two") + ": URL_ID 1\""));
    tag("seen by one");
    EXPECT_THAT(entries(), HasSubstr(hashOf("seen by one") + ": URL_ID 1"));
    const std::string before = entries();
    tag("seen by one");
    EXPECT_EQ(entries(), before) << "nothing has changed";
    EXPECT_EQ(cli({"tag", project, "1", "--name", "Harbour", "--remove"}).exit, 0);
    EXPECT_THAT(entries(), HasSubstr(R"(tag \"Harbour\" of 1 row: note taken away: URL_ID 1)"));
    EXPECT_THAT(entries(), testing::Not(HasSubstr("seen by")));
}

TEST_F(TrailCliTest, reportsTellWhichRowsAndHowMuchWasRedacted) {
    const std::string out = (folder.path() / "report").string();
    EXPECT_EQ(cli({"report", project, "--type", "case", "--out", out, "--host", "a.example",
                   "--blur", "host=a.example", "--blur", "person=mara", "--leave-out",
                   "value=lowtide", "--remember"})
                  .exit,
              2)
        << "the value is nowhere";
    const std::string trail = cli({"trail", project, "--format", "jsonl"}).out;
    EXPECT_THAT(trail,
                HasSubstr(R"("Detail":"Choices for reports kept with the project: redactions )"
                          R"(chosen: leave out 1 value; blur 1 host, 1 person")"));
    EXPECT_THAT(trail, HasSubstr("Case report of "));
    EXPECT_THAT(trail, HasSubstr(R"(the host \"[redacted]\")"));
    EXPECT_THAT(trail,
                HasSubstr("; redactions chosen: leave out 1 value; blur 1 host, 1 person ("));
    EXPECT_THAT(trail, HasSubstr("; nothing fits 1 value); in the"));
    EXPECT_THAT(trail, testing::Not(HasSubstr("lowtide")));
    EXPECT_THAT(trail, testing::Not(HasSubstr("a.example")));
    EXPECT_EQ(
        cli({"report", project, "--type", "case", "--out", out, "--overwrite", "--no-redactions"})
            .exit,
        0);
    EXPECT_THAT(cli({"trail", project, "--format", "jsonl"}).out,
                HasSubstr("(all rows); nothing redacted; in the"));
}

TEST_F(TrailCliTest, aTrailWithoutItsHashesOrItsTableIsBroken) {
    for (const char *forgery : {"UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL",
                                "DELETE FROM AuditTrail; "
                                "DELETE FROM sqlite_sequence WHERE name = 'AuditTrail'",
                                "DROP TABLE AuditTrail"}) {
        SQLite::Database(project, SQLite::OPEN_READWRITE)
            .exec(std::string("DROP TRIGGER IF EXISTS AuditTrail_NoUpdate; "
                              "DROP TRIGGER IF EXISTS AuditTrail_NoDelete; ") +
                  forgery);
        for (int time = 0; time < 2; ++time) { // its own entry doesn't hide it
            const CliResult run = cli({"verify", project});
            EXPECT_EQ(run.exit, 2) << forgery;
            EXPECT_THAT(run.err, HasSubstr(time == 0 ? "The case trail is broken: entry 1 "
                                                     : "The case trail is broken: entry "))
                << forgery;
        }
    }
}

TEST_F(TrailCliTest, verifyNamesTheFirstEntryThatWasForged) {
    EXPECT_EQ(cli({"tag", project, "1"}).exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("DROP TRIGGER AuditTrail_NoUpdate; "
              "UPDATE AuditTrail SET Detail = 'other' WHERE Trail_ID = 1");
    const CliResult run = cli({"verify", project});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr("The case trail is broken: entry 1 was changed"));
}

TEST_F(TrailCliTest, aProjectThatCantBeWrittenGetsNoEntry) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "nothing is closed to this user";
    const auto before = hashesOfFile(project);
    fs::permissions(project, fs::perms::owner_read);
    const CliResult run = cli({"search", project, "a.example"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(hashesOfFile(project), before);
}

TEST_F(TrailCliTest, aFileThatIsNoProjectIsRefused) {
    EXPECT_EQ(cli({"verify", (folder.path() / "none.nvp").string()}).exit, 3);
    EXPECT_EQ(cli({"trail", (folder.path() / "none.nvp").string()}).exit, 3);
}

} // namespace
} // namespace nv::test
