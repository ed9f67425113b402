#include "base/Digest.h"
#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string md5Of(const std::string &text) {
    Digest digest(DigestAlgorithm::md5);
    digest.add(text);
    return digest.takeHex();
}

/// A classic cache of two files, one of which is on a list.
class HashSetsCliTest : public CliCase {
  protected:
    HashSetsCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://a.example/known.txt", "known.txt", "known content");
        addCached(index, "http://a.example/other.txt", "other.txt", "other content");
        import(index);
        list = folder.path() / "list.md5";
        writeWhole(list, md5Of("known content") + "  known.txt\nno hash\n");
    }
    CliResult importAgain(const std::vector<std::string> &more) {
        fs::remove(project);
        std::vector<std::string> call{"import", project, evidence.string(), "--kinds", "ie-cache"};
        call.insert(call.end(), more.begin(), more.end());
        return cli(call);
    }
    CliResult addList() {
        return cli({"hashsets", "add", list.string(), "--meaning", "Notable", "--name", "cases"});
    }
    std::string notable() {
        return cli({"query", project,
                    "SELECT URL, RawFact('hashset_notable') AS h FROM URLs WHERE "
                    "Fact('hashset_notable') = 'cases'",
                    "--format", "tsv"})
            .out;
    }

    fs::path list;
};

TEST_F(HashSetsCliTest, matchesAtTheImport) {
    EXPECT_EQ(importAgain({"--hash-sets"}).exit, 3); // there is no set to look in
    EXPECT_FALSE(fs::exists(project));
    const CliResult added = addList();
    EXPECT_EQ(added.exit, 0) << added.err;
    EXPECT_EQ(added.out, "notable \"cases\": 1 different hash from 2 lines, 1 without one\n");
    EXPECT_THAT(added.err, HasSubstr("list.md5\", line 2: \"no hash\""));
    const CliResult import = importAgain({"--hash-sets"});
    EXPECT_EQ(import.exit, 0) << import.err;
    EXPECT_EQ(notable(), "URL\th\nhttp://a.example/known.txt\tMD5\n");
    EXPECT_THAT(cli({"trail", project, "--format", "csv"}).out,
                HasSubstr("1 row in the notable set"));
}

TEST_F(HashSetsCliTest, matchesLaterWhatWasHashed) {
    ASSERT_EQ(addList().exit, 0);
    const CliResult unhashed = cli({"hashsets", "match", project, "--format", "csv"});
    EXPECT_EQ(unhashed.exit, 0) << unhashed.err;
    EXPECT_THAT(unhashed.out, HasSubstr("cases,notable,1,0"));
    EXPECT_THAT(unhashed.err, HasSubstr("Nothing was compared: of 2 records none has a hash."));
    EXPECT_THAT(unhashed.err,
                HasSubstr("Nothing is said of 2 records with cached content that was "
                          "not hashed when it was imported. Import it with --hash-sets"));
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("INSERT INTO RecordFacts VALUES (1, 'content_md5', '" + md5Of("known content") +
              "', NULL)");
    EXPECT_THAT(cli({"hashsets", "match", project, "cases", "--format", "csv"}).out,
                HasSubstr("cases,notable,1,1"));
    EXPECT_THAT(notable(), HasSubstr("known.txt"));
    ASSERT_EQ(cli({"hashsets", "remove", "cases"}).exit, 0);
    EXPECT_THAT(notable(), HasSubstr("known.txt")) << "the project keeps what was found";
    EXPECT_EQ(cli({"hashsets", "match", project}).exit, 1);
}

TEST_F(HashSetsCliTest, listsAndReplacesOnlyWhenAsked) {
    ASSERT_EQ(addList().exit, 0);
    const CliResult again = addList();
    EXPECT_EQ(again.exit, 1);
    EXPECT_THAT(again.err, HasSubstr("--overwrite"));
    EXPECT_EQ(cli({"hashsets", "add", list.string(), "--meaning", "known", "--name", "cases",
                   "--overwrite"})
                  .exit,
              0);
    const std::string listed = cli({"hashsets", "list", "--format", "csv"}).out;
    EXPECT_THAT(listed, HasSubstr("cases,known,1,0,0,"));
    writeWhole(folder.path() / "home/hashsets/cut.nvhash", "NVHASHSET form 1");
    const CliResult damaged = cli({"hashsets", "list", "--format", "csv"});
    EXPECT_EQ(damaged.exit, 3);
    EXPECT_THAT(damaged.out, HasSubstr("cases,known,1"));
    EXPECT_THAT(damaged.err, HasSubstr("cut.nvhash"));
    EXPECT_EQ(cli({"hashsets", "match", project}).exit, 3);
}

