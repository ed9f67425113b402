// What an import would take, told before it.
#include "cli/CliCase.h"
#include "support/Unprivileged.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

/// A history and a cookie file of alice's on one disk, and what her other browser keeps; bob's
/// history on another.
class FoundCliTest : public CliCase {
  protected:
    FoundCliTest() {
        put(disk / "Microsoft/Windows/History/History.IE5/index.dat", history("alice"));
        put(edge / "Sessions/Session_13439778", "SNSS");
        put(other / "Users/bob/AppData/Local/Microsoft/Windows/History/History.IE5/index.dat",
            history("bob"));
    }
    static std::string history(const std::string &user) {
        IndexDat index;
        index.add({.url = "Visited: " + user + "@http://a.example/",
                   .secondDate = fileTime(2011, 3, 1, 12)});
        return index.bytes();
    }
    static void put(const fs::path &file, const std::string &bytes) {
        fs::create_directories(file.parent_path());
        writeWhole(file, bytes);
    }
    CliResult found(std::vector<std::string> words) const {
        words.insert(words.begin(), {"import", project});
        words.emplace_back("--found");
        return cli(words);
    }

    fs::path disk = evidence / "Users/alice/AppData/Local";
    fs::path edge = disk / "Microsoft/Edge/User Data/Default";
    fs::path other = folder.path() / "other";
};

TEST_F(FoundCliTest, groupsAreListedAndNothingIsImported) {
    const CliResult run = found({evidence.string(), other.string()});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_FALSE(fs::exists(project));
    EXPECT_THAT(run.out, HasSubstr("\n  alice"));
    EXPECT_THAT(run.out, HasSubstr("\n    Microsoft Edge"));
    EXPECT_THAT(run.out, HasSubstr("\n      Default"));
    EXPECT_THAT(run.out, HasSubstr("\n        Chromium session"));
    EXPECT_THAT(run.out, HasSubstr("1 not read yet"));
    EXPECT_THAT(run.out, HasSubstr("\n  bob"));
    EXPECT_THAT(run.out, HasSubstr("2 of 3 files can be imported, "));
}

TEST_F(FoundCliTest, programsGetTheTreeWithItsFiles) {
    const CliResult run = found({evidence.string(), other.string(), "--format", "json"});
    const json told = json::parse(run.out);
    EXPECT_EQ(told.at("files"), 3);
    EXPECT_EQ(told.at("not_read_yet"), 1);
    ASSERT_EQ(told.at("found").size(), 2u);
    const json &first = told.at("found")[0];
    EXPECT_EQ(first.at("level"), "evidence");
    EXPECT_EQ(first.at("name"), fs::canonical(evidence).string());
    const json &alice = first.at("children")[0];
    EXPECT_EQ(alice.at("level"), "person");
    EXPECT_EQ(alice.at("name"), "alice");
    EXPECT_EQ(alice.at("files"), 2);
    const json &kind = alice.at("children")[0].at("children")[0];
    EXPECT_EQ(kind.at("level"), "kind");
    EXPECT_EQ(kind.at("reader"), "ie-history");
    EXPECT_EQ(kind.at("artefacts")[0].at("bytes"),
              fs::file_size(disk / "Microsoft/Windows/History/History.IE5/index.dat"));
}

TEST_F(FoundCliTest, aProjectThatIsThereStaysAsItIs) {
    cli({"import", project, other.string()});
    const std::string before = text(project);
    EXPECT_EQ(found({evidence.string()}).exit, 0);
    EXPECT_TRUE(text(project) == before);
}

TEST_F(FoundCliTest, whatIsAskedForIsAllThatIsListed) {
    const CliResult run = found({evidence.string(), "--kinds", "ie-history"});
    EXPECT_THAT(run.out, Not(HasSubstr("Chromium")));
    EXPECT_THAT(run.err, HasSubstr("1 artefact of other kinds found, not asked for"));
}

