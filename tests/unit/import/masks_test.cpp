#include "import/FileMask.h"
#include "import/ImportClass.h"
#include "readers/Registry.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

ImportClass nothingWanted() {
    ImportClass job;
    for (const ImportOption &option : importOptions())
        job.*option.member = false;
    return job;
}

TEST(ImportClass, wantsEverythingAtFirst) {
    const ImportClass job;
    for (const ImportOption &option : importOptions())
        EXPECT_TRUE(wants(job, option.name)) << option.name;
    EXPECT_TRUE(job.VerifyFileSignatures);
    EXPECT_TRUE(job.RecurseSubfolders);
    EXPECT_TRUE(job.ParseAdvancedMetadata);
}

TEST(ImportClass, hasABoxForEachFormat) {
    for (const Reader &reader : registry()) {
        const bool isScannedFor = !reader.option.empty(); // the others are read when asked for
        if (isScannedFor) {
            EXPECT_NO_THROW(wants(ImportClass(), reader.option)) << reader.key;
        }
    }
    EXPECT_THROW(wants(ImportClass(), "chkNothing"), std::out_of_range);
}

TEST(MaskText, joinsThePiecesOfTheBoxesThatAreOn) {
    EXPECT_EQ(maskText(ImportClass()),
              "data_0;_cache_map_*;index*.dat;dcache4*.url;cache*.db;*.nvd;"
              "global*.dat;download.dat;type_history.xml;typed_history.xml;history*.plist;"
              "history*.dat;places*.sqlite;History;Archived History;index*.dat;"
              "cookies.sqlite;cookies4.dat;cookies.plist;Cookies;*.net;*-UC-index.dat;"
              "*.htm;*.html");
    EXPECT_EQ(maskText(nothingWanted()), "");
    ImportClass job = nothingWanted();
    job.IncludeHistoryIE = true;
    job.IncludeHistEx = true;
    EXPECT_EQ(maskText(job), "index*.dat;*-UC-index.dat");
}

TEST(MaskText, hasNoPieceForCookiesOfInternetExplorer) {
    ImportClass job = nothingWanted();
    job.IncludeCookiesIE = true;
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
        files.Add({}).FullPath = path;
    removeFile(files, "/a");
    ASSERT_EQ(files.Count(), 1u);
    EXPECT_EQ(files.Item(1).FullPath, "/b");
}

} // namespace
} // namespace nv
