#include "ProjectCommandsFixture.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/Trail.h"
#include "app/options/ProjectOptions.h"
#include "app/program/TempFolder.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "app/project/RecentFiles.h"
#include "base/Files.h"
#include "db/project/StoredQueries.h"
#include "support/builders/IndexDat.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::ProjectCommandsTest;

TEST_F(ProjectCommandsTest, aNewProjectHoldsTheVersionAndIsRemembered) {
    ASSERT_TRUE(commands.openFile(path, OpenMode::newAtPath));
    EXPECT_EQ(setting("AppMajor") + "." + setting("AppMinor") + "." + setting("AppRevision"),
              program->state.appVersion);
    EXPECT_EQ(window.caption, "Norvelane - [" + path.string() + "]");
    EXPECT_EQ(window.restored, 1);
    EXPECT_EQ(configLastFilesOpened(program->settings).at(0).path, path);
    EXPECT_EQ(rows(), 0);
}

TEST_F(ProjectCommandsTest, aFileOfAnotherKindIsRefused) {
    examiner.expect("not-a-project-file");
    EXPECT_FALSE(commands.openFile(folder.write("case.txt", "x"), OpenMode::existing));
    EXPECT_EQ(examiner.heard.at(0).text, "Selected file is not a valid Norvelane Project File.");
    EXPECT_EQ(examiner.heard.at(0).title, "Unrecognized File Format");
    examiner.expect("opening-failed");
    EXPECT_FALSE(commands.openFile(folder.write("bad.nvp", "no database"), OpenMode::existing));
    EXPECT_NE(examiner.heard.at(1).text.find("bad.nvp"), std::string::npos);
    EXPECT_FALSE(db().isOpen());
}

TEST_F(ProjectCommandsTest, aProjectThatCantBeMadeIsTold) {
    examiner.expect("database-not-created");
    EXPECT_FALSE(commands.openFile(folder.path() / "none" / "x.nvp", OpenMode::newAtPath));
    EXPECT_EQ(examiner.heard.at(0).text, "Internal error encountered. Unable to create database.");
}

TEST_F(ProjectCommandsTest, aCancelledDialogChangesNothing) {
    EXPECT_FALSE(commands.openFile({}, OpenMode::existing));
    EXPECT_FALSE(commands.openFile({}, OpenMode::newByDialog));
    dialogs.answer = path;
    EXPECT_TRUE(commands.openFile({}, OpenMode::newByDialog));
}

TEST_F(ProjectCommandsTest, closingKeepsTheZoneAndResetsTheDefaultQuery) {
    commands.openFile(path, OpenMode::newAtPath);
    StoredQueries(db().connection()).save({"_DEFAULT", "SELECT * FROM URLs WHERE Visits > 3"});
    ASSERT_TRUE(setZone(*program, 20));
    commands.closeFile();
    EXPECT_FALSE(db().isOpen());
    EXPECT_EQ(window.saved, 1);
    EXPECT_EQ(window.cleared, 1);
    EXPECT_EQ(window.caption, "Norvelane");
    program->state.gmtZone.setToDefault(Date());
    ASSERT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(program->state.gmtZone.tzTimeZoneID, 20);
    commands.tellOfChangedDefaultQuery();
    EXPECT_TRUE(examiner.heard.empty()) << "the query is as it was first";
}

TEST_F(ProjectCommandsTest, closingResetsThePardRange) {
    commands.openFile(path, OpenMode::newAtPath);
    PardChoice &pard = program->state.pard;
    pard.fromValue = 1;
    pard.toValue = 99;
    commands.closeFile();
    EXPECT_EQ(pard.fromValue, 15);
    EXPECT_EQ(pard.toValue, 40);
}

TEST_F(ProjectCommandsTest, aChangedDefaultQueryIsTold) {
    commands.openFile(path, OpenMode::newAtPath);
    StoredQueries queries(db().connection());
    queries.save({"_DEFAULT", "select * from URLs\r\norder by ActionDateLocal asc"});
    commands.tellOfChangedDefaultQuery();
    queries.save({"_DEFAULT", "SELECT * FROM URLs WHERE Visits > 3"});
    examiner.expect("default-query-changed");
    commands.tellOfChangedDefaultQuery();
    EXPECT_TRUE(examiner.heard.at(0).text.starts_with(
        "The _DEFAULT query has been modified since this project (case) file was first created."));
}

TEST_F(ProjectCommandsTest, openingAProjectClosesTheOneBefore) {
    commands.openFile(path, OpenMode::newAtPath);
    commands.openFile(folder.path() / "second.nvp", OpenMode::newAtPath);
    EXPECT_EQ(program->state.projectDBPath, folder.path() / "second.nvp");
    EXPECT_EQ(window.saved, 1);
    const auto recent = configLastFilesOpened(program->settings);
    EXPECT_EQ(recent.at(0).path, folder.path() / "second.nvp");
    EXPECT_EQ(recent.at(1).path, path);
}

