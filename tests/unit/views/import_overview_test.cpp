#include "ImportedCase.h"
#include "views/overview/LightColors.h"

#include <cmath>

namespace nv::test {
namespace {

using ImportOverviewTest = ImportedCase;

TEST_F(ImportOverviewTest, aWholeImportIsGreenAndToldInOneLine) {
    for (int i = 0; i < 1200; ++i)
        addRow(i % 2 == 0 ? "ada" : "ben", "Chrome", i % 3 == 0 ? "Default" : "Profile 1");
    addFile(ArtefactState::complete);
    addFile(ArtefactState::complete, "/mnt/b/History");
    endImport();
    const ImportOverview found = overview();
    EXPECT_TRUE(found.isKnown);
    EXPECT_EQ(lightOf(found), ImportLight::green);
    EXPECT_EQ(headlineOf(found), "1,200 records from 4 profiles of 2 people, 2 files read");
    EXPECT_EQ(lightText(found), "Everything that was found was read.");
    EXPECT_TRUE(notesOf(found).empty());
    ASSERT_EQ(found.profiles.size(), 4U);
    EXPECT_EQ(found.profiles[0].name, "Chrome, profile \"Profile 1\", person \"ada\"");
    EXPECT_EQ(found.profiles[0].rows.rows, 400U);
    EXPECT_EQ(spanText(found.rows), "2011-03-01T18:00:00Z to 2011-03-01T18:00:00Z");
    ASSERT_EQ(found.kinds.size(), 1U);
    EXPECT_EQ(found.kinds[0].rows.rows, 1200U);
}

TEST_F(ImportOverviewTest, aProfileOfOneNameOnSeveralMachinesIsCountedOncePerMachine) {
    for (const char *machine : {"/ev/pc1", "/ev/pc2"})
        for (const char *folder : {".config", ".cache"})
            addRow("ada", "Chromium", "Default", 40'603.75,
                   std::string(machine) + "/home/ada/" + folder + "/chromium/Default/History");
    addFile(ArtefactState::complete);
    endImport();
    const ImportOverview found = overview();
    EXPECT_EQ(headlineOf(found), "4 records from 2 profiles of 2 people, 1 file read");
    ASSERT_EQ(found.profiles.size(), 2U);
    EXPECT_EQ(found.profiles[0].name, "Chromium, profile \"Default\", person \"ada\" (pc1)");
    EXPECT_EQ(found.people[1].name, "ada (pc2)");
    EXPECT_EQ(found.people[1].rows.rows, 2U);
    EXPECT_EQ(found.browsers.size(), 1U);
}

TEST_F(ImportOverviewTest, onlyTheLastImportIsToldUnlessAllAreAskedFor) {
    addRow("ada", "Chrome", "Default");
    addFile(ArtefactState::failed, "/mnt/a/History", "not of this format");
    endImport();
    addRow("ben", "Firefox", "x");
    addRow("ben", "Firefox", "x");
    addFile(ArtefactState::complete, "/mnt/b/places.sqlite");
    endImport();
    const ImportOverview last = overview();
    EXPECT_EQ(lightOf(last), ImportLight::green);
    EXPECT_EQ(headlineOf(last), "2 records from 1 profile of 1 person, 1 file read");
    const ImportOverview all = overview(ImportScope::all);
    EXPECT_EQ(lightOf(all), ImportLight::red);
    EXPECT_EQ(headlineOf(all), "3 records from 2 profiles of 2 people, 1 file read");
    EXPECT_EQ(all.found, 2U);
}

TEST_F(ImportOverviewTest, whatALaterImportReadIsMissingNoMore) {
    addFile(ArtefactState::cutShort, "/mnt/a/History", "damaged");
    addFile(ArtefactState::notReadYet, "/mnt/a/Cookies.plist", "a later form");
    addEntry(trailEntry(UnreadPlace{"/mnt/a/locked", "permission denied"}));
    endImport({.found = 3, .notReached = 1, .cancelled = true});
    EXPECT_EQ(countNotRead(project.connection()), 4U) << "what wasn't reached isn't in the list";
    addFile(ArtefactState::complete, "/mnt/a/History");
    addFile(ArtefactState::notReadYet, "/mnt/a/Cookies.plist", "a later form");
    addEntry(trailEntry(UnreadPlace{"/mnt/a/locked", "permission denied"}));
    endImport();
    EXPECT_EQ(overview(ImportScope::all).gaps.size(), 2U) << "told twice, missing once";
    EXPECT_EQ(countNotRead(project.connection()), 3U);
}

TEST_F(ImportOverviewTest, anotherReadersSuccessHidesNoGap) {
    addFile(ArtefactState::failed, "/mnt/a/page.htm", "not of this format");
    ArtefactResult other;
    other.path = "/mnt/a/page.htm";
    other.readerKey = "html";
    other.state = ArtefactState::complete;
    addEntry(trailEntry(other, {}));
    endImport();
    EXPECT_EQ(countNotRead(project.connection()), 1U);
}

TEST_F(ImportOverviewTest, aProjectWithoutATrailLacksNothingThatIsKnown) {
    EXPECT_EQ(countNotRead(project.connection()), 0U);
}

TEST_F(ImportOverviewTest, whatWasNotReadIsAmberWithFilePlaceAndReason) {
    addRow("", "", "");
    addFile(ArtefactState::complete);
    addFile(ArtefactState::notReadYet, "/mnt/a/Safari/Cookies.plist", "a later form");
    TrailEntry unreadable = trailEntry(UnreadPlace{"/mnt/a/locked", "permission denied"});
    addEntry(unreadable);
    endImport();
    const ImportOverview found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::amber);
    EXPECT_EQ(lightText(found), "2 files or folders were not read, or only in part.");
    EXPECT_EQ(headlineOf(found), "1 record, 1 file read");
    ASSERT_EQ(found.gaps.size(), 2U);
    EXPECT_EQ(found.gaps[0].file, "Cookies.plist");
    EXPECT_EQ(found.gaps[0].place, "/mnt/a/Safari");
    EXPECT_EQ(found.gaps[0].state, "not read yet");
    EXPECT_EQ(found.gaps[0].reason, "a later form");
    EXPECT_EQ(found.gaps[1].state, "not readable");
    EXPECT_EQ(found.gaps[1].reason, "permission denied");
}

TEST_F(ImportOverviewTest, damageAndFailuresAreRedAndComeFirst) {
    addFile(ArtefactState::notReadYet, "/mnt/a/Cookies.plist");
    addFile(ArtefactState::cutShort, "/mnt/a/index.dat", "chain leaves the file");
    addFile(ArtefactState::vanished, "/mnt/a/gone");
    endImport();
    const ImportOverview found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::red);
    EXPECT_EQ(lightText(found), "2 files are damaged, could not be read or have changed. 1 other "
                                "was not read.");
    ASSERT_EQ(found.gaps.size(), 3U);
    EXPECT_EQ(found.gaps[0].file, "index.dat");
    EXPECT_EQ(found.gaps[2].file, "Cookies.plist");
}

