#include "UpgradeFixture.h"
#include "base/Digest.h"
#include "db/marks/PartChoices.h"
#include "db/marks/RebuildAudit.h"
#include "db/marks/RebuiltParts.h"
#include "db/trail/CaseTrail.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

/// Ends the process, as a power cut would, at one of the steps of a task.
class KilledAt final : public TaskMonitor {
  public:
    explicit KilledAt(int step) : m_left(step) {}
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return step(), true; }
    bool wantsStep() const override { return true; }
    void show(const TaskStep &) override { step(); }

  private:
    void step() {
        if (m_left-- == 0)
            ::kill(::getpid(), SIGKILL);
    }
    int m_left;
};

struct ProjectFixTest : test::UpgradeFixture {
    ProjectFixTest() { change("DROP INDEX URLIndex; DROP TABLE URLMetaData"); }

    /// How the fix ended that is killed at `step`: true when it came to its end before.
    bool fixKilledAt(int step) {
        const pid_t child = ::fork();
        if (child == 0) {
            KilledAt task(step);
            static_cast<void>(upgrade().fix(task));
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status);
    }
    std::string shapeOfRows(const fs::path &file) {
        return text("SELECT group_concat(URL_ID || URL || coalesce(Visits, '-') || "
                    "coalesce(ActionDateUTC, '-') || coalesce(hex(ThumbnailBLOB), '-')) FROM URLs",
                    file);
    }
};

TEST_F(ProjectFixTest, aBlobOfNoBytesStaysOneAndIsNoNull) {
    change("UPDATE URLs SET ThumbnailBLOB = x'' WHERE URL_ID = 2");
    Unwatched task;
    EXPECT_EQ(upgrade().fix(task).end, FixEnd::fixed);
    EXPECT_EQ(text("SELECT typeof(ThumbnailBLOB) || length(ThumbnailBLOB) FROM URLs "
                   "WHERE URL_ID = 2"),
              "blob0");
}

TEST_F(ProjectFixTest, allDataStandsInAProjectOfThisBuild) {
    const std::string before = bytes(path);
    const std::string rows = shapeOfRows(path);
    std::vector<std::string> tables;
    Unwatched task;
    const FixOutcome outcome =
        upgrade().fix(task, [&](std::string_view name) { tables.emplace_back(name); });
    EXPECT_EQ(outcome.end, FixEnd::fixed);
    EXPECT_EQ(outcome.oldProject, old);
    EXPECT_THAT(outcome.notes, IsEmpty());
    EXPECT_THAT(tables,
                ElementsAre("DefaultSettings", "StoredQueries", "SourceFiles", "URLs", "Links",
                            "URLMetaData", "Tags", "TagOptions", "LinkAnalysis", "RecordFacts"));
    EXPECT_EQ(bytes(old), before);
    EXPECT_EQ(shapeOfRows(path), rows);
    EXPECT_EQ(text("SELECT URL FROM Links WHERE URL_ID = 1"), "http://c.example/");
    EXPECT_EQ(text("SELECT DefaultValue FROM DefaultSettings WHERE DefaultName = "
                   "'LastTimeZoneID'"),
              "15");
    EXPECT_THAT(linesOf(scan()), IsEmpty());
    EXPECT_EQ(text("SELECT DefaultValue FROM DefaultSettings WHERE DefaultName = 'AppMinor'"), "1");
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("case.nvp", "case.nvp.old", "Temp"));
    EXPECT_TRUE(fs::is_empty(temp));
    EXPECT_THAT(log.entries, IsEmpty());
}

TEST_F(ProjectFixTest, aNumberThatWasGivenOnceIsNotGivenAgain) {
    fix();
    change("INSERT INTO URLs (URL) VALUES ('new')");
    EXPECT_EQ(text("SELECT max(URL_ID) FROM URLs"), "4") << "3 was deleted before the fix";
}

