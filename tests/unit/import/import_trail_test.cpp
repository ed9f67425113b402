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

} // namespace
} // namespace nv