TEST_F(ImportOverviewTest, evidenceThatIsAnotherThanBeforeIsRed) {
    addFile(ArtefactState::complete, "/mnt/a/History", {}, "aaaa");
    endImport();
    addFile(ArtefactState::complete, "/mnt/a/History", {}, "aaaa");
    endImport();
    EXPECT_EQ(lightOf(overview()), ImportLight::green);
    addFile(ArtefactState::complete, "/mnt/a/History", {}, "bbbb");
    endImport();
    const ImportOverview found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::red);
    ASSERT_EQ(found.gaps.size(), 1U);
    EXPECT_EQ(found.gaps[0].state, "changed");
}

TEST_F(ImportOverviewTest, aVerificationThatFindsAnotherFileIsRed) {
    addFile(ArtefactState::complete);
    endImport();
    TrailEntry verify;
    verify.action = "Verify";
    verify.detail = "1 of 1 imported files are as they were. The case trail is whole: 2 entries.";
    addEntry(verify);
    EXPECT_EQ(lightOf(overview()), ImportLight::green);
    verify.detail = "0 of 1 imported files are as they were, 1 changed. The case trail is whole.";
    addEntry(verify);
    EXPECT_EQ(lightOf(overview()), ImportLight::red);
    EXPECT_EQ(lightText(overview()), "The evidence has changed since.");
    endImport(); // another import that found nothing
    EXPECT_EQ(lightOf(overview()), ImportLight::green);
}