TEST_F(ProjectFixTest, theCaseTrailGoesAlongAndTellsOfTheFix) {
    {
        SQLite::Database project(path, SQLite::OPEN_READWRITE);
        TrailEntry entry;
        entry.action = "Import";
        entry.detail = "two of <these>";
        CaseTrail(project).add(entry);
        CaseTrail(project).add(entry);
    }
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    ASSERT_EQ(fix().end, FixEnd::fixed);
    SQLite::Database project(path, SQLite::OPEN_READWRITE);
    const auto entries = CaseTrail(project).entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[1].trailID, 2);
    EXPECT_EQ(entries[1].detail, "two of <these>");
    EXPECT_EQ(entries[2].trailID, 3);
    EXPECT_EQ(entries[2].action, "Upgrade");
    EXPECT_EQ(entries[2].filePath, old.string());
    EXPECT_EQ(entries[2].rowCount, 2);
    EXPECT_EQ(entries[2].appVersion, "0.1.0");
    const auto hashes = hashesOfFile(old).value();
    EXPECT_EQ(entries[2].md5Hash, hashes.md5);
    EXPECT_EQ(entries[2].sha256Hash, hashes.sha256);
    EXPECT_EQ(entries[2].fileSize, static_cast<std::int64_t>(hashes.size));
    EXPECT_THROW(project.exec("DELETE FROM AuditTrail"), SQLite::Exception);
    EXPECT_THROW(project.exec("UPDATE AuditTrail SET Action = ''"), SQLite::Exception);
}

TEST_F(ProjectFixTest, whatTheAuditShowsOfRebuiltPagesGoesAlong) {
    {
        SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
        const std::vector<ReferenceNote> notes = {{"1:3", true, {2, 7}}, {"0:0", false, {}}};
        RebuildAudit(project).store(UrlId{1}, notes);
    }
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    Unwatched task;
    ASSERT_EQ(upgrade().fix(task).end, FixEnd::fixed);
    SQLite::Database project(path.string(), SQLite::OPEN_READONLY);
    const auto notes = RebuildAudit(project).notes(UrlId{1});
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes.at(1).accuracyScore, "1:3");
    EXPECT_TRUE(notes.at(1).rewritten);
    EXPECT_THAT(notes.at(1).candidates, ElementsAre(2, 7));
}

TEST_F(ProjectFixTest, exactRebuildsAndWhatWasChosenForThemGoAlong) {
    PartNote note;
    note.document = UrlId{2};
    note.element = "img";
    note.attribute = "srcset";
    note.original = "a.png";
    note.address = "https://host/A.png";
    note.rule = partrule::kExact;
    note.part = UrlId{7};
    note.localName = "0000007.png";
    note.time = Date::fromDays(45000.25);
    note.seconds = -3;
    note.candidates = {7, 9};
    note.candidateCount = 2;
    note.sha256 = "ab";
    {
        SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
        RebuiltParts(project).store(UrlId{1}, std::vector<PartNote>{note, PartNote()});
        PartChoices(project).choose(UrlId{1}, "https://host/A.png", UrlId{9});
        PartChoices(project).choose(UrlId{1}, "https://host/a.png", UrlId::none);
    }
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    Unwatched task;
    ASSERT_EQ(upgrade().fix(task).end, FixEnd::fixed);
    SQLite::Database project(path.string(), SQLite::OPEN_READONLY);
    const auto notes = RebuiltParts(project).notes(UrlId{1});
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0].document, note.document);
    EXPECT_EQ(notes[0].element + notes[0].attribute + notes[0].original, "imgsrcseta.png");
    EXPECT_EQ(notes[0].address, note.address);
    EXPECT_EQ(notes[0].rule, note.rule);
    EXPECT_EQ(notes[0].part, note.part);
    EXPECT_EQ(notes[0].localName, note.localName);
    EXPECT_EQ(notes[0].time, note.time);
    EXPECT_EQ(notes[0].seconds, note.seconds);
    EXPECT_THAT(notes[0].candidates, ElementsAre(7, 9));
    EXPECT_EQ(notes[0].candidateCount, 2);
    EXPECT_EQ(notes[0].sha256, "ab");
    EXPECT_FALSE(notes[1].time.has());
    EXPECT_FALSE(notes[1].seconds);
    const auto choices = PartChoices(project).of(UrlId{1});
    ASSERT_EQ(choices.size(), 2u);
    EXPECT_EQ(choices.at("https://host/A.png"), UrlId{9});
    EXPECT_EQ(choices.at("https://host/a.png"), UrlId::none);
}

TEST_F(ProjectFixTest, factsAndOriginsGoAlongAsTheyWere) {
    change("UPDATE SourceFiles SET Browser = 'Brave', Profile = 'Default', Person = 'alice', "
           "BrowserVersion = '1.2', Device = 'phone', SHA256Hash = 'ab', ClassicOnly = 1; "
           "UPDATE URLs SET Browser = 'Brave', Person = 'alice' WHERE URL_ID = 1; "
           "INSERT INTO RecordFacts VALUES (1, 'field_value', '007', NULL), "
           "(1, 'visit_duration', 1.5, 1500000), (2, 'of a later build', 3, 'x')");
    const char *const rows = "SELECT group_concat(URL_ID || Name || typeof(Value) || Value || "
                             "typeof(RawValue) || coalesce(RawValue, '')) FROM RecordFacts";
    const std::string before = text(rows);
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    ASSERT_EQ(fix().end, FixEnd::fixed);
    EXPECT_EQ(text(rows), before);
    EXPECT_EQ(text("SELECT Browser || Profile || Person || BrowserVersion || Device || SHA256Hash "
                   "|| ClassicOnly FROM SourceFiles"),
              "BraveDefaultalice1.2phoneab1");
    EXPECT_EQ(
        text("SELECT group_concat(coalesce(Browser, '-') || coalesce(Person, '-')) FROM URLs"),
        "Bravealice,--");
}

