#include "base/Digest.h"
#include "base/Files.h"
#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
            R"("Action":"Report","Detail":"Tabular report of 1 row; in the program's scratch)"));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Publish")"));
    EXPECT_THAT(trail, HasSubstr(R"(:"index-history.htm")")) << "no folder that is gone later";
    EXPECT_THAT(trail, HasSubstr(hashesOfFile(out / "index-history.htm").value().sha256));
    EXPECT_THAT(trail, HasSubstr(R"("Action":"Rebuild","Detail":"0 of 1 page rebuilt")"));
    const Bytes page = readWhole(out / "index-history.htm");
    EXPECT_THAT(std::string(ByteView(page).raw()), HasSubstr("1 row exported as csv"));
}

TEST_F(TrailCliTest, aFileThatIsNoProjectIsRefused) {
    EXPECT_EQ(cli({"verify", (folder.path() / "none.nvp").string()}).exit, 3);
    EXPECT_EQ(cli({"trail", (folder.path() / "none.nvp").string()}).exit, 3);
}

} // namespace
} // namespace nv::test