TEST_F(ImportOverviewTest, anEmptyAndACancelledImport) {
    EXPECT_FALSE(overview().isKnown);
    EXPECT_EQ(headlineOf(overview()), "Nothing was imported yet");
    EXPECT_EQ(lightOf(overview()), ImportLight::amber) << "nothing says that all was read";
    endImport();
    EXPECT_EQ(headlineOf(overview()), "Nothing was found to import");
    EXPECT_EQ(lightOf(overview()), ImportLight::green);
    addFile(ArtefactState::cancelled);
    endImport({.found = 5, .notReached = 4, .cancelled = true});
    const ImportOverview found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::amber);
    EXPECT_EQ(found.found, 5U);
    EXPECT_EQ(headlineOf(found), "0 records, 0 files read");
    EXPECT_EQ(lightText(found), "5 files or folders were not read, or only in part.");
    EXPECT_EQ(notesOf(found).size(), 2U);
    endImport({.cancelled = true});
    EXPECT_EQ(headlineOf(overview()), "Nothing was imported: it was cancelled");
    EXPECT_EQ(lightOf(overview()), ImportLight::amber);
}

TEST_F(ImportOverviewTest, aFullDiskIsRed) {
    addRow("ada", "Chrome", "Default");
    addFile(ArtefactState::complete);
    endImport({.failure = "database or disk is full"});
    EXPECT_EQ(lightOf(overview()), ImportLight::red);
    EXPECT_EQ(notesOf(overview()).front(), "The import ended: database or disk is full");
}

TEST_F(ImportOverviewTest, projectsOfEarlierVersionsTellOfAllTheirImports) {
    addRow("ada", "Chrome", "Default");
    addFile(ArtefactState::complete);
    const ImportOverview found = overview();
    EXPECT_EQ(found.scope, ImportScope::all);
    EXPECT_EQ(headlineOf(found), "1 record from 1 profile of 1 person, 1 file read");
    EXPECT_EQ(lightOf(found), ImportLight::green);
    ASSERT_EQ(notesOf(found).size(), 1U);
}