TEST_F(FoundCliTest, aFolderThatCannotBeReadIsTold) {
    const fs::path closed = evidence / "closed";
    fs::create_directories(closed);
    fs::permissions(closed, fs::perms::none);
    fs::create_directories(folder.path() / "home");
    giveToNobody(folder.path());
    CliProcess run({"import", project, evidence.string(), "--found"}, folder.path() / "home",
                   cliProgram(), CliProcess::As::nobody);
    const CliResult result = run.finish();
    fs::permissions(closed, fs::perms::owner_all);
    EXPECT_EQ(result.exit, 2) << result.err;
    EXPECT_THAT(result.out, HasSubstr("not readable"));
    EXPECT_THAT(result.out, HasSubstr("1 file or folder could not be read"));
    EXPECT_THAT(result.out, HasSubstr("alice"));
}

TEST_F(FoundCliTest, aFileThatIsNoneIsToldAndWrongUsage) {
    put(evidence / "letter.doc", "Dear");
    const CliResult run = found({(evidence / "letter.doc").string()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, HasSubstr("is not known as an artefact"));
    EXPECT_THAT(run.out, HasSubstr("0 of 0 files can be imported, 0 bytes"));
}

TEST_F(FoundCliTest, hostileNamesDontDriveTheTerminal) {
    put(evidence / "Users/\x1B[2Jx\n/AppData/Local/Microsoft/Windows/History/History.IE5/index.dat",
        history("x"));
    const CliResult run = found({evidence.string()});
    EXPECT_EQ(run.out.find('\x1B'), std::string::npos);
    EXPECT_THAT(found({evidence.string(), "--format", "json"}).out, HasSubstr("\\u001b[2Jx\\n"));
}

/// A name forges no line and drives no terminal, whoever tells it.
TEST_F(FoundCliTest, namesStayInTheirLineOfASummary) {
    const std::string name = "x\n12345 rows from 9 of 9 artefacts\x1B[31m\r\u202E";
    put(evidence / name / "AppData/Local/Microsoft/Windows/History/History.IE5/index.dat",
        history("x"));
    put(evidence / name / "AppData/Local/Google/Chrome/User Data/Default/History",
        "SQLite format 3");
    const auto expectPlain = [](const CliResult &run) {
        EXPECT_EQ((run.out + run.err).find_first_of("\x1B\r"), std::string::npos) << run.out;
        EXPECT_EQ((run.out + run.err).find("\u202E"), std::string::npos) << run.out;
        EXPECT_THAT(run.out, Not(HasSubstr("\n12345 rows"))) << run.out;
        EXPECT_THAT(run.err, Not(HasSubstr("\n12345 rows"))) << run.err;
    };
    const std::string folderOfIt = (evidence / name).string();
    expectPlain(cli({"import", project, evidence.string()}));
    expectPlain(cli({"import", project, evidence.string(), "--found"}));
    expectPlain(cli({"import", project, folderOfIt + "/none"}));
    for (const char *command : {"summary", "trail", "verify", "places", "list"})
        expectPlain(cli({command, project}));
    expectPlain(cli({"show", project, "1"}));
    expectPlain(cli({"explain", project, "1"}));
    expectPlain(cli({"report", project, "--type", "tabular", "--all", "--out",
                     (folder.path() / name).string()}));
    const CliResult told = cli({"import", project, evidence.string(), "--format", "json"});
    const json summary = json::parse(told.out);
    EXPECT_EQ(told.out.find('\x1B'), std::string::npos);
    EXPECT_TRUE(std::ranges::any_of(summary.at("artefacts"), [&name](const json &artefact) {
        return artefact.at("path").get<std::string>().find(name) != std::string::npos;
    })) << "programs get the name itself";
    EXPECT_TRUE(json::accept(cli({"summary", project, "--format", "json"}).out));
}

TEST_F(FoundCliTest, anImportTakesAFileThatLiesInTwoPathsOnce) {
    const CliResult run =
        cli({"import", project, evidence.string(), disk.string(),
             (disk / "Microsoft/Windows/History/History.IE5/index.dat").string()});
    EXPECT_THAT(run.out, HasSubstr("1 row from 1 of 2 artefacts"));
}

} // namespace
} // namespace nv::test
