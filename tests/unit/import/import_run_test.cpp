#include "support/builders/IndexDat.h"
#include "unit/import/ImportFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using namespace std::string_literals;
using test::ImportFixture;
using testing::HasSubstr;
using enum HistoryFileType;

class ImportRunTest : public ImportFixture {};

TEST_F(ImportRunTest, storesTheRecordsOfEachFileInTheOrderOfTheList) {
    add(norvelaneNVD, "b", "http://b/1\x1Ehttp://b/2");
    add(norvelaneNVD, "a", "http://a/1");
    const ImportSummary summary = import();
    ASSERT_EQ(summary.artefacts.size(), 2u);
    const ArtefactResult &first = summary.artefacts[0];
    EXPECT_EQ(first.path, project.folder.path() / "b");
    EXPECT_EQ(first.type, norvelaneNVD);
    EXPECT_EQ(first.readerKey, "lines");
    EXPECT_EQ(first.md5Hash, job.historyFiles.item(1).md5Hash);
    EXPECT_EQ(first.state, ArtefactState::complete);
    EXPECT_EQ(first.rowsSaved, 2u);
    EXPECT_GE(first.seconds, 0);
    EXPECT_EQ(summary.rowsSaved(), 3u);
    EXPECT_FALSE(summary.cancelled);
    EXPECT_EQ(summary.failure, "");
    EXPECT_EQ(project.text("SELECT group_concat(SourceFile_ID || URL) FROM URLs"),
              "1http://b/1,1http://b/2,2http://a/1");
    EXPECT_EQ(project.text("SELECT group_concat(Successful) FROM SourceFiles"), "1,1");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ImportRunTest, importsTheSameFileTwiceIntoOneSourceFile) {
    add(norvelaneNVD, "here", "http://a/1");
    add(norvelaneNVD, "there", "http://a/1");
    import();
    import();
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(project.number("SELECT Count(*) FROM SourceFiles"), 1);
    EXPECT_EQ(project.number("SELECT Count(DISTINCT SourceFile_ID) FROM URLs"), 1);
}

ReadResult readVisit(ReadContext &ctx) {
    UrlRecord record;
    record.URL = "http://host/";
    record.facts.add("transition", "typed", 1);
    ctx.file.origin.browserVersion = "History 70";
    ctx.sink.save(record);
    return {};
}
const Reader *visitReader(HistoryFileType type) {
    static constexpr Reader reader = test::madeUp(chromeHistory, "visits", readVisit);
    return type == chromeHistory ? &reader : nullptr;
}

TEST_F(ImportRunTest, tellsOfEachRecordWhoseItIsAndWhatNoColumnHolds) {
    const std::string place = "Users/alice/AppData/Local/Microsoft/Edge/User Data/";
    for (const char *profile : {"Default", "Profile 1"}) {
        std::filesystem::create_directories(project.folder.path() / place / profile);
        add(chromeHistory, place + profile + "/History", "the same content");
    }
    Unwatched task;
    const ImportSummary summary = import(task, visitReader);
    EXPECT_EQ(project.text("SELECT group_concat(Browser || '|' || Profile || '|' || Person) "
                           "FROM URLs"),
              "Microsoft Edge|Default|alice,Microsoft Edge|Profile 1|alice");
    EXPECT_EQ(project.text("SELECT group_concat(Browser || '|' || BrowserVersion || '|' || "
                           "Profile || '|' || Person) FROM SourceFiles"),
              "Microsoft Edge|History 70|Default|alice,Microsoft Edge|History 70|Profile 1|alice");
    EXPECT_EQ(project.text("SELECT group_concat(URL_ID || Name || Value || RawValue) FROM "
                           "RecordFacts"),
              "1transitiontyped1,2transitiontyped1");
    EXPECT_EQ(summary.artefacts[1].origin.profile, "Profile 1");
    EXPECT_EQ(summary.artefacts[1].origin.browserVersion, "History 70");
    import(task, visitReader);
    EXPECT_EQ(project.number("SELECT Count(*) FROM SourceFiles"), 2) << "those of the first run";
}