TEST_F(HashSetsCliTest, rowsAreChosenBySets) {
    const auto ids = [this](std::vector<std::string> more) {
        std::vector<std::string> call{"list", project, "--columns", "id", "--format", "tsv"};
        call.insert(call.end(), more.begin(), more.end());
        return cli(call);
    };
    EXPECT_EQ(ids({"--notable"}).out, "id\n") << "nothing was looked for yet";
    EXPECT_EQ(ids({"--hash-set", "cases"}).exit, 1);
    ASSERT_EQ(addList().exit, 0);
    writeWhole(folder.path() / "both.md5", md5Of("known content") + "\n" + md5Of("other content"));
    ASSERT_EQ(
        cli({"hashsets", "add", (folder.path() / "both.md5").string(), "--meaning", "known"}).exit,
        0);
    ASSERT_EQ(importAgain({"--hash-sets"}).exit, 0);
    EXPECT_EQ(ids({"--notable"}).out, "id\n1\n");
    EXPECT_EQ(ids({"--hash-set", "BOTH"}).out, "id\n1\n2\n");
    EXPECT_EQ(ids({"--without-known"}).out, "id\n1\n") << "a notable file is never hidden by it";
    EXPECT_EQ(ids({"--without-known"}).err, "hash sets hide 1 of 2 rows\n");
    const CliResult gone = ids({"--hash-set", "gone"});
    EXPECT_EQ(gone.exit, 1);
    EXPECT_THAT(gone.err, HasSubstr("\"gone\""));
    EXPECT_THAT(cli({"list", project, "--notable"}).out, HasSubstr("notable: cases; known: both"));
    EXPECT_THAT(cli({"list", project, "--layout", "Caches", "--format", "csv"}).out,
                HasSubstr("hash_sets"));
    EXPECT_THAT(cli({"export", project, "-", "--format", "csv", "--without-known"}).out,
                testing::Not(HasSubstr("other.txt")));
    EXPECT_THAT(cli({"search", project, "hashset:cases", "--format", "tsv"}).out,
                HasSubstr("known.txt"));
    EXPECT_EQ(cli({"places", project, "--tree", "hash-sets", "--format", "csv"}).out,
              "Place,Is,Records,Level\r\nnotable,Hash sets,1,0\r\ncases,Hash set,1,1\r\n"
              "known,Hash sets,2,0\r\nboth,Hash set,2,1\r\n");
    const auto report = folder.path() / "report";
    EXPECT_EQ(
        cli({"report", project, "--type", "tabular", "--notable", "--out", report.string()}).exit,
        0);
}

TEST_F(HashSetsCliTest, anUpgradeKeepsWhatWasFound) {
    ASSERT_EQ(addList().exit, 0);
    ASSERT_EQ(importAgain({"--hash-sets"}).exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("PRAGMA legacy_alter_table = ON; DROP INDEX IF EXISTS FoundHashSetsIndex; "
              "ALTER TABLE URLs DROP COLUMN Person");
    ASSERT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(cli({"list", project, "--notable", "--columns", "id", "--format", "tsv"}).out,
              "id\n1\n");
}

TEST_F(HashSetsCliTest, refusesWhatMakesNoSet) {
    EXPECT_EQ(cli({"hashsets", "add", list.string()}).exit, 1);
    const auto exitOf = [&](const std::string &file, const std::string &name) {
        return cli({"hashsets", "add", file, "--meaning", "known", "--name", name}).exit;
    };
    EXPECT_EQ(exitOf((folder.path() / "gone").string(), "a"), 1);
    EXPECT_EQ(exitOf(list.string(), "../out"), 1);
    writeWhole(folder.path() / "empty.txt", "");
    EXPECT_EQ(exitOf((folder.path() / "empty.txt").string(), "empty"), 1);
    EXPECT_EQ(cli({"hashsets", "remove", "../list"}).exit, 1);
    EXPECT_EQ(cli({"hashsets", "list", "--format", "csv"}).out,
              "Name,Meaning,MD5,SHA1,SHA256,Added,Lists,WithoutHash,File\r\n");
}

TEST_F(HashSetsCliTest, projectsOfEarlierBuildsAreUpgradedFirst) {
    ASSERT_EQ(addList().exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("PRAGMA legacy_alter_table = ON; DROP TABLE RecordFacts");
    const CliResult refused = cli({"hashsets", "match", project});
    EXPECT_EQ(refused.exit, 3);
    EXPECT_THAT(refused.err, HasSubstr("upgrade --fix"));
    ASSERT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(cli({"hashsets", "match", project}).exit, 0);
}

} // namespace
} // namespace nv::test