TEST_F(ProjectCommandsTest, aMissingZoneDatabaseIsToldAndTheProjectOpens) {
    commands.openFile(path, OpenMode::newAtPath);
    commands.closeFile();
    fs::remove(paths.zones());
    writeWhole(paths.home / "error.log", "of before");
    examiner.expect("zone-not-set");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(examiner.heard.at(0).title, "Error Setting Time Zone");
    const Bytes log = readWhole(paths.home / "error.log");
    const std::string_view text = ByteView(log).raw();
    EXPECT_EQ(text.find("of before"), std::string_view::npos);
    EXPECT_NE(text.find("Function:"), std::string_view::npos) << "the log tells of the zone";
}

TEST_F(ProjectCommandsTest, aProjectThatIsOpenedWithoutItsZoneKeepsTheNumber) {
    commands.openFile(path, OpenMode::newAtPath);
    setZone(*program, 66); // not that of this machine
    commands.closeFile();
    const Bytes zones = readWhole(paths.zones());
    for (const std::string_view damage : {"", "no database", "cut"}) {
        if (damage.empty())
            fs::remove(paths.zones());
        else if (damage == "cut") // the header is sound, and pages are not there
            writeWhole(paths.zones(), ByteView(zones).sub(0, zones.size() / 2).raw());
        else
            writeWhole(paths.zones(), damage);
        examiner.expect("zone-not-set");
        EXPECT_TRUE(commands.openFile(path, OpenMode::existing)) << damage;
        EXPECT_TRUE(program->state.zoneIsUnread) << damage;
        test::MemoryTask task;
        EXPECT_THROW(static_cast<void>(runImportJob(*program, task, folder.path())), StorageFailure)
            << damage;
        commands.closeFile();
    }
    writeWhole(paths.zones(), ByteView(zones).raw());
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "66");
    EXPECT_EQ(program->state.gmtZone.tzTimeZoneID, 66);
}

TEST_F(ProjectCommandsTest, aZoneThatTheTableDoesntHoldIsToldAndKept) {
    commands.openFile(path, OpenMode::newAtPath);
    set("LastTimeZoneID", "9999");
    program->state.zoneIsUnread = true; // or closing would write the one in force
    commands.closeFile();
    examiner.expect("zone-not-there");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_THROW(requireZones(*program), StorageFailure);
    commands.closeFile();
    examiner.expect("zone-not-there");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "9999");
    EXPECT_TRUE(setZone(*program, 15)) << "the examiner chooses another";
    EXPECT_NO_THROW(requireZones(*program));
    commands.closeFile();
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "15");
}

TEST_F(ProjectCommandsTest, aTrailThatCantBeWrittenIsTold) {
    commands.openFile(path, OpenMode::newAtPath);
    noteInTrail(*program, TrailEntry());
    db().connection().exec("DROP TABLE AuditTrail; CREATE TABLE AuditTrail (x)");
    examiner.expect("trail-not-written");
    noteInTrail(*program, TrailEntry());
    EXPECT_NE(examiner.heard.back().text.find("no note of this"), std::string::npos);
    examiner.expect("trail-not-written");
    ImportSummary summary;
    summary.artefacts.emplace_back().state = ArtefactState::complete;
    noteImport(*program, summary);
}

