// Settings by their rows: what the code asks for, and what stands in a row.
#include "app/jobs/ReportJob.h"
#include "app/options/SettingsInForce.h"
#include "app/options/SettingsTable.h"
#include "support/SettingOfTheGuide.h"
#include "unit/app/options/OptionsFixture.h"
#include "views/gallery/Gallery.h"
#include "views/gallery/Thumbnails.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

using SettingsTest = test::OptionsFixture;

TEST_F(SettingsTest, aNameGivesTheValueOrTheDefaultOfItsRow) {
    settings("[OPTIONS]\nGalleryRecordsPerPage=7\nShowTipsAtStartup=False\n[BEYOND]\nTheme=Dark\n");
    start();
    EXPECT_EQ(readNumber(program->settings, "GalleryRecordsPerPage"), 7);
    EXPECT_FALSE(readFlag(program->settings, "ShowTipsAtStartup"));
    EXPECT_EQ(readText(program->settings, "Theme"), "Dark");
    EXPECT_EQ(readNumber(program->settings, "ReportThumbnailWidth"), 200);
    EXPECT_TRUE(readFlag(program->settings, "ShowViewers"));
    EXPECT_EQ(readText(program->settings, "NetworkConnectionName"), "Local Area Connection");
    EXPECT_EQ(readNumber(program->settings, "OPTIONS/ThumbnailRedrawTimeout"), 15);
    EXPECT_EQ(readNumber(program->settings, "THUMBNAILS/ThumbnailRedrawTimeout"), 5);
}

TEST_F(SettingsTest, whatIsWrittenByNameStandsInItsSection) {
    EXPECT_TRUE(writeFlag(program->settings, "ShowHosts", true));
    EXPECT_TRUE(writeNumber(program->settings, "ReportType", 1));
    EXPECT_TRUE(writeText(program->settings, "CaseNumber", "7/26"));
    EXPECT_EQ(ini("BEYOND", "ShowHosts"), "True");
    EXPECT_EQ(ini("REPORT", "ReportType"), "1");
    EXPECT_EQ(ini("REPORT", "CaseNumber"), "7/26");
}

TEST_F(SettingsTest, theThreeKeptDifferencesStandInTheRows) {
    std::vector<std::string> differing;
    for (const SettingFacts &row : settingsTable())
        if (!row.offered.empty() || !row.whenEmptied.empty())
            differing.push_back(
                fmt::format("{} {} {} {}", row.key, row.byDefault, row.offered, row.whenEmptied));
    EXPECT_THAT(differing, testing::ElementsAre("DateFormat yyyy-mm-dd YYYY-MM-DD MM/DD/YY",
                                                "TimeFormat Hh:Nn:Ss 24:00:00 "));
    const auto timeouts = settingsNamed("ThumbnailRedrawTimeout");
    ASSERT_EQ(timeouts.size(), 2U);
    EXPECT_EQ(timeouts[0]->byDefault, "15");
    EXPECT_EQ(timeouts[0]->read, SettingRead::inOptions);
    EXPECT_EQ(timeouts[1]->byDefault, "5");
    EXPECT_EQ(timeouts[1]->read, SettingRead::atStart);
}

TEST_F(SettingsTest, aChoiceOutsideOfOptionsIsInForceAndKept) {
    keepFlag(*program, "ThumbnailsWhileImporting", true);
    keepFlag(*program, "WideRecordIds", false);
    keepFlag(*program, "ShowHosts", true); // no member holds it
    EXPECT_TRUE(program->import.makeThumbnails);
    EXPECT_FALSE(state().wideRecordIds);
    EXPECT_EQ(ini("BEYOND", "ThumbnailsWhileImporting"), "True");
    EXPECT_EQ(ini("BEYOND", "WideRecordIds"), "False");
    EXPECT_EQ(ini("BEYOND", "ShowHosts"), "True");
    EXPECT_TRUE(shown().thumbnailsWhileImporting);
}

/// Lower folders know no settings file; what they begin with, as tests and tools use them, is what
/// a program without one begins with.
TEST_F(SettingsTest, lowerFoldersBeginWithTheDefaultsOfTheRows) {
    EXPECT_EQ(ReportSettings().reportThumbnailWidth, defaultNumber("ReportThumbnailWidth"));
    EXPECT_EQ(ThumbnailSettings().viewerThumbnailWidth, defaultNumber("ViewerThumbnailWidth"));
    EXPECT_EQ(ThumbnailSettings().thumbnailRedrawTimeout.count(),
              defaultNumber("THUMBNAILS/ThumbnailRedrawTimeout"));
    EXPECT_EQ(GallerySettings().galleryRecordsPerPage, defaultNumber("GalleryRecordsPerPage"));
    const ImportSettings job;
    EXPECT_EQ(job.verifyFileSignatures, program->import.verifyFileSignatures);
    EXPECT_EQ(job.parseAdvancedMetadata, program->import.parseAdvancedMetadata);
}

