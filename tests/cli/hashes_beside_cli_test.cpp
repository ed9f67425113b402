#include "base/Digest.h"
#include "cli/CliCase.h"
#include "support/LiveHistory.h"
#include "support/builders/ChromiumBlocks.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/FirefoxSiteCache.h"
#include "support/builders/SnappyFrames.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Files that are read beside the artefacts: what was imported of them has to be told from what
/// somebody laid in their place.
class HashesBesideCliTest : public CliCase {
  protected:
    void importAll() {
        const CliResult run = cli({"import", project, evidence.string()});
        ASSERT_EQ(run.exit, 0) << run.err;
    }
    /// A body over 16 KiB lies in a file of its own.
    void writeBlocks() const {
        ChromiumBlocks files;
        ChromiumAnswer answer;
        answer.requested = answer.answered = 13346640000000000;
        files.add({"1/0/https://a.example/big.txt", answer.bytes(), std::string(20000, 'a'),
                   answer.requested, answer.requested});
        files.write(cache);
    }
    void writeHistory() const { writeLiveHistory(folder.path() / "live", history.parent_path()); }
    void forge(const fs::path &file) const {
        std::string bytes = text(file);
        bytes.replace(0, 6, "FORGED");
        writeWhole(file, bytes);
    }
    std::string rowOf(const std::string &where) const {
        SQLite::Database file(project);
        return file.execAndGet("SELECT URL_ID FROM URLs WHERE " + where).getString();
    }
    /// What `verify` says of the file.
    std::string stateOf(const fs::path &file, int exit) const {
        const CliResult run = cli({"verify", project, "--format", "jsonl"});
        EXPECT_EQ(run.exit, exit) << run.err;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);)
            if (const json each = json::parse(line); each.at("File") == file.string())
                return each.at("State");
        return "not told";
    }

    fs::path cache = evidence / "Cache";
    fs::path body = cache / "f_000001";
    fs::path history = evidence / "User Data/Default/History";
    fs::path log = evidence / "User Data/Default/History-wal";
};

TEST_F(HashesBesideCliTest, filesOfABlockCacheAreHashedAtTheImport) {
    writeBlocks();
    importAll();
    const std::string trail = cli({"trail", project, "--format", "jsonl"}).out;
    EXPECT_THAT(trail, AllOf(HasSubstr("Import Beside"), HasSubstr(body.string())));
    EXPECT_THAT(trail, HasSubstr(hashesOfFile(body).value().sha256));
    for (const char *name : {"index", "data_0", "data_1", "f_000001"})
        EXPECT_EQ(stateOf(cache / name, 0), "same") << name;
}

TEST_F(HashesBesideCliTest, aForgedBodyIsNamedByAllWhoReadIt) {
    writeBlocks();
    importAll();
    const std::string row = rowOf("URL LIKE '%big.txt'");
    const std::string out = (folder.path() / "big.txt").string();
    EXPECT_EQ(cli({"extract", project, row, out}).exit, 0);
    EXPECT_EQ(cli({"explain", project, row}).exit, 0);
    const std::string before = hashesOfFile(body).value().sha256;
    forge(body);
    EXPECT_EQ(stateOf(body, 2), "changed");
    const CliResult taken = cli({"extract", project, row, out, "--overwrite"});
    EXPECT_EQ(taken.exit, 2);
    EXPECT_THAT(taken.err, AllOf(HasSubstr("changed: \"" + body.string() + "\""), HasSubstr(before),
                                 HasSubstr(hashesOfFile(body).value().sha256)));
    EXPECT_EQ(text(out).substr(0, 7), "FORGEDa") << "it is handed out all the same";
    const CliResult told = cli({"explain", project, row});
    EXPECT_EQ(told.exit, 2);
    EXPECT_THAT(told.out, HasSubstr("CHANGED: at the import it had SHA-256 " + before));
    EXPECT_THAT(told.err,
                AllOf(HasSubstr("\"f_000001\" has changed"), HasSubstr("another content_sha256")));
}

TEST_F(HashesBesideCliTest, aReportThatHandsAForgedBodyOverSaysSo) {
    writeBlocks();
    importAll();
    const std::string row = rowOf("URL LIKE '%big.txt'");
    const auto report = [&](const std::string &type) {
        return cli({"report", project, "--type", type, "--out", (folder.path() / type).string(),
                    "--overwrite", "--tagged"});
    };
    ASSERT_EQ(cli({"tag", project, row}).exit, 0);
    EXPECT_EQ(report("case").exit, 0);
    EXPECT_EQ(report("graphical").exit, 0);
    forge(body);
    for (const char *type : {"case", "graphical"}) {
        const CliResult run = report(type);
        EXPECT_EQ(run.exit, 2) << type;
        EXPECT_THAT(run.err, HasSubstr("The content of 1 record is NOT what was imported; their "
                                       "cards say so. Ids: " +
                                       row + "."));
    }
    const fs::path made = folder.path() / "case";
    EXPECT_THAT(text(made / "ticked-1.htm"), HasSubstr("The content is NOT what was imported"));
    EXPECT_THAT(text(made / "index.htm"), HasSubstr("1 card with content that is NOT"));
    EXPECT_EQ(report("tabular").exit, 0) << "it holds no content";
}