TEST_F(ProjectCommandsTest, aNewProjectOverAnOldOneIsEmpty) {
    commands.openFile(path, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO URLs(URL) VALUES ('x')");
    commands.closeFile();
    commands.openFile(path, OpenMode::newAtPath);
    EXPECT_EQ(rows(), 0);
}

TEST_F(ProjectCommandsTest, saveAsGoesOnInTheCopy) {
    EXPECT_FALSE(commands.saveAs()) << "nothing is open";
    commands.openFile(path, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO URLs(URL) VALUES ('x')");
    dialogs.answer = folder.path() / "copy.nvp";
    EXPECT_TRUE(commands.saveAs());
    EXPECT_EQ(program->state.projectDBPath, folder.path() / "copy.nvp");
    EXPECT_EQ(rows(), 1);
    db().connection().exec("INSERT INTO URLs(URL) VALUES ('y')");
    commands.openFile(path, OpenMode::existing);
    EXPECT_EQ(rows(), 1);
}

TEST_F(ProjectCommandsTest, saveAsOntoItselfByAnotherPathLosesNothing) {
    commands.openFile(path, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO URLs(URL) VALUES ('x')");
    dialogs.answer = folder.path() / "home" / ".." / "case.nvp";
    EXPECT_FALSE(commands.saveAs());
    EXPECT_EQ(rows(), 1);
}

TEST_F(ProjectCommandsTest, saveAsTakesNothingFromTheLogOfWhatWasThere) {
    const fs::path other = folder.path() / "other.nvp";
    const fs::path log = other.native() + "-wal";
    commands.openFile(other, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO URLs(URL) VALUES ('theirs')");
    const Bytes crashed = readWhole(log);
    commands.openFile(path, OpenMode::newAtPath);
    writeWhole(log, ByteView(crashed).raw());
    dialogs.answer = other;
    EXPECT_TRUE(commands.saveAs());
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(fs::exists(other.native() + ".~export"));
}

TEST_F(ProjectCommandsTest, aFailedSaveAsStaysWithTheProject) {
    commands.openFile(path, OpenMode::newAtPath);
    dialogs.answer = folder.path() / "none" / "copy.nvp";
    examiner.expect("save-as-failed");
    EXPECT_FALSE(commands.saveAs());
    EXPECT_EQ(program->state.projectDBPath, path);
    EXPECT_EQ(rows(), 0);
}

TEST_F(ProjectCommandsTest, anOlderProjectIsToldUnlessTheCheckIsOff) {
    commands.openFile(path, OpenMode::newAtPath);
    set("AppMajor", "0");
    set("AppMinor", "0");
    commands.closeFile();
    examiner.expect("older-project");
    examiner.expect("run-upgrade-wizard", Answer::No);
    examiner.expect("version-check-can-be-turned-off");
    commands.openFile(path, OpenMode::existing);
    EXPECT_TRUE(examiner.heard.at(0).text.starts_with("This project file was creatd with"));
    program->state.disableFileVersionCheck = true;
    commands.openFile(path, OpenMode::existing);
    EXPECT_EQ(examiner.heard.size(), 3u);
    EXPECT_TRUE(window.upgraded.empty());
}

TEST_F(ProjectCommandsTest, yesToTheVersionQuestionRunsTheWizardOnTheClosedProject) {
    window.isOpen = [this] { return db().isOpen(); };
    commands.openFile(path, OpenMode::newAtPath);
    set("AppMinor", "0");
    commands.closeFile();
    examiner.expect("older-project");
    examiner.expect("run-upgrade-wizard", Answer::Yes);
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(examiner.heard.at(1).title, "File Version Conflict");
    EXPECT_EQ(window.upgraded, std::vector<fs::path>{path});
    EXPECT_TRUE(db().isOpen()) << "and it isn't asked again";
}

TEST_F(ProjectCommandsTest, theWizardAsksBeforeItClosesTheProject) {
    window.isOpen = [this] { return db().isOpen(); };
    commands.upgradeWizard();
    EXPECT_EQ(window.upgraded, std::vector<fs::path>{fs::path()}) << "it asks for a project";
    commands.openFile(path, OpenMode::newAtPath);
    examiner.expect("upgrade-closes-project", Answer::No);
    commands.upgradeWizard();
    EXPECT_EQ(window.upgraded.size(), 1u);
    examiner.expect("upgrade-closes-project", Answer::Yes);
    commands.upgradeWizard();
    EXPECT_EQ(window.upgraded.at(1), path);
    EXPECT_TRUE(db().isOpen());
    EXPECT_EQ(window.loaded, 1);
}

TEST_F(ProjectCommandsTest, theCommandLineTakesOneProjectOrArtefact) {
    examiner.expect("command-line-file-missing");
    EXPECT_FALSE(commands.loadCommandLineFile(folder.path() / "none.nvp"));
    examiner.expect("command-line-file-unknown");
    EXPECT_FALSE(commands.loadCommandLineFile(folder.write("x.dat", "neither of the two")));
    EXPECT_EQ(examiner.heard.at(1).text, "The file specified is not a recognized history file.");
    commands.openFile(path, OpenMode::newAtPath);
    commands.closeFile();
    EXPECT_TRUE(commands.loadCommandLineFile(path));
    EXPECT_EQ(window.loaded, 1);
}

TEST_F(ProjectCommandsTest, anArtefactThatCantBeRegisteredIsTold) {
    commands.openFile(path, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO SourceFiles (FileName) VALUES ('the only one'); "
                           "CREATE UNIQUE INDEX full ON SourceFiles (length(FileName) > 0)");
    test::IndexDat index;
    index.add({.url = "Visited: mara@http://host.example/"});
    program->import.historyFiles.add(
        artefactOfCommandLine(folder.write("index.dat", index.bytes())).value());
    examiner.expect("logging-file-failed");
    Unwatched nobody;
    const ImportSummary summary = runImportJob(*program, nobody, program->state.tempFolderPath);
    EXPECT_EQ(summary.failure, "");
    ASSERT_EQ(summary.artefacts.size(), 1u);
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::failed) << summary.artefacts[0].reason;
    ASSERT_EQ(examiner.heard.size(), 1u);
    EXPECT_EQ(examiner.heard.at(0).title, "Error Logging File");
    EXPECT_NE(examiner.heard.at(0).text.find("index.dat"), std::string::npos);
    EXPECT_EQ(rows(), 0);
}

TEST_F(ProjectCommandsTest, anArtefactOfTheCommandLineGoesIntoTheScratchProject) {
    test::IndexDat index;
    test::IndexRecord record;
    record.url = "Visited: mara@http://host.example/";
    record.secondDate = test::fileTime(2011, 3, 1);
    index.add(record);
    examiner.expect("command-line-file-imported");
    EXPECT_TRUE(commands.loadCommandLineFile(folder.write("any name.dat", index.bytes())));
    const std::string &outcome = examiner.heard.at(0).text;
    EXPECT_EQ(outcome,
              (folder.path() / "any name.dat").string() + "\n\nie-history: complete, 1 row\n");
    EXPECT_EQ(program->state.projectDBPath, tempFileNames(program->state.tempFolderPath).project);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(window.loaded, 1);
}

TEST_F(ProjectCommandsTest, anArtefactOfTheCommandLineThatCantBeReadIsTold) {
    examiner.expect("command-line-file-imported");
    EXPECT_TRUE(commands.loadCommandLineFile(folder.write("x.dat", "Client UrlCache, no more")));
    EXPECT_NE(examiner.heard.at(0).text.find(", 0 rows\n"), std::string::npos)
        << examiner.heard.at(0).text;
    EXPECT_EQ(rows(), 0);
}

TEST_F(ProjectCommandsTest, aProjectStandsAtItsPlaceOnlyWhenItIsWhole) {
    folder.write("case.nvp.~new", "");
    folder.write("case.nvp-wal", "");
    EXPECT_TRUE(commands.openFile(path, OpenMode::newAtPath));
    EXPECT_FALSE(fs::exists(path.native() + ".~new"));
    EXPECT_EQ(db().filePath, path);
    set("Kept", "here");
    EXPECT_EQ(setting("Kept"), "here");
    commands.closeFile();
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("Kept"), "here");
}

TEST_F(ProjectCommandsTest, onlyAProjectOfAKilledStartIsRemovedAside) {
    const fs::path aside = path.native() + ".~new";
    const fs::path second = aside.native() + "2";
    EXPECT_TRUE(commands.openFile(second.native() + ".nvp", OpenMode::newAtPath));
    commands.closeFile();
    fs::rename(second.native() + ".nvp", second);
    folder.write("case.nvp.~new", "precious");
    EXPECT_TRUE(commands.openFile(path, OpenMode::newAtPath));
    EXPECT_EQ(ByteView(readWhole(aside)).raw(), "precious");
    EXPECT_FALSE(fs::exists(second));
    EXPECT_EQ(db().filePath, path);
}

TEST_F(ProjectCommandsTest, theLogOfAProjectThatWasMovedAwayIsKept) {
    const fs::path log = folder.write("case.nvp-wal", "its last rows");
    try {
        createProject(*program, path);
        FAIL();
    } catch (const StorageFailure &failure) {
        EXPECT_NE(std::string(failure.what()).find("case.nvp-wal\" belongs to a project"),
                  std::string::npos);
    }
    EXPECT_EQ(ByteView(readWhole(log)).raw(), "its last rows");
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(ProjectCommandsTest, whatCantBecomeAProjectStays) {
    folder.write("case.nvp/inner", "a folder of that name");
    examiner.expect("database-not-created");
    EXPECT_FALSE(commands.openFile(path, OpenMode::newAtPath));
    EXPECT_TRUE(fs::exists(path / "inner"));
    EXPECT_FALSE(fs::exists(path.native() + ".~new"));
}

TEST_F(ProjectCommandsTest, aBaseFolderWhoseNameIsNoUtf8IsFoundAgain) {
    commands.openFile(path, OpenMode::newAtPath);
    const fs::path base = folder.write("caf\xE9/a", "").parent_path();
    setRootPath(*program, base);
    commands.closeFile();
    commands.openFile(path, OpenMode::existing);
    EXPECT_EQ(program->state.rootPath, base);
}

TEST_F(ProjectCommandsTest, saveAsWritesNothingAmongTheEvidence) {
    commands.openFile(path, OpenMode::newAtPath);
    fs::create_directories(folder.path() / "evidence");
    setRootPath(*program, folder.path() / "evidence");
    dialogs.answer = folder.path() / "evidence" / "copy.nvp";
    examiner.expect("lies-in-evidence");
    EXPECT_FALSE(commands.saveAs());
    EXPECT_TRUE(fs::is_empty(folder.path() / "evidence"));
    EXPECT_EQ(program->state.projectDBPath, path) << "the open project stays open";
    EXPECT_EQ(rows(), 0);
}

} // namespace
} // namespace nv