TEST_F(ProjectFixTest, aProjectOfTheVersionBeforeGetsWhatItLacks) {
    dropViews();
    change("DROP TABLE RecordFacts");
    for (const char *column : {"Browser", "Profile", "Person"})
        change(std::string("ALTER TABLE URLs DROP COLUMN ") + column);
    for (const char *column :
         {"SHA256Hash", "Browser", "BrowserVersion", "Profile", "Person", "Device", "ClassicOnly"})
        change(std::string("ALTER TABLE SourceFiles DROP COLUMN ") + column);
    const std::string rows = shapeOfRows(path);
    const auto lines = linesOf(scan());
    for (const char *line : {"RecordFacts Table RecordFacts Missing", "URLs Column Browser Missing",
                             "SourceFiles Column Person Missing"})
        EXPECT_THAT(lines, testing::Contains(line));
    ASSERT_EQ(fix().end, FixEnd::fixed);
    EXPECT_EQ(shapeOfRows(path), rows);
    EXPECT_THAT(linesOf(scan()), IsEmpty());
    EXPECT_EQ(text("SELECT count(*) FROM _DEFAULT WHERE Browser IS NULL"), "2");
    EXPECT_EQ(text("SELECT FileName FROM SourceFiles"), "index.dat");
}

TEST_F(ProjectFixTest, aProjectWithoutATrailBeginsOneWithTheFix) {
    fix();
    EXPECT_EQ(text("SELECT group_concat(Action) FROM AuditTrail"), "Upgrade");
}

TEST_F(ProjectFixTest, aTableThatOnlyBearsTheNameOfTheTrailIsToldOf) {
    change("CREATE TABLE AuditTrail (Note TEXT); INSERT INTO AuditTrail VALUES ('x')");
    EXPECT_THAT(scan().leftBehind, ElementsAre("Table \"AuditTrail\" with 1 row"));
}

TEST_F(ProjectFixTest, newFieldsGetTheirDefaults) {
    dropColumn("Tagged");
    dropColumn("Notes");
    fix();
    EXPECT_EQ(text("SELECT group_concat(Tagged || coalesce(Notes, '-')) FROM URLs"), "0-,0-");
}

TEST_F(ProjectFixTest, storedQueriesRunAsTheExaminerLeftThem) {
    change("UPDATE StoredQueries SET SQLText = 'SELECT * FROM URLs WHERE Visits > 2' WHERE Name = "
           "'eBay'; DELETE FROM StoredQueries WHERE Name = 'Kijiji/Craigslist'; "
           "INSERT INTO StoredQueries VALUES ('Mine', 'SELECT URL FROM [eBay]', 0)");
    dropViews();
    EXPECT_THAT(fix().notes, IsEmpty());
    EXPECT_EQ(text("SELECT URL FROM eBay"), text("SELECT URL FROM URLs WHERE URL_ID = 1"));
    EXPECT_EQ(text("SELECT count(*) FROM Mine"), "1");
    EXPECT_EQ(text("SELECT count(*) FROM _DEFAULT"), "2");
    EXPECT_EQ(text("SELECT count(*) FROM sqlite_master WHERE name LIKE 'Kijiji%'"), "0");
}

TEST_F(ProjectFixTest, aQueryThatCantRunKeepsItsText) {
    change("UPDATE StoredQueries SET SQLText = 'SELECT * FROM Nowhere' WHERE Name IN ('eBay', "
           "'_DEFAULT')");
    const FixOutcome outcome = fix();
    EXPECT_EQ(outcome.notes.size(), 2U);
    EXPECT_EQ(text("SELECT SQLText FROM StoredQueries WHERE Name = 'eBay'"),
              "SELECT * FROM Nowhere");
    EXPECT_EQ(text("SELECT count(*) FROM _DEFAULT"), "2") << "every project has this one";
    EXPECT_FALSE(log.entries.empty());
}