ReadResult tellWhetherAsked(ReadContext &ctx) {
    test::saveUrl(ctx, ctx.secrets ? "asked" : "not asked");
    return {};
}
const Reader *secretReader(HistoryFileType type) {
    static constexpr Reader reader = test::madeUp(chromiumLogins, "secrets", tellWhetherAsked);
    return type == chromiumLogins ? &reader : nullptr;
}

TEST_F(ImportRunTest, handsPasswordsOutOnlyWhenAsked) {
    add(chromiumLogins, "a", "");
    Unwatched task;
    EXPECT_EQ(import(task, secretReader).failure, "");
    job.secrets = true;
    EXPECT_EQ(import(task, secretReader).failure, "");
    EXPECT_EQ(project.text("SELECT group_concat(URL) FROM (SELECT URL FROM URLs ORDER BY URL_ID)"),
              "not asked,asked");
}

TEST_F(ImportRunTest, givesTheRowItsCategoryAndTheReadersWord) {
    add(norvelaneNVD, "a", "http://host/picture.gif\x1Ehttp://host/folder/");
    import();
    EXPECT_EQ(project.text("SELECT Category || CacheType FROM URLs WHERE URL_ID = 1"),
              "PicturesUnallocated");
    EXPECT_EQ(project.text("SELECT Category FROM URLs WHERE URL_ID = 2"), "");
}

TEST_F(ImportRunTest, givesCookiesNoCategoryButTheirOwn) {
    test::IndexDat index;
    for (const char *path : {"", "shop/index.php", "shop/page.html", "pixel.gif", "gone"})
        index.add({.url = std::string("Cookie:user@host.example/") + path,
                   .fileName = std::string("user@host.example[1].") +
                               (std::string_view(path) == "gone" ? "gone" : "txt")});
    project.folder.write("Cookies/user@host.example[1].txt", "id\n<html><body><a href=x>");
    add(ieCookies, "Cookies/index.dat", index.bytes());
    job.parseAdvancedMetadata = true;
    Unwatched task;
    import(task, readerFor);
    EXPECT_EQ(project.text("SELECT group_concat(Category) FROM URLs"),
              "Cookies,Cookies,Cookies,Cookies,");
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs WHERE IsWebPage OR HTMLBody <> ''"), 0);
    EXPECT_EQ(project.number("SELECT Count(*) FROM Links"), 0);
}

TEST_F(ImportRunTest, keepsTheRowsOfACancelAndReachesNoFurtherFile) {
    add(norvelaneNVD, "a", "http://a/1\x1Ehttp://a/2\x1Ehttp://a/3");
    add(norvelaneNVD, "b", "http://b/1");
    test::CancelAfter task(2); // once before the file and once in it
    const ImportSummary summary = import(task);
    EXPECT_TRUE(summary.cancelled);
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::cancelled);
    EXPECT_EQ(summary.artefacts[0].rowsSaved, 2u);
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::notReached);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(project.text("SELECT group_concat(Successful) FROM SourceFiles"), "0");
}

TEST_F(ImportRunTest, reachesNothingWhenCancelledBetweenFiles) {
    add(norvelaneNVD, "a", "http://a/1");
    add(norvelaneNVD, "b", "http://b/1");
    test::CancelAfter task(2); // the first file is read to its end
    const ImportSummary summary = import(task);
    EXPECT_TRUE(summary.cancelled);
    EXPECT_EQ(summary.count(ArtefactState::complete), 1u);
    EXPECT_EQ(summary.count(ArtefactState::notReached), 1u);
    EXPECT_EQ(project.number("SELECT Count(*) FROM SourceFiles"), 1);
}