TEST_F(HashesBesideCliTest, packedContentIsComparedUnpackedAlsoWhereItIsAskedForAsStored) {
    writeBlocks();
    importAll();
    const std::string row = rowOf("URL LIKE '%big.txt'");
    EXPECT_EQ(cli({"extract", project, row, "-", "--raw"}).exit, 0);
    forge(body);
    EXPECT_EQ(cli({"extract", project, row, "-", "--raw"}).exit, 2);
}

TEST_F(HashesBesideCliTest, contentThatWasNotHashedIsToldSo) {
    writeBlocks();
    importAll();
    const std::string row = rowOf("URL LIKE '%big.txt'");
    SQLite::Database(project, SQLite::OPEN_READWRITE).exec("DELETE FROM RecordFacts");
    const CliResult taken = cli({"extract", project, row, "-"});
    EXPECT_EQ(taken.exit, 0);
    EXPECT_THAT(taken.err, HasSubstr("wasn't hashed at the import"));
}

TEST_F(HashesBesideCliTest, aLogOfADatabaseIsHashedAsTheDatabaseIs) {
    writeHistory();
    importAll();
    const std::string row = rowOf("URL = 'http://a.example/page'");
    EXPECT_EQ(stateOf(log, 0), "same");
    const CliResult sound = cli({"explain", project, row});
    EXPECT_EQ(sound.exit, 0) << sound.err;
    EXPECT_THAT(sound.out, HasSubstr("History-wal (SHA-256 today: "));
    std::string bytes = text(log);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    writeWhole(log, bytes);
    EXPECT_EQ(stateOf(log, 2), "changed");
    EXPECT_EQ(cli({"explain", project, row}).exit, 2);
    fs::remove(log);
    EXPECT_EQ(stateOf(log, 2), "gone");
    const CliResult gone = cli({"explain", project, row});
    EXPECT_EQ(gone.exit, 2);
    EXPECT_THAT(gone.err, HasSubstr("\"History-wal\" can't be read or is gone"));
}

TEST_F(HashesBesideCliTest, aLogThatIsLaidBesideADatabaseLaterIsNew) {
    writeHistory();
    const std::string pages = text(log);
    fs::remove(log);
    importAll();
    EXPECT_EQ(cli({"verify", project}).exit, 0);
    writeWhole(log, pages);
    EXPECT_EQ(stateOf(log, 2), "new");
    EXPECT_EQ(stateOf(history, 2), "same");
    EXPECT_THAT(cli({"verify", project}).err, HasSubstr("1 new beside them"));
    EXPECT_THAT(cli({"summary", project}).out, HasSubstr("The evidence has changed since"));
}

/// Nothing is read of a log whose database isn't read itself.
TEST_F(HashesBesideCliTest, aLogThatWasThereIsNotNew) {
    fs::create_directories(evidence / "Default");
    SQLite::Database file((evidence / "Default" / "QuotaManager").string(),
                          SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
    file.exec("PRAGMA journal_mode = wal; CREATE TABLE meta (key, value); "
              "CREATE TABLE buckets (id, last_accessed); INSERT INTO meta VALUES (1, 2)");
    const fs::path there = evidence / "Default" / "QuotaManager-wal";
    ASSERT_TRUE(fs::exists(there));
    static_cast<void>(cli({"import", project, evidence.string()}));
    EXPECT_EQ(stateOf(there, 0), "same");
}

TEST_F(HashesBesideCliTest, aBodyOfASiteIsHashed) {
    const fs::path site = evidence / "storage/default/https+++app.example/cache";
    FirefoxSiteCacheFiles files(site);
    const std::string name = FirefoxSiteCacheFiles::bodyName(FirefoxSiteEntry().body);
    files.add({}).addBody(name, snappyFrames("the body of it"));
    files.close();
    importAll();
    const fs::path file = site / "morgue" / name;
    ASSERT_TRUE(fs::exists(file)) << file;
    EXPECT_EQ(stateOf(file, 0), "same");
    fs::remove(file);
    EXPECT_EQ(stateOf(file, 2), "gone");
}

TEST_F(HashesBesideCliTest, projectsOfEarlierVersionsSayWhatTheyDidNotHash) {
    writeBlocks();
    importAll();
    EXPECT_THAT(cli({"verify", project}).err, Not(HasSubstr("wasn't hashed")));
    const std::string row = rowOf("URL LIKE '%big.txt'");
    {
        SQLite::Database file(project, SQLite::OPEN_READWRITE);
        file.exec("DROP TABLE AuditTrail");
    }
    const CliResult run = cli({"verify", project});
    EXPECT_THAT(run.err, HasSubstr("What lies beside 1 imported file "));
    EXPECT_THAT(run.err, HasSubstr("wasn't hashed at the import and isn't compared"));
    EXPECT_THAT(cli({"explain", project, row}).out, HasSubstr("it wasn't hashed at the import"));
}

TEST_F(HashesBesideCliTest, evidenceThatWasMovedIsNoSuccess) {
    writeHistory();
    importAll();
    const std::string row = rowOf("URL = 'http://a.example/page'");
    fs::rename(evidence, folder.path() / "elsewhere");
    const CliResult run = cli({"explain", project, row});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr("the evidence isn't there"));
}

} // namespace
} // namespace nv::test
