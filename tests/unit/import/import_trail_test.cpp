#include "import/ImportTrail.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

ArtefactResult artefact(ArtefactState state, const std::string &reason = {}) {
    ArtefactResult result;
    result.path = "/mnt/a/History";
    result.readerKey = "chrome-history";
    result.state = state;
    result.reason = reason;
    return result;
}

ImportedFile readBack(const ArtefactResult &result, const ImportSettings &job = {}) {
    const auto file = importedFileOf(trailEntry(result, job));
    EXPECT_TRUE(file);
    return file.value_or(ImportedFile());
}

TEST(ImportTrailTest, eachStateIsReadBack) {
    using enum ArtefactState;
    for (const ArtefactState state :
         {complete, cutShort, cancelled, failed, notReadYet, vanished, notReached}) {
        const ImportedFile file = readBack(artefact(state, "a reason"));
        EXPECT_EQ(file.state, state) << stateWord(state);
        EXPECT_EQ(file.readerKey, "chrome-history");
        EXPECT_EQ(file.why, "a reason");
        EXPECT_FALSE(file.lacksRows);
    }
}

TEST(ImportTrailTest, whatElseIsNotedStandsBehindTheReason) {
    ArtefactResult result = artefact(ArtefactState::cutShort, "chain leaves (the) file");
    result.notReached = 3;
    result.rowsLost = 1;
    ImportSettings job;
    job.classicOnly = true;
    const ImportedFile file = readBack(result, job);
    EXPECT_EQ(file.state, ArtefactState::cutShort);
    EXPECT_EQ(file.why, "(chain leaves (the) file), 1 record not stored, 3 entries not reached; by "
                        "the classic rules alone");
    EXPECT_TRUE(file.lacksRows);
    EXPECT_EQ(readBack(artefact(ArtefactState::complete), job).why, "by the classic rules alone");
}

TEST(ImportTrailTest, theEndIsReadBack) {
    const ImportEnd end{.found = 120,
                        .lastBefore = 17,
                        .lastRow = 98'328,
                        .notReached = 4,
                        .rowsLost = 1,
                        .passedOver = 12,
                        .linksNotFollowed = 2,
                        .shaderCaches = 3,
                        .cancelled = true,
                        .failure = "disk full; cancelled; last row 99"};
    const TrailEntry entry = trailEntry(end);
    EXPECT_EQ(entry.rowCount, 98'311);
    const auto back = importEndOf(entry);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->found, 120U);
    EXPECT_EQ(back->lastBefore, 17);
    EXPECT_EQ(back->lastRow, 98'328);
    EXPECT_EQ(back->notReached, 4U);
    EXPECT_EQ(back->rowsLost, 1U);
    EXPECT_EQ(back->passedOver, 12U);
    EXPECT_EQ(back->linksNotFollowed, 2U);
    EXPECT_EQ(back->shaderCaches, 3U);
    EXPECT_TRUE(back->cancelled);
    EXPECT_EQ(back->failure, end.failure);
    EXPECT_FALSE(importEndOf(trailEntry(ImportEnd{}))->cancelled);
}

TEST(ImportTrailTest, otherEntriesAndNonsenseGiveNothing) {
    TrailEntry entry;
    entry.action = "Verify";
    entry.detail = "chrome-history: complete";
    EXPECT_FALSE(importedFileOf(entry));
    EXPECT_FALSE(importEndOf(entry));
    entry.action = "Import";
    for (const char *detail : {"", ":", ": ", "chrome-history", "chrome-history: ?"}) {
        entry.detail = detail;
        EXPECT_FALSE(importedFileOf(entry)) << detail;
    }
    entry.action = "Import End";
    entry.detail = "last row 99999999999999999999999; files found x;;; ; -";
    ASSERT_TRUE(importEndOf(entry));
    EXPECT_EQ(importEndOf(entry)->found, 0U);
}

TrailEntry begun(std::int64_t lastBefore) {
    TrailEntry entry = trailEntry(ImportBegin{12, lastBefore}, "/mnt/a");
    entry.actionDateUTC = Date::fromUnixSeconds(1308139200);
    return entry;
}

TEST(ImportTrailTest, theBeginIsReadBack) {
    const auto back = importBeginOf(begun(17));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->found, 12U);
    EXPECT_EQ(back->lastBefore, 17);
    EXPECT_FALSE(importEndOf(begun(17)));
    EXPECT_FALSE(importBeginOf(trailEntry(ImportEnd{})));
}

TEST(ImportTrailTest, anImportWithoutAnEndIsFound) {
    UnendedImports imports;
    imports.take(begun(0));
    imports.take(trailEntry(ImportEnd{.lastRow = 17}));
    EXPECT_TRUE(imports.found().empty());
    imports.take(begun(17));
    ASSERT_EQ(imports.found().size(), 1U);
    EXPECT_EQ(reasonOf(imports.found()[0]),
              "began 2011-06-15T12:00:00Z to read 12 files, and its end isn't told: it was killed, "
              "or could not write it, or is still running; its rows follow row 17, and others may "
              "be missing");
    imports.take(begun(40));
    imports.take(trailEntry(ImportEnd{.lastBefore = 40, .lastRow = 50}));
    ASSERT_EQ(imports.found().size(), 1U);
    EXPECT_EQ(imports.found()[0].folder, "/mnt/a");
    EXPECT_EQ(reasonOf(imports.found()[0]),
              "began 2011-06-15T12:00:00Z to read 12 files, and its end isn't told: it was killed, "
              "or could not write it; rows 18 to 40 are of it, and others may be missing");
}

/// Which told of no begin.
TEST(ImportTrailTest, anEndOfAnEarlierVersionEndsNoOtherImport) {
    UnendedImports imports;
    imports.take(begun(17));
    imports.take(trailEntry(ImportEnd{.lastBefore = 30, .lastRow = 40}));
    ASSERT_EQ(imports.found().size(), 1U);
    EXPECT_EQ(imports.found()[0].lastRow, 30);
    imports.take(begun(40));
    imports.take(begun(40));
    ASSERT_EQ(imports.found().size(), 3U);
    EXPECT_NE(reasonOf(imports.found()[1]).find("no row of it is here"), std::string::npos);
}

} // namespace
} // namespace nv