TEST_F(ImportRunTest, isCompleteWhenCancelledAfterTheLastRecord) {
    add(netAnalysis, "a", ""); // doesn't ask after its only record
    test::CancelAfter task(2);
    EXPECT_FALSE(import(task).cancelled);
}

TEST_F(ImportRunTest, ofACancelledWizardEmptiesTheList) {
    add(norvelaneNVD, "a", "http://a/1");
    job.cancelImport = true;
    const ImportSummary summary = import();
    EXPECT_TRUE(summary.cancelled);
    EXPECT_TRUE(summary.artefacts.empty());
    EXPECT_EQ(job.historyFiles.count(), 0u);
    EXPECT_EQ(rows(), 0);
}

TEST_F(ImportRunTest, goesOnAfterAReaderThatThrows) {
    add(simpleHTML, "a", "");
    add(norvelaneNVD, "b", "http://b/1");
    const ImportSummary summary = import();
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::failed);
    EXPECT_EQ(summary.artefacts[0].reason, "the reader broke down");
    EXPECT_EQ(summary.artefacts[0].rowsSaved, 1u);
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::complete);
    EXPECT_EQ(rows(), 2);
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "ImportForm.ImportFiles()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(project.text("SELECT group_concat(Successful) FROM SourceFiles"), "0,1");
}

TEST_F(ImportRunTest, tellsWhatDamageCost) {
    add(netAnalysis, "a", "");
    const ImportSummary summary = import();
    const ArtefactResult &result = summary.artefacts[0];
    EXPECT_EQ(result.state, ArtefactState::cutShort);
    EXPECT_EQ(result.reason, "chain leaves the file");
    EXPECT_EQ(result.type, ieDaily); // as the reader refined it
    EXPECT_EQ(summary.notReached(), 3u);
    EXPECT_EQ(summary.passedOver(), 7u);
    EXPECT_EQ(project.number("SELECT Successful FROM SourceFiles"), 0);
}

TEST_F(ImportRunTest, listsWhatItCantRead) {
    add(safariHistory, "a", "");
    add(operaCache, "b", "");
    add(macIECache, "c", "");
    add(norvelaneNVD, "d", "http://d/");
    std::filesystem::remove(project.folder.path() / "d");
    const ImportSummary summary = import();
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::failed);
    EXPECT_EQ(summary.artefacts[0].reason, "not of this format");
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::notReadYet);
    EXPECT_EQ(summary.artefacts[1].readerKey, "later");
    EXPECT_EQ(summary.artefacts[2].state, ArtefactState::notReadYet);
    EXPECT_EQ(summary.artefacts[3].state, ArtefactState::vanished);
    EXPECT_EQ(project.number("SELECT Count(*) FROM SourceFiles"), 1); // only the one that was read
    for (const ArtefactResult &result : summary.artefacts)
        EXPECT_NE(result.reason, "");
}

TEST_F(ImportRunTest, endsWithAFullDisk) {
    add(norvelaneNVD, "a", "http://a/1");
    add(safariCache, "b", "");
    add(norvelaneNVD, "c", "http://c/1");
    const ImportSummary summary = import();
    EXPECT_EQ(summary.failure, "database or disk is full");
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::complete);
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::failed);
    EXPECT_EQ(summary.artefacts[1].rowsSaved, 1u);
    EXPECT_EQ(summary.artefacts[2].state, ArtefactState::notReached);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(project.log.entries.back().procedure, "ImportForm.ImportFiles()");
}

TEST_F(ImportRunTest, endsWithAProjectThatCantBeWritten) {
    add(norvelaneNVD, "a", "http://a/1");
    project.connection().exec("PRAGMA query_only = 1");
    const ImportSummary summary = import();
    EXPECT_NE(summary.failure, "");
    EXPECT_EQ(summary.rowsSaved(), 0u);
}

