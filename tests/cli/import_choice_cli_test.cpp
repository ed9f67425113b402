// What an import is told to take, and what it tells of what it took.
#include "cli/CliCase.h"
#include "support/builders/SqliteFile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace nv::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

/// A history and a cache of alice's, and what her other browser keeps today.
class ImportChoiceCliTest : public CliCase {
  protected:
    ImportChoiceCliTest() {
        const fs::path local = evidence / "Users/alice/AppData/Local";
        IndexDat history;
        history.add(
            {.url = "Visited: alice@http://a.example/", .secondDate = fileTime(2011, 3, 1, 12)});
        history.add(
            {.url = "Visited: alice@http://b.example/", .secondDate = fileTime(2011, 3, 2, 12)});
        put(local / "Microsoft/Windows/History/History.IE5/index.dat", history.bytes());
        IndexDat cache;
        cache.folder("ABCDEFGH");
        cache.add({.url = "http://c.example/",
                   .secondDate = fileTime(2011, 3, 3, 12),
                   .fileSize = 6,
                   .folder = 0,
                   .fileName = "c"});
        put(local / "Microsoft/Windows/Temporary Internet Files/Content.IE5/index.dat",
            cache.bytes());
        const fs::path profile = local / "Microsoft/Edge/User Data/Default";
        put(profile / "Sessions/Session_13439778", "SNSS");
        put(profile / "Local Storage/leveldb/CURRENT", "MANIFEST-000001\n");
    }
    static void put(const fs::path &file, const std::string &bytes) {
        fs::create_directories(file.parent_path());
        writeWhole(file, bytes);
    }
    CliResult imported(std::vector<std::string> options) const {
        options.insert(options.begin(), {"import", project, evidence.string()});
        return cli(options);
    }
    json summary(std::vector<std::string> options) const {
        options.insert(options.end(), {"--format", "json"});
        const CliResult run = imported(std::move(options));
        EXPECT_TRUE(run.exit == 0 || run.exit == 2) << run.err;
        return json::parse(run.out);
    }
    std::string inProject(const std::string &sql) const {
        return SQLite::Database(project).execAndGet(sql).getString();
    }
};

TEST_F(ImportChoiceCliTest, whatIsNotReadYetIsListed) {
    const CliResult run = imported({});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.out, HasSubstr("Chromium session, not read yet: nothing of it is in the "
                                   "project\n"));
    EXPECT_THAT(run.out, HasSubstr("LevelDB store, not read yet"));
    EXPECT_THAT(run.err, Not(HasSubstr("No valid history")));
}

TEST_F(ImportChoiceCliTest, aFolderWithTodaysCachesAloneIsNotEmpty) {
    fs::remove_all(evidence / "Users/alice/AppData/Local/Microsoft/Windows");
    const CliResult run = imported({});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, Not(HasSubstr("No valid history")));
    EXPECT_THAT(run.out, HasSubstr("Microsoft Edge, profile \"Default\", person \"alice\"\n"
                                   "    not read yet                     2 artefacts\n"));
    const CliResult classic = imported({"--classic"});
    EXPECT_EQ(classic.exit, 1);
    EXPECT_THAT(classic.err, HasSubstr("No valid history"));
    EXPECT_THAT(classic.err, HasSubstr("what today's browsers keep was not looked for"));
}

TEST_F(ImportChoiceCliTest, theClassicRulesTakeWhatTheyTook) {
    const json told = summary({"--classic"});
    EXPECT_EQ(told.at("artefacts").size(), 2u);
    EXPECT_EQ(told.at("totals").at("rows"), 3);
    EXPECT_EQ(inProject("SELECT group_concat(DISTINCT ClassicOnly) FROM SourceFiles"), "1");
    EXPECT_THAT(cli({"trail", project, "--format", "csv"}).out,
                HasSubstr("complete; by the classic rules alone"));
    ASSERT_EQ(cli({"options", "set", "ClassicOnly", "True"}).exit, 0);
    EXPECT_EQ(summary({}).at("artefacts").size(), 2u) << "the setting does the same";
}

TEST_F(ImportChoiceCliTest, thatPasswordsWereAskedForStandsInTheTrail) {
    imported({});
    EXPECT_THAT(cli({"trail", project}).out, Not(HasSubstr("passwords")));
    imported({"--secrets"});
    EXPECT_THAT(cli({"trail", project, "--format", "csv"}).out, HasSubstr("; with passwords"));
}

TEST_F(ImportChoiceCliTest, countsStandByKindBrowserAndProfile) {
    const json told = summary({});
    EXPECT_EQ(told.at("rows_by_kind"), json::parse(R"({"IE Cache":1,"IE History":2})"));
    EXPECT_EQ(told.at("browsers").at("Internet Explorer"), 3);
    const json &profiles = told.at("profiles");
    ASSERT_EQ(profiles.size(), 2u);
    EXPECT_EQ(profiles[0].at("browser"), "Internet Explorer");
    EXPECT_EQ(profiles[0].at("person"), "alice");
    EXPECT_EQ(profiles[0].at("first"), "2011-03-01T12:00:00Z");
    EXPECT_EQ(profiles[0].at("last"), "2011-03-03T12:00:00Z");
    EXPECT_EQ(profiles[0].at("rows_by_kind").at("IE History"), 2);
    EXPECT_EQ(profiles[1].at("browser"), "Microsoft Edge");
    EXPECT_EQ(profiles[1].at("profile"), "Default");
    EXPECT_EQ(profiles[1].at("not_read_yet"), 2);
    EXPECT_EQ(profiles[1].at("first"), "");
    const std::string text = imported({}).out;
    EXPECT_THAT(text, HasSubstr("Internet Explorer, person \"alice\"\n"
                                "    first event 2011-03-01T12:00:00Z, last event "
                                "2011-03-03T12:00:00Z\n"
                                "    IE Cache                         1 row\n"
                                "    IE History                       2 rows\n"));
}

TEST_F(ImportChoiceCliTest, kindsAreKeysOfReadersOrOfKinds) {
    const json reader = summary({"--kinds", "ie-cache"});
    EXPECT_EQ(reader.at("rows_by_kind"), json::parse(R"({"IE Cache":1})"));
    EXPECT_EQ(reader.at("artefacts").size(), 1u);
    const json kind = summary({"--kinds", "ie-daily"});
    EXPECT_EQ(kind.at("totals").at("rows"), 0);
    EXPECT_EQ(kind.at("totals").at("passed_over"), 3);
    EXPECT_EQ(kind.at("kinds").at("ie-history").at("passed_over").at("not asked for"), 2);
    const CliResult none = imported({"--kinds", "opera-cache"});
    EXPECT_THAT(none.err, HasSubstr("4 artefacts of other kinds found, not asked for"));
    const CliResult wrong = imported({"--kinds", "ie-dayly"});
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_THAT(wrong.err, HasSubstr("no kind of record \"ie-dayly\". The nearest keys: ie-daily"));
    const CliResult as = cli({"import", project, evidence.string(), "--as", "ie-histori"});
    EXPECT_EQ(as.exit, 1);
    EXPECT_THAT(as.err,
                HasSubstr("there is no reader \"ie-histori\". The nearest keys: ie-history"));
}

} // namespace
} // namespace nv::test