TEST_F(SettingsTest, aReportBeginsWithTheDefaultsOfTheRows) {
    openCase();
    test::MemoryTask task;
    ReportTools fresh(*program, task, folder.path());
    ReportTools asSet(*program, task, folder.path());
    readReportOptions(program->settings, asSet.report);
    for (bool ReportWriter::*flag :
         {&ReportWriter::useCustomLogo, &ReportWriter::includeAudit,
          &ReportWriter::includeLinkAnalysis, &ReportWriter::includeNotes,
          &ReportWriter::includeTimeRebuilt, &ReportWriter::includeDataSource,
          &ReportWriter::includeUser, &ReportWriter::includeCaseTrail})
        EXPECT_EQ(fresh.report.*flag, asSet.report.*flag);
    EXPECT_EQ(fresh.report.reportTitle, asSet.report.reportTitle);
    EXPECT_EQ(fresh.report.reportType, asSet.report.reportType);
}

TEST_F(SettingsTest, aCaseNumberStaysWithItsProject) {
    settings("[REPORT]\nCaseNumber=of the settings\n");
    start();
    openCase();
    test::MemoryTask task;
    ReportTools first(*program, task, folder.path());
    EXPECT_FALSE(readProjectReportOptions(*program, first.report));
    first.report.caseNumber = "2011/17";
    first.report.reportedBy = std::string(400, 'q');
    first.report.organization = "Unit 4";
    first.report.caseOptions.cards = CaseCards::none;
    first.report.caseOptions.timeline = false;
    first.report.caseOptions.redactions = redactionRules("blur value=low tide");
    EXPECT_TRUE(writeProjectReportOptions(*program, first.report));
    EXPECT_TRUE(writeReportOptions(first.report, program->settings));
    EXPECT_EQ(ini("REPORT", "CaseNumber"), "of the settings");
    EXPECT_EQ(ini("REPORT", "Organization"), "Unit 4");
    ReportTools second(*program, task, folder.path());
    EXPECT_TRUE(readProjectReportOptions(*program, second.report));
    EXPECT_EQ(second.report.caseNumber, "2011/17");
    EXPECT_EQ(second.report.reportedBy, std::string(400, 'q'));
    EXPECT_EQ(second.report.caseOptions.cards, CaseCards::none);
    EXPECT_FALSE(second.report.caseOptions.timeline);
    EXPECT_EQ(second.report.caseOptions.redactions, first.report.caseOptions.redactions);
    first.report.caseNumber.clear(); // an empty one is a choice too
    EXPECT_TRUE(writeProjectReportOptions(*program, first.report));
    second.report.caseNumber = "of another case";
    EXPECT_TRUE(readProjectReportOptions(*program, second.report));
    EXPECT_EQ(second.report.caseNumber, "");
    state().projectDB.connection().exec(
        "UPDATE DefaultSettings SET DefaultValue = 'hide all' WHERE DefaultName = "
        "'ReportRedactions'");
    EXPECT_THROW(readProjectReportOptions(*program, second.report), std::invalid_argument);
}

/// Found by the commands, checked and shown as any other: the row is all that it takes.
TEST_F(SettingsTest, theRowOfTheGuideIsASetting) {
    const SettingFacts &row = setting::kOfTheGuide.at(0);
    ASSERT_TRUE(settingsNamed(fullName(row)).empty()) << "the guide's example is a made-up one";
    EXPECT_EQ(valueOf(*program, row), row.byDefault);
    EXPECT_EQ(checkValue(*program, row, "above").value, "Above");
    EXPECT_EQ(checkValue(*program, row, "Beside").refusal, "Above or Below is expected");
    ASSERT_TRUE(program->settings.writeIniValue(row.section, row.key, "Above"));
    EXPECT_EQ(valueOf(*program, row), "Above");
    EXPECT_EQ(row.okay, SettingOkay::writes);
    Options options;
    chooseText(options, row, "Above");
    EXPECT_EQ(shownText(options, row), "Above");
}

} // namespace
} // namespace nv