TEST_F(ImportRunTest, countsRowsThatTheProjectDoesntTake) {
    add(norvelaneNVD, "a", "http://a/1\x1Ehttp://a/1\x1Ehttp://a/3");
    project.connection().exec("CREATE UNIQUE INDEX OneOfEach ON URLs(URL)");
    const ImportSummary summary = import();
    EXPECT_EQ(summary.rowsSaved(), 2u);
    EXPECT_EQ(summary.rowsLost(), 1u);
    EXPECT_EQ(rows(), 2);
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.SaveRecord()");
}

TEST_F(ImportRunTest, leavesReferencesWholeAndLookedUpAgain) {
    std::filesystem::create_directories(project.folder.path() / "Default");
    add(chromeHistory, "Default/History", "");
    add(norvelaneNVD, "a", "http://a/1");
    Unwatched task;
    import(task, visitReader);
    EXPECT_EQ(project.number("SELECT count(*) FROM RecordFacts"), 1);
    EXPECT_EQ(project.number("SELECT count(*) FROM pragma_foreign_key_check"), 0);
    EXPECT_ANY_THROW(
        project.connection().exec("INSERT INTO RecordFacts (URL_ID, Name) VALUES (99, 'count')"))
        << "of a record that isn't there";
    project.connection().exec("DELETE FROM URLs WHERE URL_ID = 1");
    EXPECT_EQ(project.number("SELECT count(*) FROM RecordFacts"), 0) << "they go with their record";
}

TEST_F(ImportRunTest, makesTheIndexOverAddressesBehindTheFirstRecords) {
    static std::int64_t indexes = -1;
    static SQLite::Database *database = nullptr;
    const auto count = [](ReadContext &ctx) -> ReadResult {
        test::saveUrl(ctx, "http://host/");
        SQLite::Statement query(*database,
                                "SELECT count(*) FROM sqlite_master WHERE name = 'URLIndex'");
        query.executeStep();
        indexes = query.getColumn(0).getInt64();
        throw std::runtime_error("the reader broke down");
    };
    static constexpr Reader reader = test::madeUp(chromeHistory, "counts", count);
    const auto readers = [](HistoryFileType) -> const Reader * { return &reader; };
    database = &project.connection();
    constexpr const char *kText = "SELECT group_concat(sql) FROM sqlite_master "
                                  "WHERE name = 'URLIndex'";
    const std::string text = project.text(kText);
    add(chromeHistory, "a", "");
    Unwatched task;
    import(task, readers);
    EXPECT_EQ(indexes, 0) << "while the project's first records come";
    EXPECT_EQ(project.text(kText), text);
    import(task, readers);
    EXPECT_EQ(indexes, 1) << "with records in it";
    project.connection().exec("DROP INDEX URLIndex");
    import(task, readers);
    EXPECT_EQ(project.text(kText), text) << "what a killed import left behind";
}

TEST_F(ImportRunTest, leavesNothingInTheScratchFolder) {
    scratch = project.folder.path() / "scratch";
    std::filesystem::create_directory(scratch);
    project.folder.write("scratch/mine", "of somebody else");
    add(csv, "a", "");
    add(csv, "b", "");
    EXPECT_EQ(import().count(ArtefactState::complete), 2u);
    EXPECT_TRUE(std::filesystem::exists(scratch / "mine"));
    EXPECT_FALSE(std::filesystem::exists(project.text("SELECT URL FROM URLs")));
}

TEST_F(ImportRunTest, failsWithoutAScratchFolder) {
    scratch = project.folder.write("no-folder", "");
    add(csv, "a", "");
    add(csv, "b", "");
    const ImportSummary summary = import();
    EXPECT_THAT(summary.failure, HasSubstr((scratch / "~import").native()));
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::failed);
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::notReached);
    EXPECT_EQ(project.log.entries.size(), 1u);
}

