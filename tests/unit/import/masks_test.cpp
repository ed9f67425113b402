#include "import/FileMask.h"
#include "import/ImportSettings.h"
#include "import/UntickedFiles.h"
#include "readers/Registry.h"
#include "support/ImportOption.h"
#include "unit/import/FirstFormats.h"

#include <gtest/gtest.h>

#include <set>

namespace nv {
namespace {

ImportSettings nothingWanted() {
    ImportSettings job;
    for (const SourceOption *option : importOptions())
        setWanted(job, *option, false);
    return job;
}

TEST(ImportSettings, wantsEverythingAtFirst) {
    const ImportSettings job;
    for (const SourceOption *option : importOptions())
        EXPECT_TRUE(wants(job, *option)) << option->name;
    EXPECT_TRUE(job.verifyFileSignatures);
    EXPECT_TRUE(job.recurseSubfolders);
    EXPECT_TRUE(job.parseAdvancedMetadata);
}

TEST(ImportSettings, hasABoxForEachName) {
    std::set<std::string_view> names;
    for (const SourceOption *option : importOptions())
        EXPECT_TRUE(names.insert(option->name).second) << option->name;
    EXPECT_EQ(importOptions(test::firstFormats()).size(), 19U);
}

TEST(MaskText, joinsThePiecesOfTheBoxesThatAreOn) {
    EXPECT_EQ(maskText(ImportSettings(), test::firstFormats()),
              "data_0;_cache_map_*;index*.dat;dcache4*.url;cache*.db;*.nvd;"
              "global*.dat;download.dat;type_history.xml;typed_history.xml;history*.plist;"
              "history*.dat;places*.sqlite;History;Archived History;index*.dat;"
              "cookies.sqlite;cookies4.dat;cookies.plist;Cookies;*.net;*-UC-index.dat;"
              "*.htm;*.html");
    EXPECT_EQ(maskText(nothingWanted()), "");
    ImportSettings job = nothingWanted();
    setWanted(job, test::importOption("chkHistoryIE"), true);
    setWanted(job, test::importOption("chkHistEx"), true);
    EXPECT_EQ(maskText(job), "index*.dat;*-UC-index.dat");
}

TEST(MaskText, ofTheClassicRulesIsThatOfTheFirstFormats) {
    ImportSettings job;
    job.classicOnly = true;
    EXPECT_EQ(maskText(job), maskText(ImportSettings(), test::firstFormats()));
    EXPECT_NE(maskText(ImportSettings()), maskText(job));
}

TEST(MaskText, hasNoPieceForCookiesOfInternetExplorer) {
    ImportSettings job = nothingWanted();
    setWanted(job, test::importOption("chkCookiesIE"), true);
    EXPECT_EQ(maskText(job), "");
}

TEST(FileMask, matchesWithoutRegardToCase) {
    const FileMask mask("history*.dat;Archived History; data_?");
    EXPECT_TRUE(mask.matches("HISTORY.DAT"));
    EXPECT_TRUE(mask.matches("history-2009.dat"));
    EXPECT_TRUE(mask.matches("archived history"));
    EXPECT_TRUE(mask.matches("data_0"));
    EXPECT_FALSE(mask.matches("my history.dat"));
    EXPECT_FALSE(mask.matches("history.dat.bak"));
    EXPECT_FALSE(mask.matches("data_"));
    EXPECT_FALSE(mask.matches(""));
}

TEST(FileMask, triesEveryPlaceForAStar) {
    EXPECT_TRUE(FileMask("*-UC-index.dat").matches("a-uc-index.dat-UC-index.dat"));
    EXPECT_TRUE(FileMask("*a*b*").matches("xxaxxbxx"));
    EXPECT_FALSE(FileMask("*a*b").matches("ba"));
    EXPECT_TRUE(FileMask("*").matches(""));
}

TEST(FileMask, matchesNothingWithoutMasks) {
    EXPECT_FALSE(FileMask("").matches("index.dat"));
    EXPECT_FALSE(FileMask(" ; ;").matches(""));
}

TEST(FileMask, isQuickForHostileNames) {
    EXPECT_FALSE(FileMask("*a*a*a*a*a*a*b").matches(std::string(20000, 'a')));
}

TEST(HistoryFiles, loseTheRowThatWasUnticked) {
    HistoryFiles files;
    for (const char *path : {"/a", "/b", "/a"})
        files.add({}).fullPath = path;
    files.item(1).historyFileType = HistoryFileType::csv;
    removeFiles(files, {{"/a", HistoryFileType::none}});
    ASSERT_EQ(files.count(), 2u);
    EXPECT_EQ(files.item(1).fullPath, "/a") << "another format takes it too";
    EXPECT_EQ(files.item(2).fullPath, "/b");
}

} // namespace
} // namespace nv