TEST_F(ImportOverviewTest, zerosOfClocksAreNoFirstEvent) {
    addRow("ada", "Chrome", "Default", -109'205);
    addRow("ada", "Chrome", "Default");
    endImport();
    EXPECT_EQ(spanText(overview().rows), "2011-03-01T18:00:00Z to 2011-03-01T18:00:00Z");
}

TEST_F(ImportOverviewTest, itCanBeCancelled) {
    struct Never final : TaskMonitor {
        void describe(const TaskHeading &) override {}
        bool advance(double) override { return false; }
        bool wantsStep() const override { return false; }
        void show(const TaskStep &) override {}
    } never;
    for (int i = 0; i < 20'000; ++i)
        addRow("ada", "Chrome", "Default");
    addFile(ArtefactState::complete);
    ImportOverview found;
    EXPECT_EQ(loadImportOverview(project.connection(), ImportScope::all, never, found),
              Walk::Cancelled);
    EXPECT_EQ(headlineOf(found), "Records that were not counted, 1 file read");
    EXPECT_EQ(lightOf(found), ImportLight::amber);
    EXPECT_EQ(lightText(found), "The records were not counted: that was cancelled.");
}

TEST_F(ImportOverviewTest, anImportThatWasKilledIsToldAlsoAfterAnother) {
    beginImport();
    addRow("ada", "Chrome", "Default");
    ImportOverview found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::red);
    EXPECT_EQ(lightText(found), "1 import never ended: records of it may be missing.");
    EXPECT_FALSE(found.ended.has());
    EXPECT_EQ(countNotRead(project.connection()), 1U);
    beginImport();
    addRow("ben", "Firefox", "x");
    addFile(ArtefactState::complete, "/mnt/b/places.sqlite");
    endImport();
    found = overview(ImportScope::all);
    EXPECT_EQ(lightText(found), "1 import never ended: records of it may be missing.");
    ASSERT_EQ(found.gaps.size(), 1U);
    EXPECT_EQ(found.gaps[0].file, "a");
    EXPECT_EQ(found.gaps[0].place, "/mnt");
    EXPECT_EQ(found.gaps[0].state, "never ended");
    EXPECT_NE(found.gaps[0].reason.find("rows 1 to 1 are of it"), std::string::npos);
    EXPECT_TRUE(found.ended.has());
    found = overview();
    EXPECT_EQ(lightOf(found), ImportLight::green) << "of the last one";
    EXPECT_EQ(found.rows.rows, 1U);
    ASSERT_EQ(notesOf(found).size(), 1U);
    EXPECT_EQ(notesOf(found)[0], "1 earlier import into this project never ended: the summary of "
                                 "all imports tells what may be missing.");
}

TEST_F(ImportOverviewTest, besideAnUnendedImportDamageIsCountedOnItsOwn) {
    beginImport();
    beginImport();
    addFile(ArtefactState::failed);
    endImport();
    EXPECT_EQ(lightText(overview(ImportScope::all)),
              "1 import never ended: records of it may be missing. 1 file is damaged, could not be "
              "read or has changed.");
}

double channel(std::uint32_t value) {
    const double part = value / 255.0;
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(std::uint32_t color) {
    return 0.2126 * channel(color >> 16) + 0.7152 * channel(color >> 8 & 0xFF) +
           0.0722 * channel(color & 0xFF);
}

TEST(LightColorsTest, everyLightCanBeReadInBothPalettesAndHasItsOwnWordAndSign) {
    for (const bool isDark : {false, true})
        for (const ImportLight light : {ImportLight::green, ImportLight::amber, ImportLight::red}) {
            const LightColors colors = lightColors(light, isDark);
            const double text = luminance(colors.text);
            const double ground = luminance(colors.ground);
            EXPECT_GE((std::max(text, ground) + 0.05) / (std::min(text, ground) + 0.05), 7);
        }
    EXPECT_NE(lightWord(ImportLight::green), lightWord(ImportLight::amber));
    EXPECT_NE(lightWord(ImportLight::amber), lightWord(ImportLight::red));
    EXPECT_NE(lightSign(ImportLight::green), lightSign(ImportLight::amber));
    EXPECT_NE(lightSign(ImportLight::amber), lightSign(ImportLight::red));
}

/// Else the page would show how complete the one before was.
TEST_F(ImportOverviewTest, anImportThatTheTrailDoesNotTellOfIsToldByItsSummary) {
    addRow("ada", "Chrome", "Default");
    addFile(ArtefactState::complete);
    endImport();
    ImportSummary summary;
    summary.lastBefore = lastRow();
    addRow("ben", "Firefox", "x");
    addRow("ben", "Firefox", "x");
    summary.artefacts.resize(3);
    summary.artefacts[0].path = "/mnt/b/places.sqlite";
    summary.artefacts[0].state = ArtefactState::complete;
    summary.artefacts[1].path = "/mnt/b/Cookies.plist";
    summary.artefacts[1].state = ArtefactState::notReadYet;
    summary.gaps.unreadable.push_back({"/mnt/b/locked", "permission denied"});
    Unwatched nobody;
    ImportOverview found;
    ASSERT_EQ(loadImportOverview(project.connection(), summary, nobody, found), Walk::Finished);
    EXPECT_EQ(lightOf(found), ImportLight::red);
    EXPECT_EQ(headlineOf(found), "2 records from 1 profile of 1 person, 1 file read");
    EXPECT_EQ(lightText(found),
              "The case trail doesn't tell of this import. 2 others were not read.");
    EXPECT_EQ(found.found, 3U);
    EXPECT_EQ(found.gaps.size(), 2U);
    EXPECT_EQ(found.end.notReached, 1U);
    ASSERT_FALSE(notesOf(found).empty());

    addFile(ArtefactState::complete, "/mnt/b/places.sqlite");
    endImport();
    summary.isNoted = true;
    ASSERT_EQ(loadImportOverview(project.connection(), summary, nobody, found), Walk::Finished);
    EXPECT_EQ(lightOf(found), ImportLight::green) << "the trail's word counts";
    summary.failure = "the disk is full";
    ASSERT_EQ(loadImportOverview(project.connection(), summary, nobody, found), Walk::Finished);
    EXPECT_EQ(lightOf(found), ImportLight::red) << "of what follows on the reading";
}

} // namespace
} // namespace nv::test