TEST_F(ImportRunTest, movesOnBySizeOfTheFiles) {
    add(norvelaneNVD, "small", std::string(99, 'x'));
    add(norvelaneNVD, "large", std::string(299, 'x'));
    test::MemoryTask task;
    import(task);
    EXPECT_EQ(task.fractions, (std::vector<double>{0, 0.125, 0.25, 0.625}));
}

TEST_F(ImportRunTest, titlesLoosePagesItself) {
    add(simpleHTML, "a", "");
    test::MemoryTask task;
    import(task);
    ASSERT_EQ(task.headings.size(), 1u);
    EXPECT_EQ(task.headings[0].title, "IMPORTING ORPHANED HTML FILES");
}

TEST_F(ImportRunTest, losesNoRowToHostileText) {
    const std::string hostile[] = {"http://x/'; DROP TABLE URLs; --",
                                   "a\nb\r\nc",
                                   "\0http://\0"s,
                                   std::string(std::size_t{1} << 20, '\''),
                                   "\xFF\xFE\x80",
                                   "http://x/%00%0d",
                                   ""};
    std::string bytes;
    for (const std::string &text : hostile)
        bytes += text + test::kRecordEnd;
    bytes.pop_back();
    add(norvelaneNVD, "a", bytes);
    EXPECT_EQ(import().rowsSaved(), std::size(hostile));
    RecordStore store = project.store();
    for (std::size_t i = 0; i < std::size(hostile); ++i)
        EXPECT_EQ(store.getURL(UrlId{static_cast<std::int64_t>(i) + 1})->URL,
                  decodeText(hostile[i]));
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ImportRunTest, readsAnIndexByItsOwnReader) {
    test::IndexDat index;
    index.add(
        {.url = "Visited: user@http://host/page.htm", .secondDate = test::fileTime(2011, 6, 15)});
    add(ieHistory, "index.dat", index.bytes());
    Unwatched task;
    const ImportSummary summary = import(task, readerFor);
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::complete) << summary.artefacts[0].reason;
    EXPECT_EQ(project.text("SELECT URL || '|' || User || '|' || Category FROM URLs"),
              "http://host/page.htm|user|HTML");
}

TEST_F(ImportRunTest, tellsOfWhatTheScanCouldNotLookAt) {
    job.gaps.unreadable.push_back({"/e/index.dat", "cannot open"});
    job.gaps.linksNotFollowed = 2;
    const ImportSummary summary = import();
    ASSERT_EQ(summary.gaps.unreadable.size(), 1u);
    EXPECT_EQ(summary.gaps.unreadable[0].path, "/e/index.dat");
    EXPECT_EQ(summary.gaps.linksNotFollowed, 2u);
}

TEST_F(ImportRunTest, warnsOfACacheThatIsReadAsAHistory) {
    test::IndexDat cache;
    cache.folder("ABCDEFGH");
    cache.add({.url = "http://host/page.htm", .secondDate = test::fileTime(2011, 3, 1)});
    test::IndexDat history;
    history.add({.url = "Visited: mara@http://host/", .secondDate = test::fileTime(2011, 3, 1)});
    add(ieHistory, "a/index.dat", cache.bytes());
    add(ieHistory, "b/index.dat", history.bytes());
    add(ieCache, "c/index.dat", cache.bytes());
    Unwatched task;
    const ImportSummary summary = import(task, readerFor);
    EXPECT_NE(summary.artefacts[0].warning.find("lists cache folders"), std::string::npos);
    EXPECT_EQ(summary.artefacts[1].warning, "");
    EXPECT_EQ(summary.artefacts[2].warning, "");
    EXPECT_EQ(project.log.entries.size(), 1u);
}

TEST(StateWords, areThoseOfTheSummary) {
    EXPECT_EQ(stateWord(ArtefactState::cutShort), "cut short");
    EXPECT_EQ(stateWord(ArtefactState::notReadYet), "not read yet");
    EXPECT_EQ(stateWord(ArtefactState::notReached), "not reached");
}

} // namespace
} // namespace nv