TEST_F(ProjectFixTest, aProjectWithoutQueriesGetsTheFirstOnes) {
    dropViews();
    change("DROP TABLE StoredQueries");
    fix();
    EXPECT_EQ(text("SELECT count(*) FROM _DEFAULT"), "2");
}

TEST_F(ProjectFixTest, rowsWithoutTheirParentsAreMovedToo) {
    change("INSERT INTO Links (URL_ID, URL) VALUES (77, 'http://orphan.example/')");
    EXPECT_EQ(fix().end, FixEnd::fixed);
    EXPECT_EQ(text("SELECT URL FROM Links WHERE URL_ID = 77"), "http://orphan.example/");
}

TEST_F(ProjectFixTest, tablesThatOnlyTheProjectHasStayBehind) {
    change("CREATE TABLE Mine (a); INSERT INTO Mine VALUES (1)");
    fix();
    EXPECT_EQ(text("SELECT count(*) FROM sqlite_master WHERE name = 'Mine'"), "0");
    EXPECT_EQ(text("SELECT count(*) FROM Mine", old), "1");
}

TEST_F(ProjectFixTest, aStopAnywhereLeavesTheProjectAndNoOldFile) {
    const std::string before = bytes(path);
    for (int calls = 0;; ++calls) {
        test::CancelAfter task(calls);
        if (upgrade().fix(task).end == FixEnd::fixed)
            break;
        ASSERT_EQ(bytes(path), before) << calls;
        ASSERT_FALSE(fs::exists(old)) << calls;
        ASSERT_LT(calls, 1000);
    }
    EXPECT_EQ(bytes(old), before);
}

TEST_F(ProjectFixTest, aKillAnywhereLeavesTheOldOrTheNewProjectWhole) {
    const std::string before = bytes(path);
    const std::string rows = shapeOfRows(path);
    int step = 0;
    while (!fixKilledAt(step)) {
        ASSERT_EQ(bytes(path), before) << "killed at step " << step;
        ASSERT_LT(++step, 1000);
    }
    EXPECT_GT(step, 20) << "every table, every query row and the swap itself are steps";
    EXPECT_EQ(shapeOfRows(path), rows);
    EXPECT_EQ(bytes(old), before);
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("case.nvp", "case.nvp.old", "Temp"));
}

TEST_F(ProjectFixTest, aSecondFixOverwritesTheOldFile) {
    fix();
    const std::string before = bytes(path);
    fix();
    EXPECT_EQ(bytes(old), before);
}

TEST_F(ProjectFixTest, aProjectThatIsOpenElsewhereIsNotReplaced) {
    ProjectDatabase other(log, clock);
    other.filePath = path;
    other.open();
    ProjectFields(other.connection(), log).getDefault("LastTimeZoneID");
    EXPECT_THROW(fix(), StorageFailure);
    other.closeDB();
    EXPECT_EQ(fix().end, FixEnd::fixed);
}

TEST_F(ProjectFixTest, whatACrashLeftInTheLogIsMovedToo) {
    const pid_t child = ::fork();
    if (child == 0) {
        SQLite::Database crashing(path, SQLite::OPEN_READWRITE);
        crashing.exec("PRAGMA journal_mode=WAL; INSERT INTO URLs (URL) VALUES ('late')");
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(path.native() + "-wal"));
    EXPECT_EQ(fix().end, FixEnd::fixed);
    EXPECT_EQ(text("SELECT count(*) FROM URLs WHERE URL = 'late'"), "1");
    EXPECT_EQ(text("SELECT count(*) FROM URLs WHERE URL = 'late'", old), "1");
}

TEST_F(ProjectFixTest, twoRowsOfOneKeyStopTheFixAndNothingIsLost) {
    dropViews();
    change("DROP TABLE TagOptions; CREATE TABLE TagOptions (TagOption_ID INTEGER); "
           "INSERT INTO TagOptions VALUES (1), (1)");
    const std::string before = bytes(path);
    EXPECT_THROW(fix(), StorageFailure);
    EXPECT_EQ(bytes(path), before);
    EXPECT_FALSE(fs::exists(old));
}

TEST_F(ProjectFixTest, theModeOfTheFileStays) {
    fs::permissions(path, fs::perms(0640));
    fix();
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST_F(ProjectFixTest, whatALinkLeadsToIsReplaced) {
    const fs::path link = folder.path() / "link.nvp";
    fs::create_symlink("case.nvp", link);
    Unwatched task;
    static_cast<void>(ProjectUpgrade({link, temp, {}}, build, log, clock).fix(task));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(fs::exists(old));
}

} // namespace
} // namespace nv
